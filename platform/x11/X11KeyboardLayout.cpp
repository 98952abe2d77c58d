// SPDX-License-Identifier: MIT
#include "platform/x11/X11KeyboardLayout.h"

// xkb.h names a field "explicit", a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <QHash>
#include <QLoggingCategory>

#include "platform/x11/CarbonKeyCodes.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/XkbEvents.h"

Q_LOGGING_CATEGORY(lcKeyboardLayout, "lattica.x11.keyboardlayout", QtInfoMsg)

namespace {

// Dead keys print nothing by themselves; show the accent they stand for.
const QHash<xkb_keysym_t, char32_t>& deadKeyCharacters() {
    static const QHash<xkb_keysym_t, char32_t> characters = {
        {XKB_KEY_dead_grave, U'`'},          {XKB_KEY_dead_acute, U'\u00B4'},
        {XKB_KEY_dead_circumflex, U'^'},     {XKB_KEY_dead_tilde, U'~'},
        {XKB_KEY_dead_macron, U'\u00AF'},    {XKB_KEY_dead_breve, U'\u02D8'},
        {XKB_KEY_dead_abovedot, U'\u02D9'},  {XKB_KEY_dead_diaeresis, U'\u00A8'},
        {XKB_KEY_dead_abovering, U'\u02DA'}, {XKB_KEY_dead_doubleacute, U'\u02DD'},
        {XKB_KEY_dead_caron, U'\u02C7'},     {XKB_KEY_dead_cedilla, U'\u00B8'},
        {XKB_KEY_dead_ogonek, U'\u02DB'},
    };
    return characters;
}

}  // namespace

X11KeyboardLayout::X11KeyboardLayout(X11Connection& connection) : m_connection(connection) {
    m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (const std::optional<uint8_t> firstEvent = XkbEvents::setUp(connection)) {
        m_firstXkbEvent = *firstEvent;
        m_deviceId = XkbEvents::coreKeyboardDeviceId(connection);
        reloadKeymap();
    }
    m_handlerId = connection.addEventHandler([this](xcb_generic_event_t* event) { return handleEvent(event); });
}

X11KeyboardLayout::~X11KeyboardLayout() {
    m_connection.removeEventHandler(m_handlerId);
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    xkb_context_unref(m_context);
}

void X11KeyboardLayout::reloadKeymap() {
    if (m_context == nullptr || m_deviceId < 0) {
        return;
    }
    xkb_keymap* keymap =
        xkb_x11_keymap_new_from_device(m_context, m_connection.xcb(), m_deviceId, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr) {
        qCDebug(lcKeyboardLayout) << "could not read the keymap";
        return;
    }
    xkb_state* state = xkb_x11_state_new_from_device(keymap, m_connection.xcb(), m_deviceId);
    if (state == nullptr) {
        xkb_keymap_unref(keymap);
        return;
    }
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    m_keymap = keymap;
    m_state = state;
}

bool X11KeyboardLayout::handleEvent(xcb_generic_event_t* event) {
    if (m_firstXkbEvent < 0) {
        return false;
    }
    switch (XkbEvents::xkbEventType(event, static_cast<uint8_t>(m_firstXkbEvent))) {
        case XCB_XKB_NEW_KEYBOARD_NOTIFY:
        case XCB_XKB_MAP_NOTIFY:
            reloadKeymap();
            qCDebug(lcKeyboardLayout) << "keymap changed";
            Q_EMIT layoutChanged();
            break;
        case XCB_XKB_STATE_NOTIFY: {
            if (m_state == nullptr) {
                break;
            }
            const auto* state = reinterpret_cast<const xcb_xkb_state_notify_event_t*>(event);
            const xkb_layout_index_t before = xkb_state_serialize_layout(m_state, XKB_STATE_LAYOUT_EFFECTIVE);
            xkb_state_update_mask(m_state, state->baseMods, state->latchedMods, state->lockedMods,
                                  static_cast<xkb_layout_index_t>(state->baseGroup),
                                  static_cast<xkb_layout_index_t>(state->latchedGroup), state->lockedGroup);
            if (xkb_state_serialize_layout(m_state, XKB_STATE_LAYOUT_EFFECTIVE) != before) {
                Q_EMIT layoutChanged();
            }
            break;
        }
        default:
            break;
    }
    // Other services may want the same events.
    return false;
}

std::optional<QString> X11KeyboardLayout::characterForKeyCode(int carbonKeyCode) {
    if (m_keymap == nullptr || m_state == nullptr) {
        return std::nullopt;
    }
    const std::optional<xcb_keycode_t> keycode = CarbonKeyCodes::xKeycode(carbonKeyCode);
    if (!keycode) {
        return std::nullopt;
    }
    const xkb_layout_index_t layout = xkb_state_key_get_layout(m_state, *keycode);
    if (layout == XKB_LAYOUT_INVALID) {
        return std::nullopt;
    }
    const xkb_keysym_t* symbols = nullptr;
    if (xkb_keymap_key_get_syms_by_level(m_keymap, *keycode, layout, 0, &symbols) != 1) {
        return std::nullopt;
    }
    char32_t character = deadKeyCharacters().value(symbols[0], 0);
    if (character == 0) {
        character = xkb_keysym_to_utf32(symbols[0]);
    }
    if (character == 0 || character < 0x20 || character == 0x7F) {
        return std::nullopt;
    }
    return QString::fromUcs4(&character, 1);
}

std::optional<int> X11KeyboardLayout::carbonKeyCodeForScanCode(quint32 nativeScanCode) {
    return CarbonKeyCodes::carbonKeyCodeForXKeycode(nativeScanCode);
}

quint32 X11KeyboardLayout::keysymWithModifiers(xcb_keycode_t keycode, uint16_t modifierMask) {
    if (m_keymap == nullptr || m_state == nullptr) {
        return 0;
    }
    xkb_state* probe = xkb_state_new(m_keymap);
    const xkb_layout_index_t layout = xkb_state_serialize_layout(m_state, XKB_STATE_LAYOUT_EFFECTIVE);
    // Core modifier bits are XKB's real modifiers, index for index.
    xkb_state_update_mask(probe, modifierMask, 0, 0, 0, 0, layout);
    const xkb_keysym_t symbol = xkb_state_key_get_one_sym(probe, keycode);
    xkb_state_unref(probe);
    return symbol;
}
