// SPDX-License-Identifier: MIT
// lattica-kwin-fake-keys: presses and releases keys through KWin's fake-input Wayland protocol, as told on
// standard input, one command a line: "down CODE" or "up CODE" (evdev key codes), "pointer X Y" (moves the
// pointer there, in KWin's global logical coordinates), "exit". It answers
// "ready" once KWin has accepted it and "done" once KWin has handled each command.
#include <wayland-client.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "fake-input-client-protocol.h"

namespace {

org_kde_kwin_fake_input* g_fakeInput = nullptr;

void onGlobal(void*, wl_registry* registry, uint32_t name, const char* interface, uint32_t version) {
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0 && version >= 4) {
        g_fakeInput = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, 4));
    }
}

void onGlobalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener kRegistryListener{onGlobal, onGlobalRemove};

}  // namespace

int main() {
    wl_display* display = wl_display_connect(nullptr);
    if (display == nullptr) {
        std::puts("error cannot connect to the Wayland display");
        return 1;
    }
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &kRegistryListener, nullptr);
    wl_display_roundtrip(display);
    if (g_fakeInput == nullptr) {
        std::puts("error KWin offers no fake input (version 4)");
        return 1;
    }
    org_kde_kwin_fake_input_authenticate(g_fakeInput, "Lattica tests", "presses shortcuts in tests");
    wl_display_roundtrip(display);
    std::puts("ready");
    std::fflush(stdout);
    char line[256];
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        unsigned code = 0;
        double x = 0;
        double y = 0;
        if (std::sscanf(line, "pointer %lf %lf", &x, &y) == 2) {
            org_kde_kwin_fake_input_pointer_motion_absolute(g_fakeInput, wl_fixed_from_double(x),
                                                            wl_fixed_from_double(y));
        } else if (std::sscanf(line, "down %u", &code) == 1) {
            org_kde_kwin_fake_input_keyboard_key(g_fakeInput, code, WL_KEYBOARD_KEY_STATE_PRESSED);
        } else if (std::sscanf(line, "up %u", &code) == 1) {
            org_kde_kwin_fake_input_keyboard_key(g_fakeInput, code, WL_KEYBOARD_KEY_STATE_RELEASED);
        } else if (std::strncmp(line, "exit", 4) == 0) {
            break;
        } else {
            std::printf("error cannot read: %s", line);
        }
        if (wl_display_roundtrip(display) < 0) {
            std::puts("error KWin went away");
            return 1;
        }
        std::puts("done");
        std::fflush(stdout);
    }
    org_kde_kwin_fake_input_destroy(g_fakeInput);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return 0;
}
