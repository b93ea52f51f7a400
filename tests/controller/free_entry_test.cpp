// Free-entry votes: typed numbers and text, as the decoder takes them, as they are rounded,
// checked against the banned words, shown live on the slide and kept at the end.

#include "controller_fixture.h"

#include "controller/free_entry_results.h"
#include "controller/live_text.h"
#include "controller/scalepad_votes.h"
#include "foundation/host.h"
#include "foundation/text_files.h"

using namespace tallix;
using tallix::testing::ControllerTest;

namespace {

TEST_F(ControllerTest, TypedNumbersRoundAsAPersonRoundsThem)
{
    struct Case {
        const char* typed;
        short places;
        short figures;
        double shown;
    };
    const Case cases[] = {
        {"12.25", 1, 0, 12.3},  {"12.24", 1, 0, 12.2}, {"-2.25", 1, 0, -2.3}, {"7.5", 0, 0, 7.5},
        {"12345", 0, 2, 12000}, {"12500", 0, 2, 13000}, {"-2.5", 0, 2, -3},   {"-150", 0, 2, -200},
        {"-2.5", 0, 1, 0},   // the sign takes the one figure
        {"42", 0, 5, 42},       {"-1", 2, 0, 0},        {"", 0, 0, 0},
    };
    for (const Case& c : cases) {
        ctx.NumberDecimalPlaces = c.places;
        ctx.NumberSigFigs = c.figures;
        EXPECT_DOUBLE_EQ(ConvertVoteToFormattedNumber(ctx, c.typed), c.shown) << c.typed;
    }
}

TEST_F(ControllerTest, BannedWordsAreWholeWordsInAnyCase)
{
    ctx.bannedWords = "|spam|ärger|";
    const std::pair<const char*, bool> cases[] = {
        {"lovely day", true},  {"no SPAM please", false}, {"spam, eggs", true},   // a comma keeps it whole
        {"ÄRGER", false},       {"spammer", true},         {"  ", true},
    };
    for (auto [text, ok] : cases)
        EXPECT_EQ(CheckTextVoteAgainstBannedList(ctx, QString::fromUtf8(text)), ok) << text;
    ctx.bannedWords.clear();
    EXPECT_TRUE(CheckTextVoteAgainstBannedList(ctx, "spam"));   // no list, nothing banned
}

TEST(UserTextFiles, AreUtf8OrElseWindows1252)
{
    EXPECT_EQ(DecodeUserText(QByteArray("\xEF\xBB\xBF" "caf\xC3\xA9")), QString::fromUtf8("café"));
    EXPECT_EQ(DecodeUserText(QByteArray("caf\xE9 \x80")), QString::fromUtf8("café €"));
    EXPECT_EQ(DecodeUserText(QByteArray()), QString());
}

TEST_F(ControllerTest, TheBannedListIsReadFromTheUsersFolder)
{
    run.t.write(run.t.path("appdata/tallix/textVoteBannedWordList.txt"), "\xEF\xBB\xBF" "Spam\r\n\xC3\x84rger\nfoo");
    EXPECT_EQ(LoadBannedWords(ctx), QString::fromUtf8("|spam|ärger|foo|"));
}

TEST_F(ControllerTest, AFreeNumberCountsOnlyAsAPlainDecimal)
{
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 0;
    ctx.controllerVoteType = "11";
    const std::pair<QString, bool> cases[] = {
        {"12", true},   {"-3", true},     {"4.75", true}, {"X", true},    {"12abc", false},
        {"abc", false}, {"1.", false},    {".5", false},  {"1e3", false}, {"--1", false},
        {QString(1001, u'1'), false},
    };
    for (const auto& [value, counts] : cases)
        EXPECT_EQ(FreeEntryValueCounts(ctx, value), counts) << value.left(20).toStdString();
    ctx.FractionalJoltTEXT = 1;   // text takes anything short enough
    ctx.controllerVoteType = "7";
    EXPECT_TRUE(FreeEntryValueCounts(ctx, u"12abc"));
    EXPECT_FALSE(FreeEntryValueCounts(ctx, QString(1001, u'a')));

    ctx.FractionalJoltTEXT = 0;
    ctx.controllerVoteType = "99";
    feed("[1;12abc],[2;7.25],\r\n");
    EXPECT_EQ(vote(1), "-1");
    EXPECT_EQ(vote(2), "7.25");
}

TEST(AnswerRanges, AreTriedInOrder)
{
    struct Case {
        const char* text;
        bool reads;
        double lower, upper;
    };
    const Case cases[] = {
        {"<10", true, 0, 10 - 1e-9},  {"> 20", true, 20 + 1e-9, 999999}, {"10-20", true, 10, 20},
        {"<10-20", true, 0, 10 - 1e-9},   // "<" wins over "-"
        {"=5", true, 5, 5},           {"7", true, 7, 7},                   {"0", false, 0, 0},
        {"lots", false, 0, 0},
    };
    for (const Case& c : cases) {
        AnswerRange r;
        ASSERT_EQ(ReadAnswerRange(c.text, r), c.reads) << c.text;
        if (c.reads) {
            EXPECT_DOUBLE_EQ(r.lower, c.lower) << c.text;
            EXPECT_DOUBLE_EQ(r.upper, c.upper) << c.text;
        }
    }
}

TEST(QuickSortRows, OrdersByTheKeyAndCarriesTheRow)
{
    QList<QStringList> rows = {{"3", "c"}, {"1", "a"}, {"2", "b"}, {"1", "a2"}, {"3", "c2"}, {"2", "b2"}};
    QuickSortRows(rows, 0, 1, 0, int(rows.size()) - 1);
    QStringList keys, values;
    for (const QStringList& r : rows)
        keys << r[0], values << r[1].left(1);
    EXPECT_EQ(keys, QStringList({"1", "1", "2", "2", "3", "3"}));
    EXPECT_EQ(values, QStringList({"a", "a", "b", "b", "c", "c"}));   // each value stays with its key
}

TEST(DistinctAnswers, AreCountedWithoutRegardToCase)
{
    const QList<AnswerCount> counts = CountDistinctAnswers({"Tea", "coffee", "tea", "TEA", "Café", "café"});
    ASSERT_EQ(counts.size(), 3);
    EXPECT_EQ(counts[0].answer, "Tea");
    EXPECT_EQ(counts[0].count, 3);
    EXPECT_EQ(counts[2].count, 2);
}

TEST_F(ControllerTest, ALiveListWithoutItsPlaceEndsTheRun)
{
    EXPECT_THROW(LiveTextDisplay(ctx, 1, "hello"), ProcessExit);
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_EQ(run.t.dialogs.shown.front().text,
              "Unable to locate the tallix answers place holder, please re-run slide editor");
    EXPECT_EQ(exits, 1);
}

class LiveList : public ControllerTest {
protected:
    LiveList()
    {
        ctx.FixedFree = 1;
        ctx.FractionalJoltTEXT = 1;
        ctx.WLSShow = true;
        ctx.WLSDisplay = 3;
        ctx.responseList = QStringList{QString()};
        host::Shape* s = ctx.oPres->GetSlides()->Item(1)->GetShapes()->AddTextbox(10, 10, 300, 200);
        s->SetName("tlx_answers-BAK");
        s->SetVisible(false);
    }
    QString shown()
    {
        host::Shapes* shapes = ctx.oPres->GetSlides()->Item(1)->GetShapes();
        for (int i = 1; i <= shapes->Count(); ++i)
            if (shapes->Item(i)->Name() == "tlx_answers")
                return shapes->Item(i)->GetTextFrame()->Text();
        return "<none>";
    }
};

TEST_F(LiveList, NewestOnTopTheOldestDropsOff)
{
    for (const char* a : {"one", "two", "three", "four"})
        EXPECT_FALSE(LiveTextDisplay(ctx, 1, a));
    EXPECT_EQ(shown(), "four\rthree\rtwo");   // made from the backup, which stays
    EXPECT_EQ(ctx.responseList, QStringList({"one", "two", "three", "four"}));
    EXPECT_EQ(ctx.oPres->GetSlides()->Item(1)->GetTags()->Item("TLXLIVEDATAISVISIBLE"),
              "This slide has live data visible");
}

TEST_F(LiveList, ModeOnePausesWhenAScreenIsFull)
{
    ctx.WLSListManagementMode = 1;
    for (const char* a : {"one", "two", "three"})
        EXPECT_FALSE(LiveTextDisplay(ctx, 1, a));
    EXPECT_TRUE(LiveTextDisplay(ctx, 2, "four"));
    EXPECT_EQ(shown(), "three\rtwo\rone");
}

TEST_F(LiveList, ANamedKeypadKeepsOneLine)
{
    ctx.WLSUseResponsesAsNames = true;
    LiveTextDisplay(ctx, 1, "hello world");
    LiveTextDisplay(ctx, 2, "tea");
    LiveTextDisplay(ctx, 1, "good bye");
    EXPECT_EQ(shown(), "[2] Tea\r[1] Good Bye");
    EXPECT_EQ(ctx.liveLineCount, 2);
}

TEST_F(LiveList, TheScrollWrapsAndNeverShowsAnAnswerTwice)
{
    ctx.WLSListManagementMode = 2;
    ctx.WLSDisplay = 4;
    ctx.responseList = {"a", "b", "c"};
    ctx.scrollPos = 2;
    LiveAnswersShape(ctx);
    JolttextScrollTick(ctx);
    EXPECT_EQ(shown(), "c\ra\rb");
    EXPECT_EQ(ctx.scrollPos, 0);
}

TEST_F(LiveList, StoredAnswersGoInChunksOfTheOptionCount)
{
    ctx.Joltdisplay = 0;
    ctx.WLSListManagementMode = 2;
    ctx.optionCount = 2;
    host::Tags* tags = ctx.oPres->GetSlides()->Item(1)->GetTags();
    for (const char* stale : {"1tlx_answers", "2tlx_answers", "3tlx_answers"})
        tags->Add(stale, "stale");
    ctx.responseList = {"a", "b", "-1", "c", "d", "e"};
    JolttextVote_ResultsDisplay(ctx);
    EXPECT_EQ(tags->Item("tlx_answers"), "a\r\nb");
    EXPECT_EQ(tags->Item("1tlx_answers"), "c\r\nd");
    EXPECT_EQ(tags->Item("2tlx_answers"), "e");
    EXPECT_EQ(tags->Item("tlx_answers_count"), "2");
    EXPECT_TRUE(tags->Item("3tlx_answers").isEmpty());
}

TEST_F(ControllerTest, ScalepadSetupTellsTheQuestionAnswersAndAllowance)
{
    host::Shapes* shapes = ctx.oPres->GetSlides()->Item(1)->GetShapes();
    host::Shape* q = shapes->AddTextbox(0, 0, 100, 20);
    q->SetName("tlx_question");
    q->GetTextFrame()->SetText("Best fruit?");
    EXPECT_EQ(ScalepadSetup(ctx), 0);   // no answers: only the two texts of the keypad's screen
    EXPECT_EQ(link.sent, QStringList({"PreVoteText=Best fruit?", "PostVotedText=Vote Sent"}));

    host::Shape* a = shapes->AddTextbox(0, 30, 100, 60);
    a->SetName("tlx_answers");
    a->GetTextFrame()->SetText("Apple\r\nPear\r\nPlum");
    struct Case {
        short graphType;
        const char* voteType;
        const char* answers;
        const char* allocation;
        const char* points;
        const char* limits;
    };
    ctx.MaxPointsAvailable = 10;
    ctx.MaxPointsPerItem = 3;
    ctx.Iterations = 2;
    ctx.optionCount = 5;
    const Case cases[] = {
        {2, "9", "AnswerText=1. Apple|2. Pear|3. Plum", "Allocation=3", "Points=10", "Limits=2"},
        {2, "11", "AnswerText=Apple|Pear|Plum", "Allocation=3", "Points=10", "Limits=2"},
        // A rating vote: every item of the answers may take every mark.
        {7, "9", "AnswerText=1. Apple|2. Pear|3. Plum", "Allocation=5", "Points=15", "Limits=3"},
    };
    for (const Case& c : cases) {
        link.sent.clear();
        ctx.GraphType = c.graphType;
        ctx.controllerVoteType = c.voteType;
        EXPECT_EQ(ScalepadSetup(ctx), 3);
        EXPECT_EQ(link.sent.mid(2), QStringList({c.answers, c.allocation, c.points, c.limits})) << c.voteType;
    }
}

class NumbersTable : public ControllerTest {
protected:
    // A header and `templates` template rows, as the slide editor leaves them.
    void makeTable(int templates)
    {
        host::Shape* t = ctx.oPres->GetSlides()->Item(1)->GetShapes()->AddTable(1 + templates, 2, 10, 10, 300, 100);
        t->SetName("tlx_answers");
        host::Table* table = t->GetTable();
        table->Cell(1, 1)->SetText("Value");
        table->Cell(1, 2)->SetText("Participant");
        for (int r = 2; r <= 1 + templates; ++r) {
            table->Cell(r, 1)->SetText("^High^");
            table->Cell(r, 2)->SetText("^Keypad ^");
        }
    }
    QStringList column(int c)
    {
        host::Table* table = ctx.oPres->GetSlides()->Item(1)->GetShapes()->Item("tlx_answers")->GetTable();
        QStringList out;
        for (int r = 2; r <= table->RowCount(); ++r)
            out << table->Cell(r, c)->Text();
        return out;
    }
};

TEST_F(NumbersTable, HoldsEachValueInOrderFromItsTemplateRow)
{
    struct Case {
        int templates;
        short order;
        bool names;
        QStringList values, names_;
    };
    const Case cases[] = {
        {2, 0, true, {"2.0", "3.5", "10.0"}, {"Cy", "Ann", "Bob"}},   // more values than rows
        {5, 0, false, {"2.0", "3.5", "10.0"}, {"", "", ""}},                          // fewer: the rest go
        {3, 1, true, {"10.0", "3.5", "2.0"}, {"Bob", "Ann", "Cy"}},   // descending
    };
    for (const Case& c : cases) {
        host::Shapes* shapes = ctx.oPres->GetSlides()->Item(1)->GetShapes();
        for (int i = shapes->Count(); i >= 1; --i)
            if (shapes->Item(i)->Name() == "tlx_answers")
                shapes->Item(i)->Delete();
        makeTable(c.templates);
        ctx.FreeNumDisplay_Order = c.order;
        ctx.FreeNumDisplay_ShowKP = c.names;
        ctx.NumberDecimalPlaces = 1;
        ResetVoteArrays(ctx);
        ctx.votes(0) = "3.5";
        ctx.votes(1) = "10";
        ctx.votes(2) = "2";
        ctx.votes(3) = "-1";
        ctx.participants(1).name = "Ann";
        ctx.participants(2).name = "Bob";
        ctx.participants(3).name = "Cy";
        Numeric_ResultsDisplay(ctx);
        EXPECT_EQ(column(1), c.values) << c.templates;
        EXPECT_NEAR(ctx.oPres->GetSlides()->Item(1)->GetShapes()->Item("tlx_answers")->Height(), 100, 0.5)
            << "the table keeps its box";
        EXPECT_EQ(column(2), c.names_) << c.templates;
    }
}

} // namespace
