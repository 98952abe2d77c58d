// SPDX-License-Identifier: MIT
#pragma once

// Brings this program's windows ahead of other applications' windows.
class ForegroundActivation {
public:
    ForegroundActivation() = default;
    virtual ~ForegroundActivation() = default;
    ForegroundActivation(const ForegroundActivation&) = delete;
    ForegroundActivation& operator=(const ForegroundActivation&) = delete;

    // Activates our most recently shown window, even while another application is active.
    virtual void bringToFront() = 0;
};
