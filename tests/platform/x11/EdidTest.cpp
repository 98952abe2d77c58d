// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/x11/Edid.h"

namespace {

// Writes a display descriptor of 13 text bytes, ended by a line feed and padded when shorter.
void writeDescriptor(QByteArray& block, int offset, unsigned char tag, const QByteArray& value) {
    block[offset + 3] = static_cast<char>(tag);
    QByteArray text = value.left(13);
    if (text.size() < 13) {
        text += '\n';
    }
    while (text.size() < 13) {
        text += ' ';
    }
    for (int i = 0; i < 13; ++i) {
        block[offset + 5 + i] = text[i];
    }
}

// Builds a base block with the given identity and optional monitor-name and serial-number descriptors.
QByteArray makeEdid(quint16 manufacturer, quint16 product, quint32 serial, const QByteArray& name = {},
                    const QByteArray& serialText = {}) {
    QByteArray block(128, '\0');
    const unsigned char header[8] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    for (int i = 0; i < 8; ++i) {
        block[i] = static_cast<char>(header[i]);
    }
    block[8] = static_cast<char>(manufacturer >> 8);
    block[9] = static_cast<char>(manufacturer & 0xFF);
    block[10] = static_cast<char>(product & 0xFF);
    block[11] = static_cast<char>(product >> 8);
    for (int i = 0; i < 4; ++i) {
        block[12 + i] = static_cast<char>((serial >> (8 * i)) & 0xFF);
    }
    // First descriptor: a detailed timing placeholder (non-zero pixel clock), then the serial, then the name.
    block[54] = 0x01;
    if (!serialText.isEmpty()) {
        writeDescriptor(block, 72, 0xFF, serialText);
    }
    if (!name.isEmpty()) {
        writeDescriptor(block, 90, 0xFC, name);
    }
    int sum = 0;
    for (int i = 0; i < 127; ++i) {
        sum += static_cast<unsigned char>(block[i]);
    }
    block[127] = static_cast<char>((256 - sum % 256) % 256);
    return block;
}

TEST(EdidTest, ValidBlockGivesIdentityAndName) {
    // "DEL" = 00100 00101 01100 = 0x10AC
    const auto edid = parseEdid(makeEdid(0x10AC, 0xA0C4, 0x12345678, "DELL U2720Q"));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->vendor, 0x10ACu);
    EXPECT_EQ(edid->model, 0xA0C4u);
    EXPECT_EQ(edid->serial, 0x12345678u);
    EXPECT_EQ(edid->monitorName, QStringLiteral("DELL U2720Q"));
}

TEST(EdidTest, BlockWithoutSerialOrNameReadsZeroAndEmpty) {
    const auto edid = parseEdid(makeEdid(0x4C2D, 0x0F32, 0));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->serial, 0u);
    EXPECT_TRUE(edid->monitorName.isEmpty());
    EXPECT_TRUE(edid->serialText.isEmpty());
}

TEST(EdidTest, SerialNumberDescriptorIsRead) {
    const auto edid = parseEdid(makeEdid(0x10AC, 0xA0C4, 0x01010101, "DELL U2720Q", "CN0ABC123"));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->serial, 0x01010101u);
    EXPECT_EQ(edid->serialText, QStringLiteral("CN0ABC123"));
    EXPECT_EQ(edid->monitorName, QStringLiteral("DELL U2720Q"));
}

TEST(EdidTest, SerialNumberDescriptorOfThirteenCharactersIsReadWhole) {
    const auto edid = parseEdid(makeEdid(0x10AC, 0xA0C4, 0, {}, "ABCDEFGHIJKLM"));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->serialText, QStringLiteral("ABCDEFGHIJKLM"));
    EXPECT_TRUE(edid->monitorName.isEmpty());
}

TEST(EdidTest, EqualNumericSerialsWithDifferentSerialDescriptorsDiffer) {
    const auto first = parseEdid(makeEdid(0x10AC, 0xA0C4, 0x01010101, "DELL", "SERIAL-A"));
    const auto second = parseEdid(makeEdid(0x10AC, 0xA0C4, 0x01010101, "DELL", "SERIAL-B"));
    ASSERT_TRUE(first.has_value());
    ASSERT_TRUE(second.has_value());
    EXPECT_NE(*first, *second);
}

TEST(EdidTest, ThirteenCharacterNameHasNoTerminator) {
    const auto edid = parseEdid(makeEdid(1, 2, 3, "ABCDEFGHIJKLM"));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->monitorName, QStringLiteral("ABCDEFGHIJKLM"));
}

TEST(EdidTest, ExtensionBlocksAfterTheBaseBlockAreAccepted) {
    QByteArray data = makeEdid(1, 2, 3, "X");
    data += QByteArray(128, '\x02');
    EXPECT_TRUE(parseEdid(data).has_value());
}

TEST(EdidTest, BadHeaderIsRejected) {
    QByteArray data = makeEdid(1, 2, 3);
    data[1] = 0x00;
    EXPECT_FALSE(parseEdid(data).has_value());
}

TEST(EdidTest, TruncatedBlockIsRejected) {
    EXPECT_FALSE(parseEdid(makeEdid(1, 2, 3).left(127)).has_value());
    EXPECT_FALSE(parseEdid(QByteArray()).has_value());
}

TEST(EdidTest, BadChecksumIsRejected) {
    QByteArray data = makeEdid(1, 2, 3);
    data[127] = static_cast<char>(data[127] + 1);
    EXPECT_FALSE(parseEdid(data).has_value());
}

}  // namespace
