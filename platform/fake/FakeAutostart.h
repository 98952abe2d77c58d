// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Autostart.h"

// A scripted autostart service: tests choose the status enabling leads to, or a refusal.
class FakeAutostart : public Autostart {
public:
    AutostartStatus currentStatus = AutostartStatus::Disabled;
    // Status after enabling succeeded (RequiresApproval models a desktop that wants the user's ok first).
    AutostartStatus statusAfterEnable = AutostartStatus::Enabled;
    // When not empty, every change is refused with this reason.
    QString refusal;
    // What program() answers.
    QString startedProgram;

    AutostartStatus status() override { return currentStatus; }
    bool enable(QString* error) override {
        if (!refusal.isEmpty()) {
            *error = refusal;
            return false;
        }
        currentStatus = statusAfterEnable;
        return true;
    }
    QString program() override { return startedProgram; }
    bool disable(QString* error) override {
        if (!refusal.isEmpty()) {
            *error = refusal;
            return false;
        }
        currentStatus = AutostartStatus::Disabled;
        return true;
    }
};
