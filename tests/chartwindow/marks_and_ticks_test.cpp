// The correct-answer tick, the marks of neighbouring series, and the chart title, on a real
// offscreen result window.
#include "chart_fixture.h"

#include "charts/ui/marks_and_ticks.h"

#include <QObject>

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

constexpr OleColor kTick = Rgb(1, 200, 3); // in no option's colour
const QString kGlyph = QString(QChar(0xFC));

struct Opt {
    bool correct;
    double score;
    bool highest;
};

void SetOptions(RunContext& ctx, const std::vector<Opt>& opts)
{
    ctx.voteOptions.redim(int(opts.size()) - 1);
    for (int i = 0; i < int(opts.size()); ++i) {
        ctx.voteOptions(i).isCorrect = opts[size_t(i)].correct;
        ctx.voteOptions(i).value = opts[size_t(i)].score;
        ctx.voteOptions(i).isHighest = opts[size_t(i)].highest;
    }
}

std::vector<TAnnotationTool*> Ticks(::tallix::TChart& c)
{
    std::vector<TAnnotationTool*> out;
    for (int i = 0; i < c.Tools.Count(); ++i)
        if (c.Tools.Items(i).ToolType == tkAnnotation && c.Tools.Items(i).asAnnotation().Text == kGlyph)
            out.push_back(&c.Tools.Items(i).asAnnotation());
    return out;
}

FrmTChart& Drawn(ChartRun& r, short graphType, const QVector<double>& counts, short style)
{
    r.ctx.CorrectAnswerStyle = style;
    r.ctx.tickColour = qint32(kTick);
    r.setCounts(graphType, counts);
    return r.display();
}

TEST(DisplayTick, ColourStyleRecoloursTheOptionsPoint)
{
    struct Row {
        const char* name;
        short graphType, startFrom;
        int expectedPoint; // option 1 is the correct one
    };
    const Row rows[] = {
        {"pie past its blank first point", 0, 1, 2},
        {"pie from 0", 0, 0, 1},
        {"bar from 1", 2, 1, 1},
        {"horizontal bar", 4, 1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ChartRun r;
        r.ctx.startFrom = row.startFrom;
        SetOptions(r.ctx, {{false, 0, false}, {true, 1, true}, {false, 0, false}});
        FrmTChart& form = Drawn(r, row.graphType, {4, 6, 3}, 0);
        DisplayTick(r.ctx, form);
        const TSeries& s = form.TChart(0).SERIES(0);
        for (int p = 0; p < s.Count(); ++p)
            EXPECT_EQ(s.Points()[size_t(p)].Color == kTick, p == row.expectedPoint) << "point " << p;
        EXPECT_TRUE(Ticks(form.TChart(0)).empty());
        EXPECT_TRUE(form.tickShown);
    }
}

TEST(DisplayTick, OnlyCandidatesGetATickAndOnlyTheHighestWhenAsked)
{
    struct Row {
        bool onlyHighest;
        short style;
        std::vector<int> ticked;
    };
    const Row rows[] = {{false, 1, {0, 2}}, {true, 1, {2}}, {false, 2, {}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "onlyHighest " << row.onlyHighest << " style " << row.style);
        ChartRun r;
        r.ctx.OnlyHighlightHighest = row.onlyHighest;
        r.ctx.Font.Size = 14;
        // 1 wrong, 3 correct without points, 4 without a record at all.
        SetOptions(r.ctx, {{true, 1, false}, {false, 5, false}, {true, 2, true}, {true, 0, false}});
        FrmTChart& form = Drawn(r, 2, {4, 6, 3, 2, 5}, row.style);
        DisplayTick(r.ctx, form);
        ::tallix::TChart& c = form.TChart(0);
        const auto ticks = Ticks(c);
        ASSERT_EQ(ticks.size(), row.ticked.size());
        for (size_t k = 0; k < ticks.size(); ++k) {
            const TAnnotationTool& t = *ticks[k];
            const int i = row.ticked[k];
            EXPECT_EQ(t.Shape.Left, c.SERIES(0).CalcXPos(i));
            EXPECT_EQ(t.Shape.Top, c.SERIES(0).CalcYPos(i));
            EXPECT_TRUE(t.Shape.Transparent);
            EXPECT_EQ(t.Shape.Font.Name, QStringLiteral("Wingdings"));
            EXPECT_EQ(t.Shape.Font.Size, 20);
            EXPECT_EQ(t.Shape.Font.Color, kTick);
            EXPECT_TRUE(t.Shape.Font.Outline.Visible);
        }
        EXPECT_FALSE(r.run.errLog().contains(QLatin1String("DisplayTick"))) << r.run.errLog().toStdString();
        EXPECT_TRUE(form.tickShown);
    }
}

TEST(DisplayTick, HorizontalBarTickSitsByItsBar)
{
    struct Row {
        int option;
        bool invert;
        double towardsPrevious; // share of the distance to the previous bar, or none for the first
    };
    for (const Row& row : {Row{0, false, 0}, Row{1, false, -0.2}, Row{1, true, 0.2}}) {
        SCOPED_TRACE(::testing::Message() << "option " << row.option << " invert " << row.invert);
        ChartRun r;
        r.ctx.InvertScale = row.invert;
        std::vector<Opt> opts(3, Opt{false, 0, false});
        opts[size_t(row.option)] = {true, 1, true};
        SetOptions(r.ctx, opts);
        FrmTChart& form = Drawn(r, 4, {4, 6, 3}, 1);
        DisplayTick(r.ctx, form);
        const TSeries& s = form.TChart(0).SERIES(0);
        const auto ticks = Ticks(form.TChart(0));
        ASSERT_EQ(ticks.size(), 1u);
        const int y = s.CalcYPos(row.option);
        const double want =
            row.option == 0 ? y - 20 : y + row.towardsPrevious * (y - s.CalcYPos(row.option - 1));
        EXPECT_EQ(ticks[0]->Shape.Left, s.CalcXPos(row.option));
        EXPECT_NEAR(ticks[0]->Shape.Top, want, 0.5);
        EXPECT_NE(s.CalcYPos(1), s.CalcYPos(0)) << "bars must have been drawn";
    }
}

TEST(DisplayTick, PieTickStandsRightOfItsOwnMark)
{
    ChartRun r;
    SetOptions(r.ctx, {{false, 0, false}, {true, 1, true}, {false, 0, false}});
    FrmTChart& form = Drawn(r, 0, {4, 6, 3}, 1);
    DisplayTick(r.ctx, form);
    const auto ticks = Ticks(form.TChart(0));
    ASSERT_EQ(ticks.size(), 1u);
    // startFrom 1: option 1 is point 2.
    const TMarkPosition& m = form.TChart(0).SERIES(0).Marks.Positions.Position(2);
    EXPECT_EQ(ticks[0]->Shape.Left, m.LeftTop.x() + m.Width);
    EXPECT_GE(ticks[0]->Shape.Top, 0);
    EXPECT_LT(ticks[0]->Shape.Top, form.height());
}

TEST(DisplayTick, AnEarlierAnnotationKeepsItsText)
{
    ChartRun r;
    r.ctx.allowAbstain = true;
    r.ctx.abstainTotal = 3;
    SetOptions(r.ctx, {{true, 1, true}, {false, 0, false}});
    FrmTChart& form = Drawn(r, 2, {4, 6}, 1);
    ::tallix::TChart& c = form.TChart(0);
    ASSERT_EQ(c.Tools.Count(), 1);
    DisplayTick(r.ctx, form);
    ASSERT_EQ(c.Tools.Count(), 2);
    const TAnnotationTool& abstain = c.Tools.Items(0).asAnnotation();
    EXPECT_EQ(abstain.Text, QStringLiteral("Abstain Count = 3"));
    EXPECT_FALSE(abstain.Shape.Transparent);
    EXPECT_EQ(abstain.Shape.Font.Size, 16);
    EXPECT_EQ(c.Tools.Items(1).asAnnotation().Text, kGlyph);
}

TEST(DisplayTick, GlyphIsMeasuredOncePerForm)
{
    ChartRun r;
    SetOptions(r.ctx, {{true, 1, true}, {false, 0, false}});
    FrmTChart& form = Drawn(r, 2, {4, 6}, 1);
    ::tallix::TChart& c = form.TChart(0);
    int measuringDraws = 0;
    QObject::connect(&c, &::tallix::TChart::OnAfterDraw, [&](int) {
        for (TAnnotationTool* t : Ticks(c))
            measuringDraws += t->Shape.Font.Size == 56;
    });
    DisplayTick(r.ctx, form);
    EXPECT_EQ(measuringDraws, 1);
    DisplayTick(r.ctx, form);
    EXPECT_EQ(measuringDraws, 1);
    EXPECT_EQ(Ticks(c).size(), 2u);
}

// A second series with the same values as the first, so every pair of marks overlaps.
::tallix::TChart& TwoSeries(ChartRun& r, short graphType)
{
    r.setCounts(graphType, {5, 9, 3});
    ::tallix::TChart& c = r.display().TChart(0);
    const int s = c.AddSeries(graphType == 4 ? scHorizBar : scBar);
    for (double v : {5, 9, 3})
        c.SERIES(s).Add(v);
    c.Repaint();
    return c;
}

TEST(CheckOverlapMarks, OneSeriesIsOnlyRepainted)
{
    ChartRun r;
    r.setCounts(4, {5, 9, 3});
    FrmTChart& form = r.display();
    ::tallix::TChart& c = form.TChart(0);
    const double margin = c.Panel.MarginRight;
    int draws = 0;
    QObject::connect(&c, &::tallix::TChart::OnAfterDraw, [&](int) { ++draws; });
    short points = 3;
    CheckOverlapMarks(r.ctx, form, points);
    EXPECT_EQ(draws, 1);
    EXPECT_EQ(c.Panel.MarginRight, margin);
    for (int p = 0; p < 3; ++p)
        EXPECT_FALSE(c.SERIES(0).Marks.Positions.Position(p).Custom);
}

TEST(CheckOverlapMarks, VerticalBarsStackTheSecondMarkAboveTheFirst)
{
    ChartRun r;
    ::tallix::TChart& c = TwoSeries(r, 2);
    short points = 3;
    CheckOverlapMarks(r.ctx, *r.charts->form(), points);
    for (int p = 0; p < 3; ++p) {
        const TMarkPosition& first = c.SERIES(0).Marks.Positions.Position(p);
        const TMarkPosition& second = c.SERIES(1).Marks.Positions.Position(p);
        EXPECT_TRUE(second.Custom) << p;
        EXPECT_EQ(second.LeftTop.y() + second.Height, first.LeftTop.y()) << p;
    }
}

TEST(CheckOverlapMarks, AMarkPastTheRightEdgeGrowsTheMarginByTwoUntilItFits)
{
    ChartRun r;
    ::tallix::TChart& c = TwoSeries(r, 4);
    // Marks wider than the room the value axis leaves beyond the longest bar.
    TSeries& second = c.SERIES(1);
    second.Marks.Style = 2;
    for (int p = 0; p < second.Count(); ++p)
        second.PointLabel(p) = QStringLiteral("WWWWWWWWWW");
    c.Panel.MarginRight = 0;
    c.Repaint();
    std::vector<double> margins;
    QObject::connect(&c, &::tallix::TChart::OnAfterDraw, [&](int) { margins.push_back(c.Panel.MarginRight); });
    short points = 3;
    CheckOverlapMarks(r.ctx, *r.charts->form(), points);
    ASSERT_FALSE(margins.empty());
    EXPECT_GT(c.Panel.MarginRight, 0);
    for (size_t k = 1; k < margins.size(); ++k) {
        const double step = margins[k] - margins[k - 1];
        EXPECT_TRUE(step == 0 || step == 2) << "step " << step;
    }
    for (int p = 0; p < 3; ++p) {
        const TMarkPosition& first = c.SERIES(0).Marks.Positions.Position(p);
        const TMarkPosition& second = c.SERIES(1).Marks.Positions.Position(p);
        EXPECT_TRUE(second.Custom) << p;
        // A later pair's growth moves the earlier firsts left, never into their seconds.
        EXPECT_GE(second.LeftTop.x(), first.LeftTop.x() + first.Width) << p;
        EXPECT_LE((second.LeftTop.x() + second.Width) * kTwipsPerPixel, c.Width()) << p;
    }
}

TEST(CheckOverlapMarks, AMarkThatCanNeverFitStillEnds)
{
    ChartRun r;
    ::tallix::TChart& c = TwoSeries(r, 4);
    // Held far right of the chart, the first mark pushes the second past any margin.
    TMarkPosition& far = c.SERIES(0).Marks.Positions.Position(0);
    far.Custom = true;
    far.LeftTop.setX(5000);
    const double before = c.Panel.MarginRight;
    short points = 1;
    CheckOverlapMarks(r.ctx, *r.charts->form(), points);
    EXPECT_GT(c.Panel.MarginRight, before);
    EXPECT_LE(c.Panel.MarginRight, before + 100);
}

TEST(ChartTitle, CreateChartTitleNamesTheFilterValues)
{
    struct Row {
        const char* filter;
        bool orJoin;
        const char* expected;
    };
    const Row rows[] = {
        {"^Group:A^Group:B", true, "Title: A OR B"},
        {"^Group:A^Group:B", false, "Title: A AND B"},
        {"^Group: A ^Plain^Site:North:x", false, "Title: A AND North"}, // no value, extra pieces
        {"^", true, "Title"},                                          // too short
        {"", false, "Title"},
        {"^Plain^Other^", true, "Title"},                              // nothing named
    };
    for (const Row& row : rows)
        EXPECT_EQ(CreateChartTitle(QStringLiteral("Title"), QString::fromLatin1(row.filter), row.orJoin),
                  QString::fromLatin1(row.expected))
            << row.filter;
}

TEST(ChartTitle, SetChartTitleTakesTheFontFromSevenFields)
{
    struct Row {
        const char* spec;
        const char* filterTitle;
        bool fontSet;
    };
    const Row rows[] = {
        {"18|Liberation Serif|True|-1|0|255|1", "Staff", true},
        {"18|Liberation Serif|True|-1|0|255", "Staff", false}, // six fields: text only
        {"18|Liberation Serif|True|-1|0|255|1", "NULL", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.spec);
        ChartRun r;
        ::tallix::TChart c;
        c.Header.Text = QStringList{QStringLiteral("Question"), QStringLiteral("second line")};
        c.Header.Frame.Visible = true;
        c.Header.Shadow.Visible = true;
        const TFont before = c.Header.Font;
        SetChartTitle(r.ctx, c, QString::fromLatin1(row.spec), QString::fromLatin1(row.filterTitle));
        const QString first = QLatin1String(row.filterTitle) == QLatin1String("NULL") ? QStringLiteral("Question")
                                                                                       : QStringLiteral("Staff");
        EXPECT_EQ(c.Header.Text, (QStringList{first, QStringLiteral("second line")}));
        EXPECT_FALSE(c.Header.Frame.Visible);
        EXPECT_FALSE(c.Header.Shadow.Visible);
        const TFont& f = c.Header.Font;
        if (row.fontSet) {
            EXPECT_EQ(f.Size, 18);
            EXPECT_EQ(f.Name, QStringLiteral("Liberation Serif"));
            EXPECT_TRUE(f.Bold);
            EXPECT_TRUE(f.Italic);
            EXPECT_FALSE(f.Underline);
            EXPECT_EQ(f.Color, OleColor(255));
            EXPECT_TRUE(f.Shadow.Visible);
        } else {
            EXPECT_EQ(f.Size, before.Size);
            EXPECT_EQ(f.Name, before.Name);
            EXPECT_EQ(f.Bold, before.Bold);
        }
    }
}

} // namespace
