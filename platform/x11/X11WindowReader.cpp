// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowReader.h"

#include <xcb/randr.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>

#include <QSet>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DisplayClients.h"
#include "platform/x11/X11WindowOwners.h"
#include "platform/x11/XcbReply.h"

namespace {

constexpr uint32_t kLongListLength = 1u << 16;  // in 32-bit units: room for a very long client list
constexpr uint32_t kTitleLength = 256;
constexpr int kOriginMilliseconds = 250;

// Collects one reply; marks the window as gone when the server says so.
template <typename Reply, typename Cookie, typename Fetch>
XcbReply<Reply> take(xcb_connection_t* xcb, Cookie cookie, Fetch fetch, bool* gone) {
    xcb_generic_error_t* rawError = nullptr;
    XcbReply<Reply> reply(fetch(xcb, cookie, &rawError));
    if (const XcbReply<xcb_generic_error_t> error{rawError}) {
        if (error->error_code == XCB_WINDOW || error->error_code == XCB_DRAWABLE) {
            *gone = true;
        }
    }
    return reply;
}

XcbReply<xcb_get_property_reply_t> takeProperty(xcb_connection_t* xcb, xcb_get_property_cookie_t cookie, bool* gone) {
    return take<xcb_get_property_reply_t>(xcb, cookie, xcb_get_property_reply, gone);
}

// The 32-bit values of a property, inside the reply (which has to outlive them).
std::span<const uint32_t> cardinals(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 32) {
        return {};
    }
    const auto* data = static_cast<const uint32_t*>(xcb_get_property_value(reply));
    return {data, static_cast<size_t>(xcb_get_property_value_length(reply) / 4)};
}

std::optional<uint32_t> firstCardinal(const xcb_get_property_reply_t* reply) {
    const std::span<const uint32_t> values = cardinals(reply);
    return values.empty() ? std::nullopt : std::optional<uint32_t>(values.front());
}

QByteArray bytes(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8) {
        return {};
    }
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply)), xcb_get_property_value_length(reply));
}

}  // namespace

X11WindowReader::X11WindowReader(X11Connection& connection, X11WindowCache* cache)
    : m_connection(cache != nullptr ? cache->connection() : connection), m_cache(cache) {
    m_connection.internAtoms({"_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP",
                              "_NET_FRAME_EXTENTS", "_NET_WM_WINDOW_TYPE", "_NET_WM_STATE", "_NET_WM_DESKTOP",
                              "_NET_WM_PID", "_NET_WM_WINDOW_OPACITY", "_NET_WM_NAME", "UTF8_STRING",
                              "_NET_SUPPORTING_WM_CHECK", "_NET_NUMBER_OF_DESKTOPS"});
    m_atoms = {m_connection.atom("_NET_FRAME_EXTENTS"), m_connection.atom("_NET_WM_WINDOW_TYPE"),
               m_connection.atom("_NET_WM_STATE"),      m_connection.atom("_NET_WM_DESKTOP"),
               m_connection.atom("_NET_WM_PID"),        m_connection.atom("_NET_WM_WINDOW_OPACITY"),
               m_connection.atom("_NET_WM_NAME")};
    xcb_connection_t* xcb = m_connection.xcb();
    // The compositing manager's selection is named after the screen the root window belongs to.
    int screenNumber = 0;
    for (auto it = xcb_setup_roots_iterator(xcb_get_setup(xcb)); it.rem > 0 && it.data->root != m_connection.root();
         xcb_screen_next(&it)) {
        ++screenNumber;
    }
    const QByteArray selection = "_NET_WM_CM_S" + QByteArray::number(screenNumber);
    m_connection.internAtoms({selection.constData()});
    m_compositingSelection = m_connection.atom(selection.constData());
    const xcb_query_extension_reply_t* resource = xcb_get_extension_data(xcb, &xcb_res_id);
    if (resource != nullptr && resource->present) {
        XcbReply<xcb_res_query_version_reply_t> version(
            xcb_res_query_version_reply(xcb, xcb_res_query_version(xcb, 1, 2), nullptr));
        m_hasResource = version && (version->server_major > 1 || version->server_minor >= 2);
    }
    m_resourceIdMask = xcb_get_setup(xcb)->resource_id_mask;
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(xcb, &xcb_randr_id);
    if (randr != nullptr && randr->present) {
        XcbReply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(xcb, xcb_randr_query_version(xcb, 1, 5), nullptr));
        m_hasRandr = version && (version->major_version > 1 || version->minor_version >= 5);
    }
}

X11RootFacts X11WindowReader::readRoot(unsigned fields) {
    X11RootFacts facts;
    xcb_connection_t* xcb = m_connection.xcb();
    if (m_connection.hasError()) {
        return facts;
    }
    const xcb_window_t root = m_connection.root();
    auto property = [&](const char* name, xcb_atom_t type, uint32_t length) {
        return xcb_get_property(xcb, 0, root, m_connection.atom(name), type, 0, length);
    };
    xcb_get_property_cookie_t clientList{}, active{}, desktop{}, desktopCount{}, check{};
    xcb_query_tree_cookie_t tree{};
    xcb_get_selection_owner_cookie_t compositor{};
    xcb_randr_get_monitors_cookie_t monitors{};
    if (fields & ClientList) {
        clientList = property("_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, kLongListLength);
    }
    if (fields & ActiveWindow) {
        active = property("_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, 1);
    }
    if (fields & CurrentDesktop) {
        desktop = property("_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 1);
    }
    if (fields & DesktopCount) {
        desktopCount = property("_NET_NUMBER_OF_DESKTOPS", XCB_ATOM_CARDINAL, 1);
    }
    if (fields & WindowManagerCheck) {
        check = property("_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, 1);
    }
    if (fields & Children) {
        tree = xcb_query_tree(xcb, root);
    }
    if (fields & CompositingManager) {
        compositor = xcb_get_selection_owner(xcb, m_compositingSelection);
    }
    bool wantOrigin = (fields & GlobalOrigin) && m_hasRandr;
    if (wantOrigin) {
        QMutexLocker lock(&m_originMutex);
        if (!m_originValidUntil.hasExpired()) {
            facts.globalOriginInRoot = m_origin;
            wantOrigin = false;
        }
    }
    if (wantOrigin) {
        monitors = xcb_randr_get_monitors(xcb, root, 1);
    }

    bool unused = false;
    if (fields & ClientList) {
        const auto reply = takeProperty(xcb, clientList, &unused);
        facts.hasClientList = reply && reply->type != XCB_ATOM_NONE;
        const std::span<const uint32_t> windows = cardinals(reply.get());
        facts.clientListStacking = QList<xcb_window_t>(windows.begin(), windows.end());
    }
    if (fields & ActiveWindow) {
        facts.activeWindow = firstCardinal(takeProperty(xcb, active, &unused).get()).value_or(XCB_NONE);
    }
    if (fields & CurrentDesktop) {
        facts.currentDesktop = firstCardinal(takeProperty(xcb, desktop, &unused).get());
    }
    if (fields & DesktopCount) {
        facts.desktopCount = firstCardinal(takeProperty(xcb, desktopCount, &unused).get());
    }
    if (fields & WindowManagerCheck) {
        facts.windowManagerCheck = firstCardinal(takeProperty(xcb, check, &unused).get()).value_or(XCB_NONE);
    }
    if (fields & Children) {
        const auto reply = take<xcb_query_tree_reply_t>(xcb, tree, xcb_query_tree_reply, &unused);
        if (reply) {
            const xcb_window_t* children = xcb_query_tree_children(reply.get());
            facts.rootChildren = QList<xcb_window_t>(children, children + xcb_query_tree_children_length(reply.get()));
        }
    }
    if (fields & CompositingManager) {
        const auto reply =
            take<xcb_get_selection_owner_reply_t>(xcb, compositor, xcb_get_selection_owner_reply, &unused);
        facts.compositingManager = reply && reply->owner != XCB_NONE;
    }
    if (wantOrigin) {
        const auto reply = take<xcb_randr_get_monitors_reply_t>(xcb, monitors, xcb_randr_get_monitors_reply, &unused);
        if (reply) {
            bool haveFirst = false;
            for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
                 xcb_randr_monitor_info_next(&it)) {
                // The primary monitor, else the first one, as the display list orders them.
                if (it.data->primary) {
                    facts.globalOriginInRoot = QPoint(it.data->x, it.data->y);
                    break;
                }
                if (!haveFirst) {
                    facts.globalOriginInRoot = QPoint(it.data->x, it.data->y);
                    haveFirst = true;
                }
            }
            QMutexLocker lock(&m_originMutex);
            m_origin = facts.globalOriginInRoot;
            m_originValidUntil = QDeadlineTimer(kOriginMilliseconds);
        }
    }
    facts.connected = !m_connection.hasError();
    return facts;
}

QList<X11WindowFacts> X11WindowReader::readWindows(const QList<Request>& requests) {
    PendingWindows pending = sendWindowRequests(requests);
    return collectWindows(pending);
}

void X11WindowReader::sendFields(PendingWindow& entry) {
    xcb_connection_t* xcb = m_connection.xcb();
    const xcb_window_t w = entry.request.window;
    const unsigned f = entry.sentFields;
    auto property = [&](xcb_atom_t atom, xcb_atom_t type, uint32_t length) {
        return xcb_get_property(xcb, 0, w, atom, type, 0, length);
    };
    if (f & X11WindowFacts::Attributes) {
        entry.attributes = xcb_get_window_attributes(xcb, w);
    }
    if (f & X11WindowFacts::Geometry) {
        entry.geometry = xcb_get_geometry(xcb, w);
        entry.position = xcb_translate_coordinates(xcb, w, m_connection.root(), 0, 0);
        entry.extents = property(m_atoms.extents, XCB_ATOM_CARDINAL, 4);
    }
    if (f & X11WindowFacts::Type) {
        entry.type = property(m_atoms.type, XCB_ATOM_ATOM, 32);
    }
    if (f & X11WindowFacts::Transient) {
        entry.transient = property(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 1);
    }
    if (f & X11WindowFacts::State) {
        entry.state = property(m_atoms.state, XCB_ATOM_ATOM, 32);
    }
    if (f & X11WindowFacts::Desktop) {
        entry.desktop = property(m_atoms.desktop, XCB_ATOM_CARDINAL, 1);
    }
    // Where the server names the process behind each client, what a client says of itself is not used
    // (see X11WindowOwners::ownerOf); it is still asked when nothing else would tell that the window is gone.
    if ((f & X11WindowFacts::Pid) && (!m_hasResource || f == X11WindowFacts::Pid)) {
        entry.pid = property(m_atoms.pid, XCB_ATOM_CARDINAL, 1);
        entry.askedNetWmPid = true;
    }
    if (f & X11WindowFacts::Opacity) {
        entry.opacity = property(m_atoms.opacity, XCB_ATOM_CARDINAL, 1);
    }
    if (f & X11WindowFacts::Title) {
        entry.title = property(m_atoms.name, XCB_ATOM_ANY, kTitleLength);
    }
    if (f & X11WindowFacts::Class) {
        entry.wmClass = property(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 64);
    }
    if (f & X11WindowFacts::SizeHints) {
        entry.hints = property(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 18);
    }
}

X11WindowReader::PendingOwners X11WindowReader::sendOwnerRequest(const QList<PendingWindow>& windows) {
    PendingOwners pending;
    if (!m_hasResource) {
        return pending;
    }
    QList<xcb_res_client_id_spec_t> specs;
    QSet<uint32_t> clients;
    for (const PendingWindow& entry : windows) {
        const uint32_t client = entry.request.window & ~m_resourceIdMask;
        if ((entry.sentFields & X11WindowFacts::Pid) && client != 0 && !clients.contains(client)) {
            clients.insert(client);
            specs.append({entry.request.window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
        }
    }
    if (specs.isEmpty()) {
        return pending;
    }
    pending.cookie =
        xcb_res_query_client_ids(m_connection.xcb(), static_cast<uint32_t>(specs.size()), specs.constData());
    pending.asked = true;
    return pending;
}

X11WindowReader::ClientPids X11WindowReader::collectOwners(const PendingOwners& pending) {
    ClientPids pids;
    if (!pending.asked) {
        return pids;
    }
    bool unused = false;
    const auto reply = take<xcb_res_query_client_ids_reply_t>(m_connection.xcb(), pending.cookie,
                                                              xcb_res_query_client_ids_reply, &unused);
    if (!reply) {
        return pids;
    }
    // Each answer names its client by the client's resource base; a client that has gone, or that the
    // server cannot name (one connected over the network), has none.
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0; xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(it.data) >= 1) {
            const uint32_t pid = xcb_res_client_id_value_value(it.data)[0];
            if (pid > 0 && pid <= 0x7fffffffu) {
                pids.insert(it.data->spec.client & ~m_resourceIdMask, static_cast<pid_t>(pid));
            }
        }
    }
    return pids;
}

X11WindowFacts X11WindowReader::collectFields(PendingWindow& entry, const PendingOwners& owners,
                                              const ClientPids& clientPids, X11DisplayClients& displayClients) {
    xcb_connection_t* xcb = m_connection.xcb();
    X11WindowFacts facts = std::move(entry.facts);
    facts.window = entry.request.window;
    const unsigned f = entry.sentFields;
    bool gone = false;
    if (f & X11WindowFacts::Attributes) {
        const auto reply =
            take<xcb_get_window_attributes_reply_t>(xcb, entry.attributes, xcb_get_window_attributes_reply, &gone);
        if (reply) {
            facts.overrideRedirect = reply->override_redirect != 0;
            facts.viewable = reply->map_state == XCB_MAP_STATE_VIEWABLE;
            facts.mapped = reply->map_state != XCB_MAP_STATE_UNMAPPED;
            facts.inputOnly = reply->_class == XCB_WINDOW_CLASS_INPUT_ONLY;
        }
    }
    if (f & X11WindowFacts::Geometry) {
        const auto geometry = take<xcb_get_geometry_reply_t>(xcb, entry.geometry, xcb_get_geometry_reply, &gone);
        const auto position =
            take<xcb_translate_coordinates_reply_t>(xcb, entry.position, xcb_translate_coordinates_reply, &gone);
        const auto extentsReply = takeProperty(xcb, entry.extents, &gone);
        const std::span<const uint32_t> extents = cardinals(extentsReply.get());
        if (geometry && position) {
            facts.clientRect = QRect(position->dst_x, position->dst_y, geometry->width, geometry->height);
            facts.borderWidth = geometry->border_width;
        }
        if (extents.size() == 4) {
            facts.frameExtents = QMargins(static_cast<int>(extents[0]), static_cast<int>(extents[2]),
                                          static_cast<int>(extents[1]), static_cast<int>(extents[3]));
        }
    }
    if (f & X11WindowFacts::Type) {
        const auto reply = takeProperty(xcb, entry.type, &gone);
        const std::span<const uint32_t> atoms = cardinals(reply.get());
        facts.types = QList<xcb_atom_t>(atoms.begin(), atoms.end());
    }
    if (f & X11WindowFacts::Transient) {
        facts.transientFor = firstCardinal(takeProperty(xcb, entry.transient, &gone).get()).value_or(XCB_NONE);
    }
    if (f & X11WindowFacts::State) {
        const auto reply = takeProperty(xcb, entry.state, &gone);
        const std::span<const uint32_t> atoms = cardinals(reply.get());
        facts.states = QList<xcb_atom_t>(atoms.begin(), atoms.end());
    }
    if (f & X11WindowFacts::Desktop) {
        facts.desktop = firstCardinal(takeProperty(xcb, entry.desktop, &gone).get());
    }
    if (f & X11WindowFacts::Pid) {
        X11WindowOwners::PidSources sources;
        if (entry.askedNetWmPid) {
            const std::optional<uint32_t> pid = firstCardinal(takeProperty(xcb, entry.pid, &gone).get());
            if (pid && *pid > 0 && *pid <= 0x7fffffffu) {
                sources.netWmPid = static_cast<pid_t>(*pid);
            }
        }
        sources.serverNamesClients = owners.asked;
        if (owners.asked) {
            const auto found = clientPids.constFind(facts.window & ~m_resourceIdMask);
            if (found != clientPids.constEnd()) {
                sources.clientPid = *found;
            }
        } else if (sources.netWmPid) {
            sources.netWmPidIsAClient = displayClients.holdsConnection(*sources.netWmPid);
        }
        facts.pid = X11WindowOwners::ownerOf(facts.window, sources, m_resourceIdMask);
    }
    if (f & X11WindowFacts::Opacity) {
        const std::optional<uint32_t> opacity = firstCardinal(takeProperty(xcb, entry.opacity, &gone).get());
        if (opacity) {
            facts.opacity = static_cast<double>(*opacity) / 4294967295.0;
        }
    }
    if (f & X11WindowFacts::Title) {
        facts.title = QString::fromUtf8(bytes(takeProperty(xcb, entry.title, &gone).get()));
    }
    if (f & X11WindowFacts::Class) {
        // Two NUL-terminated strings: the instance, then the class.
        const QByteArray value = bytes(takeProperty(xcb, entry.wmClass, &gone).get());
        const qsizetype split = value.indexOf('\0');
        facts.classInstance = split < 0 ? value : value.left(split);
        if (split >= 0) {
            QByteArray rest = value.mid(split + 1);
            const qsizetype end = rest.indexOf('\0');
            facts.className = end < 0 ? rest : rest.left(end);
        }
    }
    if (f & X11WindowFacts::SizeHints) {
        const auto hintsReply = takeProperty(xcb, entry.hints, &gone);
        const std::span<const uint32_t> hints = cardinals(hintsReply.get());
        constexpr uint32_t kMinimumSize = 1u << 4;
        constexpr uint32_t kMaximumSize = 1u << 5;
        if (hints.size() >= 9) {
            if (hints[0] & kMinimumSize) {
                facts.minimumSize = QSize(static_cast<int>(hints[5]), static_cast<int>(hints[6]));
            }
            if (hints[0] & kMaximumSize) {
                facts.maximumSize = QSize(static_cast<int>(hints[7]), static_cast<int>(hints[8]));
            }
        }
    }
    facts.exists = !gone;
    return facts;
}

X11WindowReader::PendingWindows X11WindowReader::sendWindowRequests(const QList<Request>& requests) {
    PendingWindows pending;
    if (requests.isEmpty()) {
        return pending;
    }
    if (m_cache != nullptr) {
        pending.mark = m_cache->beginRead();
    }
    pending.windows.reserve(requests.size());
    for (const Request& request : requests) {
        PendingWindow& entry = pending.windows.emplace_back();
        entry.request = request;
        if (m_cache != nullptr) {
            entry.knownFields = m_cache->lookup(request.window, request.fields, entry.facts);
            pending.usesCache = pending.usesCache || entry.knownFields != 0;
        }
        entry.sentFields = request.fields & ~entry.knownFields;
        // Watched before its first read from the server, and again once it has ended: a window number can
        // be given to a new window then, and the new one has to be watched too.
        if (m_cache != nullptr && entry.sentFields != 0) {
            m_cache->watch(request.window);
        }
        sendFields(entry);
    }
    pending.owners = sendOwnerRequest(pending.windows);
    // What the cache knew is checked against the news that came in before this point: when the reply
    // to this request is in, so is every event sent before it.
    if (pending.usesCache) {
        pending.newsBarrier = xcb_get_input_focus(m_connection.xcb());
    }
    return pending;
}

QList<X11WindowFacts> X11WindowReader::collectWindows(PendingWindows& pending) {
    QList<X11WindowFacts> result;
    result.reserve(pending.windows.size());
    X11DisplayClients displayClients(xcb_get_file_descriptor(m_connection.xcb()));
    const ClientPids clientPids = collectOwners(pending.owners);
    for (PendingWindow& entry : pending.windows) {
        // Only the fields asked for come from the cache: it may know others, read under other conditions.
        X11WindowFacts facts = collectFields(entry, pending.owners, clientPids, displayClients);
        if (m_cache != nullptr && facts.exists) {
            m_cache->store(facts, entry.sentFields, pending.mark);
        }
        result.append(std::move(facts));
    }
    if (pending.usesCache) {
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(m_connection.xcb(), pending.newsBarrier, nullptr));
        m_cache->takeInNews();
        rereadChanged(pending, result);
    }
    if (m_cache != nullptr && !pending.windows.isEmpty()) {
        m_cache->endRead(pending.mark);
    }
    pending.windows.clear();
    return result;
}

void X11WindowReader::rereadChanged(const PendingWindows& pending, QList<X11WindowFacts>& result) {
    QList<qsizetype> changed;
    for (qsizetype i = 0; i < pending.windows.size(); ++i) {
        const PendingWindow& entry = pending.windows[i];
        if (entry.knownFields != 0 && result[i].exists && m_cache->hasNewsSince(entry.request.window, pending.mark)) {
            changed.append(i);
        }
    }
    if (changed.isEmpty()) {
        return;
    }
    // Rare: a window changed while its facts were being taken from the cache. Read it whole.
    const quint64 mark = m_cache->beginRead();
    QList<PendingWindow> again;
    for (qsizetype i : changed) {
        PendingWindow entry;
        entry.request = pending.windows[i].request;
        entry.sentFields = entry.request.fields;
        m_cache->watch(entry.request.window);
        sendFields(entry);
        again.append(entry);
    }
    const PendingOwners owners = sendOwnerRequest(again);
    X11DisplayClients displayClients(xcb_get_file_descriptor(m_connection.xcb()));
    const ClientPids clientPids = collectOwners(owners);
    for (qsizetype k = 0; k < changed.size(); ++k) {
        const X11WindowFacts facts = collectFields(again[k], owners, clientPids, displayClients);
        m_cache->store(facts, again[k].sentFields, mark);
        result[changed[k]] = facts;
    }
    m_cache->endRead(mark);
}
