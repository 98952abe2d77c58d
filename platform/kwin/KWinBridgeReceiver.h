// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class KWinBridge;

// The D-Bus object KWin's scripts call back; it lives on the bridge's receiving thread.
class KWinBridgeReceiver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.lattica.KWinBridge")
public:
    static constexpr const char* kPath = "/lattica/kwin";
    explicit KWinBridgeReceiver(KWinBridge& bridge) : m_bridge(bridge) {}

public Q_SLOTS:
    // The watcher's state.
    Q_SCRIPTABLE void push(const QString& state);
    // A command's answer ({"token": n, "result": "..."}) and the state after it.
    Q_SCRIPTABLE void answer(const QString& answer, const QString& state);
    // One of our windows appeared in KWin ({"caption", "width", "height"}): what KWin is to do with it
    // (KWinBridge::setOwnWindowRules).
    Q_SCRIPTABLE QString ownWindowShown(const QString& window);

private:
    KWinBridge& m_bridge;
};
