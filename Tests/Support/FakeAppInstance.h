#pragma once

// The one running program, or not, as a test has it; another start is the signal.

#include "Platform/AppInstance.h"

#include <QList>

namespace Quillbrook {

class FakeAppInstance final : public AppInstance
{
public:
    bool claim(Start /*start*/) override { return isTheOne; }
    void useActivationToken(const QByteArray &token) override
    {
        if (!token.isEmpty())
            tokens.append(token);
    }

    bool isTheOne = true;
    QList<QByteArray> tokens;
};

} // namespace Quillbrook
