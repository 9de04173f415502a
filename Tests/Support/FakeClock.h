#pragma once

// A clock that stands where a test sets it.

#include "Platform/Clock.h"

namespace Quillbrook {

class FakeClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override { return moment; }

    QDateTime moment = QDateTime(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);
};

} // namespace Quillbrook
