// SPDX-License-Identifier: MIT
#include "platform/x11/CarbonKeyCodes.h"

#include <QHash>

namespace CarbonKeyCodes {

namespace {

// Carbon virtual key code -> evdev scan code (linux/input-event-codes.h), by physical position.
const QHash<int, int>& carbonToEvdev() {
    static const QHash<int, int> table = {
        {0, 30},     // a
        {1, 31},     // s
        {2, 32},     // d
        {3, 33},     // f
        {4, 35},     // h
        {5, 34},     // g
        {6, 44},     // z
        {7, 45},     // x
        {8, 46},     // c
        {9, 47},     // v
        {10, 86},    // ISO section: the key next to left shift (KEY_102ND)
        {11, 48},    // b
        {12, 16},    // q
        {13, 17},    // w
        {14, 18},    // e
        {15, 19},    // r
        {16, 21},    // y
        {17, 20},    // t
        {18, 2},     // 1
        {19, 3},     // 2
        {20, 4},     // 3
        {21, 5},     // 4
        {22, 7},     // 6
        {23, 6},     // 5
        {24, 13},    // =
        {25, 10},    // 9
        {26, 8},     // 7
        {27, 12},    // -
        {28, 9},     // 8
        {29, 11},    // 0
        {30, 27},    // ]
        {31, 24},    // o
        {32, 22},    // u
        {33, 26},    // [
        {34, 23},    // i
        {35, 25},    // p
        {36, 28},    // return
        {37, 38},    // l
        {38, 36},    // j
        {39, 40},    // '
        {40, 37},    // k
        {41, 39},    // ;
        {42, 43},    // backslash
        {43, 51},    // ,
        {44, 53},    // /
        {45, 49},    // n
        {46, 50},    // m
        {47, 52},    // .
        {48, 15},    // tab
        {49, 57},    // space
        {50, 41},    // `
        {51, 14},    // delete (backspace)
        {53, 1},     // escape
        {54, 126},   // right command (right Super)
        {55, 125},   // command (left Super)
        {56, 42},    // shift
        {57, 58},    // caps lock
        {58, 56},    // option (left Alt)
        {59, 29},    // control
        {60, 54},    // right shift
        {61, 100},   // right option (right Alt)
        {62, 97},    // right control
        {64, 187},   // F17
        {65, 83},    // keypad .
        {67, 55},    // keypad *
        {69, 78},    // keypad +
        {71, 69},    // keypad clear, where PC keyboards have Num Lock
        {72, 115},   // volume up
        {73, 114},   // volume down
        {74, 113},   // mute
        {75, 98},    // keypad /
        {76, 96},    // keypad enter
        {78, 74},    // keypad -
        {79, 188},   // F18
        {80, 189},   // F19
        {81, 117},   // keypad =
        {82, 82},    // keypad 0
        {83, 79},    // keypad 1
        {84, 80},    // keypad 2
        {85, 81},    // keypad 3
        {86, 75},    // keypad 4
        {87, 76},    // keypad 5
        {88, 77},    // keypad 6
        {89, 71},    // keypad 7
        {90, 190},   // F20
        {91, 72},    // keypad 8
        {92, 73},    // keypad 9
        {93, 124},   // JIS yen
        {94, 89},    // JIS underscore (ro)
        {95, 95},    // JIS keypad comma
        {96, 63},    // F5
        {97, 64},    // F6
        {98, 65},    // F7
        {99, 61},    // F3
        {100, 66},   // F8
        {101, 67},   // F9
        {103, 87},   // F11
        {105, 183},  // F13
        {106, 186},  // F16
        {107, 184},  // F14
        {109, 68},   // F10
        {111, 88},   // F12
        {113, 185},  // F15
        {114, 110},  // help, where PC keyboards have Insert
        {115, 102},  // home
        {116, 104},  // page up
        {117, 111},  // forward delete
        {118, 62},   // F4
        {119, 107},  // end
        {120, 60},   // F2
        {121, 109},  // page down
        {122, 59},   // F1
        {123, 105},  // left arrow
        {124, 106},  // right arrow
        {125, 108},  // down arrow
        {126, 103},  // up arrow
    };
    return table;
}

const QHash<int, int>& evdevToCarbon() {
    static const QHash<int, int> table = [] {
        QHash<int, int> reverse;
        const QHash<int, int>& forward = carbonToEvdev();
        for (auto it = forward.cbegin(); it != forward.cend(); ++it) {
            reverse.insert(it.value(), it.key());
        }
        return reverse;
    }();
    return table;
}

constexpr quint32 kCmdKey = 0x100;
constexpr quint32 kShiftKey = 0x200;
constexpr quint32 kOptionKey = 0x800;
constexpr quint32 kControlKey = 0x1000;
constexpr quint32 kFunction = 0x20000;

}  // namespace

std::optional<int> evdevScanCode(int carbonKeyCode) {
    const auto found = carbonToEvdev().constFind(carbonKeyCode);
    if (found == carbonToEvdev().constEnd()) {
        return std::nullopt;
    }
    return *found;
}

std::optional<int> carbonKeyCodeForEvdev(int evdevScanCode) {
    const auto found = evdevToCarbon().constFind(evdevScanCode);
    if (found == evdevToCarbon().constEnd()) {
        return std::nullopt;
    }
    return *found;
}

std::optional<xcb_keycode_t> xKeycode(int carbonKeyCode) {
    const std::optional<int> evdev = evdevScanCode(carbonKeyCode);
    if (!evdev || *evdev + 8 > 255) {
        return std::nullopt;
    }
    return static_cast<xcb_keycode_t>(*evdev + 8);
}

std::optional<int> carbonKeyCodeForXKeycode(quint32 keycode) {
    if (keycode < 8) {
        return std::nullopt;
    }
    return carbonKeyCodeForEvdev(static_cast<int>(keycode) - 8);
}

std::optional<uint16_t> xModifierMask(quint32 carbonModifiers) {
    if ((carbonModifiers & kFunction) != 0) {
        return std::nullopt;
    }
    uint16_t mask = 0;
    if ((carbonModifiers & kControlKey) != 0) {
        mask |= XCB_MOD_MASK_CONTROL;
    }
    if ((carbonModifiers & kOptionKey) != 0) {
        mask |= XCB_MOD_MASK_1;
    }
    if ((carbonModifiers & kShiftKey) != 0) {
        mask |= XCB_MOD_MASK_SHIFT;
    }
    if ((carbonModifiers & kCmdKey) != 0) {
        mask |= XCB_MOD_MASK_4;
    }
    return mask;
}

quint32 carbonModifiersForXState(uint16_t state) {
    quint32 bits = 0;
    if ((state & XCB_MOD_MASK_CONTROL) != 0) {
        bits |= kControlKey;
    }
    if ((state & XCB_MOD_MASK_1) != 0) {
        bits |= kOptionKey;
    }
    if ((state & XCB_MOD_MASK_SHIFT) != 0) {
        bits |= kShiftKey;
    }
    if ((state & XCB_MOD_MASK_4) != 0) {
        bits |= kCmdKey;
    }
    return bits;
}

}  // namespace CarbonKeyCodes
