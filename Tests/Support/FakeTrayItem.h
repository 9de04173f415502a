#pragma once

// A tray that only remembers; a test presses by the signals.

#include "Platform/TrayItem.h"

#include <QList>

#include <utility>

namespace Quillbrook {

class FakeTrayItem final : public TrayItem
{
public:
    void show(const Appearance &appearance) override { appearances.append(appearance); }
    bool isShown() const override { return m_isShown; }
    QByteArray takeActivationToken() override { return std::exchange(token, {}); }
    void setShown(bool isShown)
    {
        if (std::exchange(m_isShown, isShown) != isShown)
            Q_EMIT shownChanged();
    }

    QList<Appearance> appearances;
    /// What comes with the next press.
    QByteArray token;

private:
    bool m_isShown = false;
};

} // namespace Quillbrook
