// SPDX-License-Identifier: MIT
#include "platform/fake/FakeKeyboardLayout.h"

void FakeKeyboardLayout::useUSLayout() {
    // Carbon key code -> the character the key prints on a US layout.
    static const QHash<int, QString> us = {
        {0, QStringLiteral("a")},   {11, QStringLiteral("b")}, {8, QStringLiteral("c")},  {2, QStringLiteral("d")},
        {14, QStringLiteral("e")},  {3, QStringLiteral("f")},  {5, QStringLiteral("g")},  {4, QStringLiteral("h")},
        {34, QStringLiteral("i")},  {38, QStringLiteral("j")}, {40, QStringLiteral("k")}, {37, QStringLiteral("l")},
        {46, QStringLiteral("m")},  {45, QStringLiteral("n")}, {31, QStringLiteral("o")}, {35, QStringLiteral("p")},
        {12, QStringLiteral("q")},  {15, QStringLiteral("r")}, {1, QStringLiteral("s")},  {17, QStringLiteral("t")},
        {32, QStringLiteral("u")},  {9, QStringLiteral("v")},  {13, QStringLiteral("w")}, {7, QStringLiteral("x")},
        {16, QStringLiteral("y")},  {6, QStringLiteral("z")},  {29, QStringLiteral("0")}, {18, QStringLiteral("1")},
        {19, QStringLiteral("2")},  {20, QStringLiteral("3")}, {21, QStringLiteral("4")}, {23, QStringLiteral("5")},
        {22, QStringLiteral("6")},  {26, QStringLiteral("7")}, {28, QStringLiteral("8")}, {25, QStringLiteral("9")},
        {42, QStringLiteral("\\")}, {50, QStringLiteral("`")}, {43, QStringLiteral(",")}, {24, QStringLiteral("=")},
        {27, QStringLiteral("-")},  {47, QStringLiteral(".")}, {39, QStringLiteral("'")}, {41, QStringLiteral(";")},
        {44, QStringLiteral("/")},  {33, QStringLiteral("[")}, {30, QStringLiteral("]")}, {10, QStringLiteral("<")},
    };
    characters = us;
}

void FakeKeyboardLayout::changeCharacters(const QHash<int, QString>& newCharacters) {
    characters = newCharacters;
    Q_EMIT layoutChanged();
}
