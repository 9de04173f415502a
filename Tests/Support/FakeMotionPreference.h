#pragma once

// A wish about movement that a test sets.

#include "Platform/MotionPreference.h"

namespace Quillbrook {

class FakeMotionPreference final : public MotionPreference
{
public:
    bool isReduced() const override { return m_isReduced; }
    void setReduced(bool isReduced)
    {
        m_isReduced = isReduced;
        Q_EMIT changed();
    }

private:
    bool m_isReduced = false;
};

} // namespace Quillbrook
