// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QMutex>

#include "platform/x11/X11WindowCache.h"
#include "platform/x11/X11WindowFacts.h"

class X11Connection;
class X11DisplayClients;

// Reads windows and the root window with every request of a stage in flight before the first reply is
// awaited, so a whole desktop costs a few round trips. Uses only requests with replies, so it is safe
// on any thread: errors come back with the replies, never through the event queue.
//
// A reader with a cache reads through the cache's connection and asks the server only for the fields
// of a window that the cache does not know.
class X11WindowReader {
public:
    enum RootField : unsigned {
        ClientList = 1u << 0,
        Children = 1u << 1,
        ActiveWindow = 1u << 2,
        CurrentDesktop = 1u << 3,
        GlobalOrigin = 1u << 5,
        WindowManagerCheck = 1u << 6,
        CompositingManager = 1u << 7,
        DesktopCount = 1u << 8,
    };
    struct Request {
        xcb_window_t window = XCB_NONE;
        unsigned fields = 0;
    };
    // The cookies of requests in flight.
    struct PendingWindow {
        Request request;
        unsigned knownFields = 0;  // the fields asked for that the cache knew
        unsigned sentFields = 0;   // what was asked of the server
        X11WindowFacts facts;      // what the cache knew, then what the server answered
        xcb_get_window_attributes_cookie_t attributes{};
        xcb_get_geometry_cookie_t geometry{};
        xcb_translate_coordinates_cookie_t position{};
        xcb_get_property_cookie_t extents{};
        xcb_get_property_cookie_t type{};
        xcb_get_property_cookie_t transient{};
        xcb_get_property_cookie_t state{};
        xcb_get_property_cookie_t desktop{};
        xcb_get_property_cookie_t pid{};
        bool askedNetWmPid = false;
        xcb_get_property_cookie_t opacity{};
        xcb_get_property_cookie_t title{};
        xcb_get_property_cookie_t wmClass{};
        xcb_get_property_cookie_t hints{};
    };
    // One question to the server for the processes behind the clients of many windows.
    struct PendingOwners {
        xcb_res_query_client_ids_cookie_t cookie{};
        bool asked = false;
    };
    struct PendingWindows {
        QList<PendingWindow> windows;
        PendingOwners owners;
        quint64 mark = 0;
        bool usesCache = false;  // some facts came from the cache
        xcb_get_input_focus_cookie_t newsBarrier{};
    };

    explicit X11WindowReader(X11Connection& connection, X11WindowCache* cache = nullptr);

    X11Connection& connection() const { return m_connection; }

    // One round trip.
    X11RootFacts readRoot(unsigned fields);

    // One round trip for all the windows.
    QList<X11WindowFacts> readWindows(const QList<Request>& requests);
    PendingWindows sendWindowRequests(const QList<Request>& requests);
    QList<X11WindowFacts> collectWindows(PendingWindows& pending);

private:
    // The process behind each client connection, by the bits every resource of the client shares.
    using ClientPids = QHash<uint32_t, pid_t>;

    void sendFields(PendingWindow& entry);
    // Asks once for the clients of every window whose owner is wanted; X-Resource answers per client.
    PendingOwners sendOwnerRequest(const QList<PendingWindow>& windows);
    ClientPids collectOwners(const PendingOwners& pending);
    X11WindowFacts collectFields(PendingWindow& entry, const PendingOwners& owners, const ClientPids& clientPids,
                                 X11DisplayClients& displayClients);
    // Reads again every window whose cached facts were used although news of it had come in.
    void rereadChanged(const PendingWindows& pending, QList<X11WindowFacts>& result);

    X11Connection& m_connection;
    X11WindowCache* m_cache = nullptr;
    struct WindowAtoms {
        xcb_atom_t extents, type, state, desktop, pid, opacity, name;
    } m_atoms{};
    xcb_atom_t m_compositingSelection = XCB_NONE;  // _NET_WM_CM_S<screen>
    bool m_hasResource = false;
    uint32_t m_resourceIdMask = 0;
    bool m_hasRandr = false;
    // The global origin moves only when monitors change; every move asks for it, so it is kept briefly.
    QMutex m_originMutex;
    QPoint m_origin;
    QDeadlineTimer m_originValidUntil;
};
