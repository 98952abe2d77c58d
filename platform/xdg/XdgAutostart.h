#pragma once

#include "platform/Autostart.h"

// Launch at login through an XDG autostart entry. Enabled means the entry exists and is not hidden.
class XdgAutostart : public Autostart {
public:
    explicit XdgAutostart(QString entryPath);

    // autostart/lattica.desktop in the configuration folder of the XDG base-directory rules; empty when
    // there is none.
    static QString standardPath();

    AutostartStatus status() override;
    bool enable(QString* error) override;
    bool disable(QString* error) override;

private:
    QString m_entryPath;
};
