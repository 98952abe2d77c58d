// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/widgets/Beep.h"

#include <QApplication>

namespace KeyboardShortcuts {

namespace {
int g_beepCount = 0;
}  // namespace

void beep() {
    ++g_beepCount;
    QApplication::beep();
}

int beepCount() {
    return g_beepCount;
}

}  // namespace KeyboardShortcuts
