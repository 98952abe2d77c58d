// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <limits>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/xdg/FileSettingsStore.h"
#include "tests/support/ReadOnlyFolder.h"

namespace {

class FileSettingsStoreTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString path() const { return directory.filePath(QStringLiteral("lattica/defaults.json")); }

    void writeFile(const QByteArray& contents) {
        QDir().mkpath(directory.filePath(QStringLiteral("lattica")));
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QStringList keptCopies() const {
        return QDir(directory.filePath(QStringLiteral("lattica")))
            .entryList({QStringLiteral("defaults.json.corrupt-*")}, QDir::Files);
    }
};

TEST_F(FileSettingsStoreTest, ValuesKeepTheirTypesAcrossARestart) {
    {
        FileSettingsStore store(path());
        store.setBool(QStringLiteral("flag"), true);
        store.setInteger(QStringLiteral("count"), 42);
        store.setString(QStringLiteral("name"), QStringLiteral("Zoë"));
        store.setData(QStringLiteral("blob"), QByteArray("\x00\x01[]", 4));
    }
    FileSettingsStore store(path());
    EXPECT_EQ(store.value(QStringLiteral("flag")), SettingValue(true));
    EXPECT_EQ(store.value(QStringLiteral("count")), SettingValue(qint64(42)));
    EXPECT_EQ(store.value(QStringLiteral("name")), SettingValue(QStringLiteral("Zoë")));
    EXPECT_EQ(store.value(QStringLiteral("blob")), SettingValue(QByteArray("\x00\x01[]", 4)));
    EXPECT_EQ(store.keys(), (QStringList{QStringLiteral("blob"), QStringLiteral("count"), QStringLiteral("flag"),
                                         QStringLiteral("name")}));
}

TEST_F(FileSettingsStoreTest, RemovedKeyIsGoneAfterARestart) {
    {
        FileSettingsStore store(path());
        store.setBool(QStringLiteral("a"), true);
        store.remove(QStringLiteral("a"));
    }
    FileSettingsStore store(path());
    EXPECT_FALSE(store.contains(QStringLiteral("a")));
}

TEST_F(FileSettingsStoreTest, MissingFileIsAnEmptyStore) {
    FileSettingsStore store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(FileSettingsStoreTest, CorruptFileIsKeptBesideAndTheStoreStartsEmpty) {
    writeFile("{ this is not json");
    FileSettingsStore store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    const QStringList copies = keptCopies();
    ASSERT_EQ(copies.size(), 1);
    QFile kept(directory.filePath(QStringLiteral("lattica/") + copies.first()));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray("{ this is not json"));
    store.setBool(QStringLiteral("dockIconVisible"), false);
    FileSettingsStore reread(path());
    EXPECT_EQ(reread.value(QStringLiteral("dockIconVisible")), SettingValue(false));
}

TEST_F(FileSettingsStoreTest, DamagedEntryIsDroppedAndTheFileCopied) {
    writeFile(R"({"good": {"bool": true}, "bad": {"integer": "x"}, "worse": 3})");
    FileSettingsStore store(path());
    EXPECT_EQ(store.value(QStringLiteral("good")), SettingValue(true));
    EXPECT_FALSE(store.contains(QStringLiteral("bad")));
    EXPECT_FALSE(store.contains(QStringLiteral("worse")));
    EXPECT_EQ(keptCopies().size(), 1);
}

TEST_F(FileSettingsStoreTest, IntegersOutsideTheSixtyFourBitRangeAreRejectedAndKeptInTheCopy) {
    writeFile(R"({"huge": {"integer": 1e300}, "tiny": {"integer": -1e300}, "justOver": {"integer": 9223372036854775808},
                  "half": {"integer": 1.5}, "largest": {"integer": 9223372036854775807},
                  "smallest": {"integer": -9223372036854775808}, "fine": {"integer": 3e3}})");
    FileSettingsStore store(path());
    EXPECT_FALSE(store.contains(QStringLiteral("huge")));
    EXPECT_FALSE(store.contains(QStringLiteral("tiny")));
    EXPECT_FALSE(store.contains(QStringLiteral("justOver")));
    EXPECT_FALSE(store.contains(QStringLiteral("half")));
    EXPECT_EQ(store.value(QStringLiteral("largest")), SettingValue(std::numeric_limits<qint64>::max()));
    EXPECT_EQ(store.value(QStringLiteral("smallest")), SettingValue(std::numeric_limits<qint64>::min()));
    EXPECT_EQ(store.value(QStringLiteral("fine")), SettingValue(qint64(3000)));
    const QStringList copies = keptCopies();
    ASSERT_EQ(copies.size(), 1);
    QFile kept(directory.filePath(QStringLiteral("lattica/") + copies.first()));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_TRUE(kept.readAll().contains("1e300"));
    // The next write leaves the rejected values out rather than writing a wrapped-around number.
    store.setBool(QStringLiteral("flag"), true);
    QFile rewritten(path());
    ASSERT_TRUE(rewritten.open(QIODevice::ReadOnly));
    const QByteArray contents = rewritten.readAll();
    EXPECT_FALSE(contents.contains("huge"));
    EXPECT_FALSE(contents.contains("tiny"));
}

TEST_F(FileSettingsStoreTest, WithoutAPathValuesLiveInMemoryOnly) {
    FileSettingsStore store{QString()};
    store.setBool(QStringLiteral("flag"), true);
    EXPECT_EQ(store.value(QStringLiteral("flag")), SettingValue(true));
    EXPECT_TRUE(QDir(directory.path()).isEmpty());
}

TEST_F(FileSettingsStoreTest, UnreadableFileIsMovedAside) {
    writeFile(R"({"a": {"bool": true}})");
    QFile::setPermissions(path(), QFileDevice::Permissions());
    if (QFile(path()).open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "running as a user that reads any file";
    }
    FileSettingsStore store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    EXPECT_EQ(keptCopies().size(), 1);
}

TEST_F(FileSettingsStoreTest, ReadOnlyFolderKeepsTheChangeInMemoryAndTheFileUntouchedUntilAWriteSucceeds) {
    writeFile(R"({"a": {"bool": true}})");
    QByteArray before;
    {
        FileSettingsStore store(path());
        EXPECT_TRUE(store.writeFailure().isEmpty());
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        before = file.readAll();
    }
    FileSettingsStore store(path());
    ReadOnlyFolder folder(directory.filePath(QStringLiteral("lattica")));
    ASSERT_TRUE(folder.refusesWrites());

    store.setBool(QStringLiteral("a"), false);
    EXPECT_EQ(store.value(QStringLiteral("a")), SettingValue(false));
    EXPECT_TRUE(store.writeFailure().contains(path())) << qPrintable(store.writeFailure());
    store.setInteger(QStringLiteral("b"), 2);
    EXPECT_FALSE(store.writeFailure().isEmpty());
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), before);
    }
    EXPECT_EQ(QDir(directory.filePath(QStringLiteral("lattica"))).entryList(QDir::Files),
              QStringList{QStringLiteral("defaults.json")});

    // Once the folder can be written, the next change stores every value changed meanwhile.
    folder.restore();
    store.setString(QStringLiteral("c"), QStringLiteral("later"));
    EXPECT_TRUE(store.writeFailure().isEmpty());
    FileSettingsStore reread(path());
    EXPECT_EQ(reread.value(QStringLiteral("a")), SettingValue(false));
    EXPECT_EQ(reread.value(QStringLiteral("b")), SettingValue(qint64(2)));
    EXPECT_EQ(reread.value(QStringLiteral("c")), SettingValue(QStringLiteral("later")));
}

// Stands in for a full disk: a write past the limit fails as it would with no space left (EFBIG instead of
// ENOSPC), and the store cannot tell the two apart.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_saved);
        m_previousHandler = ::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_saved);
        ::signal(SIGXFSZ, m_previousHandler);
    }

private:
    rlimit m_saved{};
    sighandler_t m_previousHandler = SIG_DFL;
};

TEST_F(FileSettingsStoreTest, FullDiskKeepsTheChangeInMemoryAndTheFileUntouched) {
    writeFile(R"({"a": {"bool": true}})");
    FileSettingsStore store(path());
    QByteArray before;
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        before = file.readAll();
    }
    {
        const FileSizeLimit full(8);
        store.setString(QStringLiteral("b"), QStringLiteral("a value longer than what the disk has room for"));
        EXPECT_FALSE(store.writeFailure().isEmpty());
    }
    EXPECT_EQ(store.value(QStringLiteral("b")),
              SettingValue(QStringLiteral("a value longer than what the disk has room for")));
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_EQ(QDir(directory.filePath(QStringLiteral("lattica"))).entryList(QDir::Files),
              QStringList{QStringLiteral("defaults.json")})
        << "no partial file is left behind";

    store.setBool(QStringLiteral("a"), false);
    EXPECT_TRUE(store.writeFailure().isEmpty());
    EXPECT_EQ(FileSettingsStore(path()).value(QStringLiteral("b")),
              SettingValue(QStringLiteral("a value longer than what the disk has room for")));
}

TEST_F(FileSettingsStoreTest, WithoutAPathEveryChangeIsReportedAsNotSaved) {
    FileSettingsStore store{QString()};
    store.setBool(QStringLiteral("flag"), true);
    EXPECT_FALSE(store.writeFailure().isEmpty());
}

TEST_F(FileSettingsStoreTest, EveryWriteReplacesTheFileAtomically) {
    FileSettingsStore store(path());
    store.setBool(QStringLiteral("a"), true);
    // No temporary files are left behind after a write.
    const QStringList files = QDir(directory.filePath(QStringLiteral("lattica"))).entryList(QDir::Files);
    EXPECT_EQ(files, QStringList{QStringLiteral("defaults.json")});
}

}  // namespace

namespace {

TEST_F(FileSettingsStoreTest, WriteSurvivesAKillRightAfterIt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        FileSettingsStore store(path());
        store.setInteger(QStringLiteral("before"), 1);
        store.setString(QStringLiteral("lastWrite"), QStringLiteral("kept"));
        ::raise(SIGKILL);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    FileSettingsStore store(path());
    EXPECT_EQ(store.value(QStringLiteral("before")), SettingValue(qint64(1)));
    EXPECT_EQ(store.value(QStringLiteral("lastWrite")), SettingValue(QStringLiteral("kept")));
    EXPECT_TRUE(keptCopies().isEmpty());
}

}  // namespace

namespace {

TEST_F(FileSettingsStoreTest, StoringTheSameValueAgainLeavesTheFileAlone) {
    FileSettingsStore store(path());
    store.setData(QStringLiteral("a"), QByteArray("[1]"));
    QFile::remove(path());
    store.setData(QStringLiteral("a"), QByteArray("[1]"));
    EXPECT_FALSE(QFile::exists(path())) << "an unchanged value was written again";
    store.setString(QStringLiteral("a"), QStringLiteral("[1]"));
    EXPECT_TRUE(QFile::exists(path())) << "a value of another type is a change";
}

}  // namespace

namespace {

// A file as the store has always written it: every type, keys in order, four-space indentation.
constexpr char kStoredFile[] = R"({
    "KeyboardShortcuts_moveFocusedWindowToDisplay.v16-m32-s7": {
        "string": "{\"carbonKeyCode\":40,\"carbonModifiers\":4352}"
    },
    "adjustWindowSizeToTargetScreen": {
        "bool": false
    },
    "count": {
        "integer": -9007199254740991
    },
    "dockIconVisible": {
        "bool": true
    },
    "shortcutDisplayRecords.v1": {
        "data": "W3siaWQiOiJ2MTYtbTMyLXM3In1d"
    }
}
)";

TEST_F(FileSettingsStoreTest, AFileOfEarlierVersionsReadsBackIdentically) {
    writeFile(kStoredFile);
    FileSettingsStore store(path());
    EXPECT_EQ(store.keys(),
              (QStringList{QStringLiteral("KeyboardShortcuts_moveFocusedWindowToDisplay.v16-m32-s7"),
                           QStringLiteral("adjustWindowSizeToTargetScreen"), QStringLiteral("count"),
                           QStringLiteral("dockIconVisible"), QStringLiteral("shortcutDisplayRecords.v1")}));
    EXPECT_EQ(store.value(QStringLiteral("KeyboardShortcuts_moveFocusedWindowToDisplay.v16-m32-s7")),
              SettingValue(QStringLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}")));
    EXPECT_EQ(store.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(false));
    EXPECT_EQ(store.value(QStringLiteral("count")), SettingValue(qint64(-9007199254740991)));
    EXPECT_EQ(store.value(QStringLiteral("dockIconVisible")), SettingValue(true));
    EXPECT_EQ(store.value(QStringLiteral("shortcutDisplayRecords.v1")),
              SettingValue(QByteArray(R"([{"id":"v16-m32-s7"}])")));
    EXPECT_TRUE(keptCopies().isEmpty());

    // Writing it back gives the same bytes.
    store.setBool(QStringLiteral("dockIconVisible"), false);
    store.setBool(QStringLiteral("dockIconVisible"), true);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(kStoredFile));
}

TEST_F(FileSettingsStoreTest, TypedReadsCoerceAsThePreferencesExpect) {
    FileSettingsStore store(path());
    store.setString(QStringLiteral("yes"), QStringLiteral(" YES "));
    store.setString(QStringLiteral("seven"), QStringLiteral("7"));
    store.setString(QStringLiteral("word"), QStringLiteral("no"));
    store.setInteger(QStringLiteral("two"), 2);
    store.setBool(QStringLiteral("on"), true);
    store.setData(QStringLiteral("blob"), QByteArray("1"));
    EXPECT_TRUE(store.boolValue(QStringLiteral("yes")));
    EXPECT_TRUE(store.boolValue(QStringLiteral("seven")));
    EXPECT_FALSE(store.boolValue(QStringLiteral("word")));
    EXPECT_TRUE(store.boolValue(QStringLiteral("two")));
    EXPECT_FALSE(store.boolValue(QStringLiteral("blob")));
    EXPECT_FALSE(store.boolValue(QStringLiteral("absent")));
    EXPECT_EQ(store.integerValue(QStringLiteral("seven")), 7);
    EXPECT_EQ(store.integerValue(QStringLiteral("on")), 1);
    EXPECT_EQ(store.integerValue(QStringLiteral("blob")), 0);
    EXPECT_EQ(store.stringValue(QStringLiteral("seven")), QStringLiteral("7"));
    EXPECT_EQ(store.stringValue(QStringLiteral("two")), std::nullopt);
    EXPECT_EQ(store.dataValue(QStringLiteral("blob")), QByteArray("1"));
    EXPECT_EQ(store.dataValue(QStringLiteral("seven")), std::nullopt);
}

TEST(FileSettingsStoreDecodeTest, ReadsEveryTypeAndWritesItBackUnchanged) {
    const FileSettingsStore::Decoded decoded = FileSettingsStore::decode(
        R"({"flag":{"bool":true},"count":{"integer":-7},"name":{"string":"Zo\u00eb"},"blob":{"data":"AAFbXQ=="}})");
    EXPECT_TRUE(decoded.error.isEmpty());
    EXPECT_FALSE(decoded.partlyDamaged);
    const QMap<QString, SettingValue> expected{{QStringLiteral("flag"), SettingValue(true)},
                                               {QStringLiteral("count"), SettingValue(qint64(-7))},
                                               {QStringLiteral("name"), SettingValue(QStringLiteral("Zoë"))},
                                               {QStringLiteral("blob"), SettingValue(QByteArray("\x00\x01[]", 4))}};
    EXPECT_EQ(decoded.values, expected);
    const FileSettingsStore::Decoded again = FileSettingsStore::decode(FileSettingsStore::encode(decoded.values));
    EXPECT_TRUE(again.error.isEmpty());
    EXPECT_EQ(again.values, expected);
}

TEST(FileSettingsStoreDecodeTest, TellsAnUnreadableFileFromOneWithSomeBadValues) {
    EXPECT_EQ(FileSettingsStore::decode("[]").error, QStringLiteral("not a JSON object"));
    const FileSettingsStore::Decoded truncated = FileSettingsStore::decode(R"({"a":{"bool":tr)");
    EXPECT_FALSE(truncated.error.isEmpty());
    EXPECT_TRUE(truncated.values.isEmpty());

    const FileSettingsStore::Decoded partly =
        FileSettingsStore::decode(R"({"bad":{"bool":1},"fraction":{"integer":1.5},"good":{"bool":false}})");
    EXPECT_TRUE(partly.error.isEmpty());
    EXPECT_TRUE(partly.partlyDamaged);
    EXPECT_EQ(partly.values, (QMap<QString, SettingValue>{{QStringLiteral("good"), SettingValue(false)}}));
}

}  // namespace
