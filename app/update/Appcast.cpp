// SPDX-License-Identifier: MIT
#include "app/update/Appcast.h"

#include <QCoreApplication>
#include <QXmlStreamReader>

namespace {

// A run of digits or of letters; everything else only separates runs.
struct VersionPart {
    bool isNumber = false;
    QString text;  // digits without leading zeros, or letters in lower case
};

QList<VersionPart> splitVersion(const QString& version) {
    QList<VersionPart> parts;
    qsizetype i = 0;
    while (i < version.size()) {
        const QChar c = version.at(i);
        if (c.isDigit()) {
            qsizetype end = i;
            while (end < version.size() && version.at(end).isDigit()) {
                ++end;
            }
            QString digits = version.mid(i, end - i);
            while (digits.size() > 1 && digits.startsWith(QLatin1Char('0'))) {
                digits.remove(0, 1);
            }
            parts.append({true, digits});
            i = end;
        } else if (c.isLetter()) {
            qsizetype end = i;
            while (end < version.size() && version.at(end).isLetter()) {
                ++end;
            }
            parts.append({false, version.mid(i, end - i).toLower()});
            i = end;
        } else {
            ++i;
        }
    }
    return parts;
}

// Numbers of any length, without leading zeros: the longer is larger, equal lengths compare digit by digit.
int compareNumbers(const QString& a, const QString& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    return a.compare(b);
}

int sign(int value) {
    return (value > 0) - (value < 0);
}

QString attributeIn(const QXmlStreamAttributes& attributes, const QString& namespaceUri, const QString& name) {
    return attributes.value(namespaceUri, name).toString().trimmed();
}

AppcastItem readItem(QXmlStreamReader& reader) {
    const QString sparkle = QString::fromLatin1(Appcast::kSparkleNamespace);
    AppcastItem item;
    QString enclosureVersion;
    QString enclosureShortVersion;
    while (reader.readNextStartElement()) {
        const QStringView ns = reader.namespaceUri();
        const QStringView name = reader.name();
        if (ns.isEmpty() && name == u"title") {
            item.title = reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        } else if (ns.isEmpty() && name == u"link") {
            item.infoURL = QUrl(reader.readElementText().trimmed());
        } else if (ns.isEmpty() && name == u"description") {
            item.itemDescription = reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        } else if (ns.isEmpty() && name == u"pubDate") {
            const QDateTime date = QDateTime::fromString(reader.readElementText().trimmed(), Qt::RFC2822Date);
            if (date.isValid()) {
                item.publicationDate = date;
            }
        } else if (ns.isEmpty() && name == u"enclosure") {
            const QXmlStreamAttributes attributes = reader.attributes();
            item.downloadURL = QUrl(attributeIn(attributes, {}, QStringLiteral("url")));
            item.contentLength = attributeIn(attributes, {}, QStringLiteral("length")).toLongLong();
            item.contentType = attributeIn(attributes, {}, QStringLiteral("type"));
            enclosureVersion = attributeIn(attributes, sparkle, QStringLiteral("version"));
            enclosureShortVersion = attributeIn(attributes, sparkle, QStringLiteral("shortVersionString"));
            reader.skipCurrentElement();
        } else if (ns == sparkle && name == u"version") {
            item.version = reader.readElementText().trimmed();
        } else if (ns == sparkle && name == u"shortVersionString") {
            item.shortVersionString = reader.readElementText().trimmed();
        } else if (ns == sparkle && name == u"minimumSystemVersion") {
            item.minimumSystemVersion = reader.readElementText().trimmed();
        } else if (ns == sparkle && name == u"releaseNotesLink") {
            item.releaseNotesURL = QUrl(reader.readElementText().trimmed());
        } else {
            reader.skipCurrentElement();
        }
    }
    // Older feeds carry the versions on the enclosure only.
    if (item.version.isEmpty()) {
        item.version = enclosureVersion;
    }
    if (item.shortVersionString.isEmpty()) {
        item.shortVersionString = enclosureShortVersion;
    }
    return item;
}

void readChannel(QXmlStreamReader& reader, QList<AppcastItem>& items) {
    while (reader.readNextStartElement()) {
        if (reader.namespaceUri().isEmpty() && reader.name() == u"item") {
            AppcastItem item = readItem(reader);
            if (!item.version.isEmpty()) {
                items.append(item);
            }
        } else {
            reader.skipCurrentElement();
        }
    }
}

}  // namespace

namespace Appcast {

AppcastParseResult parse(const QByteArray& document) {
    AppcastParseResult result;
    QXmlStreamReader reader(document);
    if (!reader.readNextStartElement()) {
        result.error =
            reader.hasError() ? reader.errorString() : QCoreApplication::translate("Appcast", "The document is empty.");
    } else if (reader.name() != u"rss") {
        result.error = QCoreApplication::translate("Appcast", "The document is not an RSS feed.");
        return result;
    } else {
        while (reader.readNextStartElement()) {
            if (reader.name() == u"channel") {
                readChannel(reader, result.items);
            } else {
                reader.skipCurrentElement();
            }
        }
        // Read to the end so that anything malformed after the channel is noticed too.
        while (!reader.atEnd()) {
            reader.readNext();
        }
    }
    if (reader.hasError()) {
        result.items.clear();
        result.error = QStringLiteral("%1 (line %2, column %3)")
                           .arg(reader.errorString())
                           .arg(reader.lineNumber())
                           .arg(reader.columnNumber());
    }
    return result;
}

int compareVersions(const QString& a, const QString& b) {
    const QList<VersionPart> partsA = splitVersion(a);
    const QList<VersionPart> partsB = splitVersion(b);
    const VersionPart zero{true, QStringLiteral("0")};
    const qsizetype count = qMax(partsA.size(), partsB.size());
    for (qsizetype i = 0; i < count; ++i) {
        const bool hasA = i < partsA.size();
        const bool hasB = i < partsB.size();
        // A side that has run out reads as 0 against a number, and wins against letters (pre-release).
        if (!hasA && !partsB[i].isNumber) {
            return 1;
        }
        if (!hasB && !partsA[i].isNumber) {
            return -1;
        }
        const VersionPart& partA = hasA ? partsA[i] : zero;
        const VersionPart& partB = hasB ? partsB[i] : zero;
        if (partA.isNumber != partB.isNumber) {
            return partA.isNumber ? 1 : -1;
        }
        const int order = partA.isNumber ? compareNumbers(partA.text, partB.text) : partA.text.compare(partB.text);
        if (order != 0) {
            return sign(order);
        }
    }
    return 0;
}

std::optional<AppcastItem> newestApplicableItem(const QList<AppcastItem>& items, const QString& systemVersion) {
    std::optional<AppcastItem> newest;
    for (const AppcastItem& item : items) {
        if (!item.minimumSystemVersion.isEmpty() && compareVersions(systemVersion, item.minimumSystemVersion) < 0) {
            continue;
        }
        if (!newest || compareVersions(item.version, newest->version) > 0) {
            newest = item;
        }
    }
    return newest;
}

}  // namespace Appcast
