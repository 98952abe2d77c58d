// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/update/Appcast.h"

namespace {

struct VersionPair {
    const char* older;
    const char* newer;
};

void PrintTo(const VersionPair& pair, std::ostream* os) {
    *os << '"' << pair.older << "\" < \"" << pair.newer << '"';
}

class VersionOrderTest : public ::testing::TestWithParam<VersionPair> {};

TEST_P(VersionOrderTest, OlderComparesBelowNewerBothWays) {
    const QString older = QString::fromLatin1(GetParam().older);
    const QString newer = QString::fromLatin1(GetParam().newer);
    EXPECT_LT(Appcast::compareVersions(older, newer), 0) << GetParam().older << " vs " << GetParam().newer;
    EXPECT_GT(Appcast::compareVersions(newer, older), 0) << GetParam().newer << " vs " << GetParam().older;
}

INSTANTIATE_TEST_SUITE_P(Pairs, VersionOrderTest,
                         ::testing::Values(VersionPair{"1.9", "1.10"}, VersionPair{"1.0", "1.0.1"},
                                           VersionPair{"1.2.3", "1.2.4"}, VersionPair{"1.2.9", "1.3"},
                                           VersionPair{"2", "10"}, VersionPair{"99", "100"},
                                           VersionPair{"0.9.9", "1.0"}, VersionPair{"1.0b1", "1.0"},
                                           VersionPair{"1.0b1", "1.0b2"}, VersionPair{"1.0a5", "1.0b1"},
                                           VersionPair{"1.0b9", "1.0rc1"}, VersionPair{"1.0rc1", "1.0.1"},
                                           VersionPair{"1.0", "1.0.0.1"}, VersionPair{"", "0.1"},
                                           VersionPair{"123456789012345678901", "123456789012345678902"},
                                           VersionPair{"9", "123456789012345678901"}, VersionPair{"41", "42"}));

struct EqualPair {
    const char* a;
    const char* b;
};

void PrintTo(const EqualPair& pair, std::ostream* os) {
    *os << '"' << pair.a << "\" = \"" << pair.b << '"';
}

class VersionEqualityTest : public ::testing::TestWithParam<EqualPair> {};

TEST_P(VersionEqualityTest, ComparesEqualBothWays) {
    const QString a = QString::fromLatin1(GetParam().a);
    const QString b = QString::fromLatin1(GetParam().b);
    EXPECT_EQ(Appcast::compareVersions(a, b), 0) << GetParam().a << " vs " << GetParam().b;
    EXPECT_EQ(Appcast::compareVersions(b, a), 0) << GetParam().b << " vs " << GetParam().a;
}

INSTANTIATE_TEST_SUITE_P(Pairs, VersionEqualityTest,
                         ::testing::Values(EqualPair{"1.0", "1.0"}, EqualPair{"1.0", "1.0.0"}, EqualPair{"1.01", "1.1"},
                                           EqualPair{"1.0B1", "1.0b1"}, EqualPair{" 1.2 ", "1.2"},
                                           EqualPair{"1-2", "1.2"}, EqualPair{"", ""}));

}  // namespace
