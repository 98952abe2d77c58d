#pragma once

#include <QMap>

#include "platform/UserDefaults.h"

// The user-defaults store as one JSON file. Every value is an object naming its type:
// {"bool": true}, {"integer": 3}, {"string": "text"}, {"data": "<base64>"}.
// Every change rewrites the file atomically (a new file renamed over the old one).
// A file that cannot be read is kept beside the store as "<name>.corrupt-<time>", never overwritten.
class FileUserDefaults : public UserDefaults {
public:
    explicit FileUserDefaults(QString path);

    // $XDG_CONFIG_HOME/lattica/defaults.json (~/.config when the variable is unset).
    static QString standardPath();
    const QString& path() const { return m_path; }

    QVariant object(const QString& key) const override;
    void setObject(const QString& key, const QVariant& value) override;
    void removeObject(const QString& key) override;
    QStringList keys() const override;

private:
    void load();
    void keepDamagedFile(const QString& reason);
    void save();

    QString m_path;
    QMap<QString, QVariant> m_values;
};
