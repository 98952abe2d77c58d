// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowKinds.h"

#include "platform/x11/X11Connection.h"

namespace {
constexpr quint32 kAllDesktops = 0xFFFFFFFFu;
}

X11WindowKinds::X11WindowKinds(X11Connection& connection) {
    connection.internAtoms(
        {"_NET_WM_WINDOW_TYPE_NORMAL",       "_NET_WM_WINDOW_TYPE_DIALOG",   "_NET_WM_WINDOW_TYPE_UTILITY",
         "_NET_WM_WINDOW_TYPE_TOOLBAR",      "_NET_WM_WINDOW_TYPE_DOCK",     "_NET_WM_WINDOW_TYPE_DESKTOP",
         "_NET_WM_WINDOW_TYPE_SPLASH",       "_NET_WM_WINDOW_TYPE_MENU",     "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
         "_NET_WM_WINDOW_TYPE_POPUP_MENU",   "_NET_WM_WINDOW_TYPE_COMBO",    "_NET_WM_WINDOW_TYPE_DND",
         "_NET_WM_WINDOW_TYPE_NOTIFICATION", "_NET_WM_WINDOW_TYPE_TOOLTIP",  "_NET_WM_STATE_HIDDEN",
         "_NET_WM_STATE_MAXIMIZED_VERT",     "_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_FULLSCREEN",
         "_NET_WM_STATE_SKIP_TASKBAR",       "_NET_WM_STATE_ABOVE",          "_NET_WM_STATE_MODAL"});
    m_typeNormal = connection.atom("_NET_WM_WINDOW_TYPE_NORMAL");
    m_typeDialog = connection.atom("_NET_WM_WINDOW_TYPE_DIALOG");
    m_typeUtility = connection.atom("_NET_WM_WINDOW_TYPE_UTILITY");
    m_typeToolbar = connection.atom("_NET_WM_WINDOW_TYPE_TOOLBAR");
    m_typeDock = connection.atom("_NET_WM_WINDOW_TYPE_DOCK");
    m_typeDesktop = connection.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    m_typeSplash = connection.atom("_NET_WM_WINDOW_TYPE_SPLASH");
    m_typeMenu = connection.atom("_NET_WM_WINDOW_TYPE_MENU");
    m_typeDropdownMenu = connection.atom("_NET_WM_WINDOW_TYPE_DROPDOWN_MENU");
    m_typePopupMenu = connection.atom("_NET_WM_WINDOW_TYPE_POPUP_MENU");
    m_typeCombo = connection.atom("_NET_WM_WINDOW_TYPE_COMBO");
    m_typeDnd = connection.atom("_NET_WM_WINDOW_TYPE_DND");
    m_typeNotification = connection.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION");
    m_typeTooltip = connection.atom("_NET_WM_WINDOW_TYPE_TOOLTIP");
    m_hidden = connection.atom("_NET_WM_STATE_HIDDEN");
    m_maximizedVert = connection.atom("_NET_WM_STATE_MAXIMIZED_VERT");
    m_maximizedHorz = connection.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    m_fullscreen = connection.atom("_NET_WM_STATE_FULLSCREEN");
    m_skipTaskbar = connection.atom("_NET_WM_STATE_SKIP_TASKBAR");
    m_above = connection.atom("_NET_WM_STATE_ABOVE");
    m_modal = connection.atom("_NET_WM_STATE_MODAL");
}

X11WindowKinds::Kind X11WindowKinds::kind(const X11WindowFacts& facts) const {
    // The first type the window lists that we know wins; the list is in order of preference.
    for (xcb_atom_t type : facts.types) {
        if (type == m_typeNormal)
            return Kind::Normal;
        if (type == m_typeDialog)
            return Kind::Dialog;
        if (type == m_typeUtility)
            return Kind::Utility;
        if (type == m_typeToolbar)
            return Kind::Toolbar;
        if (type == m_typeDock)
            return Kind::Dock;
        if (type == m_typeDesktop)
            return Kind::Desktop;
        if (type == m_typeSplash)
            return Kind::Splash;
        if (type == m_typeMenu || type == m_typeDropdownMenu || type == m_typePopupMenu || type == m_typeCombo ||
            type == m_typeDnd) {
            return Kind::Menu;
        }
        if (type == m_typeNotification)
            return Kind::Notification;
        if (type == m_typeTooltip)
            return Kind::Tooltip;
    }
    if (facts.overrideRedirect) {
        return Kind::Menu;
    }
    return facts.transientFor != XCB_NONE ? Kind::Dialog : Kind::Normal;
}

int X11WindowKinds::layer(const X11WindowFacts& facts) const {
    switch (kind(facts)) {
        case Kind::Desktop:
            return kDesktopLayer;
        case Kind::Dock:
            return kDockLayer;
        case Kind::Menu:
            return kPopUpMenuLayer;
        case Kind::Notification:
            return kStatusLayer;
        case Kind::Tooltip:
            return kHelpLayer;
        case Kind::Splash:
            return kFloatingLayer;
        case Kind::Normal:
        case Kind::Dialog:
        case Kind::Utility:
        case Kind::Toolbar:
            break;
    }
    if (facts.overrideRedirect) {
        return kPopUpMenuLayer;
    }
    return isKeepAbove(facts) ? kFloatingLayer : kNormalLayer;
}

WindowRole X11WindowKinds::role(const X11WindowFacts& facts) const {
    switch (kind(facts)) {
        case Kind::Normal:
        case Kind::Utility:
        case Kind::Toolbar:
            return facts.hasState(m_modal) && facts.transientFor != XCB_NONE ? WindowRole::Dialog : WindowRole::Window;
        case Kind::Dialog:
            return WindowRole::Dialog;
        case Kind::Dock:
        case Kind::Desktop:
        case Kind::Splash:
        case Kind::Menu:
        case Kind::Notification:
        case Kind::Tooltip:
            break;
    }
    return WindowRole::Other;
}

bool X11WindowKinds::roleNeedsTransientFor(const X11WindowFacts& facts) const {
    X11WindowFacts transient = facts;
    transient.transientFor = facts.window;
    X11WindowFacts alone = facts;
    alone.transientFor = XCB_NONE;
    return role(transient) != role(alone);
}

bool X11WindowKinds::isOnDesktop(const X11WindowFacts& facts, std::optional<quint32> currentDesktop) const {
    return !facts.desktop || !currentDesktop || *facts.desktop == kAllDesktops || *facts.desktop == *currentDesktop;
}

bool X11WindowKinds::isOnscreen(const X11WindowFacts& facts, std::optional<quint32> currentDesktop) const {
    // A managed window is mapped unless it is minimised or on another desktop, so its map state is not read.
    return (facts.managed || facts.viewable) && !isHidden(facts) && isOnDesktop(facts, currentDesktop);
}
