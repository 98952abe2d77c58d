// SPDX-License-Identifier: MIT
// A stored shortcut: any bytes decode without a crash; what is accepted is a key code a key event can
// carry, only known modifier bits, and it is written and read back as the same shortcut.
#include <QByteArray>

#include "KeyboardShortcuts/Shortcut.h"
#include "tests/fuzz/FuzzCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using KeyboardShortcuts::Shortcut;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<Shortcut> shortcut = Shortcut::fromJson(bytes);
    if (!shortcut) {
        return 0;
    }
    FUZZ_CHECK(shortcut->carbonKeyCode() >= 0 && shortcut->carbonKeyCode() <= 0xFFFF);
    // Modifier bits pass through the flag set unchanged: nothing unknown survives decoding.
    FUZZ_CHECK(Shortcut(shortcut->carbonKeyCode(), shortcut->carbonModifiers()) == *shortcut);
    const std::optional<Shortcut> again = Shortcut::fromJson(shortcut->toJson());
    FUZZ_CHECK(again && *again == *shortcut);
    return 0;
}
