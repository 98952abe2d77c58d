// SPDX-License-Identifier: MIT
// The command table drives the command line, the bus client and the bus interface alike.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusMessage>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include "app/commands/CommandLine.h"
#include "app/commands/LatticaBusService.h"
#include "app/model/Preferences.h"
#include "platform/fake/FakePlatform.h"

namespace {

// The interface element with comments and layout removed, empty methods written out in full.
QString canonicalXml(QString xml) {
    xml.remove(QRegularExpression(QStringLiteral("<!--.*?-->"), QRegularExpression::DotMatchesEverythingOption));
    xml.replace(QRegularExpression(QStringLiteral(">\\s+<")), QStringLiteral("><"));
    xml.replace(QRegularExpression(QStringLiteral("<method name=\"(\\w+)\"/>")),
                QStringLiteral("<method name=\"\\1\"></method>"));
    const qsizetype start = xml.indexOf(QLatin1String("<interface"));
    const qsizetype end = xml.indexOf(QLatin1String("</interface>"));
    return start < 0 || end < 0 ? QString() : xml.mid(start, end - start + 12);
}

TEST(CommandTable, TheKeptIntrospectionIsTheTablesInterface) {
    QFile kept(QStringLiteral(LATTICA_SOURCE_DIR "/dbus/app.lattica.Lattica1.xml"));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    const QString fromFile = canonicalXml(QString::fromUtf8(kept.readAll()));
    ASSERT_FALSE(fromFile.isEmpty());
    EXPECT_EQ(canonicalXml(CommandTable::interfaceXml(LatticaBusService::interfaceName)), fromFile);
}

TEST(CommandTable, EveryCommandHasAWordAMethodAndAWayToRun) {
    QStringList words;
    QStringList methods;
    for (const CommandTable::Command& command : CommandTable::commands()) {
        words.append(command.word);
        methods.append(command.method);
        EXPECT_NE(bool(command.run), command.action != nullptr) << command.word.toStdString();
        EXPECT_TRUE(CommandLine::helpText().contains(command.usage)) << command.word.toStdString();
    }
    words.removeDuplicates();
    methods.removeDuplicates();
    EXPECT_EQ(words.size(), CommandTable::commands().size());
    EXPECT_EQ(methods.size(), CommandTable::commands().size());
}

TEST(CommandTable, ACommandLineRequestBecomesTheBusCallTheServiceUnderstands) {
    for (const CommandTable::Command& command : CommandTable::commands()) {
        CommandLine::Request request;
        request.command = command.word;
        request.application = QStringLiteral("Editor");
        request.from = QStringLiteral("1");
        request.to = QStringLiteral("2");
        request.size = SizeMode::Keep;
        const auto [method, arguments] = CommandLine::busCall(request);
        EXPECT_EQ(method, command.method);
        ASSERT_EQ(arguments.size(), command.parameters.size());
        for (qsizetype i = 0; i < arguments.size(); ++i) {
            const QString expected = command.parameters[i].field == CommandTable::Field::Size ? QStringLiteral("keep")
                                     : command.parameters[i].field == CommandTable::Field::Application
                                         ? QStringLiteral("Editor")
                                     : command.parameters[i].field == CommandTable::Field::From ? QStringLiteral("1")
                                                                                                : QStringLiteral("2");
            EXPECT_EQ(arguments[i].toString(), expected) << command.word.toStdString() << " argument " << i;
        }
    }
}

// The bus interface answers calls through the table, on the fake platform and without a bus.
class BusServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform.monitors.setMonitors({
            {.id = 1, .name = QStringLiteral("Left"), .bounds = QRectF(0, 0, 1920, 1080), .primary = true, .serial = 1},
            {.id = 2, .name = QStringLiteral("Right"), .bounds = QRectF(1920, 0, 2560, 1440), .serial = 2},
        });
        platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
        platform.windowList.setWindowList(QList<WindowEntry>{WindowEntry{.id = 11,
                                                                         .pid = 100,
                                                                         .ownerName = QStringLiteral("Editor"),
                                                                         .frame = QRectF(100, 100, 400, 300),
                                                                         .title = QStringLiteral("Editor")}});
        platform.windowControl.addWindow(100, {.id = 11, .frame = QRectF(100, 100, 400, 300)});
    }
    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            LatticaBusService::serviceName, LatticaBusService::objectPath, LatticaBusService::interfaceName, method);
        message.setArguments(arguments);
        return bus.answer(message);
    }

    FakePlatform platform;
    Preferences preferences{platform.settings};
    CommandService commands{preferences};
    int panelOpened = 0;
    LatticaBusService bus{commands, {[this] { ++panelOpened; }, {}, {}}};
};

TEST_F(BusServiceTest, MovesAnswerWithCountsAndStatus) {
    const QDBusMessage reply = call(QStringLiteral("MoveAll"), {QStringLiteral("1"), QStringLiteral("2"), QString()});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    EXPECT_EQ(reply.arguments(), (QVariantList{1, 1, QStringLiteral("Moved 1 of 1 windows.")}));
    EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(11)));
}

TEST_F(BusServiceTest, SwapAnswersWithCountsAndStatus) {
    const QDBusMessage reply = call(QStringLiteral("Swap"), {QStringLiteral("1"), QStringLiteral("2"), QString()});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    EXPECT_EQ(reply.arguments(), (QVariantList{1, 1, QStringLiteral("Moved 1 of 1 windows.")}));
    EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(11)));
}

TEST_F(BusServiceTest, ListingsAnswerWithJson) {
    const QDBusMessage reply = call(QStringLiteral("Displays"));
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(QJsonDocument::fromJson(reply.arguments().value(0).toString().toUtf8()).array().size(), 2);
}

TEST_F(BusServiceTest, ErrorsCarryTheirNames) {
    EXPECT_EQ(call(QStringLiteral("MoveAll"), {QStringLiteral("1"), QStringLiteral("7"), QString()}).errorName(),
              CommandErrors::noSuchMonitor);
    EXPECT_EQ(call(QStringLiteral("MoveFocused"), {QStringLiteral("1"), QStringLiteral("huge")}).errorName(),
              CommandErrors::invalidArgument);
    EXPECT_EQ(call(QStringLiteral("MoveFocused"), {QStringLiteral("1")}).errorName(), CommandErrors::invalidArgument);
    EXPECT_EQ(call(QStringLiteral("MoveFocused"), {1, QString()}).errorName(), CommandErrors::invalidArgument);
    EXPECT_EQ(call(QStringLiteral("Swap"), {QStringLiteral("1"), QStringLiteral("1"), QString()}).errorName(),
              CommandErrors::invalidArgument);
    EXPECT_EQ(call(QStringLiteral("Swap"), {QStringLiteral("1"), QStringLiteral("5"), QString()}).errorName(),
              CommandErrors::noSuchMonitor);
    EXPECT_EQ(call(QStringLiteral("Teleport")).errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty()) << "nothing was moved";
}

TEST_F(BusServiceTest, ActionsRunAfterTheReply) {
    EXPECT_EQ(call(QStringLiteral("OpenPanel")).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(panelOpened, 0) << "not before the reply has gone out";
    QCoreApplication::processEvents();
    EXPECT_EQ(panelOpened, 1);
    EXPECT_EQ(call(QStringLiteral("OpenSettings")).type(), QDBusMessage::ReplyMessage) << "an action not given";
    QCoreApplication::processEvents();
}

}  // namespace
