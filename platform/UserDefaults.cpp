#include "platform/UserDefaults.h"

bool UserDefaults::boolForKey(const QString& key) const {
    const QVariant value = object(key);
    switch (value.typeId()) {
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            return value.toLongLong() != 0;
        case QMetaType::Double:
            return value.toDouble() != 0.0;
        case QMetaType::QString: {
            const QString text = value.toString().trimmed().toLower();
            return text == QLatin1String("yes") || text == QLatin1String("true") || text.toLongLong() != 0;
        }
        default:
            return false;
    }
}

qint64 UserDefaults::integerForKey(const QString& key) const {
    const QVariant value = object(key);
    switch (value.typeId()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::ULongLong:
        case QMetaType::Double:
        case QMetaType::QString:
            return value.toLongLong();
        default:
            return 0;
    }
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const {
    const QVariant value = object(key);
    if (value.typeId() != QMetaType::QString) {
        return std::nullopt;
    }
    return value.toString();
}

std::optional<QByteArray> UserDefaults::dataForKey(const QString& key) const {
    const QVariant value = object(key);
    if (value.typeId() != QMetaType::QByteArray) {
        return std::nullopt;
    }
    return value.toByteArray();
}
