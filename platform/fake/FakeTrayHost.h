// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TrayHost.h"

// A tray host that tests start and stop.
class FakeTrayHost : public TrayHost {
public:
    bool available = true;

    bool isAvailable() const override { return available; }
    void setAvailable(bool now) {
        available = now;
        Q_EMIT availabilityChanged(now);
    }
};
