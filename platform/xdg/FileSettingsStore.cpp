// SPDX-License-Identifier: MIT
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

const char* const kNoFolder = "there is no folder for the preferences (neither HOME nor XDG_CONFIG_HOME names one)";

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
        m_writeFailure = QString::fromLatin1(kNoFolder);
        std::fprintf(stderr, "Lattica: %s; changes are kept until the program ends\n", kNoFolder);
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
    QString failure;
    if (m_path.isEmpty()) {
        failure = QString::fromLatin1(kNoFolder);
    } else {
        QDir().mkpath(QFileInfo(m_path).absolutePath());
        // QSaveFile writes a new file and renames it over the old one only when every byte is written,
        // so a failure here never leaves a shortened or empty preferences file.
        QSaveFile file(m_path);
        const QByteArray contents = encode(m_values);
        // Unbuffered, so that write() reports what reached the file: a buffered write succeeds in full and a
        // later flush that stops part-way is not reported at all.
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            failure = file.errorString();
        } else if (const qint64 written = file.write(contents); written != contents.size()) {
            // A full disk may take part of the bytes and report no error: a short file must never
            // replace the whole one.
            failure = written < 0 || file.error() != QFileDevice::NoError
                          ? file.errorString()
                          : QStringLiteral("only %1 of %2 bytes could be written").arg(written).arg(contents.size());
            file.cancelWriting();
        } else if (!file.commit()) {
            failure = file.errorString();
        }
        if (!failure.isEmpty()) {
            failure = QStringLiteral("cannot write %1: %2").arg(m_path, failure);
        }
    }
    // One line when writing starts to fail and one when it works again, not one per change.
    if (!failure.isEmpty() && m_writeFailure.isEmpty()) {
        std::fprintf(stderr, "Lattica: the preferences are not saved: %s\n", qPrintable(failure));
    } else if (failure.isEmpty() && !m_writeFailure.isEmpty()) {
        std::fprintf(stderr, "Lattica: the preferences are saved again in %s\n", qPrintable(m_path));
    }
    m_writeFailure = failure;
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
