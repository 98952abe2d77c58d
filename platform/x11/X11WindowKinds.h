// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QString>
#include <optional>

#include "platform/WindowControl.h"
#include "platform/x11/X11WindowFacts.h"

class X11Connection;

// Reads what a top-level window is from its EWMH type and state: its kind, its window-list layer, its
// role and whether it is on screen.
class X11WindowKinds {
public:
    enum class Kind { Normal, Dialog, Utility, Toolbar, Dock, Desktop, Splash, Menu, Notification, Tooltip };

    // Window-list layers, numbered as the window server of the original platform numbers its levels.
    static constexpr int kNormalLayer = 0;
    static constexpr int kFloatingLayer = 3;
    static constexpr int kDockLayer = 20;
    static constexpr int kStatusLayer = 25;
    static constexpr int kPopUpMenuLayer = 101;
    static constexpr int kHelpLayer = 200;
    static constexpr int kDesktopLayer = -2147483623;

    explicit X11WindowKinds(X11Connection& connection);

    Kind kind(const X11WindowFacts& facts) const;
    int layer(const X11WindowFacts& facts) const;
    WindowRole role(const X11WindowFacts& facts) const;
    // Whether the window's role depends on WM_TRANSIENT_FOR: it has no type we know, or it is modal.
    bool roleNeedsTransientFor(const X11WindowFacts& facts) const;
    bool isOnscreen(const X11WindowFacts& facts, std::optional<quint32> currentDesktop) const;
    // On the current desktop (or on all desktops), whether minimised or not.
    bool isOnDesktop(const X11WindowFacts& facts, std::optional<quint32> currentDesktop) const;

    bool isHidden(const X11WindowFacts& facts) const { return facts.hasState(m_hidden); }
    bool isMaximized(const X11WindowFacts& facts) const {
        return facts.hasState(m_maximizedVert) || facts.hasState(m_maximizedHorz);
    }
    bool isFullScreen(const X11WindowFacts& facts) const { return facts.hasState(m_fullscreen); }
    bool isSkipTaskbar(const X11WindowFacts& facts) const { return facts.hasState(m_skipTaskbar); }
    bool isKeepAbove(const X11WindowFacts& facts) const { return facts.hasState(m_above); }

private:
    xcb_atom_t m_typeNormal, m_typeDialog, m_typeUtility, m_typeToolbar, m_typeDock, m_typeDesktop, m_typeSplash,
        m_typeMenu, m_typeDropdownMenu, m_typePopupMenu, m_typeCombo, m_typeDnd, m_typeNotification, m_typeTooltip;
    xcb_atom_t m_hidden, m_maximizedVert, m_maximizedHorz, m_fullscreen, m_skipTaskbar, m_above, m_modal;
};
