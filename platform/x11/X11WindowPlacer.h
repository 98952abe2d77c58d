// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QDeadlineTimer>
#include <QHash>
#include <QPoint>
#include <QSize>
#include <functional>
#include <optional>

#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/x11/X11WindowFacts.h"

class X11Connection;
class X11WindowKinds;
class X11WindowReader;

// Moves, resizes, minimises, restores and activates client windows through the window manager, and waits for it
// to confirm each change, so that a read right after a write sees the result. Main thread only: it
// waits on the shared connection's events.
class X11WindowPlacer {
public:
    // The longest a write waits for the window manager before giving up. A window manager that has to
    // wait for a busy machine's processor answers a move a few hundred milliseconds late and still makes it;
    // giving up sooner would report as not done a move the user then sees happen.
    static constexpr int kConfirmationMilliseconds = 1000;

    X11WindowPlacer(X11Connection& connection, X11WindowReader& reader, const X11WindowKinds& kinds);
    X11WindowPlacer(const X11WindowPlacer&) = delete;
    X11WindowPlacer& operator=(const X11WindowPlacer&) = delete;

    // Puts the outer frame's top-left corner at the point (root coordinates). A maximised or
    // full-screen window keeps that state and ends it on the monitor of the new position.
    Result moveFrame(xcb_window_t window, QPoint rootTopLeft);
    // Gives the outer frame the size, keeping its top-left corner. A maximised or full-screen window
    // keeps its state, which decides its size on its monitor.
    Result resizeFrame(xcb_window_t window, QSize frameSize);
    Result setMinimized(xcb_window_t window, bool minimized);
    // Asks the window manager to raise and focus the window; done once _NET_ACTIVE_WINDOW names it.
    Result activate(xcb_window_t window);

    // Where one window of a batch goes: its outer frame's top-left corner (root coordinates) and, when
    // set, its outer frame's size.
    struct Placement {
        xcb_window_t window = XCB_NONE;
        QPoint rootTopLeft;
        std::optional<QSize> frameSize;
    };
    // Places many windows at once: each window's position and size go in one request, every request is
    // sent before the first confirmation is awaited, and each confirmation is taken from the window
    // manager's report of the change. Windows in a size state are moved one by one, as moveFrame does.
    QList<PlacementResult> place(const QList<Placement>& placements);

private:
    // A window of a batch whose change has been sent.
    struct SentPlacement {
        qsizetype index = 0;
        X11WindowFacts facts;  // as the window manager last reported or a read found it
        QPoint beforeTopLeft;
        QSize beforeSize;
        bool moves = false;
        bool resizes = false;
        bool confirmed = false;
        bool hasNews = false;  // something about the window came that did not confirm it
    };
    void sendPlacement(const SentPlacement& sent, const Placement& placement, bool withSize);
    bool isPlaced(const SentPlacement& sent, const Placement& placement) const;
    // Waits until every sent change is confirmed, reading the windows whose news does not say, or until the
    // window manager has confirmed nothing for the time limit. Reads at the end those never confirmed.
    void awaitPlacements(QList<SentPlacement>& sent, const QList<Placement>& placements);
    // Takes one event about a window of the batch into what is known of it; true when it confirms it.
    bool takeReport(xcb_generic_event_t* event, QList<SentPlacement>& sent,
                    const QHash<xcb_window_t, qsizetype>& byWindow, const QList<Placement>& placements);
    void readAgain(QList<SentPlacement>& sent, const QList<qsizetype>& which, const QList<Placement>& placements);
    static PlacementResult outcome(const SentPlacement& sent, const Placement& placement);

    // How long a window must stay silent to count as settled after a change of state.
    static constexpr int kQuietMilliseconds = 15;
    // The longest wait for the window manager to take a window out of its size states or back in. Longer
    // than for a move: a busy window manager that answers late must not leave the window out of them.
    static constexpr int kStateChangeMilliseconds = 2000;
    // A frame that lands this close to the target (in pixels along both axes) missed it by a decoration.
    static constexpr int kDecorationSlack = 64;
    static constexpr unsigned kPlacementFields =
        X11WindowFacts::Geometry | X11WindowFacts::State | X11WindowFacts::Attributes;

    X11WindowFacts read(xcb_window_t window);
    // Reads the window after every event about it until the condition holds or the time is up.
    bool waitUntil(xcb_window_t window, const std::function<bool(const X11WindowFacts&)>& condition, int timeoutMs,
                   X11WindowFacts* last);
    // Waits for the first news of the window after a request. True when it reports a new geometry that
    // meets the condition; the facts then have the window so.
    bool confirmedByReport(xcb_window_t window, const QDeadlineTimer& deadline, X11WindowFacts* facts,
                           const std::function<bool(const X11WindowFacts&)>& condition);
    // Waits until no event about the window has come for quietMs, or the time is up.
    void waitForQuiet(xcb_window_t window, int quietMs, int timeoutMs);
    void watch(xcb_window_t window);
    void sendMoveResize(xcb_window_t window, std::optional<QPoint> position, std::optional<QSize> size);
    void sendState(xcb_window_t window, bool add, xcb_atom_t first, xcb_atom_t second);
    void sendToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<uint32_t> data);
    // From the frame's corner to the client's.
    static QPoint decorationOffset(const X11WindowFacts& facts);
    QList<xcb_atom_t> sizeStates(const X11WindowFacts& facts) const;
    Result leaveSizeStates(xcb_window_t window, const QList<xcb_atom_t>& states, X11WindowFacts* facts);
    void restoreSizeStates(xcb_window_t window, const QList<xcb_atom_t>& states);

    X11Connection& m_connection;
    X11WindowReader& m_reader;
    const X11WindowKinds& m_kinds;
    // Window managers differ in what the position of a move request means: the frame's corner (as the
    // standard has it) or the client's. Learned from the first move that lands off by the decorations.
    bool m_positionIsClientCorner = false;
    xcb_atom_t m_moveResize, m_state, m_active, m_changeState;
    xcb_atom_t m_maximizedVert, m_maximizedHorz, m_fullscreen;
};
