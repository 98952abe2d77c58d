#pragma once

#include <QMap>

#include "platform/UserDefaults.h"

// An in-memory key/value store for tests.
class FakeUserDefaults : public UserDefaults {
public:
    QVariant object(const QString& key) const override { return m_values.value(key); }
    void setObject(const QString& key, const QVariant& value) override { m_values.insert(key, value); }
    void removeObject(const QString& key) override { m_values.remove(key); }
    QStringList keys() const override { return m_values.keys(); }

    void clear() { m_values.clear(); }

private:
    QMap<QString, QVariant> m_values;
};
