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
    return QStringList(ctx.votes.begin(), ctx.votes.end());
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
    // What follows date and time on each saved line.
    QStringList savedFields(const QString& tag = "TLXVOTES")
    {
        QStringList lines = slideTags()->Item(tag).split("\r\n");
        EXPECT_EQ(lines.takeLast(), "") << "every line ends in CR LF";
        for (QString& line : lines)
            line = line.section(',', 2);
        return lines;
    }
};

struct SaveCase {
    const char* name;
    QStringList votes;   // the top element is never saved
    const char* list;
};
class SaveLine : public SavedVotes, public ::testing::WithParamInterface<SaveCase> {};

TEST_P(SaveLine, OneTokenPerKeypadBelowTheTop)
{
    setVotes(ctx, GetParam().votes);
    SaveVotes(ctx, 0);
    EXPECT_EQ(savedFields(), QStringList{GetParam().list});
}

INSTANTIATE_TEST_SUITE_P(Votes, SaveLine,
                         ::testing::Values(SaveCase{"Mixed", {"3", "-2", "-1", "Red|Blue", "9"}, "3;X;-;Red|Blue;"},
                                           SaveCase{"NobodyVoted", {"-1", "", ""}, "-;-;"},
                                           SaveCase{"CommasDropped", {"1,5", "a, b", "x"}, "15;a b;"},
                                           SaveCase{"SemicolonNotProtected", {"a;b", "1", ""}, "a;b;1;"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SavedVotes, EachSaveAppendsCommitsAndTheLastLineLoads)
{
    slideTags()->Add("TLXVOTES", "older,line,1;\r\n");
    setVotes(ctx, {"1", "2", ""});
    SaveVotes(ctx, 0);
    setVotes(ctx, {"2", "-2", ""});
    SaveVotes(ctx, 0);
    EXPECT_EQ(savedFields(), QStringList({"1;", "1;2;", "2;X;"}));
    EXPECT_EQ(commits, 2);
    EXPECT_EQ(slideTags()->Item("TLXLIVEDATAISVISIBLE"), "This slide has live data visible");
    EXPECT_TRUE(TestServices::read(VoteDataLogPath(ctx)).contains("VOTES SAVED TO SLIDE|"));

    ASSERT_TRUE(LoadVotes(ctx, "2:Revote", -1));
    EXPECT_EQ(votesOf(ctx), QStringList({"2", "-2", ""}));
    EXPECT_EQ(ctx.keypadUniverse, 2);
}

TEST_F(SavedVotes, RatingItemsAndSeriesIterationsLoadByTheirPlace)
{
    ctx.GraphType = 7;
    ctx.NumberRankVotes = 2;
    for (short item = 0; item < 2; ++item) {
        setVotes(ctx, {QString::number(item + 4), ""});
        SaveVotes(ctx, item);
    }
    EXPECT_EQ(savedFields(), QStringList({"4;,1of2", "5;,2of2"}));
    ASSERT_TRUE(LoadVotes(ctx, "2:Revote", 0));
    EXPECT_EQ(votesOf(ctx), QStringList({"4", ""}));
    EXPECT_FALSE(LoadVotes(ctx, "2:Revote", 2));
    EXPECT_TRUE(ctx.votes.empty()) << "a failed load leaves the votes wiped";

    slideTags()->Delete("TLXVOTES");
    ctx.vType = 2;
    ctx.Iterations = 2;
    ctx.keypadUniverse = 3;
    ctx.seriesVotes.redim(2, 3, -1);
    ctx.seriesVotes(0, 0) = 2;
    ctx.seriesVotes(0, 1) = -2;
    ctx.seriesVotes(1, 2) = 2.5f;
    saveSeriesVotes(ctx);
    EXPECT_EQ(savedFields(), QStringList({"2;X;-;,1of2", "-;-;2.5;,2of2"}));
    ASSERT_TRUE(LoadVotes(ctx, "2:Revote", 1));
    EXPECT_EQ(votesOf(ctx), QStringList({"-1", "-1", "2.5", ""}));
}

TEST_F(SavedVotes, ResponseTimesAndTypedNames)
{
    ScopedSeparators commaMachine(",", ".");
    ctx.WLSUseResponsesAsNames = true;
    ctx.oPres->GetTags()->Add("Participant Names", "old");
    setVotes(ctx, {"-1", "-2", ""});
    ctx.voteTimes.redim(2, -1);
    ctx.voteTimes(0) = 1.2345f;
    ctx.voteTimes(2) = 99;   // top element: never saved
    SaveVotes(ctx, 0);
    EXPECT_EQ(savedFields("TLXProcessTime"), QStringList{"1.235;-1;"});
    EXPECT_EQ(ctx.oPres->GetTags()->Item("Participant Names"), "old") << "nobody answered";

    setVotes(ctx, {"1|Ann", "-1", "Bob", ""});
    SaveVotes(ctx, 0);
    EXPECT_EQ(ctx.oPres->GetTags()->Item("Participant Names"), "1^^Ann|3^^Bob|");
}

struct LoadCase {
    const char* name;
    const char* tag;
    short item;
    QStringList votes;   // empty: nothing loaded
};
class LoadLine : public SavedVotes, public ::testing::WithParamInterface<LoadCase> {};

TEST_P(LoadLine, RebuildsVotesFromTheLastLine)
{
    slideTags()->Add("TLXVOTES", GetParam().tag);
    EXPECT_EQ(LoadVotes(ctx, "2:Revote", GetParam().item), !GetParam().votes.isEmpty());
    EXPECT_EQ(votesOf(ctx), GetParam().votes);
}

INSTANTIATE_TEST_SUITE_P(
    Tags, LoadLine,
    ::testing::Values(LoadCase{"Tokens", "d,t,1;-;\r\nd,t,3;X;-;A;-1;\r\n", -1, {"3", "-2", "-1", "10", "-1", ""}},
                      LoadCase{"LfAlone", "d,t,1;-;\nd,t,3;X;\n", -1, {"3", "-2", ""}},
                      LoadCase{"CrAlone", "d,t,1;\rd,t,4;5;\r\r", -1, {"4", "5", ""}},
                      LoadCase{"MarkersDropped", "d,t,2;1;\r\n99\r\n99\r\n", -1, {"2", "1", ""}},
                      LoadCase{"OnlyMarkers", "99\r\n99", -1, {}},
                      LoadCase{"Quoted", "d,t,\"1;2;\"", -1, {"1", "2", ""}},
                      LoadCase{"ItemAnyCase", "d,t,1;,1of2\r\nd,t,2;,2of2\r\nd,t,3;,1OF2\r\n", 0, {"3", ""}},
                      LoadCase{"ItemTenIsNotOne", "d,t,7;,10of10\r\n", 0, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SavedVotes, SlidesByIndexOrIdAndGroupFilter)
{
    slideTags(3)->Add("TLXVOTES", "d,t,1;2;3;4;\r\n");
    EXPECT_FALSE(LoadVotes(ctx, "3", -1)) << "a reference needs a \":\"";
    EXPECT_TRUE(LoadVotes(ctx, "3:Revote", -1)) << "the last slide is an index";
    const long id = ctx.oPres->GetSlides()->Item(3)->SlideID();
    ASSERT_GT(id, 3);
    EXPECT_TRUE(LoadVotes(ctx, QString::number(id) + ":Reshow", -1));
    EXPECT_THROW(LoadVotes(ctx, "4000:Revote", -1), VbError);

    ctx.groupFilter.redim(3, 1);
    ctx.groupFilter(1) = 0;
    ctx.groupFilter(3) = 0;   // the filter's last element is never applied
    ctx.arg1 = "TLXGROUP";
    ASSERT_TRUE(LoadVotes(ctx, "3:Revote", -1));
    EXPECT_EQ(votesOf(ctx), QStringList({"1", "-1", "3", "4", ""}));
}

// Two vote processes on one deck: neither loses the other's line.
TEST(SavedVotesOnDisk, ConcurrentProcessesKeepBothLines)
{
    QTemporaryDir dir;
    const QString deckPath = dir.filePath("talk.pptx");
    QFile f(deckPath);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(host::Deck::blank(2).toZip());
    f.close();
    host::PptxHost first(deckPath), second(deckPath);
    TestRun a, b;
    for (auto [run, host, vote] : {std::tuple{&a, &first, "1"}, std::tuple{&b, &second, "2"}}) {
        run->ctx.oPPT = host;
        run->ctx.oPres = host->ActivePresentation();
        run->ctx.currentSlide = 1;
        run->ctx.CommitPresentation = [host] { host->Commit(); };
        setVotes(run->ctx, {vote, ""});
        SaveVotes(run->ctx, 0);
    }
    host::PptxHost reader(deckPath);
    const QString saved = reader.ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item("TLXVOTES");
    EXPECT_EQ(saved.count("\r\n"), 2);
    EXPECT_TRUE(saved.contains(",1;\r\n") && saved.contains(",2;\r\n")) << qPrintable(saved);
}

} // namespace
