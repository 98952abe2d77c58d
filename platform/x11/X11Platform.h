// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <memory>

#include "platform/Platform.h"

class X11Connection;
class X11WindowCache;

// Every platform service on a live X server. Creating one connects to the server; install() makes the
// services the ones the program uses. Destroying it takes back everything it set up: its event handlers
// and filters, its key grabs, and its services when they are the installed ones.
class X11Platform {
public:
    // Nothing when no X server answers on the display.
    static std::unique_ptr<X11Platform> connect(const QByteArray& displayName = {});
    // The services on a connection that the caller owns and keeps open longer than the platform.
    static std::unique_ptr<X11Platform> on(X11Connection& connection);
    ~X11Platform();
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

    void install();
    const PlatformServices& services() const { return m_services; }
    X11Connection& connection() const { return *m_x11; }
    // What the window services know of windows between reads; nothing without a second connection.
    X11WindowCache* windowCache() const;

private:
    X11Platform(std::unique_ptr<X11Connection> owned, X11Connection& connection);

    std::unique_ptr<X11Connection> m_ownedConnection;  // empty when the caller owns the connection
    X11Connection* m_x11;
    // Owned services, destroyed before the connection.
    struct Owned;
    std::unique_ptr<Owned> m_owned;
    PlatformServices m_services;
};
