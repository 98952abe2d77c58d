// SPDX-License-Identifier: MIT
// A desktop file: any bytes parse without a crash; every value read is one trimmed line, and a file
// with carriage returns reads as the same file without them.
#include <QByteArray>

#include "platform/x11/X11WindowDesktopEntries.h"
#include "tests/fuzz/FuzzCheck.h"

namespace {
bool isOneTrimmedLine(const QString& value) {
    return value == value.trimmed() && !value.contains(QLatin1Char('\n'));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using ParsedFile = X11WindowDesktopEntries::ParsedFile;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const ParsedFile parsed = X11WindowDesktopEntries::parseFile(bytes, QStringLiteral("de_DE"));
    FUZZ_CHECK(isOneTrimmedLine(parsed.name));
    FUZZ_CHECK(isOneTrimmedLine(parsed.icon));
    FUZZ_CHECK(isOneTrimmedLine(parsed.wmClass));
    QByteArray withoutReturns = bytes;
    withoutReturns.replace('\r', QByteArray());
    const ParsedFile plain = X11WindowDesktopEntries::parseFile(withoutReturns, QStringLiteral("de_DE"));
    FUZZ_CHECK(plain.name == parsed.name && plain.icon == parsed.icon && plain.wmClass == parsed.wmClass &&
               plain.application == parsed.application);
    return 0;
}
