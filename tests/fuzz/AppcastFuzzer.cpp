// SPDX-License-Identifier: MIT
// An update feed: any bytes parse without a crash in bounded time; every item has a version, the
// version order is consistent on the feed's versions, and the release chosen is one of the items.
#include <QByteArray>

#include "app/update/Appcast.h"
#include "tests/fuzz/FuzzCheck.h"

namespace {
int sign(int value) {
    return (value > 0) - (value < 0);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const AppcastParseResult result = Appcast::parse(bytes);
    if (!result.ok()) {
        FUZZ_CHECK(result.items.isEmpty());
        return 0;
    }
    for (const AppcastItem& item : result.items) {
        FUZZ_CHECK(!item.version.isEmpty());
        FUZZ_CHECK(!item.displayVersion().isEmpty());
        FUZZ_CHECK(Appcast::compareVersions(item.version, item.version) == 0);
    }
    // Only a few pairs, so that a feed of many items stays quick.
    for (qsizetype i = 0; i + 1 < result.items.size() && i < 8; ++i) {
        const QString& a = result.items.at(i).version;
        const QString& b = result.items.at(i + 1).version;
        FUZZ_CHECK(sign(Appcast::compareVersions(a, b)) == -sign(Appcast::compareVersions(b, a)));
    }
    const std::optional<AppcastItem> newest = Appcast::newestApplicableItem(result.items, QStringLiteral("6.1.0"));
    if (newest) {
        FUZZ_CHECK(result.items.contains(*newest));
    }
    return 0;
}
