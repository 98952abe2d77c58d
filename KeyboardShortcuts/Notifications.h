#pragma once

#include <QObject>
#include <QString>

#include "KeyboardShortcuts/Name.h"

namespace KeyboardShortcuts {

// The process-wide notifications of the shortcut subsystem, posted on the main thread.
class Notifications : public QObject {
    Q_OBJECT
public:
    static constexpr const char* shortcutByNameDidChangeName = "KeyboardShortcuts_shortcutByNameDidChange";
    static constexpr const char* recorderActiveStatusDidChangeName = "KeyboardShortcuts_recorderActiveStatusDidChange";

    // The one instance; it lives until the process ends.
    static Notifications& shared();

    void postShortcutByNameDidChange(const Name& name);
    void postRecorderActiveStatusDidChange(bool isActive);

Q_SIGNALS:
    // "KeyboardShortcuts_shortcutByNameDidChange": the stored shortcut of the name changed.
    void shortcutByNameDidChange(const KeyboardShortcuts::Name& name);
    // "KeyboardShortcuts_recorderActiveStatusDidChange": a recorder started or stopped recording.
    void recorderActiveStatusDidChange(bool isActive);

private:
    Notifications() = default;
};

}  // namespace KeyboardShortcuts
