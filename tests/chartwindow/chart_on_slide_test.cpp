// What the audience sees of a chart placed on the slide: a picture of the chart area's
// shape on any screen, and a flat donut that keeps its slices after growing.
#include "chart_fixture.h"

#include "charts/ui/chart_display.h"
#include "chartsurface/chart_export.h"
#include "host/deck.h"
#include "support/picture_measures.h"

#include <QImage>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

QByteArray PictureBytes(host::MemoryHost& h, const QString& shapeName)
{
    host::Deck& d = h.deck();
    const QString part = d.slidePart(d.slideIdAt(1));
    pugi::xml_node blip = d.findShape(part, shapeName).select_node(".//a:blip").node();
    const QString target = d.package().target(part, QString::fromUtf8(blip.attribute("r:embed").value()));
    return target.isEmpty() ? QByteArray() : d.package().bytes(target);
}

qint32 I32(const QByteArray& b, int at) { return qFromLittleEndian<qint32>(b.constData() + at); }

double Aspect(double w, double h) { return h > 0 ? w / h : 0; }

// The show window on screens of every shape: the slide fills its middle, black bars the rest.
class OnAnyScreen : public ::testing::TestWithParam<QRect> {};

TEST_P(OnAnyScreen, TheMetafileOnTheSlideHasTheShapeOfTheChartArea)
{
    ChartRun r;
    r.deck->config().showWindowRect = GetParam();
    r.setCounts(0, {5, 12, 3, 8});
    FrmTChart& form = r.display();
    EXPECT_NEAR(r.ctx.WidthRatio, r.ctx.HeightRatio, 0.01) << "one scale for both axes";
    GraphtoSlide(r.ctx, -1);

    const host::PageSetup page = r.ctx.oPres->GetPageSetup();
    host::Shape* pic = r.shapes()->Item(QStringLiteral("tallix chart"));
    ASSERT_NE(pic, nullptr);
    const double area = Aspect(0.6 * page.SlideWidth, 0.7 * page.SlideHeight);
    EXPECT_NEAR(Aspect(pic->Width(), pic->Height()), area, 0.02 * area) << "the box is the chart area";
    EXPECT_NEAR(Aspect(form.TChart(0).width(), form.TChart(0).height()), area, 0.02 * area);

    const QByteArray emf = PictureBytes(*r.deck, QStringLiteral("tallix chart"));
    ASSERT_GE(emf.size(), 88);
    ASSERT_EQ(I32(emf, 40), 0x464D4520) << "an EMF";
    const double bounds = Aspect(I32(emf, 16) - I32(emf, 8) + 1, I32(emf, 20) - I32(emf, 12) + 1);
    const double frame = Aspect(I32(emf, 32) - I32(emf, 24) + 1, I32(emf, 36) - I32(emf, 28) + 1);
    EXPECT_NEAR(bounds, area, 0.02 * area);
    EXPECT_NEAR(frame, area, 0.02 * area) << "the frame decides the picture's shape in the box";
    // The reference device's pixels and millimetres give one resolution on both axes.
    const double dpmmX = double(I32(emf, 72)) / I32(emf, 80), dpmmY = double(I32(emf, 76)) / I32(emf, 84);
    EXPECT_NEAR(dpmmX, dpmmY, 0.03 * dpmmX);
}

INSTANTIATE_TEST_SUITE_P(Screens, OnAnyScreen,
                         ::testing::Values(QRect(0, 0, 800, 800), QRect(0, 0, 1024, 768), QRect(0, 0, 1920, 1080),
                                           QRect(100, 0, 1280, 1024), QRect(0, 0, 2560, 1080)),
                         [](const auto& info) {
                             return "w" + std::to_string(info.param.width()) + "h" + std::to_string(info.param.height());
                         });

// Flat pies grown by the animation: the donut keeps every answered slice, and both stay round.
class FlatPie : public ::testing::TestWithParam<short> {};

TEST_P(FlatPie, GrownByTheAnimationItEndsRoundWithEveryNonZeroSlice)
{
    const short graphType = GetParam();
    ChartRun r;
    r.ctx.GraphPlotting = 1;
    r.ctx.GrowSpeed = 4;
    r.setCounts(graphType, {6, 0, 9, 4});
    FrmTChart& form = r.display();
    ASSERT_FALSE(form.animating);
    TSeries& s = form.TChart(0).SERIES(0);
    if (graphType == 13) {
        // The blank first point and the empty option go; the three answered ones stay.
        ASSERT_EQ(s.Count(), 3);
        EXPECT_EQ((std::vector<double>{s.PointValue(0), s.PointValue(1), s.PointValue(2)}),
                  (std::vector<double>{6, 9, 4}));
    }

    const QImage img = QImage::fromData(ChartPictureBytes(form.TChart(0), PictureFormat::BMP)).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(img.isNull());
    for (int point = 0; point < s.Count(); ++point) {
        if (s.PointValue(point) <= 0)
            continue;
        const QColor want = ToQColor(s.PointColor(point));
        int count = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) {
                const QColor got(img.pixel(x, y));
                if (std::abs(got.red() - want.red()) + std::abs(got.green() - want.green()) +
                        std::abs(got.blue() - want.blue()) < 24) {
                    ++count;
                }
            }
        EXPECT_GT(count, img.width() * img.height() / 100) << "the slice of point " << point << " is missing";
    }
    const QRect pie = SolidBounds(img);
    EXPECT_NEAR(Aspect(pie.width(), pie.height()), 1.0, 0.03) << "a flat pie is round";
}

INSTANTIATE_TEST_SUITE_P(PieAndDonut, FlatPie, ::testing::Values(short(0), short(13)),
                         [](const auto& info) { return info.param == 0 ? "pie" : "donut"; });

} // namespace
