// The correct-answer tick, the marks of neighbouring series, and the chart title, on a real
// offscreen result window.
#include "chart_fixture.h"

#include "charts/ui/marks_and_ticks.h"

#include <gtest/gtest.h>

#include <tuple>

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

FrmTChart& Drawn(ChartRun& r, short graphType, const QVector<double>& counts, short style, const std::vector<Opt>& opts)
{
    r.ctx.CorrectAnswerStyle = style;
    r.ctx.tickColour = qint32(kTick);
    r.ctx.voteOptions.redim(int(opts.size()) - 1);
    for (int i = 0; i < int(opts.size()); ++i) {
        const Opt& x = opts[size_t(i)];
        VoteOption& o = r.ctx.voteOptions(i);
        o.isCorrect = x.correct, o.value = x.score, o.isHighest = x.highest;
    }
    r.setCounts(graphType, counts);
    return r.display();
}

std::vector<TAnnotationTool*> Ticks(::tallix::TChart& c)
{
    std::vector<TAnnotationTool*> out;
    for (int i = 0; i < c.Tools.Count(); ++i)
        if (c.Tools.Items(i).ToolType == tkAnnotation && c.Tools.Items(i).asAnnotation().Text == kGlyph)
            out.push_back(&c.Tools.Items(i).asAnnotation());
    return out;
}

const std::vector<Opt> kSecondCorrect{{false, 0, false}, {true, 1, true}, {false, 0, false}};

TEST(DisplayTick, ColourStyleRecoloursTheOptionsPointPastAPiesBlankPoint)
{
    struct Row {
        short graphType, startFrom;
        int point;
    };
    for (const Row& row : {Row{0, 1, 2}, Row{0, 0, 1}, Row{2, 1, 1}}) {
        SCOPED_TRACE(::testing::Message() << "graph " << row.graphType << " startFrom " << row.startFrom);
        ChartRun r;
        r.ctx.startFrom = row.startFrom;
        FrmTChart& form = Drawn(r, row.graphType, {4, 6, 3}, 0, kSecondCorrect);
        DisplayTick(r.ctx, form);
        const TSeries& s = form.TChart(0).SERIES(0);
        for (int p = 0; p < s.Count(); ++p)
            EXPECT_EQ(s.Points()[size_t(p)].Color == kTick, p == row.point) << "point " << p;
        EXPECT_TRUE(Ticks(form.TChart(0)).empty());
    }
}

TEST(DisplayTick, OnlyCorrectScoredOptionsGetATickAndOnlyTheHighestWhenAsked)
{
    // 1 is wrong, 3 scores nothing, 4 has no record at all.
    const std::vector<Opt> opts{{true, 1, false}, {false, 5, false}, {true, 2, true}, {true, 0, false}};
    for (const bool onlyHighest : {false, true}) {
        ChartRun r;
        r.ctx.OnlyHighlightHighest = onlyHighest;
        FrmTChart& form = Drawn(r, 2, {4, 6, 3, 2, 5}, 1, opts);
        DisplayTick(r.ctx, form);
        ::tallix::TChart& c = form.TChart(0);
        const std::vector<int> want = onlyHighest ? std::vector<int>{2} : std::vector<int>{0, 2};
        const auto ticks = Ticks(c);
        ASSERT_EQ(ticks.size(), want.size()) << onlyHighest;
        for (size_t k = 0; k < ticks.size(); ++k) {
            EXPECT_EQ(QPoint(ticks[k]->Shape.Left, ticks[k]->Shape.Top),
                      QPoint(c.SERIES(0).CalcXPos(want[k]), c.SERIES(0).CalcYPos(want[k])));
            EXPECT_EQ(ticks[k]->Shape.Font.Size, r.ctx.Font.Size + 6);
            EXPECT_TRUE(ticks[k]->Shape.Transparent);
        }
        EXPECT_FALSE(r.run.errLog().contains(QLatin1String("DisplayTick"))) << r.run.errLog().toStdString();
        EXPECT_TRUE(form.tickShown);
    }
}

TEST(DisplayTick, HorizontalBarFirstOptionTickSits20PixelsAboveTheBar)
{
    ChartRun r;
    FrmTChart& form = Drawn(r, 4, {4, 6, 3}, 1, {{true, 1, true}});
    DisplayTick(r.ctx, form);
    const TSeries& s = form.TChart(0).SERIES(0);
    ASSERT_EQ(Ticks(form.TChart(0)).size(), 1u);
    const TAnnotationTool& t = *Ticks(form.TChart(0))[0];
    EXPECT_EQ(QPoint(t.Shape.Left, t.Shape.Top), QPoint(s.CalcXPos(0), s.CalcYPos(0) - 20));
    EXPECT_GT(s.CalcYPos(0), 20) << "the bars must have been drawn";
}

TEST(DisplayTick, PieTickStandsRightOfItsOwnMarkAndAnAbstainCountKeepsItsText)
{
    ChartRun r;
    r.ctx.allowAbstain = true;
    r.ctx.abstainTotal = 3;
    FrmTChart& form = Drawn(r, 0, {4, 6, 3}, 1, kSecondCorrect);
    ::tallix::TChart& c = form.TChart(0);
    DisplayTick(r.ctx, form);
    ASSERT_EQ(c.Tools.Count(), 2);
    EXPECT_EQ(c.Tools.Items(0).asAnnotation().Text, QStringLiteral("Abstain Count = 3"));
    EXPECT_FALSE(c.Tools.Items(0).asAnnotation().Shape.Transparent);
    // startFrom 1: option 1 is point 2.
    const TMarkPosition& m = c.SERIES(0).Marks.Positions.Position(2);
    EXPECT_EQ(c.Tools.Items(1).asAnnotation().Shape.Left, m.LeftTop.x() + m.Width);
}

TEST(CheckOverlapMarks, OneSeriesIsOnlyRepainted)
{
    ChartRun r;
    r.setCounts(4, {5, 9, 3});
    FrmTChart& form = r.display();
    ::tallix::TChart& c = form.TChart(0);
    int draws = 0;
    QObject::connect(&c, &::tallix::TChart::OnAfterDraw, [&](int) { ++draws; });
    short points = 3;
    CheckOverlapMarks(r.ctx, form, points);
    EXPECT_EQ(draws, 1);
    for (int p = 0; p < 3; ++p)
        EXPECT_FALSE(c.SERIES(0).Marks.Positions.Position(p).Custom);
}

TEST(CheckOverlapMarks, AMarkPushedPastTheRightEdgeGrowsTheMarginByTwoUntilItFits)
{
    ChartRun r;
    r.setCounts(4, {5, 9, 3});
    ::tallix::TChart& c = r.display().TChart(0);
    // Equal bars, and second marks wider than the room the value axis leaves past the longest.
    TSeries& second = c.SERIES(c.AddSeries(scHorizBar));
    for (double v : {5, 9, 3})
        second.Add(v, QStringLiteral("WWWWWWWWWW"));
    second.Marks.Style = 2;
    c.Panel.MarginRight = 0;
    std::vector<double> margins;
    QObject::connect(&c, &::tallix::TChart::OnAfterDraw, [&](int) { margins.push_back(c.Panel.MarginRight); });
    short points = 3;
    CheckOverlapMarks(r.ctx, *r.charts->form(), points);
    EXPECT_GT(c.Panel.MarginRight, 0);
    for (size_t k = 1; k < margins.size(); ++k)
        EXPECT_TRUE(margins[k] == margins[k - 1] || margins[k] == margins[k - 1] + 2) << margins[k];
    for (int p = 0; p < 3; ++p) {
        const TMarkPosition& a = c.SERIES(0).Marks.Positions.Position(p);
        const TMarkPosition& b = second.Marks.Positions.Position(p);
        EXPECT_GE(b.LeftTop.x(), a.LeftTop.x() + a.Width) << p;
        EXPECT_LE((b.LeftTop.x() + b.Width) * kTwipsPerPixel, c.Width()) << p;
    }
}

TEST(ChartTitle, CreateChartTitleNamesTheFilterValues)
{
    const struct {
        const char* filter;
        bool orJoin;
        const char* want;
    } rows[] = {
        {"^Group:A^Group:B", true, "Title: A OR B"},
        {"^Group: A ^Plain^Site:North:x", false, "Title: A AND North"},
        {"^", true, "Title"},
        {"^Plain^Other^", true, "Title"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(CreateChartTitle(QStringLiteral("Title"), QLatin1String(row.filter), row.orJoin),
                  QLatin1String(row.want));
}

TEST(ChartTitle, SetChartTitleTakesTheFontOnlyFromSevenFields)
{
    for (const char* titleSpec : {"18|Liberation Serif|True|-1|0|255|1", "18|Liberation Serif|True|-1|0|255"}) {
        ChartRun r;
        ::tallix::TChart c;
        c.Header.Text = QStringList{QStringLiteral("Question"), QStringLiteral("line 2")};
        c.Header.Frame.Visible = true;
        const TFont before = c.Header.Font;
        SetChartTitle(r.ctx, c, QLatin1String(titleSpec), QStringLiteral("Staff"));
        EXPECT_EQ(c.Header.Text, (QStringList{QStringLiteral("Staff"), QStringLiteral("line 2")}));
        EXPECT_FALSE(c.Header.Frame.Visible);
        const TFont& f = c.Header.Font;
        const bool seven = QLatin1String(titleSpec).count(QLatin1Char('|')) == 6;
        EXPECT_EQ(f.Size, seven ? 18 : before.Size) << titleSpec;
        EXPECT_EQ(f.Name, seven ? QStringLiteral("Liberation Serif") : before.Name) << titleSpec;
        EXPECT_EQ(std::tie(f.Bold, f.Italic, f.Underline, f.Shadow.Visible),
                  seven ? std::make_tuple(true, true, false, true)
                        : std::make_tuple(before.Bold, before.Italic, before.Underline, before.Shadow.Visible));
        EXPECT_EQ(f.Color, seven ? OleColor(255) : before.Color) << titleSpec;
        SetChartTitle(r.ctx, c, QLatin1String(titleSpec), QStringLiteral("NULL"));
        EXPECT_EQ(c.Header.Text.first(), QStringLiteral("Staff"));
    }
}

} // namespace
