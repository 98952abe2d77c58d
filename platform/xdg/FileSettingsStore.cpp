#include "platform/xdg/FileSettingsStore.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <cstdio>

#include "platform/xdg/XdgBaseDirectories.h"

namespace {

std::optional<SettingValue> decodeValue(const QJsonValue& stored) {
    if (!stored.isObject() || stored.toObject().size() != 1) {
        return std::nullopt;
    }
    const QJsonObject object = stored.toObject();
    const QString type = object.begin().key();
    const QJsonValue value = object.begin().value();
    if (type == QLatin1String("bool") && value.isBool()) {
        return SettingValue(value.toBool());
    }
    if (type == QLatin1String("integer") && value.isDouble()) {
        // Only a whole number a 64-bit integer holds exactly is one; toInteger() gives its fallback for any
        // other, so two different fallbacks tell them apart.
        const qint64 number = value.toInteger(0);
        if (number == value.toInteger(1)) {
            return SettingValue(number);
        }
    }
    if (type == QLatin1String("string") && value.isString()) {
        return SettingValue(value.toString());
    }
    if (type == QLatin1String("data") && value.isString()) {
        const auto decoded =
            QByteArray::fromBase64Encoding(value.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        if (decoded) {
            return SettingValue(*decoded);
        }
    }
    return std::nullopt;
}

QJsonValue encodeValue(const SettingValue& value) {
    if (const bool* flag = std::get_if<bool>(&value)) {
        return QJsonObject{{QStringLiteral("bool"), *flag}};
    }
    if (const qint64* number = std::get_if<qint64>(&value)) {
        return QJsonObject{{QStringLiteral("integer"), *number}};
    }
    if (const QByteArray* data = std::get_if<QByteArray>(&value)) {
        return QJsonObject{{QStringLiteral("data"), QString::fromLatin1(data->toBase64())}};
    }
    return QJsonObject{{QStringLiteral("string"), std::get<QString>(value)}};
}

}  // namespace

FileSettingsStore::FileSettingsStore(QString path) : m_path(std::move(path)) {
    load();
}

QString FileSettingsStore::standardPath() {
    const QString base = XdgBaseDirectories::configHome();
    return base.isEmpty() ? QString() : base + QStringLiteral("/lattica/defaults.json");
}

void FileSettingsStore::load() {
    if (m_path.isEmpty()) {
        std::fputs(
            "Lattica: no folder for the preferences (neither HOME nor XDG_CONFIG_HOME names one); "
            "changes are kept until the program ends\n",
            stderr);
        return;
    }
    QFile file(m_path);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        keepDamagedFile(file.errorString());
        return;
    }
    const Decoded decoded = decode(file.readAll());
    file.close();
    if (!decoded.error.isEmpty()) {
        keepDamagedFile(decoded.error);
        return;
    }
    m_values = decoded.values;
    if (decoded.partlyDamaged) {
        // Keep a copy of what could not be read before the next write drops it.
        const QString copy = m_path + QStringLiteral(".corrupt-") +
                             QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
        QFile::copy(m_path, copy);
        std::fprintf(stderr, "Lattica: some preferences in %s could not be read; a copy is kept at %s\n",
                     qPrintable(m_path), qPrintable(copy));
    }
}

FileSettingsStore::Decoded FileSettingsStore::decode(const QByteArray& contents) {
    Decoded decoded;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(contents, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        decoded.error =
            error.error != QJsonParseError::NoError ? error.errorString() : QStringLiteral("not a JSON object");
        return decoded;
    }
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const std::optional<SettingValue> value = decodeValue(it.value());
        if (value) {
            decoded.values.insert(it.key(), *value);
        } else {
            decoded.partlyDamaged = true;
        }
    }
    return decoded;
}

QByteArray FileSettingsStore::encode(const QMap<QString, SettingValue>& values) {
    QJsonObject object;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        object.insert(it.key(), encodeValue(it.value()));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

void FileSettingsStore::keepDamagedFile(const QString& reason) {
    const QString kept =
        m_path + QStringLiteral(".corrupt-") + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QFile::remove(kept);
    const bool moved = QFile::rename(m_path, kept);
    std::fprintf(
        stderr, "Lattica: the preferences file %s could not be read (%s); %s\n", qPrintable(m_path), qPrintable(reason),
        moved ? qPrintable(QStringLiteral("it is kept at ") + kept) : "it is left in place and will be replaced");
}

void FileSettingsStore::save() {
    if (m_path.isEmpty()) {
        return;
    }
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(encode(m_values)) < 0 || !file.commit()) {
        std::fprintf(stderr, "Lattica: cannot write the preferences to %s: %s\n", qPrintable(m_path),
                     qPrintable(file.errorString()));
    }
}

std::optional<SettingValue> FileSettingsStore::value(const QString& key) const {
    const auto found = m_values.constFind(key);
    return found != m_values.constEnd() ? std::optional<SettingValue>(*found) : std::nullopt;
}

void FileSettingsStore::setValue(const QString& key, const SettingValue& value) {
    const auto existing = m_values.constFind(key);
    if (existing != m_values.constEnd() && *existing == value) {
        return;  // nothing changes, so the file stays as it is
    }
    m_values.insert(key, value);
    save();
}

void FileSettingsStore::remove(const QString& key) {
    if (m_values.remove(key) > 0) {
        save();
    }
}

QStringList FileSettingsStore::keys() const {
    return m_values.keys();
}
