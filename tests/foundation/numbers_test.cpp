#include "foundation/numbers.h"
#include "foundation/vb_error.h"
#include "support/qt_print.h"

#include <gtest/gtest.h>

#include <optional>

using namespace tallix;

namespace {

struct ValCase {
    const char* text;
    double pointMachine;  // decimal ".", thousands ","
    double commaMachine;  // decimal ",", thousands "."
};

class TlxValTest : public ::testing::TestWithParam<ValCase> {};

TEST_P(TlxValTest, ReadsAlikeOnEveryMachineButForTheLocalSeparator)
{
    const ValCase& c = GetParam();
    {
        ScopedSeparators point(".", ",");
        EXPECT_DOUBLE_EQ(tlxVal(c.text), c.pointMachine) << c.text << " on a point-decimal machine";
    }
    {
        ScopedSeparators comma(",", ".");
        EXPECT_DOUBLE_EQ(tlxVal(c.text), c.commaMachine) << c.text << " on a comma-decimal machine";
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, TlxValTest,
                         ::testing::Values(ValCase{"12%", 12, 12}, ValCase{"#5", 5, 5}, ValCase{"1 000", 1000, 1000},
                                           ValCase{"1_000", 1000, 1000}, ValCase{"abc", 0, 0}, ValCase{"", 0, 0},
                                           ValCase{"-3.5x", -3.5, -3.5}, ValCase{"1,5", 15, 1.5},
                                           ValCase{"1.234,5", 1.2345, 1.234}, ValCase{"2.5", 2.5, 2.5},
                                           ValCase{"  42 ", 42, 42}, ValCase{"1e3", 1000, 1000},
                                           ValCase{"2e", 2, 2}, ValCase{"&H1F", 31, 31},
                                           ValCase{"1e999", 0, 0}, ValCase{"+7", 7, 7}, ValCase{".5", 0.5, 0.5},
                                           // plain integers, short and just too long for the quick path
                                           ValCase{"007", 7, 7}, ValCase{"-2", -2, -2}, ValCase{"-", 0, 0},
                                           ValCase{"123456789", 123456789, 123456789},
                                           ValCase{"1234567890", 1234567890, 1234567890},
                                           ValCase{"12a", 12, 12}, ValCase{"-0", 0, 0}));

TEST(NumberFormatFor, GrowsGroupsWithTheWholePartAndAddsDecimalsWhateverTheLocale)
{
    const std::pair<double, const char*> rows[] = {
        {5, "##0"}, {1234, "##0,###"},
        // The loop compares lengths: seven digits already fit "##0,###", which shows them all.
        {1234567, "##0,###"}, {12345678, "##0,###,###"}, {2.5, "##0.0#########"}, {12345.5, "##0,###.0#########"}};
    for (auto [decimal, thousand] : {std::pair{".", ","}, std::pair{",", "."}, std::pair{",", " "}}) {
        ScopedSeparators machine(decimal, thousand);
        for (auto [value, pattern] : rows)
            EXPECT_EQ(NumberFormatFor(value), pattern) << value << " with decimal " << decimal;
    }
}

TEST(NumberFormatFor, MarksAreTheLocalesWithAPointGroupShownAsABlank)
{
    struct Row {
        const char* decimal;
        const char* thousand;
        char16_t decimalMark;
        char16_t groupMark;
    };
    const Row rows[] = {{".", ",", u'.', u','}, {",", ".", u',', u' '}, {",", "\u00a0", u',', u'\u00a0'}, {"", "", u'.', u','}};
    for (const Row& r : rows) {
        ScopedSeparators machine(QString::fromUtf8(r.decimal), QString::fromUtf8(r.thousand));
        EXPECT_EQ(NumberMarkDecimal(), QChar(r.decimalMark)) << r.decimal;
        EXPECT_EQ(NumberMarkThousands(), QChar(r.groupMark)) << r.thousand;
    }
}

TEST(Conversions, FollowTheRuntimesRules)
{
    ScopedSeparators point(".", ",");
    EXPECT_EQ(CInt("2.5"), 2);   // half to even
    EXPECT_EQ(CInt("3.5"), 4);
    EXPECT_EQ(CInt("True"), -1);
    EXPECT_EQ(CLng("-7"), -7);
    EXPECT_TRUE(CBool("-1"));
    EXPECT_TRUE(CBool("true"));
    EXPECT_FALSE(CBool("0"));
    EXPECT_FALSE(CBool("False"));
    EXPECT_THROW(CInt("abc"), VbError);
    EXPECT_THROW(CInt(""), VbError);
    EXPECT_THROW(CInt("40000"), VbError);
    EXPECT_THROW(CBool("yes"), VbError);
}

TEST(Conversions, UseTheMachineDecimalSeparator)
{
    ScopedSeparators comma(",", ".");
    EXPECT_FLOAT_EQ(CSng("1,5"), 1.5f);
    EXPECT_DOUBLE_EQ(CDbl("1.000,25"), 1000.25);
}

} // namespace

TEST(SharedNumberTexts, ReadAsTheirOwnTextAndSurviveAChangeToACopy)
{
    for (qint32 n : {0, 9, 10, 99, 100, 1023, 1024, 9999, 10000, 65535, 65536, -1, 2000000})
        EXPECT_EQ(NumberText(n), QString::number(n)) << n;

    QString copy = NumberText(42);
    copy += u'x';
    EXPECT_EQ(NumberText(42), "42");

    struct Case {
        const char* text;
        std::optional<qint32> plain;
    } cases[] = {{"0", 0}, {"7", 7}, {"12", 12}, {"65536", 65536}, {"05", {}}, {"-2", {}}, {"X", {}},
                 {"1 ", {}}, {"", {}}, {"1234567890", {}}};
    for (const Case& c : cases) {
        const QString text = QString::fromUtf8(c.text);
        EXPECT_EQ(PlainNumber(text), c.plain) << c.text;
        EXPECT_EQ(SharedText(text), text) << c.text;
    }
}
