#include "KeyboardShortcuts/Localization.h"

#include <QHash>

namespace KeyboardShortcuts {

namespace {
const QHash<QByteArray, QString>& englishTable() {
    static const QHash<QByteArray, QString> table = {
        {"space_key", QStringLiteral("space")},
        {"record_shortcut", QStringLiteral("Record Shortcut")},
        {"press_shortcut", QStringLiteral("Press Shortcut")},
        {"keyboard_shortcut_used_by_menu_item",
         QStringLiteral(
             "This keyboard shortcut cannot be used as it\u2019s already used by the \u201C%1\u201D menu item.")},
        {"keyboard_shortcut_disallowed",
         QStringLiteral("This keyboard shortcut cannot be used because it only uses the Alt key. Add Super, Ctrl "
                        "or Shift to it.")},
        {"keyboard_shortcut_used_by_system",
         QStringLiteral("This keyboard shortcut cannot be used as it\u2019s already a system-wide keyboard shortcut.")},
        {"keyboard_shortcuts_can_be_changed",
         QStringLiteral("Most system-wide keyboard shortcuts can be changed in the settings of your desktop "
                        "environment.")},
        {"ok", QStringLiteral("OK")},
        {"force_use_shortcut", QStringLiteral("Use Anyway")},
    };
    return table;
}
}  // namespace

QString localized(const char* key) {
    return englishTable().value(QByteArray(key), QString::fromUtf8(key));
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
