#pragma once

#include "platform/LoginItems.h"

// Launch at login through an XDG autostart entry. Enabled means the entry exists and is not hidden.
class XdgLoginItems : public LoginItems {
public:
    explicit XdgLoginItems(QString entryPath);

    // $XDG_CONFIG_HOME/autostart/lattica.desktop (~/.config when the variable is unset).
    static QString standardPath();

    LoginItemStatus status() override;
    bool registerMainApp(QString* error) override;
    bool unregisterMainApp(QString* error) override;

private:
    QString m_entryPath;
};
