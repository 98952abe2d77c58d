// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/Utilities.h"

#include <QTextBoundaryFinder>

#include "KeyboardShortcuts/SpecialKey.h"
#include "platform/KeyboardLayout.h"
#include "platform/Platform.h"

namespace KeyboardShortcuts {

namespace {
int graphemeCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (finder.toNextBoundary() != -1) {
        ++count;
    }
    return count;
}
}  // namespace

std::optional<QString> keyToCharacter(Key key) {
    KeyboardLayout* layout = Platform::services().keyboardLayout;
    if (layout == nullptr) {
        return std::nullopt;
    }
    if (specialKey(key)) {
        return std::nullopt;
    }
    if (key.rawValue() < 0 || key.rawValue() > 0xFFFF) {
        qFatal("keyToCharacter: key code %d outside 0...65535", key.rawValue());
    }
    const std::optional<QString> text = layout->characterForKeyCode(key.rawValue());
    if (!text || graphemeCount(*text) != 1) {
        return std::nullopt;
    }
    return text;
}

QString capitalized(const QString& text) {
    QString result;
    result.reserve(text.size());
    bool startOfWord = true;
    for (const QChar character : text) {
        if (character.isSpace()) {
            startOfWord = true;
            result += character;
            continue;
        }
        result += startOfWord ? character.toUpper() : character.toLower();
        startOfWord = false;
    }
    return result;
}

}  // namespace KeyboardShortcuts
