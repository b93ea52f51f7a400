// Renders of each chart family against committed pictures. To regenerate them after a
// deliberate change of look (and then look at every one before committing):
//   TALLIX_REGEN_GOLDEN=1 build/bin/chartsurface_tests --gtest_filter='*Golden*'
// (with --gtest_filter='*Golden*/wordcloud' to write one family's alone)
#include "chartsurface/chart_renderer.h"
#include "foundation/safe_write.h"
#include "sample_charts.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace tallix;

namespace {

const QSize kSize(640, 400);

QImage RenderFamily(const QString& family, int n = 5)
{
    TChartModel m;
    samples::Build(m, family, n);
    QImage img(kSize, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    ChartRenderer::Draw(m, p, QRect(QPoint(0, 0), kSize));
    p.end();
    return img.convertToFormat(QImage::Format_RGB32);
}

// Share of pixels that differ by more than a small amount in any channel: anti-aliasing and
// font rasterising may move an edge pixel, not the picture.
double DifferingShare(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 1.0;
    qint64 differ = 0;
    for (int y = 0; y < a.height(); ++y) {
        const QRgb* la = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const QRgb* lb = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            const int d = std::max({std::abs(qRed(la[x]) - qRed(lb[x])), std::abs(qGreen(la[x]) - qGreen(lb[x])),
                                    std::abs(qBlue(la[x]) - qBlue(lb[x]))});
            differ += d > 40;
        }
    }
    return double(differ) / (double(a.width()) * a.height());
}

class Golden : public ::testing::TestWithParam<std::string> {};

std::vector<std::string> FamilyNames()
{
    std::vector<std::string> out;
    for (const QString& f : samples::Families())
        out.push_back(f.toStdString());
    return out;
}

} // namespace

TEST_P(Golden, MatchesCommittedPicture)
{
    const QString family = QString::fromStdString(GetParam());
    const QImage img = RenderFamily(family, samples::DefaultCount(family));
    const QString path = QStringLiteral(TALLIX_TESTDATA_DIR "/golden/%1.png").arg(family);
    if (qEnvironmentVariableIsSet("TALLIX_REGEN_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QByteArray png;
        QBuffer buf(&png);
        buf.open(QIODevice::WriteOnly);
        ASSERT_TRUE(img.save(&buf, "png"));
        ASSERT_EQ(SafeWriteFile(path, png), QString());
        GTEST_SKIP() << "regenerated " << path.toStdString();
    }
    QImage golden(path);
    ASSERT_FALSE(golden.isNull()) << "missing golden picture " << path.toStdString();
    const double share = DifferingShare(img, golden.convertToFormat(QImage::Format_RGB32));
    // A mark moved by a few pixels changes some hundreds of pixels; rasterising noise, a few.
    if (share > 0.0005)
        img.save(QStringLiteral(TALLIX_BINARY_DIR "/golden-%1-actual.png").arg(family));
    EXPECT_LE(share, 0.0005) << family.toStdString() << ": " << share * 100 << "% of pixels differ";
}

INSTANTIATE_TEST_SUITE_P(Families, Golden, ::testing::ValuesIn(FamilyNames()), [](const auto& info) { return info.param; });
