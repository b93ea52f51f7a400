// Every export format is a real file of its kind: checked by its structure always, and by
// ImageMagick, Ghostscript and LibreOffice where they are installed.
#include "chartsurface/tchart.h"
#include "foundation/vb_error.h"
#include "sample_charts.h"
#include "support/picture_measures.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::ColouredShare;

namespace {

constexpr int kW = 800, kH = 500;

QByteArray ReadAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Little-endian fields; reading past the end gives 0, so a short file fails the checks, not the test.
quint32 U32(const QByteArray& b, qsizetype at)
{
    quint32 v = 0;
    for (int i = 3; i >= 0 && at >= 0 && at + 4 <= b.size(); --i)
        v = (v << 8) | uchar(b.at(at + i));
    return v;
}
quint16 U16(const QByteArray& b, qsizetype at) { return quint16(at + 2 <= b.size() ? U32(b.left(at + 2) + QByteArray(2, '\0'), at) : 0); }

// Runs a checker with a time bound; returns its standard output, or nothing if it failed.
std::optional<QString> RunChecker(const QString& program, const QStringList& args, int timeoutMs = 60000,
                           const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment())
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished(5000);
        return std::nullopt;
    }
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(p.readAllStandardOutput());
}


struct EmfRecords {
    std::map<quint32, int> count;
    QStringList texts;
    quint32 last = 0;
    int total = 0;
};

EmfRecords WalkEmf(const QByteArray& b)
{
    EmfRecords r;
    qsizetype at = 0;
    while (at + 8 <= b.size()) {
        const quint32 type = U32(b, at), size = U32(b, at + 4);
        EXPECT_GE(size, 8u);
        EXPECT_EQ(size % 4, 0u) << "record " << type << " at " << at;
        if (size < 8 || at + size > b.size())
            break;
        ++r.count[type];
        ++r.total;
        r.last = type;
        if (type == 84) { // text: the string is at offString, nChars UTF-16 units
            const quint32 n = U32(b, at + 44), off = U32(b, at + 48);
            r.texts << QString::fromUtf16(reinterpret_cast<const char16_t*>(b.constData() + at + off), n);
        }
        at += size;
    }
    EXPECT_EQ(at, b.size()) << "records do not end at the end of the file";
    return r;
}

class ExportTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        chart.resize(640, 400);
        samples::Build(chart, "bar3d");
    }
    QString save(TExportFormat& f, const QString& name, int w = kW, int h = kH)
    {
        f.Width = w;
        f.Height = h;
        const QString path = dir.filePath(name);
        f.SaveToFile(path);
        return path;
    }
    QTemporaryDir dir;
    TChart chart;
};

} // namespace

TEST_F(ExportTest, RasterFormatsHaveTheirSignatureAndSize)
{
    struct Case {
        TExportFormat* fmt;
        const char* file;
        QByteArray magic;
        const char* qtFormat;
        const char* identifyName;
    };
    const Case cases[] = {
        {&chart.Export.asPNG, "c.png", QByteArray("\x89PNG\r\n\x1a\n", 8), "png", "PNG"},
        {&chart.Export.asBMP, "c.bmp", "BM", "bmp", "BMP3"},
        {&chart.Export.asJPEG, "c.jpg", QByteArray("\xFF\xD8\xFF", 3), "jpg", "JPEG"},
        {&chart.Export.asGIF, "c.gif", "GIF89a", "gif", "GIF"},
        {&chart.Export.asPCX, "c.pcx", QByteArray("\x0A\x05\x01\x08", 4), nullptr, "PCX"},
    };
    const bool haveIdentify = !QStandardPaths::findExecutable("identify").isEmpty();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const QString path = save(*c.fmt, c.file);
        const QByteArray bytes = ReadAll(path);
        ASSERT_TRUE(bytes.startsWith(c.magic));
        if (c.qtFormat) {
            QImage img(path, c.qtFormat);
            ASSERT_FALSE(img.isNull());
            EXPECT_EQ(img.size(), QSize(kW, kH));
            EXPECT_GT(ColouredShare(img), 0.05) << "the bars are missing";
        }
        if (haveIdentify) {
            const auto out = RunChecker("identify", {"-format", "%m %w %h", path});
            ASSERT_TRUE(out.has_value());
            EXPECT_EQ(out->trimmed(), QStringLiteral("%1 %2 %3").arg(c.identifyName).arg(kW).arg(kH));
        }
    }
    EXPECT_EQ(U32(ReadAll(dir.filePath("c.bmp")), 2), quint32(ReadAll(dir.filePath("c.bmp")).size()));
    EXPECT_TRUE(ReadAll(dir.filePath("c.jpg")).endsWith(QByteArray("\xFF\xD9", 2)));
    EXPECT_TRUE(ReadAll(dir.filePath("c.gif")).endsWith(";"));
}

TEST_F(ExportTest, PcxDecodesToTheSamePictureAsPng)
{
    const QImage png(save(chart.Export.asPNG, "c.png"));
    const QByteArray pcx = ReadAll(save(chart.Export.asPCX, "c.pcx"));
    ASSERT_GT(pcx.size(), 128);
    const int w = U16(pcx, 8) + 1, h = U16(pcx, 10) + 1, planes = pcx[65], bpl = U16(pcx, 66);
    ASSERT_EQ(w, kW);
    ASSERT_EQ(h, kH);
    ASSERT_EQ(planes, 3);
    QByteArray raw;
    for (qsizetype at = 128; at < pcx.size();) {
        const uchar v = uchar(pcx[at++]);
        if ((v & 0xC0) == 0xC0 && at < pcx.size())
            raw.append(QByteArray(v & 0x3F, pcx[at++]));
        else
            raw.append(char(v));
    }
    ASSERT_EQ(raw.size(), qsizetype(h) * bpl * 3);
    const QImage ref = png.convertToFormat(QImage::Format_RGB32);
    int differ = 0;
    for (int y = 0; y < h; y += 7)
        for (int x = 0; x < w; x += 5) {
            const qsizetype row = qsizetype(y) * bpl * 3;
            const QRgb c = qRgb(uchar(raw[row + x]), uchar(raw[row + bpl + x]), uchar(raw[row + 2 * bpl + x]));
            // The PNG keeps the panel's white; both come from the same drawing.
            differ += c != ref.pixel(x, y);
        }
    EXPECT_EQ(differ, 0);
}

TEST_F(ExportTest, EmfIsVectorWithPolygonsAndTextRecords)
{
    const QByteArray b = ReadAll(save(chart.Export.asMetafile, "c.emf"));
    ASSERT_GE(b.size(), 108);
    EXPECT_EQ(U32(b, 0), 1u);
    EXPECT_EQ(U32(b, 40), 0x464D4520u); // " EMF"
    EXPECT_EQ(U32(b, 48), quint32(b.size()));
    EXPECT_EQ(qint32(U32(b, 16)), kW - 1); // bounds in pixels
    EXPECT_EQ(qint32(U32(b, 20)), kH - 1);
    const EmfRecords r = WalkEmf(b);
    EXPECT_EQ(quint32(r.total), U32(b, 52));
    EXPECT_EQ(r.last, 14u); // EOF
    EXPECT_GE(r.count.at(8), 10);  // polygons: faces of the bars, walls
    EXPECT_GE(r.count.at(84), 10); // text runs: marks, axis labels
    EXPECT_EQ(r.count.count(81), 0u) << "a bitmap inside the metafile";
    EXPECT_TRUE(r.texts.contains("34%")) << r.texts.join('|').toStdString();
    EXPECT_TRUE(r.texts.contains("B"));
}

TEST_F(ExportTest, WmfHasPlaceableHeaderAndRecordsToTheEnd)
{
    chart.Export.asMetafile.Enhanced = false;
    const QByteArray b = ReadAll(save(chart.Export.asMetafile, "c.wmf"));
    ASSERT_GE(b.size(), 40);
    EXPECT_EQ(U32(b, 0), 0x9AC6CDD7u);
    quint16 sum = 0;
    for (int i = 0; i < 10; ++i)
        sum ^= U16(b, 2 * i);
    EXPECT_EQ(sum, U16(b, 20));
    const int inch = U16(b, 14);
    EXPECT_EQ(U16(b, 10) * 96 / inch, kW); // bounds over units per inch give the size
    EXPECT_EQ(U16(b, 22), 1);              // memory metafile
    EXPECT_EQ(U16(b, 24), 9);
    EXPECT_EQ(qsizetype(U32(b, 28)) * 2, b.size() - 22);
    std::map<quint16, int> count;
    qsizetype at = 22 + 18;
    quint16 last = 0xFFFF;
    QStringList texts;
    while (at + 6 <= b.size()) {
        const quint32 words = U32(b, at);
        const quint16 fn = U16(b, at + 4);
        ASSERT_GE(words, 3u);
        ++count[fn];
        last = fn;
        if (fn == 0x0A32)
            texts << QString::fromLatin1(b.constData() + at + 14, U16(b, at + 10));
        at += qsizetype(words) * 2;
        if (fn == 0)
            break;
    }
    EXPECT_EQ(at, b.size());
    EXPECT_EQ(last, 0);
    EXPECT_GE(count[0x0324] + count[0x0538], 10);
    EXPECT_TRUE(texts.contains("34%")) << texts.join('|').toStdString();
}

TEST_F(ExportTest, EpsHasBoundingBoxInPoints)
{
    const QByteArray b = ReadAll(save(chart.Export.asEPS, "c.eps"));
    EXPECT_TRUE(b.startsWith("%!PS-Adobe-3.0 EPSF-3.0\n"));
    EXPECT_TRUE(b.contains("%%BoundingBox: 0 0 600 375\n"));
    EXPECT_TRUE(b.trimmed().endsWith("%%EOF"));
    EXPECT_GT(b.count(" fill\n") + b.count("\nfill\n") + b.count("eofill"), 20);
}

TEST_F(ExportTest, SvgIsAnSvgDocumentOfTheSize)
{
    const QByteArray b = ReadAll(save(chart.Export.asSVG, "c.svg"));
    QXmlStreamReader xml(b);
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.name(), QStringLiteral("svg"));
    EXPECT_EQ(xml.attributes().value("viewBox"), QStringLiteral("0 0 %1 %2").arg(kW).arg(kH));
    int elements = 0;
    while (!xml.atEnd())
        elements += xml.readNext() == QXmlStreamReader::StartElement;
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_GT(elements, 20);
}

TEST_F(ExportTest, SizeZeroKeepsTheChartsOwnSize)
{
    const QImage img(save(chart.Export.asPNG, "own.png", 0, 0));
    EXPECT_EQ(img.size(), QSize(640, 400));
}

TEST_F(ExportTest, UnwritablePathRaisesAndLeavesNothing)
{
    const QString path = dir.filePath("no/such/folder/c.png");
    chart.Export.asPNG.Width = 100;
    chart.Export.asPNG.Height = 80;
    EXPECT_THROW(chart.Export.asPNG.SaveToFile(path), VbError);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(ExportTest, GhostscriptRendersTheEps)
{
    if (QStandardPaths::findExecutable("gs").isEmpty())
        GTEST_SKIP() << "Ghostscript is not installed";
    const QString eps = save(chart.Export.asEPS, "c.eps");
    const QString png = dir.filePath("eps.png");
    ASSERT_TRUE(RunChecker("gs", {"-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dEPSCrop", "-sDEVICE=png16m", "-r96",
                           "-sOutputFile=" + png, eps})
                    .has_value());
    const QImage img(png);
    ASSERT_FALSE(img.isNull());
    EXPECT_NEAR(img.width(), kW, 2);
    EXPECT_GT(ColouredShare(img), 0.05);
}

TEST_F(ExportTest, LibreOfficeRendersTheMetafiles)
{
    const QString soffice = QStandardPaths::findExecutable("soffice");
    if (soffice.isEmpty())
        GTEST_SKIP() << "LibreOffice is not installed";
    const QString emf = save(chart.Export.asMetafile, "c.emf");
    chart.Export.asMetafile.Enhanced = false;
    const QString wmf = save(chart.Export.asMetafile, "c.wmf");
    // A profile of its own, so it neither meets nor waits for another office process.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", dir.path());
    const QString out = dir.filePath("lo");
    // Both files convert to c.png: one at a time, to look at each.
    for (const QString& file : {emf, wmf}) {
        SCOPED_TRACE(file.toStdString());
        QFile::remove(out + "/c.png");
        ASSERT_TRUE(RunChecker(soffice, {"-env:UserInstallation=file://" + dir.filePath("profile"), "--headless", "--norestore",
                                  "--convert-to", "png", "--outdir", out, file},
                        120000, env)
                        .has_value());
        const QImage img(out + "/c.png");
        ASSERT_FALSE(img.isNull());
        EXPECT_GT(ColouredShare(img), 0.05) << "the bars did not come out";
        if (qEnvironmentVariableIsSet("TALLIX_KEEP_EXPORTS"))
            img.save(QStringLiteral(TALLIX_BINARY_DIR "/lo-%1.png").arg(QFileInfo(file).suffix()));
    }
}

// Exporting at slide size lays the chart out at its own size and scales it, so the marks
// the window reports, and the ones moved by hand, stay where they are.
TEST_F(ExportTest, ExportAtAnotherSizeKeepsTheWindowsPositions)
{
    chart.Repaint();
    TSeries& s = chart.SERIES(0);
    std::vector<QPoint> before;
    for (int i = 0; i < s.Count(); ++i)
        before.push_back(s.Marks.Positions.Position(i).LeftTop);
    s.Marks.Positions.Position(2).Custom = true;
    s.Marks.Positions.Position(2).LeftTop = QPoint(5, 6);
    before[2] = QPoint(5, 6);
    for (TExportFormat* f : {&chart.Export.asPNG, &chart.Export.asMetafile, &chart.Export.asEPS})
        save(*f, "big", 1600, 1000);
    for (int i = 0; i < s.Count(); ++i)
        EXPECT_EQ(s.Marks.Positions.Position(i).LeftTop, before[size_t(i)]) << i;
    const QImage img(save(chart.Export.asPNG, "big.png", 1280, 800));
    const QImage small(save(chart.Export.asPNG, "small.png", 640, 400));
    // The picture of twice the size is the same picture: scaled down, only edges differ.
    ASSERT_EQ(img.size(), QSize(1280, 800));
    const QImage down = img.scaled(640, 400, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
    const QImage ref = small.convertToFormat(QImage::Format_RGB32);
    int differ = 0;
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x) {
            const QRgb a = down.pixel(x, y), b = ref.pixel(x, y);
            differ += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b)) > 120;
        }
    EXPECT_LT(differ, 640 * 400 / 100) << differ << " pixels differ";
}
