#pragma once

// The one running program; another start is the signal.

#include "Platform/AppInstance.h"

#include <QList>

namespace Quillbrook {

class FakeAppInstance final : public AppInstance
{
public:
    bool claim(Start /*start*/) override { return true; }
    void useActivationToken(const QByteArray &token) override
    {
        if (!token.isEmpty())
            tokens.append(token);
    }

    QList<QByteArray> tokens;
};

} // namespace Quillbrook
