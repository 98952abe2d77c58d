// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TaskbarPresence.h"

// Remembers whether our windows would show in the taskbar.
class FakeTaskbarPresence : public TaskbarPresence {
public:
    bool shown = true;

    void setShownInTaskbar(bool newShown) override { shown = newShown; }
    bool isShownInTaskbar() const override { return shown; }
};
