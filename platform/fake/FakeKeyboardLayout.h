// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>

#include "platform/KeyboardLayout.h"

// A scripted keyboard layout: key code to character; no layout at all when hasLayout is false.
class FakeKeyboardLayout : public KeyboardLayout {
    Q_OBJECT
public:
    bool hasLayout = true;
    QHash<int, QString> characters;
    // Native scan code to Carbon key code; empty by default, so key events fall back to their Qt key.
    QHash<quint32, int> scanCodes;

    std::optional<QString> characterForKeyCode(int carbonKeyCode) override {
        if (!hasLayout || !characters.contains(carbonKeyCode)) {
            return std::nullopt;
        }
        return characters.value(carbonKeyCode);
    }
    std::optional<int> carbonKeyCodeForScanCode(quint32 nativeScanCode) override {
        if (!scanCodes.contains(nativeScanCode)) {
            return std::nullopt;
        }
        return scanCodes.value(nativeScanCode);
    }

    // Fills in the US layout's characters of the letter, digit and punctuation keys.
    void useUSLayout();
    // Switches layouts the way the user would, announcing the change.
    void changeCharacters(const QHash<int, QString>& newCharacters);
};
