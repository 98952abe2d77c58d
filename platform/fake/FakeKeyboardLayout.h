#pragma once

#include <QHash>

#include "platform/KeyboardLayout.h"

// A scripted keyboard layout: key code to character; no layout at all when hasLayout is false.
class FakeKeyboardLayout : public KeyboardLayout {
    Q_OBJECT
public:
    bool hasLayout = true;
    QHash<int, QString> characters;

    std::optional<QString> characterForKeyCode(int carbonKeyCode) override {
        if (!hasLayout || !characters.contains(carbonKeyCode)) {
            return std::nullopt;
        }
        return characters.value(carbonKeyCode);
    }
};
