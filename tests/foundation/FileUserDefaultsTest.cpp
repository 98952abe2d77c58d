#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/x11/FileUserDefaults.h"

namespace {

class FileUserDefaultsTest : public ::testing::Test {
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

TEST_F(FileUserDefaultsTest, ValuesKeepTheirTypesAcrossARestart) {
    {
        FileUserDefaults store(path());
        store.setObject(QStringLiteral("flag"), true);
        store.setObject(QStringLiteral("count"), qint64(42));
        store.setObject(QStringLiteral("name"), QStringLiteral("Zoë"));
        store.setObject(QStringLiteral("blob"), QByteArray("\x00\x01[]", 4));
    }
    FileUserDefaults store(path());
    EXPECT_EQ(store.object(QStringLiteral("flag")).typeId(), QMetaType::Bool);
    EXPECT_EQ(store.object(QStringLiteral("flag")), QVariant(true));
    EXPECT_EQ(store.object(QStringLiteral("count")).typeId(), QMetaType::LongLong);
    EXPECT_EQ(store.object(QStringLiteral("count")).toLongLong(), 42);
    EXPECT_EQ(store.object(QStringLiteral("name")), QVariant(QStringLiteral("Zoë")));
    EXPECT_EQ(store.object(QStringLiteral("blob")).typeId(), QMetaType::QByteArray);
    EXPECT_EQ(store.object(QStringLiteral("blob")).toByteArray(), QByteArray("\x00\x01[]", 4));
    EXPECT_EQ(store.keys(), (QStringList{QStringLiteral("blob"), QStringLiteral("count"), QStringLiteral("flag"),
                                         QStringLiteral("name")}));
}

TEST_F(FileUserDefaultsTest, RemovedKeyIsGoneAfterARestart) {
    {
        FileUserDefaults store(path());
        store.setObject(QStringLiteral("a"), true);
        store.removeObject(QStringLiteral("a"));
    }
    FileUserDefaults store(path());
    EXPECT_FALSE(store.contains(QStringLiteral("a")));
}

TEST_F(FileUserDefaultsTest, MissingFileIsAnEmptyStore) {
    FileUserDefaults store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(FileUserDefaultsTest, CorruptFileIsKeptBesideAndTheStoreStartsEmpty) {
    writeFile("{ this is not json");
    FileUserDefaults store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    const QStringList copies = keptCopies();
    ASSERT_EQ(copies.size(), 1);
    QFile kept(directory.filePath(QStringLiteral("lattica/") + copies.first()));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray("{ this is not json"));
    store.setObject(QStringLiteral("dockIconVisible"), false);
    FileUserDefaults reread(path());
    EXPECT_EQ(reread.object(QStringLiteral("dockIconVisible")), QVariant(false));
}

TEST_F(FileUserDefaultsTest, DamagedEntryIsDroppedAndTheFileCopied) {
    writeFile(R"({"good": {"bool": true}, "bad": {"integer": "x"}, "worse": 3})");
    FileUserDefaults store(path());
    EXPECT_EQ(store.object(QStringLiteral("good")), QVariant(true));
    EXPECT_FALSE(store.contains(QStringLiteral("bad")));
    EXPECT_FALSE(store.contains(QStringLiteral("worse")));
    EXPECT_EQ(keptCopies().size(), 1);
}

TEST_F(FileUserDefaultsTest, UnreadableFileIsMovedAside) {
    writeFile(R"({"a": {"bool": true}})");
    QFile::setPermissions(path(), QFileDevice::Permissions());
    if (QFile(path()).open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "running as a user that reads any file";
    }
    FileUserDefaults store(path());
    EXPECT_TRUE(store.keys().isEmpty());
    EXPECT_EQ(keptCopies().size(), 1);
}

TEST_F(FileUserDefaultsTest, EveryWriteReplacesTheFileAtomically) {
    FileUserDefaults store(path());
    store.setObject(QStringLiteral("a"), true);
    // No temporary files are left behind after a write.
    const QStringList files = QDir(directory.filePath(QStringLiteral("lattica"))).entryList(QDir::Files);
    EXPECT_EQ(files, QStringList{QStringLiteral("defaults.json")});
}

}  // namespace

namespace {

TEST_F(FileUserDefaultsTest, WriteSurvivesAKillRightAfterIt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        FileUserDefaults store(path());
        store.setObject(QStringLiteral("before"), qint64(1));
        store.setObject(QStringLiteral("lastWrite"), QStringLiteral("kept"));
        ::raise(SIGKILL);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    FileUserDefaults store(path());
    EXPECT_EQ(store.object(QStringLiteral("before")).toLongLong(), 1);
    EXPECT_EQ(store.object(QStringLiteral("lastWrite")), QVariant(QStringLiteral("kept")));
    EXPECT_TRUE(keptCopies().isEmpty());
}

}  // namespace

namespace {

TEST_F(FileUserDefaultsTest, StoringTheSameValueAgainLeavesTheFileAlone) {
    FileUserDefaults store(path());
    store.setObject(QStringLiteral("a"), QByteArray("[1]"));
    QFile::remove(path());
    store.setObject(QStringLiteral("a"), QByteArray("[1]"));
    EXPECT_FALSE(QFile::exists(path())) << "an unchanged value was written again";
    store.setObject(QStringLiteral("a"), QStringLiteral("[1]"));
    EXPECT_TRUE(QFile::exists(path())) << "a value of another type is a change";
}

}  // namespace
