// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Autostart.h"

// Launch at login through an XDG autostart entry. Enabled means the entry exists and is not hidden.
// Earlier versions wrote the entry under another file name; such an entry still counts, and enabling or
// disabling removes it, so that the program never starts twice at login.
class XdgAutostart : public Autostart {
public:
    explicit XdgAutostart(QString entryPath, QString legacyEntryPath = {});

    // autostart/app.lattica.Lattica.desktop in the configuration folder of the XDG base-directory rules;
    // empty when there is none.
    static QString standardPath();
    // autostart/lattica.desktop, where earlier versions wrote the entry; empty when there is no folder.
    static QString legacyStandardPath();

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
    // The entry in use: ours when it exists, else the one an earlier version wrote.
    QString currentEntryPath() const;

    QString m_entryPath;
    QString m_legacyEntryPath;
};
