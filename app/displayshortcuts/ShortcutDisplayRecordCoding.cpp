// SPDX-License-Identifier: MIT
#include "app/displayshortcuts/ShortcutDisplayRecordCoding.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <cmath>
#include <cstdio>
#include <limits>

#include "platform/SettingsStore.h"

namespace {

// A JSON string literal, escaped the way the JSON writer does it.
QByteArray jsonString(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

std::optional<int> integerValue(const QJsonValue& value) {
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double number = value.toDouble();
    if (std::trunc(number) != number || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

}  // namespace

QByteArray ShortcutDisplayRecordCoding::encode(const QList<ShortcutDisplayRecord>& records) {
    // Written by hand: QJsonObject would sort the keys, and the stored order is id, name, index.
    QByteArray json = "[";
    for (qsizetype i = 0; i < records.size(); ++i) {
        const ShortcutDisplayRecord& record = records.at(i);
        if (i > 0) {
            json += ',';
        }
        json += "{\"id\":" + jsonString(record.id) + ",\"lastKnownName\":" + jsonString(record.lastKnownName);
        if (record.lastKnownIndex) {
            json += ",\"lastKnownIndex\":" + QByteArray::number(*record.lastKnownIndex);
        }
        json += '}';
    }
    json += ']';
    return json;
}

std::optional<QList<ShortcutDisplayRecord>> ShortcutDisplayRecordCoding::decode(const QByteArray& data) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        return std::nullopt;
    }
    QList<ShortcutDisplayRecord> records;
    QSet<QString> identifiers;
    for (const QJsonValue& element : document.array()) {
        if (!element.isObject()) {
            return std::nullopt;
        }
        const QJsonObject object = element.toObject();
        const QJsonValue id = object.value(QLatin1String("id"));
        const QJsonValue name = object.value(QLatin1String("lastKnownName"));
        const QJsonValue index = object.value(QLatin1String("lastKnownIndex"));
        if (!id.isString() || !name.isString()) {
            return std::nullopt;
        }
        ShortcutDisplayRecord record;
        record.id = id.toString();
        record.lastKnownName = name.toString();
        if (!index.isUndefined() && !index.isNull()) {
            record.lastKnownIndex = integerValue(index);
            if (!record.lastKnownIndex) {
                return std::nullopt;
            }
        }
        // Records are keyed by identifier; a document that repeats one cannot be ours.
        if (identifiers.contains(record.id)) {
            return std::nullopt;
        }
        identifiers.insert(record.id);
        records.append(record);
    }
    return records;
}

QList<ShortcutDisplayRecord> ShortcutDisplayRecordCoding::load(SettingsStore& store, const QString& key) {
    const std::optional<SettingValue> stored = store.value(key);
    if (!stored) {
        return {};
    }
    if (const QByteArray* data = std::get_if<QByteArray>(&*stored)) {
        if (std::optional<QList<ShortcutDisplayRecord>> records = decode(*data)) {
            return *records;
        }
    }
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString keptKey = key + QStringLiteral(".corrupt-") + stamp;
    for (int attempt = 2; store.contains(keptKey); ++attempt) {
        keptKey = key + QStringLiteral(".corrupt-") + stamp + QLatin1Char('-') + QString::number(attempt);
    }
    store.setValue(keptKey, *stored);
    std::fprintf(stderr,
                 "Lattica: the remembered displays could not be read and start again from the connected ones; "
                 "the old value is kept in the preferences under \"%s\"\n",
                 qPrintable(keptKey));
    return {};
}
