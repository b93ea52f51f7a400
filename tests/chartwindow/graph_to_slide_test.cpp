// The chart on the slide: picture, place, name, format, and what a rerun keeps.
#include "chart_fixture.h"

#include "host/deck.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

// The image part behind a picture shape on slide 1, with its part name.
QPair<QString, QByteArray> ImagePart(host::MemoryHost& h, const QString& shapeName)
{
    host::Deck& d = h.deck();
    const QString part = d.slidePart(d.slideIdAt(1));
    pugi::xml_node shape = d.findShape(part, shapeName);
    if (!shape)
        return {};
    pugi::xml_node blip = shape.select_node(".//a:blip").node();
    const QString rid = QString::fromUtf8(blip.attribute("r:embed").value());
    const QString target = d.package().target(part, rid);
    return {target, target.isEmpty() ? QByteArray() : d.package().bytes(target)};
}

struct FormatCase {
    const char* setting;
    const char* extension;
    QByteArray magic;
    int magicAt;
};

class ExportFormat : public ::testing::TestWithParam<FormatCase> {};

TEST_P(ExportFormat, PictureNamedAndPlacedOverTheChartArea)
{
    const FormatCase& fc = GetParam();
    ChartRun r;
    r.ctx.ini.chartExportFormat = QString::fromLatin1(fc.setting);
    r.setCounts(2, {5, 12, 3, 8});
    r.display();
    GraphtoSlide(r.ctx, -1);

    host::Shape* pic = r.shapes()->Item(QStringLiteral("tallix chart"));
    const host::PageSetup page = r.ctx.oPres->GetPageSetup();
    EXPECT_EQ(pic->Kind(), host::ShapeKind::Picture);
    EXPECT_TRUE(pic->Visible());
    EXPECT_NEAR(pic->Left(), 0.1 * page.SlideWidth, 1.0);
    EXPECT_NEAR(pic->Top(), 0.2 * page.SlideHeight, 1.0);
    EXPECT_NEAR(pic->Width(), 0.6 * page.SlideWidth, 1.0);
    EXPECT_NEAR(pic->Height(), 0.7 * page.SlideHeight, 1.0);
    EXPECT_TRUE(pic->LockAspectRatio());

    const auto [partName, bytes] = ImagePart(*r.deck, QStringLiteral("tallix chart"));
    EXPECT_TRUE(partName.endsWith(QLatin1String(fc.extension))) << partName.toStdString();
    ASSERT_GT(bytes.size(), fc.magicAt + fc.magic.size());
    EXPECT_EQ(bytes.mid(fc.magicAt, fc.magic.size()), fc.magic) << fc.setting;

    EXPECT_EQ(r.deck->ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item(QStringLiteral("TLXLIVEDATAISVISIBLE")),
              QStringLiteral("This slide has live data visible"));
    EXPECT_EQ(r.commits, 1);
    // The temporary picture stays in the temp folder, named by element and time.
    const QStringList temps = QDir(r.ctx.env.tempFolder()).entryList({QStringLiteral("tlx_chart_0_*")});
    EXPECT_EQ(temps.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ExportFormat,
    ::testing::Values(FormatCase{"PNG", ".png", QByteArray("\x89PNG", 4), 0}, FormatCase{"png", ".png", "PNG", 1},
                      FormatCase{"BMP", ".bmp", "BM", 0}, FormatCase{"JPG", ".jpg", QByteArray("\xFF\xD8", 2), 0},
                      FormatCase{"GIF", ".gif", "GIF8", 0}, FormatCase{"", ".emf", " EMF", 40},
                      FormatCase{"TIFF", ".emf", " EMF", 40}),
    [](const auto& info) { return std::string(info.param.setting[0] ? info.param.setting : "default") +
                                  std::to_string(info.index); });

TEST(GraphToSlide, RerunReplacesTheLiveChartAndKeepsTheOthers)
{
    ChartRun r;
    r.ctx.ini.chartExportFormat = QStringLiteral("PNG");
    for (const char* name : {"tallix chart sample-BAK", "tallix chart reshow", "tallix chart reshow sample",
                             "Title 1 tallix CHART"}) {
        host::Shape* s = r.shapes()->AddShape(1, 10, 10, 50, 50);
        s->SetName(QString::fromLatin1(name));
    }
    r.setCounts(2, {5, 12, 3, 8});
    r.display();
    GraphtoSlide(r.ctx, -1);
    GraphtoSlide(r.ctx, -1);
    const QStringList names = r.shapeNames();
    EXPECT_EQ(names.count(QStringLiteral("tallix chart")), 1);
    EXPECT_TRUE(names.contains(QStringLiteral("tallix chart sample-BAK")));
    EXPECT_TRUE(names.contains(QStringLiteral("tallix chart reshow")));
    EXPECT_FALSE(names.contains(QStringLiteral("tallix chart reshow sample")));
    // Names are compared without case.
    EXPECT_FALSE(names.contains(QStringLiteral("Title 1 tallix CHART")));
}

TEST(GraphToSlide, PagedChartAddsOnePicturePerPage)
{
    ChartRun r;
    r.ctx.BarsPerPage = 10;
    r.setCounts(2, {3, 7, 2, 9, 4, 6, 1, 8, 5, 2, 7, 3});
    r.display();
    GraphtoSlide(r.ctx, -1);
    const QStringList names = r.shapeNames();
    EXPECT_TRUE(names.contains(QStringLiteral("tallix chart")));
    ASSERT_TRUE(names.contains(QStringLiteral("tallix chart 2")));
    EXPECT_FALSE(names.contains(QStringLiteral("tallix chart 3")));
    host::Shape* page2 = r.shapes()->Item(QStringLiteral("tallix chart 2"));
    EXPECT_FALSE(page2->Visible());   // kept for the reshow
    EXPECT_TRUE(ImagePart(*r.deck, QStringLiteral("tallix chart 2")).first.endsWith(QLatin1String(".emf")));
    EXPECT_EQ(r.deck->ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item(QStringLiteral("MultiDigitVote")),
              QStringLiteral("1"));
    // The window goes back to the first page.
    EXPECT_EQ(r.charts->form()->TChart(0).Page.Current, 1);
}

TEST(GraphToSlide, WithoutShowGraphsThePictureStaysHidden)
{
    ChartRun r;
    r.ctx.ShowGraphs = false;
    r.setCounts(13, {5, 0, 3});
    r.display();
    GraphtoSlide(r.ctx, -1);
    EXPECT_FALSE(r.shapes()->Item(QStringLiteral("tallix chart"))->Visible());
}

TEST(GraphToSlide, ClosedPresentationEndsTheProgram)
{
    ChartRun r;
    r.ctx.terminator = [](int c) { throw ProcessExit{c}; };
    r.setCounts(2, {1, 2});
    r.display();
    r.deck->ClosePresentation();
    // No picture is attempted: the one commit is the shut-down's own, with nothing in it.
    EXPECT_THROW(GraphtoSlide(r.ctx, -1), ProcessExit);
    EXPECT_EQ(r.commits, 1);
}

TEST(GraphToSlide, RatingItemsAreGroupedUnderThePlaceholdersName)
{
    ChartRun r;
    r.setCounts(2, {5, 12, 3});
    FrmTChart& form = r.display();
    r.ctx.GraphType = 7;
    for (int e = 1; e <= 2; ++e) {
        ::tallix::TChart& c = form.TChart.Load(e);
        c.Move(0, 0, 200 * kTwipsPerPixel, 100 * kTwipsPerPixel);
        c.SERIES(c.AddSeries(2)).Add(e, QString(), clNone);
    }
    GraphtoSlide(r.ctx, -1);
    const QStringList names = r.shapeNames();
    EXPECT_EQ(names.count(QStringLiteral("tallix chart ratings")), 1);
    EXPECT_EQ(r.shapes()->Item(QStringLiteral("tallix chart ratings"))->Kind(), host::ShapeKind::Group);
    EXPECT_FALSE(names.contains(QStringLiteral("tallix chart")));
    EXPECT_EQ(r.deck->ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item(QStringLiteral("RankVote")),
              QStringLiteral("1"));
    // A rerun replaces the whole group.
    GraphtoSlide(r.ctx, -1);
    EXPECT_EQ(r.shapeNames().count(QStringLiteral("tallix chart ratings")), 1);
}

TEST(GraphToSlide, SeriesVoteNamesEachElementAndGroupsTheIterations)
{
    ChartRun r;
    r.ctx.vType = 2;
    r.ctx.Iterations = 2;
    r.ctx.DisplayBy = 0;
    r.ctx.controllerVoteType = QStringLiteral("9");
    r.setCounts(2, {5, 12, 3});
    FrmTChart& form = r.display();
    for (int e = 1; e <= 3; ++e) {
        ::tallix::TChart& c = form.TChart.Load(e);
        c.Move(0, 0, form.width() * kTwipsPerPixel, form.height() * kTwipsPerPixel);
        c.SERIES(c.AddSeries(1)).Add(e, QString(), clNone);
    }
    GraphtoSlide(r.ctx, -1);
    const QStringList names = r.shapeNames();
    for (const char* n : {"tallix chart 0", "tallix chart 1", "tallix chart 2"})
        EXPECT_TRUE(names.contains(QLatin1String(n))) << n;
    EXPECT_FALSE(names.contains(QStringLiteral("tallix iteration 1"))) << "grouped into tallix chart 2";
    EXPECT_EQ(r.shapes()->Item(QStringLiteral("tallix chart 2"))->Kind(), host::ShapeKind::Group);
    // Only the element it was set to display is shown.
    EXPECT_TRUE(r.shapes()->Item(QStringLiteral("tallix chart 0"))->Visible());
    EXPECT_FALSE(r.shapes()->Item(QStringLiteral("tallix chart 1"))->Visible());
    EXPECT_EQ(r.deck->ActivePresentation()->GetSlides()->Item(1)->GetTags()->Item(QStringLiteral("SequenceVote")),
              QStringLiteral("1"));
}

} // namespace
