// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowPlacer.h"

#include <QDeadlineTimer>
#include <QLoggingCategory>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowEvents.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowReader.h"

Q_LOGGING_CATEGORY(lcPlacer, "lattica.x11.placer", QtInfoMsg)

namespace {
constexpr uint32_t kNorthWestGravity = 1;
constexpr uint32_t kSourcePager = 2;
constexpr uint32_t kStateRemove = 0;
constexpr uint32_t kStateAdd = 1;
constexpr uint32_t kIconicState = 3;
}  // namespace

X11WindowPlacer::X11WindowPlacer(X11Connection& connection, X11WindowReader& reader, const X11WindowKinds& kinds)
    : m_connection(connection), m_reader(reader), m_kinds(kinds) {
    connection.internAtoms({"_NET_MOVERESIZE_WINDOW", "_NET_WM_STATE", "_NET_ACTIVE_WINDOW", "WM_CHANGE_STATE",
                            "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ",
                            "_NET_WM_STATE_FULLSCREEN"});
    m_moveResize = connection.atom("_NET_MOVERESIZE_WINDOW");
    m_state = connection.atom("_NET_WM_STATE");
    m_active = connection.atom("_NET_ACTIVE_WINDOW");
    m_changeState = connection.atom("WM_CHANGE_STATE");
    m_maximizedVert = connection.atom("_NET_WM_STATE_MAXIMIZED_VERT");
    m_maximizedHorz = connection.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    m_fullscreen = connection.atom("_NET_WM_STATE_FULLSCREEN");
}

X11WindowFacts X11WindowPlacer::read(xcb_window_t window) {
    return m_reader.readWindows({{window, kPlacementFields}}).value(0);
}

void X11WindowPlacer::watch(xcb_window_t window) {
    // Selected again before every change: a window number that was given to a new window after the old
    // one died gets the mask too.
    X11WindowEvents::watch(m_connection.xcb(), window);
}

namespace {

// Whether an event tells about the window: its geometry, properties, mapping or end.
bool isAbout(xcb_window_t window, xcb_generic_event_t* event) {
    return X11WindowEvents::subject(event) == window;
}

}  // namespace

bool X11WindowPlacer::waitUntil(xcb_window_t window, const std::function<bool(const X11WindowFacts&)>& condition,
                                int timeoutMs, X11WindowFacts* last) {
    QDeadlineTimer deadline(timeoutMs);
    auto aboutWindow = [window](xcb_generic_event_t* event) { return isAbout(window, event); };
    while (true) {
        *last = read(window);
        if (!last->exists || condition(*last)) {
            return last->exists;
        }
        const qint64 remaining = deadline.remainingTime();
        if (remaining <= 0 || !m_connection.waitForEvent(aboutWindow, static_cast<int>(remaining))) {
            *last = read(window);
            return last->exists && condition(*last);
        }
    }
}

bool X11WindowPlacer::confirmedByReport(xcb_window_t window, const QDeadlineTimer& deadline, X11WindowFacts* facts,
                                        const std::function<bool(const X11WindowFacts&)>& condition) {
    // The X server reports a new size in a ConfigureNotify; ICCCM has window managers report a move
    // with a synthetic one in root coordinates (the corner outside the border).
    std::optional<X11WindowFacts> reported;
    m_connection.waitForEvent(
        [&](xcb_generic_event_t* event) {
            if (!isAbout(window, event)) {
                return false;
            }
            if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY) {
                const auto* configure = reinterpret_cast<xcb_configure_notify_event_t*>(event);
                X11WindowFacts now = *facts;
                now.borderWidth = configure->border_width;
                now.clientRect.setSize(QSize(configure->width, configure->height));
                if ((event->response_type & 0x80) != 0) {
                    now.clientRect.moveTopLeft(QPoint(configure->x, configure->y) +
                                               QPoint(configure->border_width, configure->border_width));
                }
                reported = now;
            }
            return true;
        },
        static_cast<int>(qMax<qint64>(0, deadline.remainingTime())));
    if (!reported || !condition(*reported)) {
        return false;
    }
    *facts = *reported;
    return true;
}

void X11WindowPlacer::waitForQuiet(xcb_window_t window, int quietMs, int timeoutMs) {
    QDeadlineTimer deadline(timeoutMs);
    auto aboutWindow = [window](xcb_generic_event_t* event) { return isAbout(window, event); };
    while (!deadline.hasExpired() &&
           m_connection.waitForEvent(aboutWindow, static_cast<int>(qMin<qint64>(quietMs, deadline.remainingTime())))) {
    }
}

void X11WindowPlacer::sendToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    int i = 0;
    for (uint32_t value : data) {
        message.data.data32[i++] = value;
    }
    xcb_send_event(m_connection.xcb(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void X11WindowPlacer::sendMoveResize(xcb_window_t window, std::optional<QPoint> position, std::optional<QSize> size) {
    uint32_t flags = kNorthWestGravity | (kSourcePager << 12);
    if (position) {
        flags |= (1u << 8) | (1u << 9);
    }
    if (size) {
        flags |= (1u << 10) | (1u << 11);
    }
    const QPoint p = position.value_or(QPoint());
    const QSize s = size.value_or(QSize());
    sendToRoot(window, m_moveResize,
               {flags, static_cast<uint32_t>(p.x()), static_cast<uint32_t>(p.y()), static_cast<uint32_t>(s.width()),
                static_cast<uint32_t>(s.height())});
}

void X11WindowPlacer::sendState(xcb_window_t window, bool add, xcb_atom_t first, xcb_atom_t second) {
    sendToRoot(window, m_state, {add ? kStateAdd : kStateRemove, first, second, kSourcePager, 0});
}

QPoint X11WindowPlacer::decorationOffset(const X11WindowFacts& facts) {
    return QPoint(facts.frameExtents.left() + facts.borderWidth, facts.frameExtents.top() + facts.borderWidth);
}

QList<xcb_atom_t> X11WindowPlacer::sizeStates(const X11WindowFacts& facts) const {
    QList<xcb_atom_t> states;
    for (xcb_atom_t atom : {m_maximizedVert, m_maximizedHorz, m_fullscreen}) {
        if (facts.hasState(atom)) {
            states.append(atom);
        }
    }
    return states;
}

Result X11WindowPlacer::leaveSizeStates(xcb_window_t window, const QList<xcb_atom_t>& states, X11WindowFacts* facts) {
    if (states.contains(m_fullscreen)) {
        sendState(window, false, m_fullscreen, 0);
    }
    const bool vert = states.contains(m_maximizedVert);
    const bool horz = states.contains(m_maximizedHorz);
    if (vert || horz) {
        sendState(window, false, vert ? m_maximizedVert : m_maximizedHorz, vert && horz ? m_maximizedHorz : 0);
    }
    // The state property may change before the frame does; wait for both. A busy window manager may take
    // long to answer at all; once it has, the frame follows at once, unless the window's normal size is
    // its size in the state, which never changes.
    const QSize sizeInState = facts->outerFrame().size();
    const bool left = waitUntil(
        window,
        [this](const X11WindowFacts& current) {
            return !current.hasState(m_maximizedVert) && !current.hasState(m_maximizedHorz) &&
                   !current.hasState(m_fullscreen);
        },
        kStateChangeMilliseconds, facts);
    if (left) {
        waitUntil(
            window, [sizeInState](const X11WindowFacts& current) { return current.outerFrame().size() != sizeInState; },
            kConfirmationMilliseconds, facts);
    }
    if (!facts->exists) {
        return Result::Gone;
    }
    qCDebug(lcPlacer) << "left states of" << window << "frame" << facts->outerFrame() << "from size" << sizeInState;
    return left ? Result::Ok : Result::CannotComplete;
}

void X11WindowPlacer::restoreSizeStates(xcb_window_t window, const QList<xcb_atom_t>& states) {
    const QSize before = read(window).outerFrame().size();
    const bool vert = states.contains(m_maximizedVert);
    const bool horz = states.contains(m_maximizedHorz);
    if (vert || horz) {
        sendState(window, true, vert ? m_maximizedVert : m_maximizedHorz, vert && horz ? m_maximizedHorz : 0);
    }
    if (states.contains(m_fullscreen)) {
        sendState(window, true, m_fullscreen, 0);
    }
    // The state property may change before the frame does; wait for both, as when leaving them.
    X11WindowFacts facts;
    const bool entered = waitUntil(
        window,
        [&states](const X11WindowFacts& current) {
            for (xcb_atom_t state : states) {
                if (!current.hasState(state)) {
                    return false;
                }
            }
            return true;
        },
        kStateChangeMilliseconds, &facts);
    if (entered) {
        waitUntil(
            window, [before](const X11WindowFacts& current) { return current.outerFrame().size() != before; },
            kConfirmationMilliseconds, &facts);
    }
    // Window managers take several steps to maximise (client, decorations, frame); let them finish.
    waitForQuiet(window, kQuietMilliseconds, kConfirmationMilliseconds);
    qCDebug(lcPlacer) << "restored states of" << window << "frame" << read(window).outerFrame() << "from size"
                      << before;
}

Result X11WindowPlacer::moveFrame(xcb_window_t window, QPoint rootTopLeft) {
    X11WindowFacts facts = read(window);
    if (!facts.exists) {
        return Result::Gone;
    }
    watch(window);
    if (facts.outerFrame().topLeft() == rootTopLeft) {
        return Result::Ok;
    }
    const QList<xcb_atom_t> states = sizeStates(facts);
    // A maximised or full-screen frame is where its state puts it; a point a decoration's width away (a
    // position computed from its size) asks for the same place, and leaving the state would only flicker.
    if (!states.isEmpty() && (facts.outerFrame().topLeft() - rootTopLeft).manhattanLength() <= kDecorationSlack) {
        return Result::Ok;
    }
    if (!states.isEmpty()) {
        if (const Result error = leaveSizeStates(window, states, &facts); error != Result::Ok) {
            // The window manager may still act on the request later: ask for the states back, so the
            // window is never left out of them where it is.
            if (error != Result::Gone) {
                restoreSizeStates(window, states);
            }
            return error;
        }
    }
    const QPoint before = facts.outerFrame().topLeft();
    const QPoint decorations = decorationOffset(facts);
    sendMoveResize(window, m_positionIsClientCorner ? rootTopLeft + decorations : rootTopLeft, std::nullopt);
    auto arrived = [rootTopLeft](const X11WindowFacts& current) {
        return current.outerFrame().topLeft() == rootTopLeft;
    };
    // Done waiting once the frame has moved at all; where it went says whether to aim again. Usually the
    // window manager's own report of the move says it landed, and nothing needs to be read. A window
    // just taken out of its states waits as long as that took: the window manager is busy.
    QDeadlineTimer deadline(states.isEmpty() ? kConfirmationMilliseconds : kStateChangeMilliseconds);
    if (!confirmedByReport(window, deadline, &facts, arrived)) {
        waitUntil(
            window,
            [&](const X11WindowFacts& current) { return arrived(current) || current.outerFrame().topLeft() != before; },
            static_cast<int>(deadline.remainingTime()), &facts);
    }
    bool landed = arrived(facts);
    const QPoint offBy = facts.outerFrame().topLeft() - rootTopLeft;
    if (!landed && facts.exists && offBy.manhattanLength() <= kDecorationSlack &&
        facts.outerFrame().topLeft() != before) {
        if (!m_positionIsClientCorner && states.isEmpty() && !decorations.isNull() && offBy == -decorations) {
            // This window manager places the client's corner where asked; say so from now on.
            qCDebug(lcPlacer) << "window manager reads move positions as the client's corner";
            m_positionIsClientCorner = true;
        }
        // Off by about a decoration: aim once more with what the window manager reports now (its frame may
        // have changed meanwhile, as when a full-screen window gets its decorations back).
        const QPoint now = decorationOffset(facts);
        sendMoveResize(window, m_positionIsClientCorner ? rootTopLeft + now : rootTopLeft, std::nullopt);
        landed = waitUntil(window, arrived, kConfirmationMilliseconds, &facts);
    }
    if (!facts.exists) {
        return Result::Gone;
    }
    if (!states.isEmpty()) {
        restoreSizeStates(window, states);
    }
    qCDebug(lcPlacer) << "move" << window << "to" << rootTopLeft << "landed" << landed << "at"
                      << facts.outerFrame().topLeft();
    // A window manager that keeps windows where it likes has still answered the request.
    return landed || facts.outerFrame().topLeft() != before ? Result::Ok : Result::CannotComplete;
}

Result X11WindowPlacer::resizeFrame(xcb_window_t window, QSize frameSize) {
    X11WindowFacts facts = read(window);
    if (!facts.exists) {
        return Result::Gone;
    }
    watch(window);
    // A maximised or full-screen window takes the size of its monitor: a size computed for it elsewhere
    // (scaled from another monitor, or read while the window manager was still resizing it) would only
    // take it out of its state.
    if (!sizeStates(facts).isEmpty()) {
        qCDebug(lcPlacer) << "resize" << window << "kept in its size states at" << facts.outerFrame().size();
        return Result::Ok;
    }
    if (facts.outerFrame().size() == frameSize) {
        return Result::Ok;
    }
    const QSize before = facts.outerFrame().size();
    const QSize decorations(facts.frameExtents.left() + facts.frameExtents.right() + 2 * facts.borderWidth,
                            facts.frameExtents.top() + facts.frameExtents.bottom() + 2 * facts.borderWidth);
    const QSize clientSize = (frameSize - decorations).expandedTo(QSize(1, 1));
    sendMoveResize(window, std::nullopt, clientSize);
    auto sized = [frameSize](const X11WindowFacts& now) { return now.outerFrame().size() == frameSize; };
    QDeadlineTimer deadline(kConfirmationMilliseconds);
    const bool landed = confirmedByReport(window, deadline, &facts, sized) ||
                        waitUntil(window, sized, static_cast<int>(deadline.remainingTime()), &facts);
    if (!facts.exists) {
        return Result::Gone;
    }
    return landed || facts.outerFrame().size() != before ? Result::Ok : Result::CannotComplete;
}

Result X11WindowPlacer::setMinimized(xcb_window_t window, bool minimized) {
    X11WindowFacts facts = read(window);
    if (!facts.exists) {
        return Result::Gone;
    }
    if (m_kinds.isHidden(facts) == minimized) {
        return Result::Ok;
    }
    watch(window);
    if (minimized) {
        sendToRoot(window, m_changeState, {kIconicState});
    } else {
        // Activation restores an iconic window; mapping it is the standard's own way to ask the same.
        sendToRoot(window, m_active, {kSourcePager, XCB_CURRENT_TIME, 0});
        xcb_map_window(m_connection.xcb(), window);
    }
    const bool done = waitUntil(
        window,
        [this, minimized](const X11WindowFacts& now) {
            return minimized ? m_kinds.isHidden(now) : !m_kinds.isHidden(now) && now.viewable;
        },
        kConfirmationMilliseconds, &facts);
    if (!facts.exists) {
        return Result::Gone;
    }
    return done ? Result::Ok : Result::CannotComplete;
}

Result X11WindowPlacer::activate(xcb_window_t window) {
    if (!read(window).exists) {
        return Result::Gone;
    }
    auto active = [this] { return m_reader.readRoot(X11WindowReader::ActiveWindow).activeWindow; };
    if (active() == window) {
        return Result::Ok;
    }
    watch(window);
    sendToRoot(window, m_active, {kSourcePager, XCB_CURRENT_TIME, 0});
    m_connection.flush();
    // The window manager answers with events about the window (its stacking, its focused state); the
    // root's property is read after each, and once more when the time is up.
    QDeadlineTimer deadline(kConfirmationMilliseconds);
    auto aboutWindow = [window](xcb_generic_event_t* event) { return isAbout(window, event); };
    while (active() != window) {
        const qint64 remaining = deadline.remainingTime();
        if (remaining <= 0 || !m_connection.waitForEvent(aboutWindow, static_cast<int>(remaining))) {
            if (active() == window) {
                break;
            }
            return read(window).exists ? Result::CannotComplete : Result::Gone;
        }
    }
    return Result::Ok;
}
