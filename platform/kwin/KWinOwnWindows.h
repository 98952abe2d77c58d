// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QList>
#include <QObject>

#include "platform/ForegroundActivation.h"
#include "platform/TaskbarPresence.h"
#include "platform/kwin/KWinBridge.h"

class QWindow;

// Our own windows as KWin manages them: a Wayland client can neither keep itself out of the taskbar, nor
// place its own windows, nor take the focus on its own, so the bridge asks KWin to. Each window gets its
// rule as KWin shows it, and again whenever the taskbar choice changes:
// - the panel (a top-level pop-up) never shows in the taskbar or Alt+Tab, and opens next to the pointer,
//   on the pointer's screen and inside its work area, with the focus;
// - a window marked with kAlwaysInTaskbarProperty (settings, guide) shows in both while it is open;
// - other windows follow the taskbar choice.
class KWinOwnWindows : public QObject, public TaskbarPresence, public ForegroundActivation {
public:
    explicit KWinOwnWindows(KWinBridge& bridge);
    ~KWinOwnWindows() override;

    void setShownInTaskbar(bool shown) override;
    bool isShownInTaskbar() const override { return m_shown; }
    void bringToFront() override;

    // What KWin is to do with a window as it appears; an empty object for windows it leaves alone.
    QJsonObject ruleFor(const QWindow& window) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The rules of our windows now visible and of the one being shown.
    QList<KWinBridge::OwnWindowRule> rules(const QWindow* showing = nullptr) const;
    // Applies the rules to our windows already in KWin; activates the front-most one when asked.
    void applyToShownWindows(bool activate);

    KWinBridge& m_bridge;
    bool m_shown = false;
};
