// SPDX-License-Identifier: MIT
#include "ClientWindows.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <vector>

namespace {

constexpr uint32_t kIconicState = 3;

struct TypeName {
    const char* name;
    const char* atom;
};
constexpr TypeName kTypes[] = {
    {"normal", "_NET_WM_WINDOW_TYPE_NORMAL"},   {"dialog", "_NET_WM_WINDOW_TYPE_DIALOG"},
    {"utility", "_NET_WM_WINDOW_TYPE_UTILITY"}, {"dock", "_NET_WM_WINDOW_TYPE_DOCK"},
    {"splash", "_NET_WM_WINDOW_TYPE_SPLASH"},   {"toolbar", "_NET_WM_WINDOW_TYPE_TOOLBAR"},
    {"desktop", "_NET_WM_WINDOW_TYPE_DESKTOP"}, {"notification", "_NET_WM_WINDOW_TYPE_NOTIFICATION"},
    {"menu", "_NET_WM_WINDOW_TYPE_POPUP_MENU"},
};

struct StateName {
    const char* name;
    const char* atom;
};
constexpr StateName kStates[] = {
    {"maximized", "_NET_WM_STATE_MAXIMIZED_VERT"},  {"maximized", "_NET_WM_STATE_MAXIMIZED_HORZ"},
    {"fullscreen", "_NET_WM_STATE_FULLSCREEN"},     {"above", "_NET_WM_STATE_ABOVE"},
    {"skip-taskbar", "_NET_WM_STATE_SKIP_TASKBAR"}, {"modal", "_NET_WM_STATE_MODAL"},
};

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    std::string part;
    while (std::getline(stream, part, separator)) {
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

void say(const std::string& line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

ClientWindows::ClientWindows(xcb_connection_t* connection)
    : m_connection(connection), m_screen(xcb_setup_roots_iterator(xcb_get_setup(connection)).data) {}

xcb_atom_t ClientWindows::atom(const char* name) {
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t value = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return value;
}

void ClientWindows::setCardinals(xcb_window_t window, const char* property, xcb_atom_t type, const uint32_t* values,
                                 int count) {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                        static_cast<uint32_t>(count), values);
}

bool ClientWindows::execute(const Command& command) {
    if (command.verb == "exit") {
        return false;
    }
    if (command.verb == "open") {
        const std::string name = command.value("name");
        if (name.empty()) {
            say("error open needs name=");
            return true;
        }
        const int count = command.number("count", 0);
        if (count <= 0) {
            open(command, name);
        } else {
            for (int i = 0; i < count; ++i) {
                open(command, name + std::to_string(i));
            }
        }
    } else if (command.verb == "close") {
        close(command.value("name"));
    } else {
        say("error unknown command " + command.verb);
    }
    xcb_flush(m_connection);
    return true;
}

void ClientWindows::open(const Command& command, const std::string& name) {
    if (m_windows.count(name) != 0) {
        say("error window " + name + " exists");
        return;
    }
    const std::string type = command.value("type", "normal");
    const bool overrideRedirect = type == "override";
    const int x = command.number("x", 0);
    const int y = command.number("y", 0);
    const int width = command.number("w", 400);
    const int height = command.number("h", 300);
    const std::string color = command.value("color", "#808080");
    const uint32_t pixel = static_cast<uint32_t>(std::strtoul(color.c_str() + (color[0] == '#' ? 1 : 0), nullptr, 16));

    const xcb_window_t window = xcb_generate_id(m_connection);
    const uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK;
    const uint32_t values[] = {pixel, overrideRedirect ? 1u : 0u,
                               static_cast<uint32_t>(XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE)};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root, static_cast<int16_t>(x),
                      static_cast<int16_t>(y), static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, m_screen->root_visual, mask, values);

    const std::string title = command.value("title", name);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        static_cast<uint32_t>(title.size()), title.data());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8,
                        static_cast<uint32_t>(title.size()), title.data());
    const std::vector<std::string> wmClass =
        split(command.value("class", "lattica-test-client.LatticaTestClient"), '.');
    if (!wmClass.empty()) {
        const std::string instance = wmClass[0];
        const std::string className = wmClass.size() > 1 ? wmClass[1] : wmClass[0];
        const std::string value = instance + '\0' + className + '\0';
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(value.size()), value.data());
    }
    const uint32_t protocols[] = {atom("WM_DELETE_WINDOW")};
    setCardinals(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, protocols, 1);
    // pid=no sets none, pid=<number> a false one (what a client in a PID namespace or on another machine says).
    const std::string pidOption = command.value("pid", "yes");
    if (pidOption != "no") {
        const uint32_t pid =
            pidOption == "yes" ? static_cast<uint32_t>(getpid()) : static_cast<uint32_t>(std::stoul(pidOption));
        setCardinals(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, &pid, 1);
        char host[256] = {};
        gethostname(host, sizeof host - 1);
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(std::strlen(host)), host);
    }
    for (const TypeName& entry : kTypes) {
        if (type == entry.name) {
            const uint32_t typeAtom = atom(entry.atom);
            setCardinals(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, &typeAtom, 1);
        }
    }
    const std::vector<std::string> states = split(command.value("states"), ',');
    std::vector<uint32_t> stateAtoms;
    bool minimized = false;
    for (const std::string& state : states) {
        minimized = minimized || state == "minimized";
        for (const StateName& entry : kStates) {
            if (state == entry.name) {
                stateAtoms.push_back(atom(entry.atom));
            }
        }
    }
    if (!stateAtoms.empty()) {
        setCardinals(window, "_NET_WM_STATE", XCB_ATOM_ATOM, stateAtoms.data(), static_cast<int>(stateAtoms.size()));
    }
    if (command.has("icon")) {
        // Two pictures of one colour, 16 and 32 pixels square, as _NET_WM_ICON lists them.
        const uint32_t argb =
            0xFF000000u | static_cast<uint32_t>(std::strtoul(command.value("icon").c_str() + 1, nullptr, 16));
        std::vector<uint32_t> icon;
        for (uint32_t size : {16u, 32u}) {
            icon.push_back(size);
            icon.push_back(size);
            icon.insert(icon.end(), size * size, argb);
        }
        setCardinals(window, "_NET_WM_ICON", XCB_ATOM_CARDINAL, icon.data(), static_cast<int>(icon.size()));
    }
    if (command.has("opacity")) {
        const uint32_t opacity = static_cast<uint32_t>(command.real("opacity", 1.0) * 4294967295.0);
        setCardinals(window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, &opacity, 1);
    }
    // WM_NORMAL_HINTS: the position and size were chosen by the user; a fixed window has min = max.
    uint32_t hints[18] = {};
    constexpr uint32_t kUSPosition = 1, kUSSize = 2, kPPosition = 4, kPSize = 8, kPMinSize = 16, kPMaxSize = 32;
    hints[0] = kUSPosition | kUSSize | kPPosition | kPSize;
    hints[1] = static_cast<uint32_t>(x);
    hints[2] = static_cast<uint32_t>(y);
    hints[3] = static_cast<uint32_t>(width);
    hints[4] = static_cast<uint32_t>(height);
    if (command.value("fixed") == "yes") {
        hints[0] |= kPMinSize | kPMaxSize;
        hints[5] = hints[7] = static_cast<uint32_t>(width);
        hints[6] = hints[8] = static_cast<uint32_t>(height);
    }
    setCardinals(window, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints, 18);
    // WM_HINTS: takes input; starts iconic when asked to start minimised.
    constexpr uint32_t kInputHint = 1, kStateHint = 2;
    const uint32_t wmHints[9] = {kInputHint | kStateHint, 1, minimized ? kIconicState : 1u, 0, 0, 0, 0, 0, 0};
    setCardinals(window, "WM_HINTS", atom("WM_HINTS"), wmHints, 9);
    if (command.has("transient-for")) {
        const auto parent = m_windows.find(command.value("transient-for"));
        if (parent != m_windows.end()) {
            setCardinals(window, "WM_TRANSIENT_FOR", XCB_ATOM_WINDOW, &parent->second, 1);
        }
    }

    m_windows[name] = window;
    m_names[window] = name;
    m_unreported.insert(window);
    xcb_map_window(m_connection, window);
}

void ClientWindows::close(const std::string& name) {
    const auto found = m_windows.find(name);
    if (found == m_windows.end()) {
        say("error no window " + name);
        return;
    }
    xcb_destroy_window(m_connection, found->second);
}

void ClientWindows::report(xcb_window_t window) {
    if (m_unreported.erase(window) != 0) {
        say("window " + m_names[window] + " " + std::to_string(window));
    }
}

void ClientWindows::handleEvent(xcb_generic_event_t* event) {
    switch (event->response_type & 0x7f) {
        case XCB_MAP_NOTIFY:
            report(reinterpret_cast<xcb_map_notify_event_t*>(event)->window);
            break;
        case XCB_PROPERTY_NOTIFY: {
            auto* notify = reinterpret_cast<xcb_property_notify_event_t*>(event);
            if (m_unreported.count(notify->window) != 0 && notify->atom == atom("WM_STATE")) {
                // A window that starts minimised is never mapped; it counts as shown once managed as iconic.
                xcb_get_property_reply_t* reply = xcb_get_property_reply(
                    m_connection, xcb_get_property(m_connection, 0, notify->window, notify->atom, XCB_ATOM_ANY, 0, 2),
                    nullptr);
                if (reply != nullptr && reply->format == 32 && xcb_get_property_value_length(reply) >= 4 &&
                    *static_cast<uint32_t*>(xcb_get_property_value(reply)) == kIconicState) {
                    report(notify->window);
                }
                std::free(reply);
            }
            break;
        }
        case XCB_CLIENT_MESSAGE: {
            auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
            if (message->format == 32 && message->data.data32[0] == atom("WM_DELETE_WINDOW")) {
                xcb_destroy_window(m_connection, message->window);
                xcb_flush(m_connection);
            }
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            const xcb_window_t window = reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window;
            const auto found = m_names.find(window);
            if (found != m_names.end()) {
                say("closed " + found->second);
                m_windows.erase(found->second);
                m_unreported.erase(window);
                m_names.erase(found);
            }
            break;
        }
        default:
            break;
    }
}
