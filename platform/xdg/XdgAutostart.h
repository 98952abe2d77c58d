#pragma once

#include "platform/Autostart.h"

// Launch at login through an XDG autostart entry. Enabled means the entry exists and is not hidden.
class XdgAutostart : public Autostart {
public:
    explicit XdgAutostart(QString entryPath);

    // autostart/lattica.desktop in the configuration folder of the XDG base-directory rules; empty when
    // there is none.
    static QString standardPath();

    // The Exec value that starts the given binary: the bare name "lattica" when that name, looked up
    // in the given PATH, finds this very binary (so that an updated installation keeps starting);
    // else the binary's absolute path, quoted as desktop entries require.
    static QString execCommand(const QString& runningBinary, const QString& searchPath);

    // The program an Exec value starts, with the entry's escaping and quoting undone.
    static QString execProgram(const QString& execValue);

    AutostartStatus status() override;
    bool enable(QString* error) override;
    bool disable(QString* error) override;
    // What the existing entry starts; without one, what enabling would write.
    QString program() override;

private:
    QString m_entryPath;
};
