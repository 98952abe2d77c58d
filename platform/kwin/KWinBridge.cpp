// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinBridge.h"

#include <unistd.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <QTimer>
#include <QUuid>

#include "platform/kwin/KWinBridgeReceiver.h"

Q_LOGGING_CATEGORY(lcKWinBridge, "lattica.kwin", QtInfoMsg)

namespace {

const QString kKWinService = QStringLiteral("org.kde.KWin");
const QString kScriptingInterface = QStringLiteral("org.kde.kwin.Scripting");

// Calls KWin and waits for the reply; an error reply when it gives none.
QDBusMessage callKWin(const QDBusConnection& bus, const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kKWinService, path, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, KWinBridge::kAnswerTimeoutMs);
}

}  // namespace

void KWinBridgeReceiver::push(const QString& state) {
    m_bridge.receiveState(state.toUtf8());
}

void KWinBridgeReceiver::answer(const QString& answer, const QString& state) {
    m_bridge.receiveAnswer(answer.toUtf8(), state.toUtf8());
}

QString KWinBridgeReceiver::ownWindowShown(const QString& window) {
    return m_bridge.ownWindowRule(window);
}

std::unique_ptr<KWinBridge> KWinBridge::connect(QString* problem) {
    auto fail = [problem](const QString& why) {
        if (problem != nullptr) {
            *problem = why;
        }
        return nullptr;
    };
    // A connection of our own: its unique name is where the scripts answer, and its calls are served
    // on the bridge's thread whatever the main thread is doing.
    const QString connectionName = QStringLiteral("lattica-kwin-") + QUuid::createUuid().toString(QUuid::Id128);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    if (!bus.isConnected()) {
        return fail(QStringLiteral("there is no session bus"));
    }
    if (!bus.interface()->isServiceRegistered(kKWinService)) {
        QDBusConnection::disconnectFromBus(connectionName);
        return fail(QStringLiteral("KWin is not running on the session bus"));
    }
    std::unique_ptr<KWinBridge> bridge(new KWinBridge(bus));
    if (bridge->m_library.isEmpty()) {
        return fail(QStringLiteral("Lattica's script for KWin cannot be read"));
    }
    if (!bridge->m_scripts.isValid()) {
        return fail(QStringLiteral("cannot write KWin scripts to a temporary folder"));
    }
    if (!bridge->loadWatcher(kAnswerTimeoutMs)) {
        return fail(bridge->m_watcherName.isEmpty()
                        ? QStringLiteral("KWin did not load Lattica's script")
                        : QStringLiteral("Lattica's script in KWin did not answer (it may not suit this KWin)"));
    }
    return bridge;
}

KWinBridge::KWinBridge(QDBusConnection bus) : m_bus(std::move(bus)) {
    // LATTICA_KWIN_SCRIPT names a file that replaces the built-in script, for trying a change to it
    // without building Lattica again.
    const QString replacement = qEnvironmentVariable("LATTICA_KWIN_SCRIPT");
    QFile library(replacement.isEmpty() ? QStringLiteral(":/kwin/lattica-bridge.js") : replacement);
    if (!replacement.isEmpty()) {
        qCInfo(lcKWinBridge) << "KWin's script comes from" << replacement;
    }
    if (library.open(QIODevice::ReadOnly)) {
        m_library = QString::fromUtf8(library.readAll());
    }
    m_thread.setObjectName(QStringLiteral("KWin bridge"));
    m_thread.start();
    m_receiver = new KWinBridgeReceiver(*this);
    m_receiver->moveToThread(&m_thread);
    m_bus.registerObject(QString::fromLatin1(KWinBridgeReceiver::kPath), m_receiver,
                         QDBusConnection::ExportScriptableSlots);
    m_kwinWatcher = new QDBusServiceWatcher(kKWinService, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    QObject::connect(m_kwinWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                     [this](const QString&, const QString&, const QString& newOwner) { onKWinOwnerChanged(newOwner); });
}

KWinBridge::~KWinBridge() {
    if (!m_watcherName.isEmpty()) {
        // Waited for: the connection closes next, and the watcher must not outlive it.
        callKWin(m_bus, QStringLiteral("/Scripting"), kScriptingInterface, QStringLiteral("unloadScript"),
                 {m_watcherName});
        QFile::remove(m_scripts.filePath(m_watcherName + QStringLiteral(".js")));
    }
    m_bus.unregisterObject(QString::fromLatin1(KWinBridgeReceiver::kPath));
    m_thread.quit();
    m_thread.wait();
    // Its thread has ended, so nothing runs on the receiver now; calls still queued for it go with it.
    // (A deleteLater queued to the thread could be left unrun when the thread's loop quits first.)
    delete m_receiver;
    QDBusConnection::disconnectFromBus(m_bus.name());
}

KWinState KWinBridge::state() const {
    const QMutexLocker lock(&m_mutex);
    return m_state;
}

bool KWinBridge::isWatching() const {
    const QMutexLocker lock(&m_mutex);
    return m_watching;
}

WindowId KWinBridge::idOf(const QString& uuid) {
    const QMutexLocker lock(&m_mutex);
    return m_ids.value(uuid, 0);
}

QString KWinBridge::uuidOf(WindowId id) const {
    const QMutexLocker lock(&m_mutex);
    return m_uuids.value(id);
}

bool KWinBridge::loadWatcher(int timeoutMs) {
    quint64 serial = 0;
    {
        const QMutexLocker lock(&m_mutex);
        m_watching = false;
        serial = m_stateSerial;
    }
    // Named after this bridge: one bridge may follow another in a process, and the unloading of the old
    // watcher must not reach the new one.
    static int watchers = 0;
    const QString name = QStringLiteral("lattica-watcher-%1-%2").arg(::getpid()).arg(++watchers);
    m_watcherName = loadScript(name, QStringLiteral("startWatching();"));
    if (m_watcherName.isEmpty()) {
        return false;
    }
    QMutexLocker lock(&m_mutex);
    const QDeadlineTimer deadline(timeoutMs);
    while (m_stateSerial == serial) {
        if (!m_changed.wait(&m_mutex, deadline)) {
            qCWarning(lcKWinBridge) << "KWin's watcher script did not report its state";
            return false;
        }
    }
    m_watching = true;
    return true;
}

QString KWinBridge::loadScript(const QString& name, const QString& lastLine) {
    const QString path = m_scripts.filePath(name + QStringLiteral(".js"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qCWarning(lcKWinBridge) << "cannot write" << path;
        return {};
    }
    const QString service = m_bus.baseService();
    file.write(QStringLiteral("var LATTICA_SERVICE = \"%1\";\n").arg(service).toUtf8());
    file.write(QStringLiteral("var LATTICA_PID = %1;\n").arg(::getpid()).toUtf8());
    file.write(m_library.toUtf8());
    file.write("\n");
    file.write(lastLine.toUtf8());
    file.write("\n");
    file.close();

    const QDBusMessage loaded =
        callKWin(m_bus, QStringLiteral("/Scripting"), kScriptingInterface, QStringLiteral("loadScript"), {path, name});
    if (loaded.type() != QDBusMessage::ReplyMessage || loaded.arguments().isEmpty()) {
        qCWarning(lcKWinBridge) << "KWin did not load" << name << loaded.errorMessage();
        QFile::remove(path);
        return {};
    }
    const int id = loaded.arguments().constFirst().toInt();
    if (id < 0) {
        qCWarning(lcKWinBridge) << "KWin refused the script" << name;
        QFile::remove(path);
        return {};
    }
    // Scripting.start runs every loaded script that is not running yet. Running the script through its
    // own object would need its path, which differs between Plasma 5.27 (/<id>) and 6
    // (/Scripting/Script<id>), and which a script being unloaded may still hold under the same id.
    const QDBusMessage ran =
        callKWin(m_bus, QStringLiteral("/Scripting"), kScriptingInterface, QStringLiteral("start"), {});
    if (ran.type() != QDBusMessage::ReplyMessage) {
        qCWarning(lcKWinBridge) << "KWin did not run" << name << ran.errorMessage();
        unloadScript(name);
        return {};
    }
    return name;
}

void KWinBridge::unloadScript(const QString& name) {
    QDBusMessage message = QDBusMessage::createMethodCall(kKWinService, QStringLiteral("/Scripting"),
                                                          kScriptingInterface, QStringLiteral("unloadScript"));
    message.setArguments({name});
    m_bus.send(message);  // nothing waits for it
    QFile::remove(m_scripts.filePath(name + QStringLiteral(".js")));
}

std::optional<QString> KWinBridge::command(QJsonObject command, int timeoutMs) {
    const std::optional<QJsonValue> result = request(std::move(command), timeoutMs);
    if (!result) {
        return std::nullopt;
    }
    return result->toString();
}

std::optional<QJsonValue> KWinBridge::request(QJsonObject command, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    const int token = m_nextToken++;
    command.insert(QStringLiteral("token"), token);
    const QString json = QString::fromUtf8(QJsonDocument(command).toJson(QJsonDocument::Compact));
    const QString name = QStringLiteral("lattica-%1-%2").arg(::getpid()).arg(token);
    if (loadScript(name, QStringLiteral("runCommand(%1);").arg(json)).isEmpty()) {
        return std::nullopt;
    }
    std::optional<QJsonValue> result;
    {
        QMutexLocker lock(&m_mutex);
        const QDeadlineTimer deadline(timeoutMs);
        while (!m_answers.contains(token)) {
            if (!m_changed.wait(&m_mutex, deadline)) {
                break;
            }
        }
        if (m_answers.contains(token)) {
            result = m_answers.take(token);
        }
    }
    unloadScript(name);
    qCDebug(lcKWinBridge) << command.value(QStringLiteral("op")).toString() << "answered"
                          << (result ? QJsonDocument(QJsonArray{*result}).toJson(QJsonDocument::Compact)
                                     : QByteArray("nothing"))
                          << "in" << clock.nsecsElapsed() / 1e6 << "ms";
    return result;
}

void KWinBridge::setOwnWindowRules(const QList<OwnWindowRule>& rules) {
    const QMutexLocker lock(&m_mutex);
    m_ownWindowRules = rules;
}

QString KWinBridge::ownWindowRule(const QString& window) const {
    const QJsonObject described = QJsonDocument::fromJson(window.toUtf8()).object();
    const QString caption = described.value(QLatin1String("caption")).toString();
    const QSize size(qRound(described.value(QLatin1String("width")).toDouble()),
                     qRound(described.value(QLatin1String("height")).toDouble()));
    const QMutexLocker lock(&m_mutex);
    const OwnWindowRule* found = nullptr;
    for (const OwnWindowRule& candidate : m_ownWindowRules) {
        if (candidate.title == caption && (found == nullptr || (candidate.size == size && found->size != size))) {
            found = &candidate;
        }
    }
    return found == nullptr ? QStringLiteral("{}")
                            : QString::fromUtf8(QJsonDocument(found->rule).toJson(QJsonDocument::Compact));
}

void KWinBridge::onKWinOwnerChanged(const QString& newOwner) {
    if (newOwner.isEmpty()) {
        qCWarning(lcKWinBridge) << "KWin left the session bus";
        {
            const QMutexLocker lock(&m_mutex);
            m_watching = false;
        }
        m_watcherName.clear();
        Q_EMIT lost();
        return;
    }
    qCInfo(lcKWinBridge) << "KWin is back on the session bus; loading the watcher again";
    m_reloadDeadline.setRemainingTime(kReloadTimeoutMs);
    reloadWatcher();
}

void KWinBridge::reloadWatcher() {
    if (loadWatcher(kAnswerTimeoutMs)) {
        return;
    }
    // KWin owns its bus name before its scripting interface is there: ask again until it is.
    if (m_reloadDeadline.hasExpired()) {
        qCWarning(lcKWinBridge) << "KWin came back but does not run Lattica's script";
        return;
    }
    QTimer::singleShot(kReloadIntervalMs, this, &KWinBridge::reloadWatcher);
}

void KWinBridge::receiveState(const QByteArray& json) {
    std::optional<KWinState> parsed = KWinState::parse(json);
    if (!parsed) {
        qCWarning(lcKWinBridge) << "KWin's script sent a state that cannot be read";
        return;
    }
    bool screensChanged = false;
    {
        const QMutexLocker lock(&m_mutex);
        // Only the watcher reads the names of Plasma 5.27's screens; a command's state keeps them.
        for (qsizetype i = 0; i < parsed->screens.size() && i < m_state.screens.size(); ++i) {
            KWinScreen& screen = parsed->screens[i];
            if (screen.name.isEmpty() && screen.geometry == m_state.screens.at(i).geometry) {
                screen.name = m_state.screens.at(i).name;
            }
        }
        for (const KWinWindow& window : parsed->windows) {
            if (!m_ids.contains(window.uuid)) {
                m_ids.insert(window.uuid, m_nextId);
                m_uuids.insert(m_nextId, window.uuid);
                ++m_nextId;
            }
        }
        screensChanged = m_stateSerial > 0 && parsed->screens != m_state.screens;
        m_state = std::move(*parsed);
        ++m_stateSerial;
        m_changed.wakeAll();
    }
    if (screensChanged) {
        Q_EMIT this->screensChanged();
    }
}

void KWinBridge::receiveAnswer(const QByteArray& answerJson, const QByteArray& stateJson) {
    receiveState(stateJson);
    const QJsonObject answer = QJsonDocument::fromJson(answerJson).object();
    const QMutexLocker lock(&m_mutex);
    m_answers.insert(answer.value(QLatin1String("token")).toInt(), answer.value(QLatin1String("result")));
    m_changed.wakeAll();
}
