#include "foundation/host.h"
#include "foundation/vb_error.h"
#include "host/deck.h"
#include "host/deck_host.h"
#include "support/error_reports.h"
#include "support/fake_forms.h"
#include "support/qt_print.h"
#include "support/test_context.h"
#include "vote/instances.h"
#include "vote/vote_driver.h"
#include "vote/vote_main.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::ExpectErrorReports;
using tallix::testing::FakeForms;
using tallix::testing::TestRun;

namespace {

const QString kFourOptions = QStringLiteral(
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType></graph_info></tlxfile>");

class StartUp : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::HostConfig config;
    std::unique_ptr<host::MemoryHost> ppt;
    FakeForms forms{ctx};
    int exits = 0;

    StartUp()
    {
        config.showRunning = true;
        config.showSlide = 2;
        ppt = std::make_unique<host::MemoryHost>(3, config);
        ctx.oPPT = ppt.get();
        ctx.oPres = ppt->ActivePresentation();
        ctx.app.processId = 77;
        QFile::copy(TALLIX_SOURCE_DIR "/data/Default.xml", run.t.path("app/Default.xml"));
        ctx.terminator = [this](int code) {
            ++exits;
            throw ProcessExit{code};
        };
        // The controller answers BaseInfo at once, as a room with one base does.
        forms.link.onCommand = [this](const QString& c) {
            if (c == "BaseInfo" && forms.comms)
                forms.comms->oTLx_FromTLXCtrl("BASETYPE=TALLIX\r\nKEYPADSNOTVOTEDHI=20\r\nMAXKEYPADS=20\r\n");
        };
    }

    host::Slide* slide(int n) { return ctx.oPres->GetSlides()->Item(n); }
    QString terminated() { return ctx.oPres->GetTags()->Item("tlxVoteTerminated"); }
    void launch(const QString& line)
    {
        ctx.commandLine = line;
        try {
            Main(ctx);
        } catch (const ProcessExit&) {
        }
    }
};

struct SplitCase {
    const char* line;
    const char* arg1;
    const char* arg2;
    const char* arg5;
    int slide;
};

class Splitter : public StartUp, public ::testing::WithParamInterface<SplitCase> {};

TEST_P(Splitter, CutsTrimsAndUpperCases)
{
    ctx.currentSlide = 0;
    SplitLaunchString(ctx, GetParam().line);
    EXPECT_EQ(ctx.arg1, QString(GetParam().arg1));
    EXPECT_EQ(ctx.arg2, QString(GetParam().arg2));
    EXPECT_EQ(ctx.arg5, QString(GetParam().arg5));
    EXPECT_EQ(ctx.currentSlide, GetParam().slide);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Splitter,
    ::testing::Values(SplitCase{"tlxvote,3", "TLXVOTE", "3", "", 3}, SplitCase{"tlxvote", "TLXVOTE", "", "", 2},
                      SplitCase{"", "", "", "", 2}, SplitCase{" TLXvote , 0 ", "TLXVOTE", "0", "", 2},
                      SplitCase{"TLXVOTE,abc", "TLXVOTE", "ABC", "", 2},
                      SplitCase{"tlxvote,1,,1,nocheck,extra", "TLXVOTE", "1", "NOCHECK", 1}));

TEST_F(StartUp, ASlideWithoutSettingsEndsWithItsReasonAndNoMessage)
{
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(terminated(), "Unable to load vote info\r\n77");
    EXPECT_TRUE(run.t.dialogs.shown.empty()) << run.t.dialogs.shown[0].text.toStdString();
}

TEST_F(StartUp, UnreadableSettingsAreShownThenEndTheRun)
{
    slide(2)->GetTags()->Add("tlxVote", "<tlxfile><vote_info>");
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(terminated(), "Unable to load vote info\r\n77");
    ASSERT_EQ(run.t.dialogs.shown.size(), 1u);
    EXPECT_EQ(run.t.dialogs.shown[0].style, 16);
    EXPECT_TRUE(run.t.dialogs.shown[0].text.endsWith("\r\nError loading vote information\r\nvote error"));
}

TEST_F(StartUp, AGroupActionWithoutAShowEndsSilently)
{
    ppt->config().showRunning = false;
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    launch("TLXGROUP,2,3");
    EXPECT_EQ(exits, 1);
    EXPECT_TRUE(terminated().isEmpty());
    // It ends before the controller is reached at all.
    EXPECT_TRUE(forms.link.sent.isEmpty()) << forms.link.sent.join(" / ").toStdString();
}

TEST_F(StartUp, APresenterWhoLeftTheSlideStopsTheRun)
{
    slide(3)->GetTags()->Add("tlxVote", kFourOptions);
    launch("TLXVOTE,3"); // the show stands on slide 2
    EXPECT_EQ(exits, 1);
}

TEST_F(StartUp, APlainFourOptionVoteTellsTheControllerInOrder)
{
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    host::Shape* answers = slide(2)->GetShapes()->AddTextbox(10, 10, 200, 100);
    answers->SetName("tlx_answers");
    answers->GetTextFrame()->SetText("Red\rGreen\rBlue\rYellow");
    launch("TLXVOTE,2");
    const QStringList sent = forms.link.sent;
    const QStringList expectedPrefix = {"BaseInfo",     "GetVoteInfo",
                                        "options=4",    "StartFrom=1",
                                        "VoteType=9",   "AnswerText=1. Red|2. Green|3. Blue|4. Yellow",
                                        "VoteText=    Vote Now||      1-4"};
    ASSERT_GE(sent.size(), expectedPrefix.size()) << sent.join(" / ").toStdString();
    EXPECT_EQ(sent.mid(0, expectedPrefix.size()), expectedPrefix);
    EXPECT_EQ(ctx.BaseType, "TALLIX");
    EXPECT_EQ(forms.link.voteLoadedCount, 1);
}

TEST_F(StartUp, AbstainIsAnnouncedOnlyWhenAllowed)
{
    slide(2)->GetTags()->Add("tlxVote", QString(kFourOptions).replace("<options>", "<Abstain>True</Abstain><options>"));
    launch("TLXVOTE,2");
    EXPECT_TRUE(forms.link.sent.contains("ABSTAIN=True"));
    EXPECT_EQ(ctx.keypadDisplayText, "    Vote Now||      1-4||   0: Abstain");
}

TEST_F(StartUp, OldChartsAreHiddenBeforeTheVote)
{
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    host::Shape* old = slide(2)->GetShapes()->AddShape(1, 0, 0, 10, 10);
    old->SetName("tallix chart");
    launch("TLXVOTE,2");
    EXPECT_FALSE(old->Visible());
}

// Other vote processes: one that goes after `goesAfter` close requests (never if -1).
class FakeInstances final : public VoteInstances {
public:
    bool PrevInstance() override { return alive; }
    void CloseOthers() override
    {
        ++closes;
        if (goesAfter >= 0 && closes >= goesAfter)
            alive = false;
    }
    void StartAnswering() override { answeringAfterCloses = closes; ++answering; }
    bool alive = true;
    int goesAfter = 1;
    int closes = 0, answering = 0, answeringAfterCloses = -1;
};

struct SecondInstanceCase {
    const char* name;
    bool formerAlive;
    int goesAfter;
    bool internalRestart;
    bool closeAsked;
    double wait;   // seconds start-up spends waiting for it to go
};

class SecondInstance : public StartUp, public ::testing::WithParamInterface<SecondInstanceCase> {};

TEST_P(SecondInstance, AFormerVoteIsAskedToGoWhateverTheDeckSays)
{
    const SecondInstanceCase& c = GetParam();
    FakeInstances others;
    others.alive = c.formerAlive;
    others.goesAfter = c.goesAfter;
    ctx.instances = &others;
    ctx.internalRestart = c.internalRestart;
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    // An earlier vote ended with q: its reason is still in the deck.
    ctx.oPres->GetTags()->Add("tlxVoteTerminated", "Vote finished\r\n12");
    double firstClose = -1, lastWait = -1;
    run.t.pump.setHook([&] {
        if (others.closes > 0 && firstClose < 0)
            firstClose = run.t.clock.secondsSinceMidnight();
        if (others.closes > 0 && others.alive)
            lastWait = run.t.clock.secondsSinceMidnight();
    });
    launch("TLXVOTE,2");
    EXPECT_EQ(others.closes > 0, c.closeAsked) << c.name;
    EXPECT_NEAR(lastWait < 0 ? 0 : lastWait - firstClose, c.wait, 0.05) << c.name;
    // This vote answers the next one only once the former is dealt with, and runs.
    EXPECT_EQ(others.answering, 1) << c.name;
    EXPECT_EQ(others.answeringAfterCloses, others.closes) << c.name;
    EXPECT_TRUE(terminated().isEmpty()) << c.name;
    EXPECT_TRUE(forms.link.sent.contains("StartVote")) << c.name;
    EXPECT_EQ(exits, 0) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Table, SecondInstance,
    ::testing::Values(SecondInstanceCase{"goes at once", true, 1, false, true, 0},
                      SecondInstanceCase{"never goes: one second at most", true, -1, false, true, 1.0},
                      SecondInstanceCase{"none running", false, 1, false, false, 0},
                      SecondInstanceCase{"own restart", true, 1, true, false, 0}),
    [](const auto& info) { return "Case" + std::to_string(info.index); });

// A host that fails where start-up asks for the add-in's folder.
class FailingAddInHost final : public host::MemoryHost {
public:
    using MemoryHost::MemoryHost;
    QString AddInPath(const QString&) const override { throw VbError(91, "Object variable not set"); }
};

TEST_F(StartUp, ARuntimeErrorInStartUpIsReportedAndEndsTheProcess)
{
    ppt = std::make_unique<FailingAddInHost>(3, config);
    ctx.oPPT = ppt.get();
    ctx.oPres = ppt->ActivePresentation();
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    ExpectErrorReports reports;
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    ASSERT_EQ(reports.count(), 1);
    EXPECT_TRUE(reports.all().contains("Procedure: Main\r\n")) << reports.all().toStdString();
    EXPECT_FALSE(forms.link.sent.contains("GetVoteInfo"));
}

TEST_F(StartUp, ARuntimeErrorInTheDriverIsReportedAndEndsTheProcess)
{
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    // No base answers, so the driver waits for one; the wait fails a second in.
    forms.link.onCommand = nullptr;
    double asked = -1;
    run.t.pump.setHook([&] {
        const double now = run.t.clock.secondsSinceMidnight();
        if (asked < 0 && forms.link.sent.contains("StartFrom=1"))
            asked = now;
        if (asked >= 0 && now - asked > 1.0)
            throw VbError(5, "Invalid procedure call or argument");
    });
    ExpectErrorReports reports;
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    ASSERT_EQ(reports.count(), 1);
    EXPECT_TRUE(reports.all().contains("execVote")) << reports.all().toStdString();
    EXPECT_FALSE(forms.link.sent.contains("StartVote"));
}

// A table named `name` with these rows, pasted on slide 2 of `deck` at (10, 20) points.
void addTable(host::Deck& deck, const QString& name, const QList<QStringList>& rows)
{
    QString xml = QStringLiteral(
        "<w xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\" "
        "xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\">"
        "<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id=\"1\" name=\"%1\"/><p:cNvGraphicFramePr/><p:nvPr/>"
        "</p:nvGraphicFramePr><p:xfrm><a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"2540000\" cy=\"508000\"/></p:xfrm>"
        "<a:graphic><a:graphicData uri=\"http://schemas.openxmlformats.org/drawingml/2006/table\"><a:tbl><a:tblGrid>")
                      .arg(name);
    for (qsizetype c = 0; c < rows[0].size(); ++c)
        xml += "<a:gridCol w=\"1270000\"/>";
    xml += "</a:tblGrid>";
    for (const QStringList& row : rows) {
        xml += "<a:tr h=\"254000\">";
        for (const QString& cell : row)
            xml += "<a:tc><a:txBody><a:bodyPr/><a:lstStyle/><a:p>" +
                   (cell.isEmpty() ? QString() : "<a:r><a:t>" + cell + "</a:t></a:r>") +
                   "</a:p></a:txBody><a:tcPr/></a:tc>";
        xml += "</a:tr>";
    }
    xml += "</a:tbl></a:graphicData></a:graphic></p:graphicFrame></w>";
    host::Clip clip;
    clip.xml = xml.toUtf8();
    host::Op paste;
    paste.kind = host::Op::Paste;
    paste.slideId = deck.slideIdAt(2);
    paste.name = name;
    deck.apply(paste, &clip);
}

const QString kObjectVote = QStringLiteral(
    "<tlxfile><vote_info><vType>0</vType><options>3</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>6</GraphType></graph_info><tlx_object1><Top>99</Top></tlx_object1></tlxfile>");

class ObjectVoteStart : public StartUp {
protected:
    // Options whose "tlx_object" table is in `present` carry a result of an earlier run.
    void prepare(const QList<int>& present)
    {
        host::Deck deck = host::Deck::blank(3);
        addTable(deck, "tlx_answers", {{"Red", "r"}, {"Green", "g"}, {"Blue", "b"}});
        for (int n : present)
            addTable(deck, QStringLiteral("tlx_object%1").arg(n), {{"Option", "(2) 50%"}, {"x", "y"}});
        ppt = std::make_unique<host::MemoryHost>(std::move(deck), config);
        ctx.oPPT = ppt.get();
        ctx.oPres = ppt->ActivePresentation();
        slide(2)->GetTags()->Add("tlxVote", kObjectVote);
        launch("TLXVOTE,2");
    }
    QString cell(const QString& shape, int row, int column)
    {
        return slide(2)->GetShapes()->Item(shape)->GetTable()->Cell(row, column)->Text();
    }
};

TEST_F(ObjectVoteStart, ClearsEachOptionsOwnResultAndKeepsTheAnswers)
{
    prepare({1, 2, 3});
    for (const char* shape : {"tlx_object1", "tlx_object2", "tlx_object3"}) {
        EXPECT_EQ(cell(shape, 1, 2), "") << shape;
        EXPECT_EQ(cell(shape, 1, 1), "Option") << shape;
        EXPECT_EQ(cell(shape, 2, 2), "y") << shape;
    }
    for (int row = 1; row <= 3; ++row)
        EXPECT_FALSE(cell("tlx_answers", row, 2).isEmpty()) << row;
    // The shape's place, moved since the settings were written, goes back into them.
    EXPECT_TRUE(slide(2)->GetTags()->Item("TLXVOTE").contains("<Top>20</Top>"))
        << slide(2)->GetTags()->Item("TLXVOTE").toStdString();
}

TEST_F(ObjectVoteStart, AMissingShapeEndsThePassAndTheStartGoesOn)
{
    // One handler for the whole pass: after option 2's missing shape nothing more is
    // cleared, and start-up carries on to the driver.
    prepare({1, 3});
    EXPECT_EQ(cell("tlx_object1", 1, 2), "");
    EXPECT_EQ(cell("tlx_object3", 1, 2), "(2) 50%");
    EXPECT_TRUE(forms.link.sent.contains("GetVoteInfo"));
}

TEST(KeypadDisplayText, LettersNumbersAndAbstain)
{
    TestRun run;
    RunContext& c = run.ctx;
    c.optionCount = 5;
    c.startFrom = 1;
    c.Quilmark_Display = 1;
    EXPECT_EQ(KeypadDisplayText(c), "    Vote Now||      A-E");
    c.Quilmark_Display = 0;
    c.startFrom = 0;
    c.allowAbstain = true;
    EXPECT_EQ(KeypadDisplayText(c), "    Vote Now||      0-4||   0: Abstain");
}

TEST_F(StartUp, TopOptionTwelveIsRefusedWithoutScalepads)
{
    slide(2)->GetTags()->Add("tlxVote", QString(kFourOptions).replace("<options>4", "<options>12"));
    launch("TLXVOTE,2");
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_EQ(run.t.dialogs.shown.back().text, "You need Scalepad keypads to use this vote type");
    EXPECT_EQ(exits, 1);
    EXPECT_FALSE(forms.link.sent.contains("StartVote"));
}

TEST_F(StartUp, ElevenOptionsRunOnPlainKeypads)
{
    slide(2)->GetTags()->Add("tlxVote", QString(kFourOptions).replace("<options>4", "<options>11"));
    launch("TLXVOTE,2");
    EXPECT_TRUE(run.t.dialogs.shown.empty());
    EXPECT_TRUE(forms.link.sent.contains("options=11"));
    EXPECT_TRUE(forms.link.sent.contains("VoteType=9"));
    EXPECT_TRUE(forms.link.sent.contains("StartVote"));
    EXPECT_EQ(exits, 0);
}

TEST_F(StartUp, ShutdownRemovesOnlyTheShapesTheHostAddedDuringTheRun)
{
    host::Shapes* shapes = slide(2)->GetShapes();
    shapes->AddShape(1, 0, 0, 10, 10)->SetName("Picture 1");
    RecordPPTSlideObjectNames(ctx, slide(2));
    for (const char* name : {"Rectangle 5", "tlx_answers", "TLXloading", "Tallix Chart", "my tallix chart 2"})
        shapes->AddShape(1, 0, 0, 10, 10)->SetName(name);
    RemoveObjectsAutomaticallyAddedByPPT(ctx, slide(2));
    QStringList left;
    for (int i = 1; i <= shapes->Count(); ++i)
        left << shapes->Item(i)->Name();
    EXPECT_FALSE(left.contains("Rectangle 5"));
    for (const char* name : {"Picture 1", "tlx_answers", "TLXloading", "Tallix Chart", "my tallix chart 2"})
        EXPECT_TRUE(left.contains(name)) << name;

    // With nothing remembered nothing is removed.
    shapes->AddShape(1, 0, 0, 10, 10)->SetName("Rectangle 6");
    ctx.slideShapeNames.clear();
    RemoveObjectsAutomaticallyAddedByPPT(ctx, slide(2));
    EXPECT_EQ(shapes->Item(shapes->Count())->Name(), "Rectangle 6");
}

} // namespace

namespace {

struct DispatchCase {
    int graphType;
    int vType;
    const char* expectation; // "open": the vote stays open on the base; "refused: <text start>"; "nothing"
};

class Dispatch : public StartUp, public ::testing::WithParamInterface<DispatchCase> {};

TEST_P(Dispatch, PicksTheRunnerByChartFamilyAndMode)
{
    const DispatchCase& c = GetParam();
    slide(2)->GetTags()->Add("tlxVote", QStringLiteral("<tlxfile><vote_info><vType>%1</vType><options>4</options>"
                                                       "<startFrom>1</startFrom><TimeLeft>1</TimeLeft></vote_info>"
                                                       "<graph_info><GraphType>%2</GraphType></graph_info></tlxfile>")
                                             .arg(c.vType)
                                             .arg(c.graphType));
    launch("TLXVOTE,2");
    const QString expectation = QString::fromLatin1(c.expectation);
    const bool started = forms.link.sent.contains("StartVote");
    if (expectation == "open") {
        EXPECT_TRUE(started);
        EXPECT_EQ(exits, 0) << "the vote goes on by events";
    } else if (expectation.startsWith("refused: ")) {
        EXPECT_FALSE(started);
        ASSERT_FALSE(run.t.dialogs.shown.empty());
        EXPECT_TRUE(run.t.dialogs.shown.back().text.startsWith(expectation.mid(9)));
        EXPECT_EQ(exits, 1);
    } else {
        EXPECT_FALSE(started);
        EXPECT_EQ(exits, 0);
        EXPECT_TRUE(run.t.dialogs.shown.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Dispatch,
    ::testing::Values(DispatchCase{2, 0, "open"}, DispatchCase{13, 0, "open"}, DispatchCase{10, 3, "open"},
                      // Count-downs run on the votes-cast window's clock: see the live vote and program tests.
                      // A series with no selections set does not run.
                      DispatchCase{2, 2, "refused: This series vote has no selections"},
                      DispatchCase{8, 2, "refused: This series vote has no selections"},
                      DispatchCase{8, 0, "open"}, DispatchCase{6, 0, "open"},
                      // A rating vote with no items set does not run.
                      DispatchCase{7, 0, "refused: This rating vote has no items"},
                      DispatchCase{15, 0, "nothing"}));

} // namespace

namespace {

// The group action: slide 3's result for the keypads that gave an answer on slide 2.
class GroupPath : public StartUp {
protected:
    GroupPath()
    {
        config.showSlide = 3;
        ppt = std::make_unique<host::MemoryHost>(3, config);
        ctx.oPPT = ppt.get();
        ctx.oPres = ppt->ActivePresentation();
        slide(3)->GetTags()->Add("tlxVote", kFourOptions);
    }
    void defaultGroup(int n) { ctx.oPres->GetTags()->Add("tlx_DefaultGroup", QString::number(slide(n)->SlideID()) + "\r\n1"); }
    QString shown() const { return run.t.dialogs.shown.empty() ? QString() : run.t.dialogs.shown.back().text; }
    std::vector<short> filter() const { return {ctx.groupFilter.begin(), ctx.groupFilter.end()}; }
};

TEST_F(GroupPath, RefusesWhatCannotBeAGroupAndSaysWhy)
{
    struct Case {
        const char* what;
        int groupSlide;        // 0: none set
        const char* saved;     // TLXVOTES of the group slide
        const char* message;   // empty: ends without one
    };
    const Case cases[] = {
        {"no default group", 0, "", "No default group defined"},
        {"a group slide after the question", 3, "", "Default group slide must be before the current slide"},
        {"no votes on it", 2, "", "No votes on the default group slide"},
        {"no finished line", 2, "99\r\n01 Nov 2026,10:00:00,\r\n", ""},
    };
    for (const Case& c : cases) {
        run.t.dialogs.shown.clear();
        exits = 0;
        ctx.oPres->GetTags()->Delete("tlx_DefaultGroup");
        if (c.groupSlide)
            defaultGroup(c.groupSlide);
        slide(2)->GetTags()->Add("TLXVOTES", QString::fromLatin1(c.saved));
        launch("TLXGROUP,3,1");
        EXPECT_EQ(exits, 1) << c.what;
        EXPECT_EQ(shown(), QString::fromLatin1(c.message)) << c.what;
        EXPECT_FALSE(forms.link.sent.contains("StartVote")) << c.what;
    }
}

TEST_F(GroupPath, KeepsTheKeypadsThatGaveTheAnswerInTheLastFinishedLine)
{
    defaultGroup(2);
    // An older line, the current one, and a marker of an older writer after it.
    slide(2)->GetTags()->Add("TLXVOTES", "01 Nov 2026,10:00:00,2;2;2;2;\r\n02 Nov 2026,10:00:00,1;2;-;1;\r\n99\r\n");
    struct Case {
        const char* launch;
        std::vector<short> filter;
    };
    const Case cases[] = {
        {"TLXGROUP,3,1", {1, 0, 0, 1, 0}},
        {"TLXGROUP,3,2", {0, 1, 0, 0, 0}},
        {"TLXGROUP,3,4", {0}},   // nobody chose it: no filter, everyone counts
    };
    for (const Case& c : cases) {
        launch(c.launch);
        EXPECT_EQ(filter(), c.filter) << c.launch;
        EXPECT_FALSE(forms.link.sent.contains("StartVote")) << c.launch;
    }
    EXPECT_EQ(slide(2)->GetTags()->Item("TLXVOTES"),
              "01 Nov 2026,10:00:00,2;2;2;2;\r\n02 Nov 2026,10:00:00,1;2;-;1;\r\n99\r\n");
}

} // namespace
