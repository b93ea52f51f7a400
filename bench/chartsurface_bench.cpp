// Chart surface: the cost of drawing a chart against the cost of encoding the picture.
// The surface should draw a 12-bar 3D chart at 1280x720 in well under the time PNG needs
// to encode it, so that a chart's export time is the encoder's, not ours.
#include "chartsurface/chart_export.h"
#include "chartsurface/chart_renderer.h"
#include "sample_charts.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QImageWriter>
#include <QPainter>

#include <benchmark/benchmark.h>

using namespace tallix;

namespace {

const QSize kSize(1280, 720);

void Draw(TChartModel& m, QImage& img)
{
    img.fill(Qt::transparent);
    QPainter p(&img);
    ChartRenderer::Draw(m, p, img.rect());
}

void BM_Draw(benchmark::State& state, const char* family)
{
    TChartModel m;
    samples::Build(m, family, int(state.range(0)));
    QImage img(kSize, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        Draw(m, img);
        benchmark::DoNotOptimize(img.constBits());
    }
}

void BM_EncodePng(benchmark::State& state)
{
    TChartModel m;
    samples::Build(m, "bar3d", 12);
    QImage img(kSize, QImage::Format_ARGB32_Premultiplied);
    Draw(m, img);
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buf(&bytes);
        buf.open(QIODevice::WriteOnly);
        QImageWriter(&buf, "png").write(img);
        benchmark::DoNotOptimize(bytes.data());
    }
}

void BM_Export(benchmark::State& state, PictureFormat format)
{
    TChartModel m;
    samples::Build(m, "bar3d", 12);
    m.setHeadlessSize(kSize);
    for (auto _ : state) {
        QByteArray bytes = ChartPictureBytes(m, format, kSize);
        benchmark::DoNotOptimize(bytes.data());
    }
}

} // namespace

BENCHMARK_CAPTURE(BM_Draw, bar3d, "bar3d")->Arg(12)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Draw, bar, "bar")->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Draw, cylinder, "cylinder")->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Draw, pie3d, "pie3d")->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodePng)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Export, emf, PictureFormat::EMF)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Export, gif, PictureFormat::GIF)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
