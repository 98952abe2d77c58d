// SPDX-License-Identifier: MIT
// The command line speaks the desktop's language, chosen the way every program on the desktop chooses it.
#include <gtest/gtest.h>

#include <QProcess>

namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

// Runs the program with the language variables given and none of the caller's.
Outcome lattica(const QStringList& arguments, const QList<std::pair<QString, QString>>& language) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        environment.remove(QString::fromLatin1(name));
    }
    for (const auto& [name, value] : language) {
        environment.insert(name, value);
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(LATTICA_BINARY), arguments);
    EXPECT_TRUE(process.waitForFinished(30000));
    Outcome outcome;
    outcome.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    outcome.out = QString::fromUtf8(process.readAllStandardOutput());
    outcome.err = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

const QString kGermanUtf8 = QStringLiteral("de_DE.UTF-8");

TEST(CommandLineLanguage, LangGermanGivesGermanHelp) {
    const Outcome help = lattica({QStringLiteral("--help")}, {{QStringLiteral("LANG"), kGermanUtf8}});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.contains(QStringLiteral("Befehle:"))) << qPrintable(help.out);
    EXPECT_TRUE(help.out.contains(QStringLiteral("Die Bildschirme auflisten."))) << qPrintable(help.out);
    EXPECT_TRUE(help.out.contains(QStringLiteral("move-focused --to TARGET"))) << "the command words stay";
}

TEST(CommandLineLanguage, LanguageListPicksTheFirstLanguageWithATranslation) {
    const Outcome bad =
        lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LANGUAGE"), QStringLiteral("is:de")},
                                                 {QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8")}});
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(bad.err.contains(QStringLiteral("„frobnicate“ ist kein Befehl."))) << qPrintable(bad.err);
}

TEST(CommandLineLanguage, LcMessagesWinsOverLangAndLcAllOverBoth) {
    const Outcome messages = lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LC_MESSAGES"), kGermanUtf8},
                                                                      {QStringLiteral("LANG"), QStringLiteral("C")}});
    EXPECT_TRUE(messages.err.contains(QStringLiteral("ist kein Befehl"))) << qPrintable(messages.err);
    const Outcome all = lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LC_ALL"), QStringLiteral("C")},
                                                                 {QStringLiteral("LC_MESSAGES"), kGermanUtf8}});
    EXPECT_TRUE(all.err.contains(QStringLiteral("'frobnicate' is not a command."))) << qPrintable(all.err);
}

TEST(CommandLineLanguage, EnglishAndCLocalesKeepTheEnglishTexts) {
    for (const QString& locale : {QStringLiteral("C"), QStringLiteral("en_GB.UTF-8")}) {
        const Outcome bad = lattica({QStringLiteral("frobnicate")}, {{QStringLiteral("LANG"), locale}});
        EXPECT_EQ(bad.status, 2);
        EXPECT_EQ(bad.err, QStringLiteral("lattica: 'frobnicate' is not a command.\nTry 'lattica --help'.\n"))
            << qPrintable(locale);
    }
}

}  // namespace
