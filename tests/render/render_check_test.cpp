// What the audience sees on the slide, as LibreOffice Impress draws it. Each chart kind a
// vote can produce is voted twice by the real programs, once placing PNG and once EMF (the
// default format); one office process renders every deck, and the metafile's render must
// match the PNG's: the same shape on the slide, and the same colours region by region.
//
// To look at the renders side by side (and regenerate docs/render-check.png):
//   TALLIX_RENDER_CHECK_OUT=/tmp/render build/bin/render_check_test
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include "support/picture_measures.h"
#include "support/program_sandbox.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// Pixels of the slide render per point.
constexpr int kDpi = 96;
constexpr double kPxPerPt = kDpi / 72.0;
// A region's mean colour may differ by this much per channel (of 255): anti-aliasing and
// the two renderers' text differ at edges, a stretched or missing slice or bar does not.
constexpr double kRegionTolerance = 22;
constexpr int kGridColumns = 8, kGridRows = 6;
// The shape of the drawn chart inside its box may differ by this share.
constexpr double kAspectTolerance = 0.04;

struct Case {
    QString name;
    int graphType;
    int options = 4;
    int fillStyle = 0;
    QString graphInfo; // further graph_info elements
    QString voteInfo;  // further vote_info elements
};

std::vector<Case> Cases()
{
    std::vector<Case> out;
    const struct {
        const char* name;
        int graphType;
    } kinds[] = {{"bar", 2},      {"bar3d", 3},      {"hbar", 4},      {"hbar3d", 5},
                 {"cylinder", 9}, {"hcylinder", 10}, {"hpyramid", 11}, {"pyramid", 12},
                 {"pie", 0},      {"pie3d", 1},      {"donut", 13},    {"donut3d", 14}};
    for (const auto& k : kinds) {
        out.push_back({QString::fromLatin1(k.name), k.graphType, 4, 0, {}, {}});
        out.push_back({QString::fromLatin1(k.name) + "-fill1", k.graphType, 4, 1, {}, {}});
    }
    out.push_back({"paged", 2, 12, 1, {}, {}});
    out.push_back({"bar-nomarks", 3, 4, 1, {}, "<showAsPercentOrNumber>3</showAsPercentOrNumber>"});
    out.push_back({"pie-numbers", 0, 4, 1, {}, "<showAsPercentOrNumber>1</showAsPercentOrNumber>"});
    return out;
}

QByteArray Settings(const Case& c)
{
    return QStringLiteral("<tlxfile><vote_info><vType>0</vType><options>%1</options><startFrom>1</startFrom>%2"
                          "</vote_info><graph_info><GraphType>%3</GraphType><BarsPerPage>10</BarsPerPage>"
                          "<ShowGraphs>True</ShowGraphs>%4</graph_info><GraphOutline><Visible>False</Visible>"
                          "<Colour>0</Colour><FillStyle>%5</FillStyle></GraphOutline></tlxfile>")
        .arg(c.options)
        .arg(c.voteInfo)
        .arg(c.graphType)
        .arg(c.graphInfo)
        .arg(c.fillStyle)
        .toUtf8();
}

// Every option gets a different share: keypad k votes for option (k mod n) + 1, and the
// later options get more keypads.
QByteArray ControllerScript(int options)
{
    QByteArray records;
    int keypad = 1;
    for (int option = 1; option <= options; ++option)
        for (int i = 0; i < option; ++i, ++keypad)
            records += "[" + QByteArray::number(keypad) + ";" + QByteArray::number(option) + "],";
    return "0.3 " + records + "\\r\\n\n";
}

// One vote run in folders of its own, so that runs side by side never meet.
struct VoteRun {
    QString dir, format;
    tallix::testing::ProgramSandbox box;
    std::unique_ptr<QProcess> controller = std::make_unique<QProcess>();
    std::unique_ptr<QProcess> vote = std::make_unique<QProcess>();
    QString error;

    QString deck() const { return dir + "/deck.pptx"; }

    void start(const Case& c)
    {
        box.setUp(dir);
        box.write("appdata/tallix/tlx.ini", "[TALLIX OPTIONS]\nCHART EXPORT FORMAT=" + format.toLatin1() + "\n");
        box.write("appdata/tallix/tlxctrl.ini", "[Controller]\nMaxKeypads=80\n[Base0]\nType=GrandHub\nLow=1\nHigh=80\n");
        // Three seconds for the votes, then the chart grows and is placed; the presenter moves on.
        const QString ops = box.write("op.txt", "3 key Space\n7 key Space\n");
        QStringList answers;
        for (int i = 1; i <= c.options; ++i)
            answers << QStringLiteral("Answer %1").arg(i);
        if (box.run("tallix-deck", {"new", deck(), "--slides", "2"}) != 0 ||
            box.run("tallix-deck", {"question", deck(), "1", "--settings", box.write("q.xml", Settings(c)), "--answers",
                                    answers.join('|'), "--title", c.name}) != 0) {
            error = "could not make the deck";
            return;
        }
        if (!box.startController(*controller, {"--script", box.write("votes.txt", ControllerScript(c.options)),
                                               "--idle-exit", "60"})) {
            error = "the controller did not start";
            return;
        }
        vote->setProcessEnvironment(box.env);
        vote->start(tallix::testing::ProgramPath("tallix-vote"), {"--deck", deck(), "--operator-script", ops, "TLXVOTE,1"});
    }

    void finish()
    {
        if (error.isEmpty() && (!vote->waitForFinished(30000) || vote->exitCode() != 0))
            error = "tallix-vote did not end in order: " + QString::fromUtf8(vote->readAllStandardError().right(400));
        vote->kill();
        box.stopController(*controller);
    }

    // The keypads' tokens of the line the vote saved on its slide.
    QStringList savedTokens()
    {
        QString out;
        box.run("tallix-deck", {"tags", deck(), "1", "--json"}, 30000, &out);
        const QString line = QJsonDocument::fromJson(out.toUtf8()).object().value("TLXVOTES").toString();
        return line.section("\r\n", 0, 0).section(',', 2, 2).split(';', Qt::SkipEmptyParts);
    }

    // The placed chart's box on the slide, in points.
    QRectF chartBox()
    {
        QString out;
        box.run("tallix-deck", {"shapes", deck(), "1", "--json"}, 30000, &out);
        for (const QJsonValue& v : QJsonDocument::fromJson(out.toUtf8()).array()) {
            const QJsonObject o = v.toObject();
            if (o.value("name").toString() == "tallix chart")
                return {o.value("left").toDouble(), o.value("top").toDouble(), o.value("width").toDouble(),
                        o.value("height").toDouble()};
        }
        return {};
    }
};

// The chart's panel is light grey in a PNG and clear in a metafile; the slide is white.
bool IsBackground(QRgb p) { return qRed(p) >= 222 && qGreen(p) >= 222 && qBlue(p) >= 222; }

QRect InkBounds(const QImage& img)
{
    QRect r;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            if (!IsBackground(img.pixel(x, y)))
                r |= QRect(x, y, 1, 1);
    return r;
}

// Mean colour of each grid region, background counted as white.
std::vector<QColor> RegionColours(const QImage& img)
{
    std::vector<QColor> out;
    for (int gy = 0; gy < kGridRows; ++gy)
        for (int gx = 0; gx < kGridColumns; ++gx) {
            const int x0 = gx * img.width() / kGridColumns, x1 = (gx + 1) * img.width() / kGridColumns;
            const int y0 = gy * img.height() / kGridRows, y1 = (gy + 1) * img.height() / kGridRows;
            double r = 0, g = 0, b = 0;
            const double n = std::max(1, (x1 - x0) * (y1 - y0));
            for (int y = y0; y < y1; ++y)
                for (int x = x0; x < x1; ++x) {
                    const QRgb p = IsBackground(img.pixel(x, y)) ? qRgb(255, 255, 255) : img.pixel(x, y);
                    r += qRed(p), g += qGreen(p), b += qBlue(p);
                }
            out.push_back(QColor(int(r / n), int(g / n), int(b / n)));
        }
    return out;
}

bool RunTool(const QString& program, const QStringList& args, const QProcessEnvironment& env, int ms)
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(ms)) {
        p.kill();
        p.waitForFinished(2000);
        return false;
    }
    return p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

TEST(RenderCheck, EveryChartKindPlacedAsEmfLooksLikeItsPngInLibreOffice)
{
    for (const char* program : {"soffice", "pdftoppm"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
            GTEST_SKIP() << program << " is not installed";
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::vector<Case> cases = Cases();

    // The runs wait on the operator's clock most of the time: several go side by side.
    std::vector<std::unique_ptr<VoteRun>> runs;
    for (const Case& c : cases)
        for (const char* format : {"PNG", "EMF"}) {
            auto r = std::make_unique<VoteRun>();
            r->dir = dir.filePath(c.name + "-" + format);
            r->format = QString::fromLatin1(format);
            runs.push_back(std::move(r));
        }
    constexpr size_t kSideBySide = 8;
    for (size_t first = 0; first < runs.size(); first += kSideBySide) {
        const size_t last = std::min(runs.size(), first + kSideBySide);
        for (size_t i = first; i < last; ++i)
            runs[i]->start(cases[i / 2]);
        for (size_t i = first; i < last; ++i)
            runs[i]->finish();
    }

    // One office process, with a profile of its own, for every deck.
    QStringList decks;
    for (size_t i = 0; i < runs.size(); ++i) {
        const QString copy = dir.filePath(QStringLiteral("decks/%1.pptx").arg(i));
        QDir().mkpath(dir.filePath("decks"));
        QFile::copy(runs[i]->deck(), copy);
        decks << copy;
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    QDir().mkpath(dir.filePath("office-home"));
    env.insert("HOME", dir.filePath("office-home"));
    ASSERT_TRUE(RunTool("soffice",
                    QStringList{"-env:UserInstallation=file://" + dir.filePath("office-profile"), "--headless",
                                "--norestore", "--convert-to", "pdf", "--outdir", dir.filePath("pdf")} +
                        decks,
                    env, 600000))
        << "LibreOffice could not convert the decks";

    const QString keep = qEnvironmentVariable("TALLIX_RENDER_CHECK_OUT");
    if (!keep.isEmpty())
        QDir().mkpath(keep);
    for (size_t ci = 0; ci < cases.size(); ++ci) {
        const Case& c = cases[ci];
        SCOPED_TRACE(c.name.toStdString());
        VoteRun& png = *runs[2 * ci];
        VoteRun& emf = *runs[2 * ci + 1];
        EXPECT_TRUE(png.error.isEmpty()) << png.error.toStdString();
        EXPECT_TRUE(emf.error.isEmpty()) << emf.error.toStdString();
        if (!png.error.isEmpty() || !emf.error.isEmpty())
            continue;
        // Two empty charts would look alike: each run must have taken the room's votes.
        for (VoteRun* r : {&png, &emf}) {
            const QStringList tokens = r->savedTokens();
            EXPECT_EQ(tokens.size() - tokens.count("-"), c.options * (c.options + 1) / 2) << r->format.toStdString();
        }
        const QRectF box = emf.chartBox();
        ASSERT_FALSE(box.isEmpty()) << "no chart on the slide";
        EXPECT_EQ(box, png.chartBox()) << "both formats take the same box";

        QImage crops[2];
        for (int k = 0; k < 2; ++k) {
            const size_t i = 2 * ci + k;
            const QString stem = dir.filePath(QStringLiteral("png/%1").arg(i));
            QDir().mkpath(dir.filePath("png"));
            ASSERT_TRUE(RunTool("pdftoppm", {"-png", "-r", QString::number(kDpi), "-f", "1", "-l", "1", "-singlefile",
                                         dir.filePath(QStringLiteral("pdf/%1.pdf").arg(i)), stem},
                            env, 60000));
            const QImage slide = QImage(stem + ".png").convertToFormat(QImage::Format_RGB32);
            ASSERT_FALSE(slide.isNull());
            const QRect px(int(box.left() * kPxPerPt) + 1, int(box.top() * kPxPerPt) + 1,
                           int(box.width() * kPxPerPt) - 2, int(box.height() * kPxPerPt) - 2);
            crops[k] = slide.copy(px);
        }
        const QRect inkPng = InkBounds(crops[0]), inkEmf = InkBounds(crops[1]);
        ASSERT_FALSE(inkEmf.isEmpty()) << "the metafile drew nothing";
        EXPECT_FALSE(tallix::testing::SolidBounds(crops[0]).isEmpty()) << "the PNG holds no bar or slice";
        EXPECT_FALSE(tallix::testing::SolidBounds(crops[1]).isEmpty()) << "the EMF holds no bar or slice";
        const double aspectPng = double(inkPng.width()) / inkPng.height();
        const double aspectEmf = double(inkEmf.width()) / inkEmf.height();
        EXPECT_NEAR(aspectEmf, aspectPng, kAspectTolerance * aspectPng) << "the chart is stretched";
        // Both pictures could be stretched alike; a flat pie shows it, being round.
        if (c.graphType == 0 || c.graphType == 13) {
            const QRect pie = tallix::testing::SolidBounds(crops[1]);
            EXPECT_NEAR(double(pie.width()) / pie.height(), 1.0, kAspectTolerance) << "a flat pie is round";
        }
        const std::vector<QColor> a = RegionColours(crops[0]), b = RegionColours(crops[1]);
        for (size_t i = 0; i < a.size(); ++i) {
            const double d = std::max({std::abs(a[i].red() - b[i].red()), std::abs(a[i].green() - b[i].green()),
                                       std::abs(a[i].blue() - b[i].blue())});
            EXPECT_LE(d, kRegionTolerance) << "region " << i % kGridColumns << "," << i / kGridColumns << ": PNG "
                                           << a[i].name().toStdString() << ", EMF " << b[i].name().toStdString();
        }
        if (!keep.isEmpty()) {
            QImage pair(crops[0].width() * 2 + 12, crops[0].height(), QImage::Format_RGB32);
            pair.fill(Qt::white);
            QPainter p(&pair);
            p.drawImage(0, 0, crops[0]);
            p.drawImage(crops[0].width() + 12, 0, crops[1]);
            p.end();
            pair.save(keep + "/" + c.name + ".png");
        }
    }
}

} // namespace
