#pragma once

#include <QList>
#include <QObject>
#include <QUuid>
#include <functional>
#include <optional>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

// Global keyboard shortcuts: per-name storage in the user defaults, system-wide hot keys and the
// handlers attached to names. Everything runs on the main thread.
namespace KeyboardShortcuts {

enum class EventType { keyDown, keyUp };

// Storage.
std::optional<Shortcut> getShortcut(const Name& name);
// Stores (and registers) a shortcut; nothing removes it, or leaves false when the name has a default.
void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name);
// Back to each name's default, or to nothing.
void reset(const QList<Name>& names);
// Removes every stored "KeyboardShortcuts_" key.
void resetAll();
// Whether anything is stored for the name (a stored false counts).
bool userDefaultsContains(const Name& name);
// The user-defaults key of a name: "KeyboardShortcuts_" + raw value.
QString userDefaultsKey(const Name& name);

// Handlers.
void onKeyDown(const Name& name, std::function<void()> action);
void onKeyUp(const Name& name, std::function<void()> action);
void removeHandler(const Name& name);
void removeAllHandlers();

// Master switch; changing it suspends or revives every hot key.
bool isEnabled();
void setEnabled(bool enabled);
// Whether the name's stored shortcut is registered and the master switch is on.
bool isEnabled(const Name& name);
void enable(const QList<Name>& names);
void disable(const QList<Name>& names);

// Set while a recorder records: fired shortcuts then run nothing.
bool isPaused();
void setPaused(bool paused);
// True while one of the application's menus is open.
bool isMenuOpen();

// A live subscription to a name's key events; it delivers until it is destroyed.
class EventStream : public QObject {
    Q_OBJECT
public:
    // Only events of one type when a filter is given.
    explicit EventStream(const Name& name, std::optional<EventType> only = std::nullopt, QObject* parent = nullptr);
    ~EventStream() override;

    const Name& name() const { return m_name; }

Q_SIGNALS:
    void event(KeyboardShortcuts::EventType type);
    void keyDown();
    void keyUp();

private:
    void deliver(EventType type);

    Name m_name;
    std::optional<EventType> m_only;
    QUuid m_id;
};

// Subscriptions; the caller owns the returned object.
EventStream* events(const Name& name, QObject* parent = nullptr);
EventStream* events(EventType type, const Name& name, QObject* parent = nullptr);

}  // namespace KeyboardShortcuts
