// Word clouds: where the words go, how big and in which colour, what is left out, and that the
// vector exports carry the words.
#include "chartsurface/chart_export.h"
#include "chartsurface/chart_renderer.h"
#include "chartsurface/vector_picture.h"
#include "sample_charts.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace tallix;

namespace {

// n words, counts falling from 3n, of 5 to 15 letters with an umlaut.
TSeries& AddWords(TChartModel& m, int n)
{
    TSeries& s = m.SERIES(m.AddSeries(scWordCloud));
    for (int i = 0; i < n; ++i)
        s.Add(3 * n - 2 * i, QStringLiteral("wörd%1").arg(i) + QString(i % 10, QLatin1Char('x')));
    return s;
}

// Inside the plot, clear of each other, and (laid out largest count first) never larger than a
// word with a higher count.
void ExpectInsideApartAndInOrder(const std::vector<WordPlacement>& words, const QRectF& plot)
{
    for (size_t i = 0; i < words.size(); ++i) {
        EXPECT_TRUE(plot.contains(words[i].box)) << words[i].text.toStdString();
        EXPECT_LE(words[i].font.pixelSize(), words[i > 0 ? i - 1 : 0].font.pixelSize()) << words[i].text.toStdString();
        for (size_t j = i + 1; j < words.size(); ++j)
            EXPECT_FALSE(words[i].box.intersects(words[j].box)) << words[i].text.toStdString() << " on " << words[j].text.toStdString();
    }
}

} // namespace

TEST(WordCloud, WordsLieInsideThePlotAndNeverOverlap)
{
    for (QSize size : {QSize(640, 400), QSize(300, 200), QSize(150, 480), QSize(1280, 720)}) {
        for (int n : {1, 15, 80}) {
            SCOPED_TRACE(std::to_string(size.width()) + "x" + std::to_string(size.height()) + " " + std::to_string(n));
            TChartModel m;
            TSeries& s = AddWords(m, n);
            const QRectF plot(QPointF(7, 11), size);
            const auto words = ChartRenderer::LayoutWordCloud(s, plot);
            ASSERT_FALSE(words.empty());
            ExpectInsideApartAndInOrder(words, plot);
            if (n == 15 && size.width() >= 640) {
                EXPECT_EQ(words.size(), 15u) << "room enough for every word";
            }
        }
    }
}

TEST(WordCloud, SizeAndColourFollowTheCount)
{
    struct Case {
        std::vector<double> counts;
        std::vector<int> pixels; // font pixel size of each point, 10 to 28 points
    };
    const Case cases[] = {{{10, 5, 1}, {37, 24, 13}}, {{3, 3, 3}, {37, 37, 37}}, {{7}, {37}}, {{1, 10}, {13, 37}}};
    for (const Case& c : cases) {
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(scWordCloud));
        s.WordFontMin = 10;
        s.WordFontMax = 28;
        s.WordColorMin = Rgb(200, 0, 0);
        s.WordColorMax = Rgb(0, 0, 200);
        for (double v : c.counts)
            s.Add(v, "word");
        const QRectF plot(0, 0, 640, 400);
        const auto words = ChartRenderer::LayoutWordCloud(s, plot);
        ASSERT_EQ(words.size(), c.counts.size());
        const auto [lo, hi] = std::minmax_element(c.counts.begin(), c.counts.end());
        for (const WordPlacement& w : words) {
            EXPECT_EQ(w.font.pixelSize(), c.pixels[size_t(w.point)]) << w.point;
            const double t = *hi > *lo ? (c.counts[size_t(w.point)] - *lo) / (*hi - *lo) : 1.0;
            EXPECT_NEAR(w.colour.red(), 200 * (1 - t), 1);
            EXPECT_NEAR(w.colour.blue(), 200 * t, 1);
        }
        EXPECT_LE((words.front().box.center() - plot.center()).manhattanLength(), 2) << "the largest word takes the centre";
    }
}

// Once a word is shrunk to fit, no word with a smaller count is drawn larger than it.
TEST(WordCloud, ShrunkWordsKeepSizesInCountOrderAndTooLongOnesGo)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scWordCloud));
    s.Add(50, "extraordinarily-long-answer-that-nobody-shortened");
    s.Add(40, "short", Rgb(10, 20, 30));
    s.Add(30, QString(400, QLatin1Char('w')));
    s.Add(20, QStringLiteral("你好"));
    const QRectF plot(0, 0, 300, 160);
    const auto words = ChartRenderer::LayoutWordCloud(s, plot);
    ExpectInsideApartAndInOrder(words, plot);
    ASSERT_EQ(words.size(), 3u) << "the 400-letter word fits at no size";
    EXPECT_LT(words[0].font.pixelSize(), std::lround(s.WordFontMax * 96 / 72.0)) << "the long word was shrunk";
    EXPECT_EQ(words[1].colour, QColor(10, 20, 30)) << "a point's own colour";
    EXPECT_GT(words[2].box.width(), 8) << "the CJK word is measured and placed";
}

TEST(WordCloud, NothingToDrawDrawsNothing)
{
    const std::vector<std::pair<double, QString>> inputs[] = {{}, {{0, "zero"}}, {{-3, "minus"}}, {{std::nan(""), "nan"}}, {{4, " \n "}}};
    for (const auto& points : inputs) {
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(scWordCloud));
        for (const auto& [count, word] : points)
            s.Add(count, word);
        s.AddNull();
        EXPECT_TRUE(ChartRenderer::LayoutWordCloud(s, QRectF(0, 0, 640, 400)).empty());
        EXPECT_EQ(RecordChart(m, QSize(640, 400), QSize(640, 400)).count(VecPrimitive::Text), 0) << "no axis labels either";
        for (int i = 0; i < s.Count(); ++i)
            EXPECT_EQ(s.Clicked(s.CalcXPos(i), s.CalcYPos(i)), -1);
    }
}

// The words and the header are all the text there is, and they reach the vector exports.
TEST(WordCloud, DrawsOnlyItsWordsWithoutAxesOrLegendAndExportsThem)
{
    TChartModel m;
    samples::Build(m, "wordcloud", 16);
    m.Legend.Visible = true;
    m.Header.Text = QStringList{"One word for today"};
    QStringList texts, expected{"One word for today"};
    for (const auto& it : RecordChart(m, QSize(640, 400), QSize(640, 400)).items)
        if (it.kind == VecPrimitive::Text)
            texts << it.text;
    TSeries& s = m.SERIES(0);
    for (int i = 0; i < s.Count(); ++i) {
        expected << s.PointLabel(i);
        EXPECT_EQ(s.Clicked(s.CalcXPos(i), s.CalcYPos(i)), i) << s.PointLabel(i).toStdString();
    }
    texts.sort();
    expected.sort();
    EXPECT_EQ(texts, expected);

    const QByteArray emf = ChartPictureBytes(m, PictureFormat::EMF);
    const QString greek = QStringLiteral("Ελπίδα");
    EXPECT_TRUE(emf.contains(QByteArray(reinterpret_cast<const char*>(greek.utf16()), greek.size() * 2))) << "UTF-16 text record";
    QXmlStreamReader svg(ChartPictureBytes(m, PictureFormat::SVG));
    int svgTexts = 0;
    while (!svg.atEnd())
        svgTexts += svg.readNext() == QXmlStreamReader::StartElement && svg.name() == QStringLiteral("text");
    EXPECT_FALSE(svg.hasError()) << svg.errorString().toStdString();
    EXPECT_EQ(svgTexts, 17);
}
