#pragma once

#include <QMap>

#include "platform/SettingsStore.h"

// The settings store as one JSON file. Every value is an object naming its type:
// {"bool": true}, {"integer": 3}, {"string": "text"}, {"data": "<base64>"}.
// Every change rewrites the file atomically (a new file renamed over the old one).
// A file that cannot be read is kept beside the store as "<name>.corrupt-<time>", never overwritten.
class FileSettingsStore : public SettingsStore {
public:
    explicit FileSettingsStore(QString path);

    // $XDG_CONFIG_HOME/lattica/defaults.json (~/.config when the variable is unset).
    static QString standardPath();
    const QString& path() const { return m_path; }

    std::optional<SettingValue> value(const QString& key) const override;
    void setValue(const QString& key, const SettingValue& value) override;
    void remove(const QString& key) override;
    QStringList keys() const override;

private:
    void load();
    void keepDamagedFile(const QString& reason);
    void save();

    QString m_path;
    QMap<QString, SettingValue> m_values;
};
