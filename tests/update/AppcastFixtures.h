// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Builds Sparkle-format feeds for tests.
namespace AppcastFixtures {

struct Release {
    QString version;
    QString shortVersion;
    QString minimumSystemVersion;
};

inline QByteArray item(const Release& release) {
    QString xml = QStringLiteral("<item><title>Version %1</title>").arg(release.shortVersion);
    xml += QStringLiteral("<sparkle:version>%1</sparkle:version>").arg(release.version);
    if (!release.shortVersion.isEmpty()) {
        xml += QStringLiteral("<sparkle:shortVersionString>%1</sparkle:shortVersionString>").arg(release.shortVersion);
    }
    if (!release.minimumSystemVersion.isEmpty()) {
        xml += QStringLiteral("<sparkle:minimumSystemVersion>%1</sparkle:minimumSystemVersion>")
                   .arg(release.minimumSystemVersion);
    }
    xml += QStringLiteral("<description><![CDATA[<p>Notes for %1</p>]]></description>").arg(release.version);
    xml += QStringLiteral("<pubDate>Sat, 07 Nov 2026 10:00:00 +0000</pubDate>");
    xml += QStringLiteral(
               "<enclosure url=\"https://downloads.example.test/lattica-%1.tar.gz\" length=\"1234\" "
               "type=\"application/octet-stream\"/>")
               .arg(release.version);
    xml += QStringLiteral("</item>");
    return xml.toUtf8();
}

inline QByteArray feed(const QList<Release>& releases) {
    QByteArray xml =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
        "<channel><title>Lattica</title>";
    for (const Release& release : releases) {
        xml += item(release);
    }
    xml += "</channel></rss>";
    return xml;
}

}  // namespace AppcastFixtures
