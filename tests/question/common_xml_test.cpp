#include "foundation/numbers.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "support/error_reports.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::ExpectErrorReports;
using tallix::testing::TestRun;

namespace {

class CommonXml : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;

    void load(const QString& xml)
    {
        ASSERT_TRUE(settingsDocOf(ctx).loadXML(xml)) << settingsDocOf(ctx).parseError().reason.toStdString();
    }
    QString xml() { return settingsDocOf(ctx).xml(); }
};

TEST_F(CommonXml, GetNodesListsKeysInOrderWithAttributes)
{
    load("<tlxfile><vote_info><vType>1</vType><!-- note --><options a=\"x\" b=\"y\">4</options></vote_info></tlxfile>");
    EXPECT_EQ(XMLGetNodes(ctx, "vote_info"), "vType|1\r\noptions|4|a=x|b=y");
}

struct GetNodesCase {
    const char* name;
    const char* xml;
    const char* section;
    const char* expected;
};

class GetNodesOutcomes : public CommonXml, public ::testing::WithParamInterface<GetNodesCase> {};

TEST_P(GetNodesOutcomes, MatchTheStoresRules)
{
    load(GetParam().xml);
    EXPECT_EQ(XMLGetNodes(ctx, GetParam().section), QString(GetParam().expected)) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GetNodesOutcomes,
    ::testing::Values(
        GetNodesCase{"absent everywhere", "<tlxfile><a><k>1</k></a></tlxfile>", "quiz_info", "Err - Node does not exist"},
        GetNodesCase{"named only inside a value", "<tlxfile><a><k>quiz_info</k></a></tlxfile>", "quiz_info",
                     "Err - not found"},
        GetNodesCase{"existence ignores case, selection does not", "<tlxfile><Quiz_Info><k>1</k></Quiz_Info></tlxfile>",
                     "quiz_info", "Err - not found"},
        GetNodesCase{"no children", "<tlxfile><a/></tlxfile>", "a", "Err - no children"},
        GetNodesCase{"one empty child gives nothing", "<tlxfile><a><k/></a></tlxfile>", "a", ""},
        GetNodesCase{"nested group lists the grandchildren", "<tlxfile><a><g><x>1</x><y>2</y></g></a></tlxfile>", "a",
                     "x|1\r\ny|2"},
        GetNodesCase{"a CDATA child replaces what came before",
                     "<tlxfile><a><k>1</k><![CDATA[raw]]><m>2</m></a></tlxfile>", "a", "raw\r\nm|2"},
        GetNodesCase{"CDATA key", "<tlxfile><a><Answers><![CDATA[A\r\nB]]></Answers></a></tlxfile>", "a",
                     "Answers|A\nB"}));

TEST_F(CommonXml, AttributeSelection)
{
    load("<tlxfile><s id=\"1\"><k>one</k></s><s id=\"2\"><k>two</k></s></tlxfile>");
    EXPECT_EQ(XMLGetNodes(ctx, "s", "id", "2"), "k|two");
    EXPECT_EQ(XMLGetNodes(ctx, "s", "id", ""), "k|one");
    EXPECT_EQ(SectionXPath("s", "id", "2"), "//s[@id=\"2\"]");
    EXPECT_EQ(XMLGetNodes(ctx, "s", "id", "3"), "Err - not found");
}

TEST_F(CommonXml, GetStringAndGetItemRoundTripAValue)
{
    load("<tlxfile><rank_vote><HighlightColour>255</HighlightColour><HighlightRank>1</HighlightRank>"
         "<g><x>1</x><y>2</y></g></rank_vote></tlxfile>");
    const QString fragment = XMLGetString(ctx, "rank_vote");
    EXPECT_EQ(fragment, "<HighlightColour>255</HighlightColour>\r\n\r\n<HighlightRank>1</HighlightRank>\r\n");
    EXPECT_EQ(XMLGetItem("highlightrank", fragment), "1");
    EXPECT_EQ(XMLGetItem("Missing", fragment), "");
}

TEST(XMLGetItem, StripsCDataMarksAndTrailingLineEndsAndTabs)
{
    EXPECT_EQ(XMLGetItem("Q", "<q><![CDATA[Who?\r\n]]>\t\r\n\n</Q>"), "Who?");
    EXPECT_EQ(XMLGetItem("Q", "<Q>a\r\nb\r</Q>"), "a\r\nb");
}

TEST_F(CommonXml, SetSingleNodeOverwritesOrAdds)
{
    load("<tlxfile><vote_info><vType>1</vType></vote_info></tlxfile>");
    EXPECT_TRUE(XMLSetSingleNode(ctx, "vote_info", "vType", 0));
    EXPECT_FALSE(XMLSetSingleNode(ctx, "vote_info", "options", 4));
    EXPECT_EQ(XMLGetNodes(ctx, "vote_info"), "vType|0\r\noptions|4");
    EXPECT_EQ(xml(), "<tlxfile><vote_info><vType>0</vType><options>4</options>\r\n</vote_info></tlxfile>");
}

TEST_F(CommonXml, SetSingleNodeMakesAMissingSectionLast)
{
    load("<tlxfile><a><k>1</k></a></tlxfile>");
    EXPECT_FALSE(XMLSetSingleNode(ctx, "Font", "Name", QString("Arial")));
    EXPECT_EQ(XMLGetNodes(ctx, "Font"), "Name|Arial");
    EXPECT_TRUE(xml().startsWith("<tlxfile><a><k>1</k></a><Font>"));
}

TEST_F(CommonXml, SetSingleNodeWritesFloatsWithAPointOnAnyMachine)
{
    load("<tlxfile><vCast><vCastLeft>0</vCastLeft></vCast></tlxfile>");
    ScopedSeparators comma(",", ".");
    XMLSetSingleNode(ctx, "vCast", "vCastLeft", 1.5);
    XMLSetSingleNode(ctx, "vCast", "flag", true);
    EXPECT_EQ(XMLGetNodes(ctx, "vCast"), "vCastLeft|1.5\r\nflag|True");
}

TEST_F(CommonXml, SetSingleNodeKeepsCDataInPlaceAndWritesNewFreeTextAsCData)
{
    load("<tlxfile><q><Question><![CDATA[old]]></Question></q></tlxfile>");
    XMLSetSingleNode(ctx, "q", "Question", QString("new <b>"));
    XMLSetSingleNode(ctx, "q", "Answers", QString("A\r\nB"));
    EXPECT_TRUE(xml().contains("<Question><![CDATA[new <b>]]></Question>")) << xml().toStdString();
    EXPECT_TRUE(xml().contains("<Answers><![CDATA[A")) << xml().toStdString();
}

TEST_F(CommonXml, AKeyWithSeveralChildrenIsNotFoundSoASecondOneIsAdded)
{
    load("<tlxfile><s><k><x>1</x><y>2</y></k></s></tlxfile>");
    EXPECT_FALSE(XMLSetSingleNode(ctx, "s", "k", 5));
    EXPECT_EQ(xml(), "<tlxfile><s><k><x>1</x><y>2</y></k><k>5</k>\r\n</s></tlxfile>");
}

TEST_F(CommonXml, NodeClearEmptiesOrRemovesTheSection)
{
    load("<tlxfile><s><a>1</a><b>2</b></s><t>text only</t></tlxfile>");
    XMLNodeClear(ctx, "t", false);
    EXPECT_TRUE(xml().contains("<t>text only</t>")); // text children have no name and stay
    XMLNodeClear(ctx, "s", false);
    EXPECT_EQ(XMLGetNodes(ctx, "s"), "Err - no children");
    XMLNodeClear(ctx, "s", true);
    EXPECT_EQ(xml(), "<tlxfile><t>text only</t></tlxfile>");
}

TEST_F(CommonXml, NodeClearCopesWithRepeatedChildrenAndNestedSections)
{
    load("<tlxfile><s><a>1</a><a>2</a><b>3</b></s></tlxfile>");
    XMLNodeClear(ctx, "s", false);
    EXPECT_EQ(XMLGetNodes(ctx, "s"), "Err - no children");
    load("<tlxfile><s><x>1</x><s><y>1</y></s></s><t/></tlxfile>");
    XMLNodeClear(ctx, "s", true);
    EXPECT_EQ(xml(), "<tlxfile><t/></tlxfile>");
}

TEST_F(CommonXml, CreateSectionNeedsTheRootSpelledExactly)
{
    load("<tlxfile/>");
    EXPECT_FALSE(XMLCreateSection(ctx, "x")); // "<tlxfile/>" has no closing tag to replace
    load("<tlxfile><a>1</a></tlxfile>");
    EXPECT_TRUE(XMLCreateSection(ctx, "x"));
    EXPECT_EQ(xml(), "<tlxfile><a>1</a><x/></tlxfile>");
}

TEST_F(CommonXml, ABadXPathIsReportedAndGivesTheEmptyDefault)
{
    load("<tlxfile><a><k>1</k></a></tlxfile>");
    ExpectErrorReports reports;
    EXPECT_EQ(XMLGetNodes(ctx, "a", "1bad", "x"), "");
    EXPECT_TRUE(reports.all().contains("Procedure: XMLGetNodes"));
    EXPECT_TRUE(run.errLog().contains("Procedure: XMLGetNodes"));
}

TEST(SettingsDocument, ParseErrorsCarryACodeAndAReason)
{
    SettingsDocument doc;
    EXPECT_FALSE(doc.loadXML("<tlxfile><a></tlxfile>"));
    EXPECT_NE(doc.parseError().errorCode, 0);
    EXPECT_FALSE(doc.parseError().reason.isEmpty());
    EXPECT_EQ(doc.xml(), "");
    EXPECT_FALSE(doc.loadXML(""));
    EXPECT_TRUE(doc.loadXML("<?xml version=\"1.0\"?>\r\n<tlxfile>\r\n  <a>1</a>\r\n</tlxfile>"));
    EXPECT_EQ(doc.parseError().errorCode, 0);
    EXPECT_EQ(doc.xml(), "<?xml version=\"1.0\"?><tlxfile><a>1</a></tlxfile>");
}

class DefaultXml : public CommonXml {};

TEST_F(DefaultXml, VoteLoadsDefaultXmlWhateverItsCaseAndCallsNoReader)
{
    tallix::testing::TestServices::write(run.t.path("app/default.XML"), "<tlxfile><graph_info/></tlxfile>");
    EXPECT_TRUE(LoadDefaultXML(ctx));
    EXPECT_EQ(xml(), "<tlxfile><graph_info/></tlxfile>");
}

TEST_F(DefaultXml, NoFileLeavesTheDocumentAsItWas)
{
    load("<tlxfile><a>1</a></tlxfile>");
    EXPECT_FALSE(LoadDefaultXML(ctx));
    EXPECT_EQ(xml(), "<tlxfile><a>1</a></tlxfile>");
}

TEST_F(DefaultXml, ADamagedFileReleasesTheDocumentAndReadsFailHarmlessly)
{
    ctx.app.exeName = "reshow";
    tallix::testing::TestServices::write(run.t.path("app/defaultReshow.xml"), "<tlxfile><broken></tlxfile>");
    EXPECT_FALSE(LoadDefaultXML(ctx));
    EXPECT_EQ(ctx.settingsDoc, nullptr);
    EXPECT_EQ(XMLGetNodes(ctx, "reshow_info"), "Err - Node does not exist");
}

} // namespace

namespace {

TEST(ShippedDefaultXml, ParsesAndCarriesTheElevenColoursInBothColourSections)
{
    TestRun run;
    SettingsDocument& doc = settingsDocOf(run.ctx);
    ASSERT_TRUE(doc.load(QStringLiteral(TALLIX_SOURCE_DIR "/data/Default.xml")));
    for (const char* section : {"BarColours", "DefaultColours"}) {
        const QStringList lines = XMLGetNodes(run.ctx, section).split("\r\n");
        ASSERT_EQ(lines.size(), 11) << section;
        EXPECT_TRUE(lines.first().startsWith("Bar000|"));
        EXPECT_TRUE(lines.last().startsWith("Bar010|"));
    }
    EXPECT_TRUE(XMLGetNodes(run.ctx, "vote_info").contains("options|4"));
}

} // namespace
