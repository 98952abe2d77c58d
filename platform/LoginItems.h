#pragma once

#include <QString>

#include "platform/Types.h"

// The service that starts the main application when the user logs in.
class LoginItems {
public:
    LoginItems() = default;
    virtual ~LoginItems() = default;
    LoginItems(const LoginItems&) = delete;
    LoginItems& operator=(const LoginItems&) = delete;

    virtual LoginItemStatus status() = 0;
    // Each returns false and fills the reason when the change could not be made.
    virtual bool registerMainApp(QString* error) = 0;
    virtual bool unregisterMainApp(QString* error) = 0;
};
