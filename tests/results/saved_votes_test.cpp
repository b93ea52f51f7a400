#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "host/deck.h"
#include "host/deck_host.h"
#include "host/pptx_host.h"
#include "results/load_votes.h"
#include "results/save_votes.h"
#include "support/qt_print.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace tallix;
using tallix::testing::TestRun;
using tallix::testing::TestServices;

namespace {

void setVotes(RunContext& ctx, const QStringList& v)
{
    ctx.votes.redim(int(v.size()) - 1);
    for (int i = 0; i < v.size(); ++i)
        ctx.votes(i) = v[i];
}

QStringList votesOf(const RunContext& ctx)
{
    QStringList out;
    for (const QString& v : ctx.votes)
        out << v;
    return out;
}

class SavedVotes : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::MemoryHost ppt{3};
    int commits = 0;

    SavedVotes()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.currentSlide = 2;
        ctx.CommitPresentation = [this] { ++commits; };
    }
    host::Tags* slideTags(int index = 2) { return ctx.oPres->GetSlides()->Item(index)->GetTags(); }
    QStringList savedLines(const QString& tag = "TLXVOTES")
    {
        QStringList lines = slideTags()->Item(tag).split("\r\n");
        EXPECT_EQ(lines.takeLast(), "") << "every line ends in CR LF";
        return lines;
    }
    bool load(const QString& ref = "2:Revote", short item = -1) { return LoadVotes(ctx, ref, item); }
};

struct SaveCase {
    const char* name;
    QStringList votes;   // the top element is never saved
    const char* list;
};

class SaveLine : public SavedVotes, public ::testing::WithParamInterface<SaveCase> {};

TEST_P(SaveLine, WritesOneTokenPerKeypadBelowTheTop)
{
    setVotes(ctx, GetParam().votes);
    SaveVotes(ctx, 0);
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 1);
    const QStringList fields = lines[0].split(',');
    ASSERT_EQ(fields.size(), 3) << qPrintable(lines[0]);
    EXPECT_EQ(fields[1], "02:35:19");
    EXPECT_EQ(fields[2], GetParam().list);
}

INSTANTIATE_TEST_SUITE_P(
    Votes, SaveLine,
    ::testing::Values(SaveCase{"Mixed", {"3", "-2", "-1", "Red|Blue", "9"}, "3;X;-;Red|Blue;"},
                      SaveCase{"NobodyVoted", {"-1", "-1", "-1", ""}, "-;-;-;"},
                      SaveCase{"EmptyIsNone", {"", "2", ""}, "-;2;"},
                      SaveCase{"CommasAreDropped", {"1,5", "a, b", "x"}, "15;a b;"},
                      SaveCase{"SemicolonIsNotProtected", {"a;b", "1", ""}, "a;b;1;"},
                      SaveCase{"OneElementSavesNothing", {"4"}, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SavedVotes, SavesAppendMarkLiveDataAndCommit)
{
    slideTags()->Add("TLXVOTES", "older,line,1;\r\n");
    setVotes(ctx, {"1", "2", ""});
    SaveVotes(ctx, 0);
    setVotes(ctx, {"2", "2", ""});
    SaveVotes(ctx, 0);
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], "older,line,1;");
    EXPECT_TRUE(lines[2].endsWith(",2;2;"));
    EXPECT_EQ(slideTags()->Item("TLXLIVEDATAISVISIBLE"), "This slide has live data visible");
    EXPECT_EQ(commits, 2);
    EXPECT_EQ(slideTags(1)->Item("TLXVOTES"), "") << "only the question slide";

    ASSERT_TRUE(load());
    EXPECT_EQ(votesOf(ctx), QStringList({"2", "2", ""}));

    const QString log = TestServices::read(VoteDataLogPath(ctx));
    EXPECT_TRUE(log.contains("VOTES SAVED TO SLIDE|" + lines[2])) << qPrintable(log);
}

TEST_F(SavedVotes, RatingItemsEachLeaveALineWithTheirPlace)
{
    ctx.GraphType = 7;
    ctx.NumberRankVotes = 3;
    for (short item = 0; item < 3; ++item) {
        setVotes(ctx, {QString::number(item + 4), ""});
        SaveVotes(ctx, item);
    }
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].endsWith(",4;,1of3")) << qPrintable(lines[0]);
    EXPECT_TRUE(lines[2].endsWith(",6;,3of3")) << qPrintable(lines[2]);

    ASSERT_TRUE(load("2:Revote", 1));
    EXPECT_EQ(votesOf(ctx), QStringList({"5", ""}));
    EXPECT_FALSE(load("2:Revote", 3)) << "no fourth item";
    EXPECT_TRUE(ctx.votes.empty()) << "a failed load leaves the votes wiped";
}

TEST_F(SavedVotes, ResponseTimesAreRoundedAndPointDecimal)
{
    ScopedSeparators commaMachine(",", ".");
    setVotes(ctx, {"1", "-1", "2", ""});
    ctx.voteTimes.redim(3, -1);
    ctx.voteTimes(0) = 1.2345f;
    ctx.voteTimes(2) = 12.5f;
    ctx.voteTimes(3) = 99;   // top element: never saved
    SaveVotes(ctx, 0);
    const QStringList lines = savedLines("TLXProcessTime");
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].section(',', 2), "1.235;-1;12.5;");
}

TEST_F(SavedVotes, TypedNamesReplaceTheParticipantNamesOnlyWhenSomeoneAnswered)
{
    ctx.WLSUseResponsesAsNames = true;
    ctx.oPres->GetTags()->Add("Participant Names", "old");
    setVotes(ctx, {"-1", "-2", ""});
    SaveVotes(ctx, 0);
    EXPECT_EQ(ctx.oPres->GetTags()->Item("Participant Names"), "old");

    setVotes(ctx, {"1|Ann", "-1", "Bob", "-2", ""});
    SaveVotes(ctx, 0);
    EXPECT_EQ(ctx.oPres->GetTags()->Item("Participant Names"), "1^^Ann|3^^Bob|");
}

TEST_F(SavedVotes, SeriesLinesRoundTripPerIteration)
{
    ctx.vType = 2;
    ctx.Iterations = 2;
    ctx.keypadUniverse = 3;
    ctx.seriesVotes.redim(2, 3, -1);
    ctx.seriesVotes(0, 0) = 2;
    ctx.seriesVotes(0, 1) = -2;
    ctx.seriesVotes(1, 0) = 1;
    ctx.seriesVotes(1, 2) = 2.5f;
    saveSeriesVotes(ctx);
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].section(',', 2), "2;X;-;,1of2");
    EXPECT_EQ(lines[1].section(',', 2), "1;-;2.5;,2of2");
    EXPECT_EQ(commits, 1);
    EXPECT_EQ(slideTags()->Item("TLXLIVEDATAISVISIBLE"), "This slide has live data visible");

    ASSERT_TRUE(load("2:Revote", 0));
    EXPECT_EQ(votesOf(ctx), QStringList({"2", "-2", "-1", ""}));
    ASSERT_TRUE(load("2:Revote", 1));
    EXPECT_EQ(votesOf(ctx), QStringList({"1", "-1", "2.5", ""}));
}

TEST_F(SavedVotes, AFailedSaveReachesTheCallerAndCommitsNothing)
{
    ctx.currentSlide = 9;
    setVotes(ctx, {"1", ""});
    EXPECT_THROW(SaveVotes(ctx, 0), VbError);
    EXPECT_EQ(commits, 0);
}

struct LoadCase {
    const char* name;
    const char* tag;
    short item;
    bool loaded;
    QStringList votes;
};

class LoadLine : public SavedVotes, public ::testing::WithParamInterface<LoadCase> {};

TEST_P(LoadLine, RebuildsVotesFromTheLastLine)
{
    slideTags()->Add("TLXVOTES", GetParam().tag);
    EXPECT_EQ(load("2:Revote", GetParam().item), GetParam().loaded);
    EXPECT_EQ(votesOf(ctx), GetParam().votes);
    if (GetParam().loaded) {
        EXPECT_EQ(ctx.keypadUniverse, GetParam().votes.size() - 1);
        EXPECT_TRUE(ctx.voteReceived);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tags, LoadLine,
    ::testing::Values(
        LoadCase{"CrLf", "d,t,1;-;\r\nd,t,3;X;-;A;-1;\r\n", -1, true, {"3", "-2", "-1", "10", "-1", ""}},
        LoadCase{"LfAlone", "d,t,1;-;\nd,t,3;X;\n", -1, true, {"3", "-2", ""}},
        LoadCase{"CrAlone", "d,t,1;\rd,t,4;5;\r\r", -1, true, {"4", "5", ""}},
        LoadCase{"NoEndOfLine", "d,t,2;", -1, true, {"2", ""}},
        LoadCase{"MarkerLinesDropped", "d,t,2;1;\r\n99\r\n99\r\n", -1, true, {"2", "1", ""}},
        LoadCase{"OnlyMarkers", "99\r\n99", -1, false, {}},
        LoadCase{"QuotedList", "d,t,\"1;2;\"", -1, true, {"1", "2", ""}},
        LoadCase{"EmptyTag", "", -1, false, {}},
        LoadCase{"ItemPicked", "d,t,1;,1of2\r\nd,t,2;,2of2\r\nd,t,3;,1OF2\r\n", 0, true, {"3", ""}},
        LoadCase{"ItemMissing", "d,t,1;,1of2\r\n", 1, false, {}},
        LoadCase{"ItemTenIsNotItemOne", "d,t,7;,10of10\r\n", 0, false, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SavedVotes, LoadNeedsASlideReference)
{
    slideTags()->Add("TLXVOTES", "d,t,1;\r\n");
    EXPECT_FALSE(load("2", -1));
    EXPECT_TRUE(load("2:", -1));
}

TEST_F(SavedVotes, SlidesAreFoundByIndexOrId)
{
    slideTags(3)->Add("TLXVOTES", "d,t,3;\r\n");
    EXPECT_TRUE(load("3:Revote")) << "the last slide is an index";
    EXPECT_EQ(ctx.votes(0), "3");

    const long id = ctx.oPres->GetSlides()->Item(3)->SlideID();
    ASSERT_GT(id, 3);
    EXPECT_TRUE(load(QString::number(id) + ":Reshow"));
    EXPECT_EQ(ctx.votes(0), "3");

    EXPECT_THROW(load("4000:Revote"), VbError);
}

TEST_F(SavedVotes, GroupRunsReadKeypadsOutsideTheFilterAsNotVoted)
{
    slideTags()->Add("TLXVOTES", "d,t,1;2;3;4;\r\n");
    ctx.groupFilter.redim(3, 1);
    ctx.groupFilter(1) = 0;
    ctx.groupFilter(3) = 0;   // the filter's last element is never applied
    ctx.arg1 = "TLXGROUP";
    ASSERT_TRUE(load());
    EXPECT_EQ(votesOf(ctx), QStringList({"1", "-1", "3", "4", ""}));

    ctx.arg1 = "TLXVOTE";
    ASSERT_TRUE(load());
    EXPECT_EQ(votesOf(ctx), QStringList({"1", "2", "3", "4", ""}));
}

// Two vote processes on one deck: each appends its line and commits; neither loses
// the other's.
TEST(SavedVotesOnDisk, ConcurrentProcessesKeepBothLines)
{
    QTemporaryDir dir;
    const QString deckPath = dir.filePath("talk.pptx");
    {
        QFile f(deckPath);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(host::Deck::blank(2).toZip());
    }
    host::PptxHost first(deckPath), second(deckPath);
    TestRun a, b;
    for (auto [run, host] : {std::pair{&a, &first}, std::pair{&b, &second}}) {
        run->ctx.oPPT = host;
        run->ctx.oPres = host->ActivePresentation();
        run->ctx.currentSlide = 1;
        run->ctx.CommitPresentation = [host] { host->Commit(); };
    }
    setVotes(a.ctx, {"1", ""});
    setVotes(b.ctx, {"2", ""});
    SaveVotes(a.ctx, 0);
    SaveVotes(b.ctx, 0);

    host::PptxHost reader(deckPath);
    const QString saved = reader.ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item("TLXVOTES");
    EXPECT_EQ(saved.count("\r\n"), 2) << qPrintable(saved);
    EXPECT_TRUE(saved.contains(",1;\r\n"));
    EXPECT_TRUE(saved.contains(",2;\r\n"));
}

} // namespace
