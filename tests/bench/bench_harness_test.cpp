// The harness must read the marks a child prints, end a child that hangs, and build
// the deck the figures are named after; a wrong deck would make every figure lie.
#include "bench_support.h"
#include "host/pptx_host.h"
#include "support/qt_print.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::bench;

namespace {

QStringList shellEnv()
{
    return {"PATH=/usr/bin:/bin"};
}

TEST(RunChild, ReadsMarksAndExitStatus)
{
    const ChildRun r = RunChild("/bin/sh",
                                {"-c", "echo noise; echo 'TALLIX_BENCH_MARK handover 123'; "
                                       "printf 'TALLIX_BENCH_MARK key 456'; exit 3"},
                                shellEnv());
    EXPECT_EQ(r.exitCode, 3);
    EXPECT_EQ(r.marks.value("handover"), 123);
    EXPECT_EQ(r.marks.value("key"), 456) << "a last line without its newline still counts";
    EXPECT_EQ(r.marks.size(), 2);
    EXPECT_LE(r.startNs, r.endNs);
}

TEST(RunChild, EndsAChildThatOutlivesItsTime)
{
    const ChildRun r = RunChild("/bin/sleep", {"30"}, shellEnv(), 200);
    EXPECT_EQ(r.exitCode, -1);
    EXPECT_LT(r.endNs - r.startNs, qint64(10) * 1000000000);
}

TEST(RunChild, AChildThatKeepsOurPipeOpenDoesNotHoldUs)
{
    // The controller stand-in is started detached by the vote program and inherits its output.
    const ChildRun r = RunChild("/bin/sh", {"-c", "sleep 5 & echo 'TALLIX_BENCH_MARK handover 1'"}, shellEnv(), 20000);
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.marks.value("handover"), 1);
    EXPECT_LT(r.endNs - r.startNs, qint64(4) * 1000000000);
}

TEST(CopyFile, CopiesEveryByte)
{
    QTemporaryDir dir;
    QByteArray bytes(3 * 1024 * 1024 + 17, '\0');
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = char(i * 31 % 251);
    QFile in(dir.filePath("a"));
    ASSERT_TRUE(in.open(QIODevice::WriteOnly));
    in.write(bytes);
    in.close();
    CopyFileWithFsync(dir.filePath("a"), dir.filePath("b"));
    QFile out(dir.filePath("b"));
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    EXPECT_TRUE(out.readAll() == bytes);
}

TEST(BigDeck, HasTheSlidesQuestionsAndPicturesItIsNamedFor)
{
    QTemporaryDir dir;
    qputenv("TALLIX_BENCH_WORK", dir.path().toUtf8());
    const QString path = BigDeck();
    qunsetenv("TALLIX_BENCH_WORK");

    host::PptxHost host(path);
    host::Presentation& pres = *host.ActivePresentation();
    ASSERT_EQ(pres.GetSlides()->Count(), 60);
    int questions = 0, pictures = 0;
    for (int i = 1; i <= 60; ++i) {
        host::Slide& slide = *pres.GetSlides()->Item(i);
        if (!slide.GetTags()->Item("TLXVOTE").isEmpty())
            ++questions;
        for (int s = 1; s <= slide.GetShapes()->Count(); ++s)
            pictures += slide.GetShapes()->Item(s)->Kind() == host::ShapeKind::Picture;
    }
    EXPECT_EQ(questions, 30);
    EXPECT_EQ(pictures, 40);
    EXPECT_TRUE(pres.GetSlides()->Item(kBigDeckLastQuestion)->GetTags()->Item("TLXVOTE").contains("<options>12<"));
    EXPECT_GE(QFile(path).size(), qint64(20) * 1024 * 1024);

    // Made again from nothing, it is the same file: figures from two runs compare.
    const QByteArray first = [&] { QFile f(path); f.open(QIODevice::ReadOnly); return f.readAll(); }();
    QFile::remove(path + ".recipe");
    qputenv("TALLIX_BENCH_WORK", dir.path().toUtf8());
    BigDeck();
    qunsetenv("TALLIX_BENCH_WORK");
    QFile again(path);
    ASSERT_TRUE(again.open(QIODevice::ReadOnly));
    EXPECT_TRUE(again.readAll() == first);
}

} // namespace
