#include "KeyboardShortcuts/Name.h"

#include "KeyboardShortcuts/HandlerTables.h"
#include "KeyboardShortcuts/KeyboardShortcuts.h"

namespace KeyboardShortcuts {

Name::Name(const QString& rawValue, std::optional<Shortcut> defaultShortcut)
    : m_rawValue(rawValue), m_defaultShortcut(defaultShortcut) {
    if (m_defaultShortcut && !userDefaultsContains(*this)) {
        userDefaultsSet(*this, *m_defaultShortcut);
    }
    initialize();
}

std::optional<Shortcut> Name::shortcut() const {
    return getShortcut(*this);
}

void Name::setShortcut(const std::optional<Shortcut>& shortcut) const {
    KeyboardShortcuts::setShortcut(shortcut, *this);
}

}  // namespace KeyboardShortcuts
