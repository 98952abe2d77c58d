// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

// The desktop's tray host (notification area), which shows our icon. It may start after we do, at
// login for instance, or go away and come back when the panel restarts.
class TrayHost : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Whether a tray host is running now.
    virtual bool isAvailable() const = 0;

Q_SIGNALS:
    // A tray host appeared or went away.
    void availabilityChanged(bool available);
};
