// The naming, file and colour rules that later runs and the reshow rely on.
#include "chart_fixture.h"

#include "charts/chart_colours.h"
#include "chartwindow/chart_to_slide_names.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "question/common_xml.h"
#include "support/error_reports.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tallix;
using namespace tallix::testing;

namespace {

TEST(ChartRules, ColourIndexCyclesPastTen)
{
    const std::pair<int, int> rows[] = {{0, 0}, {7, 7}, {10, 10}, {11, 1}, {15, 5}, {19, 9}, {20, 0}, {23, 3}};
    for (auto [option, colour] : rows)
        EXPECT_EQ(OptionColourIndex(option), colour) << option;
}

TEST(ChartRules, LiveChartNamesThatARerunReplaces)
{
    const std::pair<const char*, bool> rows[] = {
        {"tallix chart", true},          {"tallix chart 2", true},
        {"Atallix ratings 3", true},     {"TALLIX CHART", true},
        {"tallix chart sample-BAK", false}, {"tallix chart reshow", false},
        {"tallix chart reshow sample", true}, {"tallix iteration 1", false},
        {"tlx_answers", false},
    };
    for (auto [name, live] : rows)
        EXPECT_EQ(IsLiveChartName(QString::fromLatin1(name)), live) << name;
}

TEST(ChartRules, ShapeNamesOfOrdinaryAndSeriesVotes)
{
    EXPECT_EQ(ChartShapeName(0, 0), QStringLiteral("tallix chart"));
    EXPECT_EQ(ChartShapeName(2, 0), QStringLiteral("tallix chart 0"));
    EXPECT_EQ(ChartShapeName(2, 1), QStringLiteral("tallix chart 1"));
    EXPECT_EQ(ChartShapeName(2, 2), QStringLiteral("tallix iteration 1"));
    EXPECT_EQ(ChartShapeName(2, 5), QStringLiteral("tallix iteration 4"));
}

TEST(ChartRules, ExportFormatAndTemporaryName)
{
    EXPECT_EQ(ChartExportFor(QStringLiteral("wmf")).extension, QStringLiteral(".wmf"));
    EXPECT_EQ(ChartExportFor(QStringLiteral("JPG")).logLine, QStringLiteral("Export chart to JPG"));
    const ChartExportChoice other = ChartExportFor(QStringLiteral("TIFF"));
    EXPECT_EQ(other.extension, QStringLiteral(".emf"));
    EXPECT_EQ(other.logLine, QStringLiteral("Export chart to enhanced MetaFile (EMF)"));
    EXPECT_EQ(TempChartFileName(QStringLiteral("/t"), 1, 9319.0417, QStringLiteral(".png")),
              QStringLiteral("/t/tlx_chart_1_93190.png"));
}

TEST(ChartRules, ClipIsCutToThePicture)
{
    EXPECT_EQ(FitClip(QRect(700, 10, 400, 300), QSize(960, 540)), QRect(700, 10, 260, 300));
    EXPECT_EQ(FitClip(QRect(0, 0, 0, 0), QSize(960, 540)), QRect(0, 0, 960, 540));
    EXPECT_EQ(FitClip(QRect(0, 400, 100, 300), QSize(960, 540)), QRect(0, 400, 100, 140));
}

TEST(ChartBackground, EachElementGetsThePieceOfTheShowBehindIt)
{
    ChartRun r;
    r.setCounts(2, {1, 2});
    FrmTChart& form = r.display();
    ::tallix::TChart& second = form.TChart.Load(1);
    second.Move(200 * kTwipsPerPixel, 0, 800 * kTwipsPerPixel, 100 * kTwipsPerPixel);
    // A show picture whose pixels tell where they came from.
    QImage show(960, 540, QImage::Format_RGB32);
    for (int y = 0; y < show.height(); ++y)
        for (int x = 0; x < show.width(); ++x)
            show.setPixel(x, y, qRgb(x % 256, y % 256, x / 256));
    backgroundPicture() = show;
    RefreshTChart(r.ctx, form, 0, 0, 0, 0);
    backgroundPicture() = QImage();

    // The window lies at (96, 108); element 0 covers it, element 1 runs past the show's edge.
    const QImage& p0 = form.TChart(0).Panel.backImage;
    ASSERT_EQ(p0.size(), QSize(576, 378));
    EXPECT_EQ(p0.pixel(0, 0), show.pixel(96, 108));
    const QImage& p1 = second.Panel.backImage;
    EXPECT_EQ(p1.size(), QSize(960 - 296, 100));
    EXPECT_EQ(p1.pixel(0, 0), show.pixel(296, 108));
    EXPECT_EQ(form.formPicture.size(), QSize(576, 378));
}

TEST(ChartBackground, NoPictureLeavesThePanelItsColour)
{
    ChartRun r;
    r.setCounts(2, {1, 2});
    FrmTChart& form = r.display();
    EXPECT_TRUE(form.TChart(0).Panel.backImage.isNull());
    GrabBackgroundClip(r.ctx);   // offscreen: nothing to read
    EXPECT_TRUE(backgroundPicture().isNull());
}

TEST(ChartColours, ThemeColoursOfTheDeckAndTheDefaultFile)
{
    ChartRun r;
    TestServices::write(r.run.t.path("app/Default.xml"),
                        "<tlxfile><BarColours><Bar000>1</Bar000><Bar001>2</Bar001><Bar009>99</Bar009>"
                        "<Bar010>bad</Bar010></BarColours>"
                        "<DefaultColours><!-- ours --><Bar001>5</Bar001></DefaultColours></tlxfile>");
    r.ctx.optionColours(10) = 1234;
    ExpectErrorReports badValue;
    LoadDefaultColours(r.ctx, -1);
    EXPECT_EQ(badValue.count(), 1);
    // Theme colours in the host's order (the two light ones vanish on this white slide);
    // the rest from the file, a bad value left alone.
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(r.ctx.optionColours(i), qint32(r.ctx.oPres->ThemeColorScheme(QStringLiteral("5,6,7,8,3,2,4").split(',')[i].toInt())))
            << i;
    EXPECT_EQ(r.ctx.optionColours(9), 99);
    EXPECT_EQ(r.ctx.optionColours(10), 1234);
    EXPECT_EQ(XMLGetItem(QStringLiteral("Bar004"), XMLGetString(r.ctx, QStringLiteral("BarColours"))),
              QString::number(r.ctx.oPres->ThemeColorScheme(3)));
    EXPECT_EQ(HostColourOrder(QStringLiteral("11.0")).split(',').size(), 10);
}

// Sets the deck's theme colours by their scheme names ("lt1", "accent3", ...), as six hex digits.
void SetThemeColours(ChartRun& r, std::initializer_list<std::pair<const char*, const char*>> colours)
{
    pugi::xml_node scheme =
        r.deck->deck().package().xml(QStringLiteral("ppt/theme/theme1.xml")).select_node("//a:clrScheme").node();
    ASSERT_TRUE(scheme);
    for (auto [name, hex] : colours) {
        pugi::xml_node entry = scheme.child((std::string("a:") + name).c_str());
        entry.remove_children();
        entry.append_child("a:srgbClr").append_attribute("val") = hex;
    }
}

long Bgr(const char* hex)
{
    const uint rgb = QString::fromLatin1(hex).toUInt(nullptr, 16);
    return long(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF));
}

TEST(ChartColours, AThemeColourTooCloseToTheSlideKeepsTheDefault)
{
    struct Case {
        const char* what;
        std::initializer_list<std::pair<const char*, const char*>> theme;
        int option;        // index into the host order 5,6,7,8,3,2,4
        const char* host;  // the theme colour at that place
        bool taken;
    };
    const Case cases[] = {
        {"white on white", {}, 5, "FFFFFF", false},
        {"near-white on white", {}, 6, "E7E6E6", false},
        {"dark grey on white", {}, 4, "44546A", true},
        {"just enough contrast (1.54:1)", {{"accent3", "D0D0D0"}}, 2, "D0D0D0", true},
        {"just too little (1.43:1)", {{"accent3", "D8D8D8"}}, 2, "D8D8D8", false},
        {"a dark slide hides the dark colour", {{"lt1", "202020"}, {"dk2", "1A1A1A"}}, 4, "1A1A1A", false},
        {"a dark slide shows the light colour", {{"lt1", "202020"}, {"lt2", "E7E6E6"}}, 6, "E7E6E6", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ChartRun r;
        SetThemeColours(r, c.theme);
        const qint32 before = r.ctx.optionColours(c.option);
        EXPECT_EQ(SetColoursFromPPT(r.ctx), -1);
        EXPECT_EQ(r.ctx.optionColours(c.option), c.taken ? qint32(Bgr(c.host)) : before);
        // The deck's colour is recorded for the question whether or not a bar wears it.
        EXPECT_EQ(XMLGetItem(QStringLiteral("Bar%1").arg(c.option, 3, 10, QLatin1Char('0')),
                             XMLGetString(r.ctx, QStringLiteral("BarColours"))),
                  QString::number(Bgr(c.host)));
    }
    EXPECT_DOUBLE_EQ(ContrastRatio(0, 0xFFFFFF), 21.0);
    EXPECT_DOUBLE_EQ(ContrastRatio(0x123456, 0x123456), 1.0);
}

TEST(ChartColours, MissingDefaultFileShutsDown)
{
    ChartRun r;
    r.ctx.terminator = [](int c) { throw ProcessExit{c}; };
    try {
        LoadDefaultColours(r.ctx, -1);
    } catch (const ProcessExit&) {
    }
    EXPECT_EQ(r.run.t.dialogs.shown.size(), 1u);
}

TEST(ChartColours, BodyFontSizeGrowsByATenthAndIsClamped)
{
    ChartRun r;
    host::Shape* body = nullptr;
    host::Shapes* shapes = r.shapes();
    for (int i = 1; i <= shapes->Count(); ++i)
        if (const int t = shapes->Item(i)->PlaceholderFormatType(); t == host::PlaceholderType::Body || t == host::PlaceholderType::Object)
            body = shapes->Item(i);
    ASSERT_NE(body, nullptr);
    const host::Font f = body->GetTextFrame()->GetFont();
    SetFontFromPPT(r.ctx);
    const int grown = int(std::nearbyint(f.Size * 1.1));
    EXPECT_EQ(r.ctx.FontSize, grown >= 1 && grown <= 24 ? grown : 24) << f.Size;
    EXPECT_EQ(r.ctx.Font.Name, f.Name);
    EXPECT_EQ(XMLGetItem(QStringLiteral("Size"), XMLGetString(r.ctx, QStringLiteral("Font"))),
              QString::number(r.ctx.FontSize));
}

} // namespace
