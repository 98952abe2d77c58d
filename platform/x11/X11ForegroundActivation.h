// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QWindow>

#include "platform/ForegroundActivation.h"

class X11Connection;

// Brings our window forward on an X11 desktop with _NET_ACTIVE_WINDOW, sent as a pager would, so that
// the window manager follows it even while another application is active.
class X11ForegroundActivation : public QObject, public ForegroundActivation {
public:
    explicit X11ForegroundActivation(X11Connection& connection);
    ~X11ForegroundActivation() override;

    void bringToFront() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    X11Connection& m_connection;
    // The window shown last: the one a presenting call means.
    QPointer<QWindow> m_lastShown;
};
