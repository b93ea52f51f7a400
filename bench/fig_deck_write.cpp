// Deck write: the big deck with one new picture committed, against copying the deck
// with fsync.
#include "bench_support.h"
#include "figure.h"
#include "host/pptx_host.h"

#include <QFile>
#include <QImage>
#include <QPainter>

#include <memory>

namespace tallix::bench {
namespace {

// A chart-sized picture, as the close of a vote places one.
QString chartPicture()
{
    const QString path = WorkFolder() + "/chart.png";
    if (!QFile::exists(path)) {
        QImage img(1280, 720, QImage::Format_RGB32);
        img.fill(Qt::white);
        QPainter p(&img);
        for (int i = 0; i < 12; ++i)
            p.fillRect(60 + i * 100, 700 - 50 * (i % 7 + 1), 70, 50 * (i % 7 + 1), QColor::fromHsv(i * 30, 200, 220));
        p.end();
        img.save(path, "PNG");
    }
    return path;
}

void DeckWriteFigure(benchmark::State& state)
{
    const QString deck = WorkFolder() + "/deck-write.pptx";
    const QString picture = chartPicture();
    for (auto _ : state) {
        state.PauseTiming();
        CopyFilePlain(BigDeck(), deck);
        auto host = std::make_unique<host::PptxHost>(deck);
        state.ResumeTiming();
        host->ActivePresentation()->GetSlides()->Item(kBigDeckLastQuestion)->GetShapes()->AddPicture(
            picture, 0, -1, 374, 135, 310, 350);
        if (!host->Commit()) {
            state.SkipWithError("the commit failed");
            break;
        }
        state.PauseTiming();
        host.reset();
        state.ResumeTiming();
    }
}

void DeckWriteFloor(benchmark::State& state)
{
    const QString copy = WorkFolder() + "/deck-write-floor.pptx";
    for (auto _ : state)
        CopyFileWithFsync(BigDeck(), copy);
}

const RegisterFigure reg{Figure{
    .order = 5,
    .key = "deck_write",
    .title = "5 deck write: one new picture",
    .floorTitle = "copy of the deck + fsync",
    .deck = BigDeckName(),
    .targetRatio = 3,
    .figure = DeckWriteFigure,
    .floor = DeckWriteFloor,
}};

} // namespace
} // namespace tallix::bench
