// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>

#include "platform/SettingsStore.h"

// The settings store as one JSON file. Every value is an object naming its type:
// {"bool": true}, {"integer": 3}, {"string": "text"}, {"data": "<base64>"}.
// Every change rewrites the file atomically (a new file renamed over the old one).
// A file that cannot be read is kept beside the store as "<name>.corrupt-<time>", never overwritten.
// A write that fails (read-only folder, full disk) leaves the file as it was and the values in memory;
// the next change writes them all again.
class FileSettingsStore : public SettingsStore {
public:
    // An empty path keeps the values in memory only.
    explicit FileSettingsStore(QString path);

    // lattica/defaults.json in the configuration folder of the XDG base-directory rules; empty when
    // there is none (no usable HOME nor XDG_CONFIG_HOME).
    static QString standardPath();
    const QString& path() const { return m_path; }

    // What the bytes of a preferences file hold.
    struct Decoded {
        QMap<QString, SettingValue> values;  // every value that could be read
        QString error;                       // why nothing could be read; empty when the file is an object
        bool partlyDamaged = false;          // some values could not be read and are left out
    };
    static Decoded decode(const QByteArray& contents);
    // The file's bytes for the values, which decode() reads back as the same values.
    static QByteArray encode(const QMap<QString, SettingValue>& values);

    std::optional<SettingValue> value(const QString& key) const override;
    void setValue(const QString& key, const SettingValue& value) override;
    void remove(const QString& key) override;
    QStringList keys() const override;
    QString writeFailure() const override { return m_writeFailure; }

private:
    void load();
    void keepDamagedFile(const QString& reason);
    void save();

    QString m_path;
    QMap<QString, SettingValue> m_values;
    QString m_writeFailure;
};
