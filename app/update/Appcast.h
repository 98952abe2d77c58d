// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>
#include <optional>

// One release offered by an update feed.
struct AppcastItem {
    QString title;
    // The machine version compared with the running program's build ("sparkle:version").
    QString version;
    // The version shown to people ("sparkle:shortVersionString"); falls back to version.
    QString shortVersionString;
    QString minimumSystemVersion;
    QUrl downloadURL;  // the enclosure's url
    qint64 contentLength = 0;
    QString contentType;
    QUrl infoURL;  // the item's link
    QUrl releaseNotesURL;
    QString itemDescription;  // release notes inline, usually HTML
    std::optional<QDateTime> publicationDate;

    QString displayVersion() const { return shortVersionString.isEmpty() ? version : shortVersionString; }
    bool operator==(const AppcastItem&) const = default;
};

// The parsed feed, or why it could not be read.
struct AppcastParseResult {
    QList<AppcastItem> items;
    QString error;  // empty on success

    bool ok() const { return error.isEmpty(); }
};

// Reading an RSS 2.0 update feed in the Sparkle format, and choosing a release from it.
namespace Appcast {

inline constexpr const char* kSparkleNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";

// Items without any version are left out; malformed XML or a document that is not RSS is an error.
AppcastParseResult parse(const QByteArray& document);

// Orders two version strings: negative when a is older, 0 when equal, positive when a is newer.
// Digit runs compare as numbers (1.10 is newer than 1.9), a missing number counts as 0 (1.0 equals
// 1.0.0, 1.0.1 is newer than 1.0), letter runs compare case-insensitively, and a letter run where
// the other side has a number or nothing marks a pre-release (1.0b1 is older than 1.0 and 1.0.1).
int compareVersions(const QString& a, const QString& b);

// The newest item whose minimum system version the given system meets; nothing when none does.
std::optional<AppcastItem> newestApplicableItem(const QList<AppcastItem>& items, const QString& systemVersion);

}  // namespace Appcast
