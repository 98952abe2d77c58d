// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinPlatform.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// KWin's script for Lattica replaced (LATTICA_KWIN_SCRIPT) by one that does not load, or whose commands
// fail: Lattica says so and nothing hangs or crashes.
class KWinBrokenScriptTest : public KWinSessionTest {
protected:
    void SetUp() override {
        KWinSessionTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        ASSERT_TRUE(folder.isValid());
    }
    void TearDown() override { qunsetenv("LATTICA_KWIN_SCRIPT"); }

    // Writes a replacement script and points LATTICA_KWIN_SCRIPT at it.
    QString useScript(const QByteArray& text) {
        const QString path = folder.filePath(QStringLiteral("replacement.js"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        qputenv("LATTICA_KWIN_SCRIPT", path.toUtf8());
        return path;
    }

    static QByteArray builtInScript() {
        QFile file(QStringLiteral(":/kwin/lattica-bridge.js"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
};

const QString kDidNotAnswer = QStringLiteral("Lattica's script in KWin did not answer (it may not suit this KWin)");

TEST_F(KWinBrokenScriptTest, AScriptThatDoesNotParseIsReportedAndKWinStillRunsTheRightOne) {
    useScript("function startWatching( {\n");
    QString problem;
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(KWinBridge::connect(&problem), nullptr);
    EXPECT_EQ(problem, kDidNotAnswer);
    // Given up once KWin's time to answer has passed, not later.
    EXPECT_LT(clock.elapsed(), 2 * KWinBridge::kAnswerTimeoutMs);

    qunsetenv("LATTICA_KWIN_SCRIPT");
    problem.clear();
    std::unique_ptr<KWinBridge> bridge = KWinBridge::connect(&problem);
    ASSERT_NE(bridge, nullptr) << problem.toStdString();
    EXPECT_TRUE(bridge->isWatching());
    EXPECT_FALSE(bridge->state().screens.isEmpty());
}

TEST_F(KWinBrokenScriptTest, AScriptThatCannotBeReadIsReported) {
    qputenv("LATTICA_KWIN_SCRIPT", folder.filePath(QStringLiteral("missing.js")).toUtf8());
    QString problem;
    EXPECT_EQ(KWinBridge::connect(&problem), nullptr);
    EXPECT_EQ(problem, QStringLiteral("Lattica's script for KWin cannot be read"));
}

TEST_F(KWinBrokenScriptTest, TheProgramSaysWhyItCannotStartOnKWin) {
    const QString script = useScript("throw new Error('broken on purpose');\n");
    QTemporaryDir config;
    QProcessEnvironment environment = VirtualDesktop::programEnvironment(config.path());
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("LATTICA_KWIN_SCRIPT"), script);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(LATTICA_BINARY), {QStringLiteral("displays")});
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 3);
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    EXPECT_TRUE(errors.contains(QStringLiteral("Lattica: cannot reach KWin: ") + kDidNotAnswer))
        << errors.toStdString();
}

TEST_F(KWinBrokenScriptTest, CommandsThatFailInsideKWinEndAsNotDoneAndReadsGoOn) {
    const QByteArray library = builtInScript();
    ASSERT_FALSE(library.isEmpty());
    // The watcher works; every command throws before it answers.
    useScript(library + "\nfunction runCommand(command) { throw new Error('broken on purpose'); }\n");
    QString problem;
    std::unique_ptr<KWinPlatform> platform = KWinPlatform::connect(&problem);
    ASSERT_NE(platform, nullptr) << problem.toStdString();
    platform->install();
    WaylandClient wayland;
    ASSERT_TRUE(wayland.start());
    ASSERT_TRUE(wayland.open(QStringLiteral("w"), QStringLiteral("title=unmovable w=300 h=200")));
    WindowControl& control = *Platform::services().windowControl;
    WindowId id = 0;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        for (const WindowEntry& entry :
             Platform::services().windowList->windows(DesktopWindows::Exclude).value_or(QList<WindowEntry>{})) {
            if (entry.title == QLatin1String("unmovable")) {
                id = entry.id;
            }
        }
        return id != 0;
    }));
    const QRectF before = *control.frame(id).value;
    const QPointF elsewhere = before.topLeft() + QPointF(200, 100);

    EXPECT_EQ(control.move(id, elsewhere), Result::CannotComplete);
    const QList<PlacementResult> batch = dynamic_cast<WindowPlacer&>(control).place({{id, elsewhere, std::nullopt}});
    EXPECT_EQ(batch, (QList<PlacementResult>{{Result::CannotComplete, std::nullopt}}));
    // What the watcher reports still reads, unchanged.
    EXPECT_EQ(control.frame(id).result, Result::Ok);
    EXPECT_EQ(*control.frame(id).value, before);
    platform.reset();
}

}  // namespace
