// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QSize>
#include <QTemporaryDir>
#include <QThread>
#include <QWaitCondition>
#include <memory>
#include <optional>

#include "platform/WindowControl.h"
#include "platform/kwin/KWinState.h"

class KWinBridgeReceiver;
class QDBusServiceWatcher;

// Lattica's link to KWin. KWin has no interface for moving other applications' windows, but it runs
// scripts loaded over D-Bus: a watcher script pushes the desktop's state on every change, and each
// command is a short script that answers once. Both answer through callDBus to an object on a bus
// connection of the bridge's own, served on a thread of its own, so that the main thread can wait for an
// answer without running its event loop.
class KWinBridge : public QObject {
    Q_OBJECT
public:
    // How long KWin may take to answer a command or report the state.
    static constexpr int kAnswerTimeoutMs = 2000;

    // Connects and loads the watcher; nothing when KWin is not on the session bus or its scripts do not
    // answer. Why is then in *problem.
    static std::unique_ptr<KWinBridge> connect(QString* problem = nullptr);
    ~KWinBridge() override;
    KWinBridge(const KWinBridge&) = delete;
    KWinBridge& operator=(const KWinBridge&) = delete;

    // The state the watcher last pushed (a copy; safe from any thread).
    KWinState state() const;
    // Whether the watcher has reported since KWin (re)started.
    bool isWatching() const;
    // The number Lattica uses for a KWin window, and back; 0 / empty for unknown windows.
    WindowId idOf(const QString& uuid);
    QString uuidOf(WindowId id) const;

    // Runs one command script ({"op": ..., ...}) and returns its result ("ok", "gone", ...) once it has
    // answered; the state is up to date with the command by then. Nothing when no answer came in time.
    std::optional<QString> command(QJsonObject command, int timeoutMs = kAnswerTimeoutMs);
    // The same for a command whose result is more than a word (a batch answers a list, one per window).
    std::optional<QJsonValue> request(QJsonObject command, int timeoutMs = kAnswerTimeoutMs);

    // How many command scripts the bridge has run (a batch is one).
    int commandCount() const { return m_nextToken - 1; }

    // What KWin does with one of our windows as it appears: a JSON object with "skipTaskbar",
    // "skipSwitcher", "place" ("pointer") and "activate", each optional. A window is known by its title
    // and its size, which tell the toolkit's window and KWin's apart.
    struct OwnWindowRule {
        QString title;
        QSize size;
        QJsonObject rule;
    };
    // Where several rules fit a window, the first one of the list counts. Windows without a rule are left
    // as KWin made them.
    void setOwnWindowRules(const QList<OwnWindowRule>& rules);
    // The rule for a window described as {"caption", "width", "height"} (the script's JSON), as compact
    // JSON; "{}" when there is none. Safe from any thread.
    QString ownWindowRule(const QString& window) const;

    // The session bus connection of the bridge (for other KWin interfaces).
    QDBusConnection bus() const { return m_bus; }

Q_SIGNALS:
    // The screens changed; emitted on the thread that receives KWin's calls.
    void screensChanged();
    // KWin went away (the watcher is gone until it comes back).
    void lost();

private:
    friend class KWinBridgeReceiver;
    explicit KWinBridge(QDBusConnection bus);

    bool loadWatcher(int timeoutMs);
    // Loads and runs a script with the library and the given last line; its plugin name, or empty.
    QString loadScript(const QString& name, const QString& lastLine);
    void unloadScript(const QString& name);
    void onKWinOwnerChanged(const QString& newOwner);
    void reloadWatcher();

    // Called on the receiving thread.
    void receiveState(const QByteArray& json);
    void receiveAnswer(const QByteArray& answerJson, const QByteArray& stateJson);

    QDBusConnection m_bus;
    QThread m_thread;
    KWinBridgeReceiver* m_receiver = nullptr;
    QDBusServiceWatcher* m_kwinWatcher = nullptr;
    QTemporaryDir m_scripts;
    QString m_library;
    QString m_watcherName;
    int m_nextToken = 1;
    // How long a KWin that came back may take to run scripts, and how often it is asked.
    static constexpr int kReloadTimeoutMs = 10000;
    static constexpr int kReloadIntervalMs = 100;
    QDeadlineTimer m_reloadDeadline;

    mutable QMutex m_mutex;
    QWaitCondition m_changed;
    KWinState m_state;
    quint64 m_stateSerial = 0;
    bool m_watching = false;
    QHash<int, QJsonValue> m_answers;
    QList<OwnWindowRule> m_ownWindowRules;
    QHash<QString, WindowId> m_ids;
    QHash<WindowId, QString> m_uuids;
    WindowId m_nextId = 1;
};
