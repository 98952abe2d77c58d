// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QHash>
#include <QStringList>

#include "platform/HotKeys.h"

class KeyboardLayout;

// Hot keys as KDE global shortcuts (KGlobalAccel, served by KWin): each registration is an action of
// the "lattica" component, and KGlobalAccel reports its presses and releases.
class KWinGlobalShortcuts : public HotKeys {
    Q_OBJECT
public:
    KWinGlobalShortcuts(QDBusConnection bus, KeyboardLayout* layout);
    ~KWinGlobalShortcuts() override;

    Registration registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) override;
    void unregisterHotKey(RegistrationId id) override;
    bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) override;

private Q_SLOTS:
    void onPressed(const QString& component, const QString& action, qlonglong timestamp);
    void onReleased(const QString& component, const QString& action, qlonglong timestamp);

private:
    // The Qt key combination for a stored one; a failure when it has none.
    std::variant<int, Failure> qtCombination(quint32 carbonKeyCode, quint32 carbonModifiers) const;
    QStringList actionId(RegistrationId id) const;
    void listenToComponent();

    QDBusConnection m_bus;
    KeyboardLayout* m_layout;
    RegistrationId m_nextId = 1;
    QHash<QString, RegistrationId> m_byAction;
    bool m_listening = false;
};
