// SPDX-License-Identifier: MIT
#include "platform/x11/X11HotKeys.h"

#include <xcb/xcb_keysyms.h>
// xkb.h names a field "explicit", a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-keysyms.h>

#include <QLoggingCategory>
#include <cstdlib>

#include "platform/x11/CarbonKeyCodes.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/XcbReply.h"
#include "platform/x11/XkbEvents.h"

Q_LOGGING_CATEGORY(lcX11HotKeys, "lattica.x11.hotkeys", QtInfoMsg)

namespace {

// The modifiers a hot key can hold; the lock bits and the others are masked away from key states.
constexpr uint16_t kRealModifiers = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

HotKeys::Failure failureForError(uint8_t errorCode) {
    if (errorCode == XCB_ACCESS) {
        return {HotKeys::Error::takenByAnotherClient};
    }
    return {HotKeys::Error::other, errorCode};
}

}  // namespace

X11HotKeys::X11HotKeys(X11Connection& connection, X11KeyboardLayout* layout)
    : m_connection(connection), m_layout(layout) {
    xcb_connection_t* xcb = connection.xcb();
    if (const std::optional<uint8_t> firstEvent = XkbEvents::setUp(connection)) {
        m_firstXkbEvent = *firstEvent;
        // A held key then repeats its press only, so a hot key is released once.
        xcb_xkb_per_client_flags_cookie_t cookie =
            xcb_xkb_per_client_flags(xcb, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                     XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
        if (const XcbReply<xcb_xkb_per_client_flags_reply_t> reply{
                xcb_xkb_per_client_flags_reply(xcb, cookie, nullptr)}) {
            m_detectableAutoRepeat = (reply->value & XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT) != 0;
        }
    }
    readNumLockMask();
    m_handlerId = connection.addEventHandler([this](xcb_generic_event_t* event) { return handleEvent(event); });
}

X11HotKeys::~X11HotKeys() {
    m_connection.removeEventHandler(m_handlerId);
    const auto grabs = m_grabs;
    for (auto it = grabs.cbegin(); it != grabs.cend(); ++it) {
        unregisterHotKey(it.key());
    }
    m_connection.flush();
}

void X11HotKeys::readNumLockMask() {
    xcb_connection_t* xcb = m_connection.xcb();
    m_numLockMask = 0;
    xcb_key_symbols_t* symbols = xcb_key_symbols_alloc(xcb);
    if (symbols == nullptr) {
        return;
    }
    const XcbReply<xcb_keycode_t> numLockKeycodes(xcb_key_symbols_get_keycode(symbols, XKB_KEY_Num_Lock));
    const XcbReply<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(xcb, xcb_get_modifier_mapping(xcb), nullptr));
    if (numLockKeycodes && mapping) {
        const xcb_keycode_t* keycodes = xcb_get_modifier_mapping_keycodes(mapping.get());
        const int perModifier = mapping->keycodes_per_modifier;
        for (int modifier = 0; modifier < 8; ++modifier) {
            for (int i = 0; i < perModifier; ++i) {
                const xcb_keycode_t keycode = keycodes[modifier * perModifier + i];
                for (const xcb_keycode_t* numLock = numLockKeycodes.get(); keycode != 0 && *numLock != XCB_NO_SYMBOL;
                     ++numLock) {
                    if (*numLock == keycode) {
                        m_numLockMask = static_cast<uint16_t>(1u << modifier);
                    }
                }
            }
        }
    }
    xcb_key_symbols_free(symbols);
    qCDebug(lcX11HotKeys) << "NumLock modifier mask" << m_numLockMask;
}

QList<uint16_t> X11HotKeys::lockVariants() const {
    QList<uint16_t> variants = {0, XCB_MOD_MASK_LOCK};
    if (m_numLockMask != 0 && m_numLockMask != XCB_MOD_MASK_LOCK) {
        variants.append(m_numLockMask);
        variants.append(static_cast<uint16_t>(m_numLockMask | XCB_MOD_MASK_LOCK));
    }
    return variants;
}

std::optional<HotKeys::Failure> X11HotKeys::grab(xcb_keycode_t keycode, uint16_t modifiers) {
    xcb_connection_t* xcb = m_connection.xcb();
    const QList<uint16_t> variants = lockVariants();
    QList<xcb_void_cookie_t> cookies;
    for (const uint16_t variant : variants) {
        cookies.append(xcb_grab_key_checked(xcb, 1, m_connection.root(), static_cast<uint16_t>(modifiers | variant),
                                            keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    std::optional<Failure> failure;
    QList<uint16_t> grabbed;
    for (int i = 0; i < cookies.size(); ++i) {
        if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(xcb, cookies[i])}) {
            if (!failure) {
                failure = failureForError(error->error_code);
            }
        } else {
            grabbed.append(variants[i]);
        }
    }
    if (failure) {
        for (const uint16_t variant : grabbed) {
            xcb_ungrab_key(xcb, keycode, m_connection.root(), static_cast<uint16_t>(modifiers | variant));
        }
        m_connection.flush();
    }
    return failure;
}

void X11HotKeys::ungrab(xcb_keycode_t keycode, uint16_t modifiers) {
    for (const uint16_t variant : lockVariants()) {
        xcb_ungrab_key(m_connection.xcb(), keycode, m_connection.root(), static_cast<uint16_t>(modifiers | variant));
    }
    m_connection.flush();
}

bool X11HotKeys::isGrabbedByUs(xcb_keycode_t keycode, uint16_t modifiers) const {
    for (const Grab& grab : m_grabs) {
        if (grab.keycode == keycode && grab.modifiers == modifiers) {
            return true;
        }
    }
    return false;
}

HotKeys::Registration X11HotKeys::registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const std::optional<xcb_keycode_t> keycode = CarbonKeyCodes::xKeycode(static_cast<int>(carbonKeyCode));
    if (!keycode) {
        return Failure{Error::unsupportedKey};
    }
    const std::optional<uint16_t> modifiers = CarbonKeyCodes::xModifierMask(carbonModifiers);
    if (!modifiers) {
        return Failure{Error::unsupportedModifier};
    }
    // A combination we hold already is shared, not grabbed twice.
    if (!isGrabbedByUs(*keycode, *modifiers)) {
        if (const std::optional<Failure> failure = grab(*keycode, *modifiers)) {
            return *failure;
        }
    }
    const RegistrationId id = m_nextId++;
    m_grabs.insert(id, {*keycode, *modifiers});
    qCDebug(lcX11HotKeys) << "grabbed keycode" << *keycode << "modifiers" << *modifiers << "as" << id;
    return id;
}

void X11HotKeys::unregisterHotKey(RegistrationId id) {
    const auto found = m_grabs.constFind(id);
    if (found == m_grabs.constEnd()) {
        return;
    }
    const Grab grab = *found;
    m_grabs.erase(found);
    if (!isGrabbedByUs(grab.keycode, grab.modifiers)) {
        ungrab(grab.keycode, grab.modifiers);
    }
    for (auto it = m_pressed.begin(); it != m_pressed.end();) {
        it = it.value() == id ? m_pressed.erase(it) : std::next(it);
    }
}

bool X11HotKeys::isServerKey(xcb_keycode_t keycode, uint16_t modifiers) const {
    if (m_layout == nullptr) {
        return false;
    }
    const quint32 keysym = m_layout->keysymWithModifiers(keycode, modifiers);
    const bool switchesTerminal = keysym >= XKB_KEY_XF86Switch_VT_1 && keysym <= XKB_KEY_XF86Switch_VT_12;
    const bool serverAction = keysym >= XKB_KEY_XF86Ungrab && keysym <= XKB_KEY_XF86LogGrabInfo;
    return switchesTerminal || serverAction || keysym == XKB_KEY_Terminate_Server;
}

bool X11HotKeys::isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const std::optional<xcb_keycode_t> keycode = CarbonKeyCodes::xKeycode(static_cast<int>(carbonKeyCode));
    const std::optional<uint16_t> modifiers = CarbonKeyCodes::xModifierMask(carbonModifiers);
    if (!keycode || !modifiers || isGrabbedByUs(*keycode, *modifiers)) {
        return false;
    }
    if (isServerKey(*keycode, *modifiers)) {
        return true;
    }
    // Probe: a grab that another client holds is refused; one we get is released at once.
    const std::optional<Failure> failure = grab(*keycode, *modifiers);
    if (!failure) {
        ungrab(*keycode, *modifiers);
        return false;
    }
    return failure->error == Error::takenByAnotherClient;
}

void X11HotKeys::regrabAll() {
    // Release with the old lock variants, then grab again with the current ones.
    QList<std::pair<xcb_keycode_t, uint16_t>> combinations;
    for (const Grab& grab : m_grabs) {
        if (!combinations.contains(std::pair(grab.keycode, grab.modifiers))) {
            combinations.append({grab.keycode, grab.modifiers});
        }
    }
    for (const auto& [keycode, modifiers] : combinations) {
        ungrab(keycode, modifiers);
    }
    readNumLockMask();
    for (const auto& [keycode, modifiers] : combinations) {
        if (const std::optional<Failure> failure = grab(keycode, modifiers)) {
            qCDebug(lcX11HotKeys) << "re-grabbing keycode" << keycode << "failed with X error" << failure->code;
        }
    }
}

bool X11HotKeys::handleEvent(xcb_generic_event_t* event) {
    const uint8_t type = event->response_type & 0x7F;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
        const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
        if (key->root != m_connection.root()) {
            return false;
        }
        if (type == XCB_KEY_RELEASE) {
            const auto pressed = m_pressed.constFind(key->detail);
            if (pressed == m_pressed.constEnd()) {
                return false;
            }
            const RegistrationId id = *pressed;
            m_pressed.erase(pressed);
            Q_EMIT released(id);
            return true;
        }
        const uint16_t state = key->state & kRealModifiers;
        for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it) {
            if (it->keycode != key->detail || it->modifiers != state) {
                continue;
            }
            if (m_pressed.contains(key->detail)) {
                ++m_suppressedRepeats;  // a repeat of a key that is already down
                return true;
            }
            const RegistrationId id = it.key();
            m_pressed.insert(key->detail, id);
            Q_EMIT pressed(id);
            return true;
        }
        return false;
    }
    if (type == XCB_MAPPING_NOTIFY) {
        const auto* mapping = reinterpret_cast<const xcb_mapping_notify_event_t*>(event);
        if (mapping->request == XCB_MAPPING_MODIFIER || mapping->request == XCB_MAPPING_KEYBOARD) {
            regrabAll();
        }
        return false;
    }
    if (m_firstXkbEvent >= 0) {
        const int xkbType = XkbEvents::xkbEventType(event, static_cast<uint8_t>(m_firstXkbEvent));
        if (xkbType == XCB_XKB_NEW_KEYBOARD_NOTIFY) {
            regrabAll();
        }
    }
    return false;
}
