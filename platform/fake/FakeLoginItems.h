#pragma once

#include "platform/LoginItems.h"

// A scripted login-item service: tests choose the status a registration leads to, or a refusal.
class FakeLoginItems : public LoginItems {
public:
    LoginItemStatus currentStatus = LoginItemStatus::NotRegistered;
    // Status after a successful registration (RequiresApproval models a system that wants the user's ok).
    LoginItemStatus statusAfterRegister = LoginItemStatus::Enabled;
    // When not empty, every change is refused with this reason.
    QString refusal;

    LoginItemStatus status() override { return currentStatus; }
    bool registerMainApp(QString* error) override {
        if (!refusal.isEmpty()) {
            *error = refusal;
            return false;
        }
        currentStatus = statusAfterRegister;
        return true;
    }
    bool unregisterMainApp(QString* error) override {
        if (!refusal.isEmpty()) {
            *error = refusal;
            return false;
        }
        currentStatus = LoginItemStatus::NotRegistered;
        return true;
    }
};
