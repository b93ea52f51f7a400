#include "foundation/error_report.h"
#include "support/error_reports.h"
#include "support/test_services.h"

#include <gtest/gtest-spi.h>

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestServices;

namespace {

int failing(Services& s, bool showUser, long number, const QString& text)
{
    return Guarded(s, "Common_XML", "XMLGetNodes", showUser, 7, [&]() -> int { Raise(number, text); });
}

TEST(Guarded, ReturnsTheDefaultAndKeepsTheReportInErrLog)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    EXPECT_EQ(failing(t.s, true, 9, "Subscript out of range"), 7);
    ASSERT_EQ(t.dialogs.shown.size(), 1u);
    EXPECT_EQ(t.dialogs.shown[0].kind, ScriptedDialogs::Shown::Error);
    EXPECT_EQ(t.dialogs.shown[0].title, "An error has occurred: ");
    const QString log = TestServices::read(t.path("appdata/tallix/Err.log"));
    const QString sep = QString(65, '-');
    EXPECT_TRUE(log.startsWith(sep + "\r\nDate: 16-Nov-2026\r\nTime: 02:35:19\r\n\r\nNumber: 9\r\n"
                                     "Description: Subscript out of range\r\n\r\nModule: Common_XML\r\n"
                                     "Procedure: XMLGetNodes\r\nLine: 0\r\n\r\nApp: vote\r\nVersion: 4.2.7\r\n"
                                     "Location: " + t.path("app") + "\r\n" + sep + "\r\n\r\n"))
        << log.toStdString();
    EXPECT_EQ(t.dialogs.pointerRestores, 1);
}

TEST(Guarded, ASuppressedReportShowsNothingButRestoresThePointer)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    failing(t.s, false, 5, "x");
    EXPECT_TRUE(t.dialogs.shown.empty());
    EXPECT_EQ(t.dialogs.pointerRestores, 1);
    EXPECT_TRUE(TestServices::read(t.path("appdata/tallix/Err.log")).contains("Line: 0\r\n\r\nMessage Supressed: True\r\n"));
}

TEST(Guarded, AStandardExceptionIsReportedToo)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    const int r = Guarded(t.s, "M", "P", false, 3, []() -> int { throw std::out_of_range("vector"); });
    EXPECT_EQ(r, 3);
    EXPECT_TRUE(TestServices::read(t.path("appdata/tallix/Err.log")).contains("Description: Automation error: vector"));
}

struct HostCase {
    long number;
    const char* description;
    bool hostBox;
};
class HostFailure : public ::testing::TestWithParam<HostCase> {};

TEST_P(HostFailure, OnlyTildeWithTheHostNumberWarnsAboutThePresentation)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    failing(t.s, true, GetParam().number, GetParam().description);
    ASSERT_EQ(t.dialogs.shown.size(), 1u);
    const auto& box = t.dialogs.shown[0];
    if (GetParam().hostBox) {
        EXPECT_EQ(box.kind, ScriptedDialogs::Shown::Message);
        EXPECT_EQ(box.title, "Microsoft PowerPoint");
        EXPECT_EQ(box.style, 48);
        EXPECT_EQ(box.text, QString("PowerPoint has encountered an unexpected error.\r\n\r\nSave your current work and "
                                    "restart PowerPoint.\r\n\r\n\r\nDetails: ") + GetParam().description);
    } else {
        EXPECT_EQ(box.kind, ScriptedDialogs::Shown::Error);
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, HostFailure,
                         ::testing::Values(HostCase{ErrNo::HostUnexpected, "Shapes (unknown member) ~", true},
                                           HostCase{ErrNo::HostUnexpected, "no tilde", false},
                                           HostCase{5, "has ~ but another number", false}));

TEST(ErrLog, NewestOnTopAndCutAtTheLimit)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    TestServices::write(t.path("appdata/tallix/Err.log"), QByteArray(60000, 'o'));
    failing(t.s, false, 5, "newest");
    const QString log = TestServices::read(t.path("appdata/tallix/Err.log"));
    EXPECT_EQ(log.size(), kErrLogLimit + 2);
    EXPECT_TRUE(log.endsWith("oo\r\n"));
    EXPECT_LT(log.indexOf("newest"), 400);
}

TEST(ErrLog, WithoutAppDataTheReportGoesBesideTheProgram)
{
    tallix::testing::ExpectErrorReports reports;
    TestServices t;
    t.s.env.set("APPDATA", "");
    failing(t.s, false, 5, "here");
    EXPECT_TRUE(TestServices::read(t.path("app/Err.log")).contains("Description: here"));
}

TEST(clsError, LineNumberIsTextReadBackAsANumberAndExtraInfoIsAppended)
{
    TestServices t;
    clsError e;
    e.StoreErrInfo(VbError(13, "Type mismatch"), t.clock.now());
    e.StoreAppInfo("vcast", "Form_KeyDown", "120", "more", -1);
    EXPECT_EQ(e.ErrLineNumber(), 120);
    EXPECT_TRUE(e.composeReport(t.s).endsWith("\r\n\r\nExtra Info: \r\n\r\nmore"));
}

} // namespace

namespace tallix::testing {
namespace {

TEST(ErrorReportWatch, AReportNobodyExpectedFailsTheTestWithItsText)
{
    TestServices t;
    EXPECT_NONFATAL_FAILURE(failing(t.s, false, 9, "Subscript out of range"), "Procedure: XMLGetNodes");
}

TEST(ErrorReportWatch, ExpectedReportsAreKeptByTheInnermostExpectation)
{
    TestServices t;
    ExpectErrorReports outer;
    {
        ExpectErrorReports inner;
        failing(t.s, false, 9, "first");
        EXPECT_EQ(inner.count(), 1);
        EXPECT_TRUE(inner.all().contains("Description: first"));
    }
    failing(t.s, false, 9, "second");
    ASSERT_EQ(outer.count(), 1);
    EXPECT_TRUE(outer.reports()[0].contains("Description: second"));
}

} // namespace
} // namespace tallix::testing
