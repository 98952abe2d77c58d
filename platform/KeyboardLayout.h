// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <optional>

// The user's current keyboard layout.
class KeyboardLayout : public QObject {
    Q_OBJECT
public:
    KeyboardLayout() = default;
    ~KeyboardLayout() override = default;
    KeyboardLayout(const KeyboardLayout&) = delete;
    KeyboardLayout& operator=(const KeyboardLayout&) = delete;

    // The text the key (a Carbon virtual key code) produces without modifiers in the current layout;
    // nothing when there is no layout or the key produces no text.
    virtual std::optional<QString> characterForKeyCode(int carbonKeyCode) = 0;
    // The Carbon virtual key code of the physical key a native scan code (as in QKeyEvent) names;
    // nothing when the platform does not know it.
    virtual std::optional<int> carbonKeyCodeForScanCode(quint32 nativeScanCode) = 0;

Q_SIGNALS:
    void layoutChanged();
};
