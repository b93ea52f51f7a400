#include "foundation/safe_write.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace tallix;

namespace {

QByteArray contents(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

TEST(SafeWrite, ReplacesTheFileKeepingItsPermissions)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("deck.pptx");
    ASSERT_EQ(SafeWriteFile(path, "first"), QString());
    const auto kept = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(path, kept));
    ASSERT_EQ(SafeWriteFile(path, "second"), QString());
    EXPECT_EQ(contents(path), "second");
    EXPECT_EQ(QFile::permissions(path) & 0x7077, kept); // owner, group, others
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"deck.pptx"});
}

TEST(SafeWrite, AFailedWriteLeavesTheOldFileAndNoTemporary)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("deck.pptx");
    ASSERT_EQ(SafeWriteFile(path, "old"), QString());
    const QString failure = SafeWriteFileWith(path, [](const QString& temp) {
        QFile f(temp);
        f.open(QIODevice::WriteOnly);
        f.write("half");
        return QStringLiteral("disk full");
    });
    EXPECT_EQ(failure, "cannot write " + path + ": disk full");
    EXPECT_EQ(contents(path), "old");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"deck.pptx"});
    EXPECT_TRUE(SafeWriteFile(dir.filePath("no/such/folder/deck.pptx"), "x").startsWith("cannot write"));
}

TEST(SafeWrite, ATemporaryOfAKilledWriterGoesAndOneOfARunningWriterStays)
{
    QTemporaryDir dir;
    QProcess gone;
    gone.start("true", {});
    ASSERT_TRUE(gone.waitForFinished());
    const qint64 deadPid = gone.processId() ? gone.processId() : 999999999;
    const QString stale = dir.filePath(QStringLiteral(".deck.pptx.tmp-%1").arg(deadPid));
    const QString running = dir.filePath(QStringLiteral(".deck.pptx.tmp-%1").arg(qint64(getppid())));
    const QString otherDeck = dir.filePath(QStringLiteral(".other.pptx.tmp-%1").arg(deadPid));
    for (const QString& p : {stale, running, otherDeck})
        ASSERT_EQ(SafeWriteFile(p, "left behind"), QString());

    ASSERT_EQ(SafeWriteFile(dir.filePath("deck.pptx"), "new"), QString());
    EXPECT_FALSE(QFile::exists(stale));
    EXPECT_TRUE(QFile::exists(running));
    EXPECT_TRUE(QFile::exists(otherDeck));
}

} // namespace
