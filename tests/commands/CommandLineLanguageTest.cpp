// SPDX-License-Identifier: MIT
// The command line speaks the desktop's language, chosen the way every program on the desktop chooses it.
#include <gtest/gtest.h>

#include <QProcessEnvironment>

#include "tests/support/FinishedProcess.h"

namespace {

// Runs the program with the language variables given and none of the caller's.
FinishedProcess lattica(const QStringList& arguments, const QList<std::pair<QString, QString>>& language) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        environment.remove(QString::fromLatin1(name));
    }
    for (const auto& [name, value] : language) {
        environment.insert(name, value);
    }
    return runToEnd(QStringLiteral(LATTICA_BINARY), arguments, environment, 30000);
}

const QString kGermanUtf8 = QStringLiteral("de_DE.UTF-8");

TEST(CommandLineLanguage, LangGermanGivesGermanHelp) {
    const FinishedProcess help = lattica({QStringLiteral("--help")}, {{QStringLiteral("LANG"), kGermanUtf8}});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.contains(QStringLiteral("Befehle:"))) << qPrintable(help.output);
    EXPECT_TRUE(help.output.contains(QStringLiteral("Die Bildschirme auflisten."))) << qPrintable(help.output);
    EXPECT_TRUE(help.output.contains(QStringLiteral("move-focused --to TARGET"))) << "the command words stay";
}

TEST(CommandLineLanguage, LanguageListPicksTheFirstLanguageWithATranslation) {
    const FinishedProcess bad =
        lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LANGUAGE"), QStringLiteral("is:de")},
                                                 {QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8")}});
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(bad.errors.contains(QStringLiteral("„frobnicate“ ist kein Befehl."))) << qPrintable(bad.errors);
}

TEST(CommandLineLanguage, LcMessagesWinsOverLangAndLcAllOverBoth) {
    const FinishedProcess messages =
        lattica({QStringLiteral("frobnicate")},
                {{QStringLiteral("LC_MESSAGES"), kGermanUtf8}, {QStringLiteral("LANG"), QStringLiteral("C")}});
    EXPECT_TRUE(messages.errors.contains(QStringLiteral("ist kein Befehl"))) << qPrintable(messages.errors);
    const FinishedProcess all =
        lattica({QStringLiteral("frobnicate")},
                {{QStringLiteral("LC_ALL"), QStringLiteral("C")}, {QStringLiteral("LC_MESSAGES"), kGermanUtf8}});
    EXPECT_TRUE(all.errors.contains(QStringLiteral("'frobnicate' is not a command."))) << qPrintable(all.errors);
}

TEST(CommandLineLanguage, EnglishAndCLocalesKeepTheEnglishTexts) {
    for (const QString& locale : {QStringLiteral("C"), QStringLiteral("en_GB.UTF-8")}) {
        const FinishedProcess bad = lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LANG"), locale}});
        EXPECT_EQ(bad.status, 2);
        EXPECT_EQ(bad.errors, QStringLiteral("lattica: 'frobnicate' is not a command.\nTry 'lattica --help'.\n"))
            << qPrintable(locale);
    }
}

}  // namespace
