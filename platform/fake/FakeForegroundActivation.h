// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ForegroundActivation.h"

// Counts how often the program asked to come to the front.
class FakeForegroundActivation : public ForegroundActivation {
public:
    int activations = 0;

    void bringToFront() override { ++activations; }
};
