#include "deck_tool.h"
#include "question/settings_document.h"

#include "foundation/host.h"
#include "host/deck_host.h"
#include "host/pptx_host.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>
#include <functional>
#include <gtest/gtest.h>
#include <tuple>

using namespace tallix;
using namespace tallix::host;

namespace {
// The settings document as a slide keeps it: the document's own text, as a vote run writes it.
QString asStored(const QString& xml)
{
    tallix::SettingsDocument d;
    d.loadXML(xml);
    return d.xml();
}

pugi::xml_document settingsOf(const QString& xml)
{
    pugi::xml_document d;
    const QByteArray bytes = xml.toUtf8();
    EXPECT_TRUE(d.load_buffer(bytes.constData(), size_t(bytes.size()))) << xml.toStdString();
    return d;
}
} // namespace

namespace {

const QString kSettings = "<?xml version=\"1.0\"?>\r\n<tlxfile>\r\n<General><GraphType>2</GraphType></General>\r\n</tlxfile>\r\n";

QByteArray readFile(const QString& path)
{
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
}

class DeckToolTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString deck = dir.filePath("q.pptx");
    QString settings = dir.filePath("settings.xml");
    QString out, err;

    void SetUp() override { writeFile(settings, kSettings.toUtf8()); }

    int run(const QStringList& args)
    {
        out.clear();
        err.clear();
        QTextStream o(&out), e(&err);
        return deck::RunDeckTool(args, o, e);
    }
    QJsonDocument json(const QStringList& args)
    {
        EXPECT_EQ(run(args + QStringList{"--json"}), 0) << err.toStdString();
        return QJsonDocument::fromJson(out.toUtf8());
    }
    void makeQuestionDeck()
    {
        ASSERT_EQ(run({"new", deck, "--slides", "3"}), 0) << err.toStdString();
        ASSERT_EQ(run({"question", deck, "2", "--settings", settings, "--answers", "Apple|Banana|Cherry",
                       "--title", "Which fruit is best?", "--chart-area", "500,150,400,300"}),
                  0)
            << err.toStdString();
    }
};

TEST_F(DeckToolTest, QuestionMakesTheAgreedShapesAndTag)
{
    makeQuestionDeck();
    const QJsonArray shapes = json({"shapes", deck, "2"}).array();
    QMap<QString, QJsonObject> byName;
    for (const QJsonValue& v : shapes)
        byName.insert(v["name"].toString(), v.toObject());
    ASSERT_TRUE(byName.contains("tlx_question"));
    EXPECT_EQ(byName["tlx_question"]["text"].toString(), "Which fruit is best?");
    EXPECT_EQ(byName["tlx_answers"]["text"].toString(), "Apple\rBanana\rCherry");
    const QJsonObject sample = byName["tallix chart sample"];
    EXPECT_EQ(QRectF(sample["left"].toDouble(), sample["top"].toDouble(), sample["width"].toDouble(),
                     sample["height"].toDouble()),
              QRectF(500, 150, 400, 300));
    EXPECT_TRUE(sample["visible"].toBool());

    // The settings as given, and the identity the question was given.
    const QString stored = json({"tags", deck, "2"}).object().value("TLXVOTE").toString();
    const QString qid = settingsOf(stored).select_node("/tlxfile/file_info/QID").node().child_value();
    EXPECT_FALSE(qid.isEmpty());
    QString withIdentity = kSettings;
    withIdentity.replace("</tlxfile>", "<file_info><QID>" + qid + "</QID></file_info></tlxfile>");
    EXPECT_EQ(stored, asStored(withIdentity));
    EXPECT_TRUE(json({"tags", deck, "1"}).object().isEmpty());

    // Made twice, the slide still carries one of each and one note.
    ASSERT_EQ(run({"question", deck, "2", "--settings", settings, "--answers", "Yes|No"}), 0);
    EXPECT_EQ(json({"shapes", deck, "2"}).array().size(), shapes.size());
    Deck d = Deck::fromFile(deck);
    const QString notes = d.notesPart(d.slideIdAt(2), false);
    ASSERT_FALSE(notes.isEmpty());
    EXPECT_EQ(QString::fromUtf8(d.package().bytes(notes)).count("This slide is a tallix question"), 1);
}

QRectF rectOf(const QJsonObject& o)
{
    return QRectF(o["left"].toDouble(), o["top"].toDouble(), o["width"].toDouble(), o["height"].toDouble());
}

TEST_F(DeckToolTest, QuestionObjectsAreHiddenTablesOfTheAnswerAndAnEmptyResultCell)
{
    makeQuestionDeck();
    const QStringList base{"question", deck, "2", "--settings", settings, "--chart-area", "500,150,400,300", "--objects"};
    // Made again with fewer answers, the tables of the old ones go.
    for (const QStringList& answers : {QStringList{"Apple", "Banana", "Cherry"}, QStringList{"Yes", "No"}}) {
        SCOPED_TRACE(answers.join('|').toStdString());
        ASSERT_EQ(run(base + QStringList{"--answers", answers.join('|')}), 0) << err.toStdString();
        QMap<QString, QJsonObject> objects;
        QRectF list;
        for (const QJsonValue& v : json({"shapes", deck, "2"}).array()) {
            if (v["name"].toString().startsWith("tlx_object"))
                objects.insert(v["name"].toString(), v.toObject());
            if (v["name"].toString() == "tlx_answers")
                list = rectOf(v.toObject());
        }
        ASSERT_EQ(objects.size(), answers.size());
        QList<QRectF> placed;
        for (int n = 1; n <= answers.size(); ++n) {
            const QJsonObject t = objects.value(QStringLiteral("tlx_object%1").arg(n));
            ASSERT_FALSE(t.isEmpty()) << n;
            EXPECT_EQ(t["kind"].toString(), ShapeKindName(ShapeKind::Table));
            EXPECT_FALSE(t["visible"].toBool());
            EXPECT_EQ(t["cells"].toArray(), (QJsonArray{QJsonArray{answers[n - 1], ""}}));
            const QRectF r = rectOf(t);
            EXPECT_GE(r.left(), list.right()) << "beside the answers";
            EXPECT_LE(r.right(), 960);
            EXPECT_GE(r.width(), 100);
            EXPECT_GE(r.height(), 20);
            for (const QRectF& other : placed)
                EXPECT_FALSE(r.intersects(other)) << n;
            placed << r;
        }
    }
    ASSERT_EQ(run({"shapes", deck, "2"}), 0);
    const QStringList line = out.split('\n').filter(QRegularExpression("^tlx_object2\t"));
    ASSERT_EQ(line.size(), 1) << out.toStdString();
    EXPECT_TRUE(line[0].startsWith("tlx_object2\ttable\thidden\t")) << line[0].toStdString();
    EXPECT_TRUE(line[0].endsWith("\tcells: No | ")) << line[0].toStdString();
}

TEST_F(DeckToolTest, RankMarkersAreHiddenEmptyAndSteppedDownLeftOfTheChart)
{
    makeQuestionDeck();
    const QStringList base{"question", deck, "2", "--settings", settings, "--chart-area", "500,150,400,300"};
    for (int count : {3, 2}) {
        ASSERT_EQ(run(base + QStringList{"--rank-markers", QString::number(count)}), 0) << err.toStdString();
        QStringList names;
        QList<QRectF> placed;
        for (const QJsonValue& v : json({"shapes", deck, "2"}).array()) {
            if (!v["name"].toString().startsWith("tallix rank marker"))
                continue;
            names << v["name"].toString();
            EXPECT_EQ(v["kind"].toString(), ShapeKindName(ShapeKind::Text));
            EXPECT_FALSE(v["visible"].toBool());
            EXPECT_EQ(v["text"].toString(), "");
            placed << rectOf(v.toObject());
        }
        QStringList expected;
        for (int i = 1; i <= count; ++i)
            expected << QStringLiteral("tallix rank marker 0%1").arg(i);
        EXPECT_EQ(names, expected);
        for (int i = 0; i < placed.size(); ++i) {
            SCOPED_TRACE(i);
            EXPECT_EQ(placed[i].size(), QSizeF(30, 30));
            EXPECT_LE(placed[i].right(), 500); // just left of the chart area
            EXPECT_GE(placed[i].left(), 460);
            EXPECT_GE(placed[i].top(), 150);
            EXPECT_LE(placed[i].bottom(), 450);
            if (i > 0) {
                EXPECT_GE(placed[i].top(), placed[i - 1].bottom()); // one further down per item
            }
        }
    }
}

TEST_F(DeckToolTest, QuestionAnswersShapeIsATextBoxOrANumbersTableUnderItsLiveOrBackupName)
{
    makeQuestionDeck();
    const QStringList base{"question", deck, "2", "--settings", settings, "--chart-area", "500,150,400,300"};
    const auto answersShapes = [&] {
        QList<QJsonObject> found;
        for (const QJsonValue& v : json({"shapes", deck, "2"}).array())
            if (v["name"].toString().startsWith("tlx_answers") || v["name"].toString().startsWith("Content Placeholder"))
                found << v.toObject();
        return found;
    };
    const QRectF place = rectOf(answersShapes().value(0));
    const QJsonArray header{"Value", "Participant"}, row{"^High^", "^Keypad ^"};
    struct Case {
        QStringList options;
        const char* name;
        ShapeKind kind;
        bool visible;
        QJsonArray cells; // a table's; empty: the text "Apple\rBanana\rCherry"
    };
    // Made again and again on one slide, each time with one answers shape in the same place.
    const Case cases[] = {
        {{"--numbers-table", "2"}, "tlx_answers", ShapeKind::Table, false, {header, row, row}},
        {{"--answers-backup"}, "tlx_answers-BAK", ShapeKind::Text, true, {}},
        {{"--answers-backup", "--numbers-table", "1"}, "tlx_answers-BAK", ShapeKind::Table, false, {header, row}},
        {{}, "tlx_answers", ShapeKind::Text, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options.join(' ').toStdString());
        ASSERT_EQ(run(base + c.options + QStringList{"--answers", "Apple|Banana|Cherry"}), 0) << err.toStdString();
        const QList<QJsonObject> found = answersShapes();
        ASSERT_EQ(found.size(), 1);
        const QJsonObject& o = found[0];
        EXPECT_EQ(o["name"].toString(), c.name);
        EXPECT_EQ(o["kind"].toString(), ShapeKindName(c.kind));
        EXPECT_EQ(o["visible"].toBool(), c.visible);
        EXPECT_EQ(rectOf(o), place);
        if (c.cells.isEmpty())
            EXPECT_EQ(o["text"].toString(), "Apple\rBanana\rCherry");
        else
            EXPECT_EQ(o["cells"].toArray(), c.cells);
    }
}

TEST_F(DeckToolTest, WordCloudIsAHiddenRectangleWhereItIsAsked)
{
    makeQuestionDeck();
    for (const QRectF& r : {QRectF(100, 200, 300, 150), QRectF(50.5, 60, 70, 80)}) {
        ASSERT_EQ(run({"question", deck, "2", "--settings", settings, "--word-cloud",
                       QStringLiteral("%1,%2,%3,%4").arg(r.left()).arg(r.top()).arg(r.width()).arg(r.height())}),
                  0)
            << err.toStdString();
        QList<QJsonObject> clouds;
        for (const QJsonValue& v : json({"shapes", deck, "2"}).array())
            if (v["name"].toString() == "tlx_answers_word_cloud")
                clouds << v.toObject();
        ASSERT_EQ(clouds.size(), 1); // made again, it moves
        EXPECT_EQ(clouds[0]["kind"].toString(), ShapeKindName(ShapeKind::Text));
        EXPECT_FALSE(clouds[0]["visible"].toBool());
        EXPECT_EQ(rectOf(clouds[0]), r);
    }
}

TEST_F(DeckToolTest, ShapesShowATablesCellsByRow)
{
    ASSERT_EQ(run({"new", deck, "--slides", "1"}), 0) << err.toStdString();
    {
        PptxHost host(deck);
        Shape* t = host.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->AddTable(2, 2, 10, 20, 200, 60);
        t->SetName("grid");
        Table& table = *t->GetTable();
        table.Cell(1, 1)->SetText("a");
        table.Cell(1, 2)->SetText("b %1");
        table.Cell(2, 1)->SetText("c\rd");
        ASSERT_TRUE(host.Commit());
    }
    ASSERT_EQ(run({"shapes", deck, "1"}), 0) << err.toStdString();
    EXPECT_TRUE(out.contains("\ngrid\ttable\tvisible\t10,20 200x60\tcells: a | b %1 ; c / d | \n")) << out.toStdString();
    const QJsonArray shapes = json({"shapes", deck, "1"}).array();
    EXPECT_EQ(shapes.last()["cells"].toArray(), (QJsonArray{QJsonArray{"a", "b %1"}, QJsonArray{"c\rd", ""}}));
    EXPECT_FALSE(shapes.first().toObject().contains("cells"));
}

TEST_F(DeckToolTest, QuestionSlideMatchesGolden)
{
    // Regenerate with TALLIX_UPDATE_GOLDEN=1 after a deliberate change, and look at the diff.
    makeQuestionDeck();
    Deck d = Deck::fromFile(deck);
    const QByteArray slide = d.package().bytes(d.slidePart(d.slideIdAt(2)));
    const QString golden = QStringLiteral(TALLIX_TESTDATA_DIR "/golden/question_slide.xml");
    if (qEnvironmentVariableIsSet("TALLIX_UPDATE_GOLDEN"))
        writeFile(golden, slide);
    EXPECT_EQ(QString::fromUtf8(slide), QString::fromUtf8(readFile(golden)));
}

TEST_F(DeckToolTest, SettingsNoteIsAppendedOnceToExistingNotes)
{
    const QString source = QStringLiteral(TALLIX_SOURCE_DIR "/tests/data/decks/sc__056_slide-notes.pptx");
    ASSERT_TRUE(QFile::exists(source)) << source.toStdString();
    MemoryHost host(Deck::fromFile(source), {});
    Slide& slide = *host.ActivePresentation()->GetSlides()->Item(1);
    QString before;
    Shapes& notes = *slide.NotesPage();
    Shape* body = nullptr;
    for (int i = 1; i <= notes.Count(); ++i)
        if (notes.Item(i)->PlaceholderFormatType() == PlaceholderType::Body)
            body = notes.Item(i);
    ASSERT_NE(body, nullptr);
    before = body->GetTextFrame()->Text();
    ASSERT_FALSE(before.isEmpty());
    deck::SaveSettingsToSlide(host, 1, kSettings);
    deck::SaveSettingsToSlide(host, 1, kSettings);
    EXPECT_EQ(body->GetTextFrame()->Text(), before + "\rThis slide is a tallix question");
    EXPECT_EQ(slide.GetTags()->Item("tlxvote"), asStored(kSettings));
    EXPECT_EQ(slide.GetTags()->Count(), 1);
}

TEST_F(DeckToolTest, TagsAreSetDeletedAndPrintedExactly)
{
    ASSERT_EQ(run({"new", deck, "--slides", "1"}), 0);
    const QString multi = "first\r\nsecond\tcolumn\r\n";
    ASSERT_EQ(run({"tags", deck, "--set", "tlxCurrentSlide=1", "--set", "Multi=" + multi, "--set", "gone=x",
                   "--delete", "GONE"}),
              0)
        << err.toStdString();
    const QJsonObject tags = json({"tags", deck}).object();
    EXPECT_EQ(tags.keys(), (QStringList{"MULTI", "TLXCURRENTSLIDE"}));
    EXPECT_EQ(tags["MULTI"].toString(), multi);
    ASSERT_EQ(run({"tags", deck}), 0);
    EXPECT_TRUE(out.contains("TLXCURRENTSLIDE=1\n"));
}

TEST_F(DeckToolTest, VotesAndCsvExportReadTheSavedLines)
{
    makeQuestionDeck();
    const QString lines = "16/11/2026,02:31:12,3;X;-;Red|Blue;\r\n17/11/2026,09:00:01,1;-;2;\r\n";
    ASSERT_EQ(run({"tags", deck, "2", "--set", "TLXVOTES=" + lines}), 0);
    EXPECT_EQ(json({"votes", deck, "2"}).array(),
              (QJsonArray{"16/11/2026,02:31:12,3;X;-;Red|Blue;", "17/11/2026,09:00:01,1;-;2;"}));
    ASSERT_EQ(run({"votes", deck, "2"}), 0);
    EXPECT_TRUE(out.endsWith("keypad 1: 1\nkeypad 2: -\nkeypad 3: 2\n")) << out.toStdString();

    const QString csv = dir.filePath("votes.csv");
    ASSERT_EQ(run({"export-csv", deck, csv}), 0) << err.toStdString();
    EXPECT_EQ(QString::fromUtf8(readFile(csv)),
              "slide,question,date,time,keypad,answer\r\n"
              "2,Which fruit is best?,16/11/2026,02:31:12,1,3\r\n"
              "2,Which fruit is best?,16/11/2026,02:31:12,2,X\r\n"
              "2,Which fruit is best?,16/11/2026,02:31:12,4,Red|Blue\r\n"
              "2,Which fruit is best?,17/11/2026,09:00:01,1,1\r\n"
              "2,Which fruit is best?,17/11/2026,09:00:01,3,2\r\n");
}

TEST_F(DeckToolTest, ShapesListsEachGroupsMembersUnderIt)
{
    ASSERT_EQ(run({"new", deck, "--slides", "1"}), 0) << err.toStdString();
    {
        PptxHost host(deck);
        Shapes& shapes = *host.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
        const auto add = [&](const QString& name, double left) {
            Shape* s = shapes.AddShape(AutoShape::Rectangle, left, 10, 20, 30);
            s->SetName(name);
            return s;
        };
        add("a", 0)->GetTextFrame()->SetText("50%1\rdone");
        add("b", 30)->SetVisible(false);
        shapes.Group({"a", "b"})->SetName("inner");
        add("c", 60);
        shapes.Group({"inner", "c"})->SetName("outer");
        add("lone %1", 100);
        ASSERT_TRUE(host.Commit());
    }

    ASSERT_EQ(run({"shapes", deck, "1"}), 0) << err.toStdString();
    const QString group = ShapeKindName(ShapeKind::Group), text = ShapeKindName(ShapeKind::Text);
    const QStringList lines = out.split('\n', Qt::SkipEmptyParts);
    const qsizetype first = lines.indexOf(QRegularExpression("^outer\t.*"));
    ASSERT_GE(first, 0) << out.toStdString();
    EXPECT_EQ(lines.mid(first).join('\n').toStdString(),
              QStringList({
                              "outer\t" + group + "\tvisible\t0,10 80x30\t",
                              "  inner\t" + group + "\tvisible\t0,10 50x30\t",
                              "    a\t" + text + "\tvisible\t0,10 20x30\t50%1 / done",
                              "    b\t" + text + "\thidden\t30,10 20x30\t",
                              "  c\t" + text + "\tvisible\t60,10 20x30\t",
                              "lone %1\t" + text + "\tvisible\t100,10 20x30\t",
                          })
                  .join('\n')
                  .toStdString());

    const QJsonArray shapes = json({"shapes", deck, "1"}).array();
    // Names down the tree, a group's members in brackets; only groups carry "members".
    const std::function<QString(const QJsonArray&)> tree = [&](const QJsonArray& list) {
        QStringList parts;
        for (const QJsonValue& v : list) {
            const QJsonObject o = v.toObject();
            EXPECT_EQ(o.contains("members"), o["kind"].toString() == group) << o["name"].toString().toStdString();
            parts << o["name"].toString() + (o.contains("members") ? "[" + tree(o["members"].toArray()) + "]" : "");
        }
        return parts.join(' ');
    };
    EXPECT_TRUE(tree(shapes).endsWith("outer[inner[a b] c] lone %1")) << tree(shapes).toStdString();
    const QJsonObject inner = shapes.at(shapes.size() - 2)["members"][0].toObject();
    EXPECT_EQ(inner["members"][0]["text"].toString(), "50%1\rdone");
    EXPECT_FALSE(inner["members"][1]["visible"].toBool());
    EXPECT_EQ(inner["width"].toDouble(), 50);
}

TEST_F(DeckToolTest, BadArgumentsAndBadDecksGiveOneMessage)
{
    ASSERT_EQ(run({"new", deck, "--slides", "2"}), 0);
    const QByteArray good = readFile(deck);
    const QString broken = dir.filePath("broken.pptx");
    writeFile(broken, "PK\x03\x04 this is no zip");
    struct Case {
        QStringList args;
        int code;
        const char* message;
    };
    const QList<Case> cases{
        {{}, 2, "usage"},
        {{"frobnicate"}, 2, "unknown command"},
        {{"new", deck}, 2, "--slides"},
        {{"new", deck, "--slides", "zero"}, 2, "--slides"},
        {{"question", deck, "9", "--settings", settings}, 2, "no slide 9"},
        {{"question", deck, "1"}, 2, "--settings"},
        {{"question", deck, "1", "--settings", dir.filePath("none.xml")}, 2, "cannot read"},
        {{"question", deck, "1", "--settings", settings, "--chart-area", "1,2,3"}, 2, "L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--rank-markers", "0"}, 2, "--rank-markers needs a number from 1 to 99"},
        {{"question", deck, "1", "--settings", settings, "--rank-markers", "x"}, 2, "--rank-markers needs a number from 1 to 99"},
        {{"question", deck, "1", "--settings", settings, "--rank-markers", "100"}, 2, "--rank-markers needs a number from 1 to 99"},
        {{"question", deck, "1", "--settings", settings, "--rank-markers"}, 2, "--rank-markers needs a value"},
        {{"question", deck, "1", "--settings", settings, "--numbers-table", "0"}, 2, "--numbers-table needs a number from 1 to 50"},
        {{"question", deck, "1", "--settings", settings, "--numbers-table", "51"}, 2, "--numbers-table needs a number from 1 to 50"},
        {{"question", deck, "1", "--settings", settings, "--numbers-table", "3", "--objects"}, 2, "cannot be used together"},
        {{"question", deck, "1", "--settings", settings, "--word-cloud", "1,2,3"}, 2, "--word-cloud needs L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--word-cloud", "1,2,3,4,5"}, 2, "--word-cloud needs L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--word-cloud", "1,2,0,4"}, 2, "--word-cloud needs L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--word-cloud", "1,2,3,-4"}, 2, "--word-cloud needs L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--word-cloud", "a,b,c,d"}, 2, "--word-cloud needs L,T,W,H"},
        {{"question", deck, "1", "--settings", settings, "--qid", " "}, 2, "--qid needs an identity"},
        {{"question", deck, "1", "--settings", settings, "--qid", "a|b"}, 2, "--qid needs an identity"},
        {{"question", deck, "1", "--settings", settings, "--groups", "A||B"}, 2, "--groups needs labels"},
        {{"question", deck, "1", "--settings", settings, "--groups", "A^B"}, 2, "--groups needs labels"},
        {{"shapes", deck, "1", "--bogus"}, 2, "unknown option"},
        {{"shapes", deck}, 2, "wrong arguments"},
        {{"tags", deck, "--set", "novalue"}, 2, "NAME=VALUE"},
        {{"question", broken, "1", "--settings", settings}, 1, "not a zip"},
        {{"shapes", dir.filePath("absent.pptx"), "1"}, 1, "cannot open"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        EXPECT_EQ(run(c.args), c.code);
        EXPECT_TRUE(err.contains(c.message)) << err.toStdString();
    }
    EXPECT_EQ(readFile(deck), good);
    EXPECT_EQ(readFile(broken), QByteArray("PK\x03\x04 this is no zip"));
    for (const QString command : {"new", "question", "tags", "shapes", "votes", "export-csv", "reshow"}) {
        EXPECT_EQ(run({command, "--help"}), 0);
        EXPECT_TRUE(out.startsWith("usage: tallix-deck " + command)) << out.toStdString();
    }
}

QString toolPath() { return QStringLiteral(TALLIX_BINARY_DIR "/bin/tallix-deck"); }

TEST_F(DeckToolTest, AWriterKilledAnywhereLeavesTheOldOrTheNewDeck)
{
    // Incompressible weight makes each write last long enough to be cut into.
    Deck heavy = Deck::blank(4);
    QByteArray noise(3 * 1024 * 1024, Qt::Uninitialized);
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    heavy.package().setBytes("ppt/media/noise.bin", noise);
    writeFile(deck, heavy.toZip());
    // One write left alone sets the scale of the kill times.
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(QProcess::execute(toolPath(), {"tags", deck, "1", "--set", "K=first"}), 0);
    const int fullWriteUs = int(timer.nsecsElapsed() / 1000);
    QStringList written{"first"};
    auto* rng = QRandomGenerator::global();
    int finished = 0;
    for (int i = 0; i < 24; ++i) {
        const QString value = QStringLiteral("run %1 ").arg(i) + QString(2000, QChar('x' + i % 3));
        QProcess writer;
        writer.start(toolPath(), {"tags", deck, "1", "--set", "K=" + value});
        ASSERT_TRUE(writer.waitForStarted(5000));
        // Real time on purpose: the kill has to land inside the write.
        QThread::usleep(rng->bounded(fullWriteUs * 3 / 2));
        writer.kill();
        writer.waitForFinished(5000);
        if (writer.exitStatus() == QProcess::NormalExit && writer.exitCode() == 0)
            ++finished;
        written << value;
        Deck now = Deck::fromFile(deck); // throws on a damaged deck
        EXPECT_TRUE(written.contains(now.tag(now.slideIdAt(1), "K"))) << "iteration " << i;
    }
    RecordProperty("finished", finished);
}

TEST_F(DeckToolTest, QuestionDeckOpensInLibreOffice)
{
    const QString soffice = QStandardPaths::findExecutable("soffice");
    const QString pdftotext = QStandardPaths::findExecutable("pdftotext");
    if (soffice.isEmpty())
        GTEST_SKIP() << "LibreOffice (soffice) is not installed";
    if (pdftotext.isEmpty())
        GTEST_SKIP() << "pdftotext (poppler-utils) is not installed";
    makeQuestionDeck();
    QTemporaryDir profile;
    QProcess convert;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", profile.path());
    convert.setProcessEnvironment(env);
    convert.start(soffice, {"-env:UserInstallation=" + QUrl::fromLocalFile(profile.filePath("user")).toString(),
                            "--headless", "--convert-to", "pdf", "--outdir", dir.path(), deck});
    ASSERT_TRUE(convert.waitForStarted(10000));
    if (!convert.waitForFinished(180000)) {
        convert.kill();
        FAIL() << "LibreOffice did not finish in 3 minutes";
    }
    const QString pdf = dir.filePath("q.pdf");
    ASSERT_TRUE(QFile::exists(pdf)) << convert.readAllStandardError().toStdString();
    QProcess text;
    text.start(pdftotext, {"-f", "2", "-l", "2", pdf, "-"});
    ASSERT_TRUE(text.waitForFinished(30000));
    const QString page = QString::fromUtf8(text.readAllStandardOutput());
    for (const char* expected : {"Which fruit is best?", "Apple", "Banana", "Cherry"})
        EXPECT_TRUE(page.contains(expected)) << expected << " missing from: " << page.toStdString();
}

} // namespace

namespace {

TEST_F(DeckToolTest, DefaultGroupNamesTheSlideByItsIdentity)
{
    makeQuestionDeck();
    ASSERT_EQ(run({"default-group", deck, "2"}), 0) << err.toStdString();
    const QJsonObject tags = json({"tags", deck}).object();
    const QStringList parts = tags.value("TLX_DEFAULTGROUP").toString().split("\r\n");
    ASSERT_EQ(parts.size(), 2);
    EXPECT_EQ(parts[1], "1");
    PptxHost host(deck);
    EXPECT_EQ(host.ActivePresentation()->GetSlides()->FindBySlideID(parts[0].toLong())->SlideIndex(), 2);
    for (const QStringList& bad : {QStringList{"default-group", deck, "9"}, QStringList{"default-group", deck}})
        EXPECT_EQ(run(bad), 2) << bad.join(' ').toStdString();
}

} // namespace

namespace {

// The texts of a settings element's children, in document order, as "name=text".
QStringList childTexts(const pugi::xml_node& parent)
{
    QStringList out;
    for (pugi::xml_node c = parent.first_child(); c; c = c.next_sibling())
        out << QString::fromUtf8(c.name()) + "=" + QString::fromUtf8(c.child_value());
    return out;
}

TEST_F(DeckToolTest, QuestionKeepsItsIdentityAndTakesGroupLabels)
{
    ASSERT_EQ(run({"new", deck, "--slides", "2"}), 0);
    const QString held = dir.filePath("held.xml");
    // Readers take the first QID in the document, wherever it is.
    writeFile(held, "<tlxfile><General><QID>first</QID></General><group_info><GroupOption001>Old</GroupOption001>"
                    "</group_info><file_info><QID>second</QID></file_info></tlxfile>");
    const auto stored = [&](const QString& slide) {
        return settingsOf(json({"tags", deck, slide}).object().value("TLXVOTE").toString());
    };
    QString fresh;
    // One after the other on slide 1: file, options, the QID (empty: the first fresh one)
    // and the one group_info's children (none: no group_info).
    const QList<std::tuple<QString, QStringList, QString, QStringList>> cases{
        {settings, {}, "", {}},
        {settings, {"--groups", "Staff| Student "}, "", {"GroupOption001=Staff", "GroupOption002=Student"}},
        {held, {}, "first", {"GroupOption001=Old"}},
        {held, {"--qid", " given ", "--groups", "A|B|C"}, "given", {"GroupOption001=A", "GroupOption002=B", "GroupOption003=C"}},
        {settings, {}, "given", {}}, // kept from the slide
    };
    for (const auto& [file, options, qid, groups] : cases) {
        SCOPED_TRACE(options.join(' ').toStdString() + " from " + file.toStdString());
        ASSERT_EQ(run(QStringList{"question", deck, "1", "--settings", file} + options), 0) << err.toStdString();
        const pugi::xml_document doc = stored("1");
        const pugi::xpath_node_set qids = doc.select_nodes("//QID");
        ASSERT_EQ(qids.size(), 1u);
        EXPECT_STREQ(qids.first().parent().name(), "file_info");
        if (fresh.isEmpty())
            fresh = qids.first().node().child_value();
        EXPECT_EQ(QString(qids.first().node().child_value()), qid.isEmpty() ? fresh : qid);
        const pugi::xpath_node_set infos = doc.select_nodes("//group_info");
        ASSERT_EQ(infos.size(), groups.isEmpty() ? 0u : 1u);
        if (!groups.isEmpty()) {
            EXPECT_EQ(childTexts(infos.first().node()), groups);
        }
    }
    ASSERT_EQ(run({"question", deck, "2", "--settings", settings}), 0);
    EXPECT_NE(QString(stored("2").select_node("//QID").node().child_value()), fresh);
}

class ReshowTest : public DeckToolTest {
protected:
    // Slide 1 asks who one is (Staff, Student), slide 2 (identity 7, which the references
    // show in three digits) Yes or No, slide 3 has no labels, slide 4 is no question.
    void SetUp() override
    {
        DeckToolTest::SetUp();
        ASSERT_EQ(run({"new", deck, "--slides", "4"}), 0);
        Deck d = Deck::fromFile(deck);
        QByteArray presentation = d.package().bytes("ppt/presentation.xml");
        ASSERT_TRUE(presentation.contains("<p:sldId id=\"257\""));
        d.package().setBytes("ppt/presentation.xml", presentation.replace("<p:sldId id=\"257\"", "<p:sldId id=\"7\""));
        writeFile(deck, d.toZip());
        for (const QStringList& q : {QStringList{"1", "--qid", "who", "--groups", "Staff|Student"},
                                     QStringList{"2", "--qid", "yn", "--groups", "Yes|No"}, QStringList{"3", "--qid", "q3"}})
            ASSERT_EQ(run(QStringList{"question", deck} + q + QStringList{"--settings", settings}), 0) << err.toStdString();
    }
    pugi::xml_document reshow() { return settingsOf(json({"tags", deck, "4"}).object().value("TLXRESHOW").toString()); }
};

TEST_F(ReshowTest, WritesTheChartsFiltersAreasAndReferences)
{
    ASSERT_EQ(run({"reshow", deck, "4", "--chart", "3", "--where", "1=staff", "--where", "2= no ", "--area",
                   "96,54,480,270", "--chart", "2"}),
              0)
        << err.toStdString();
    EXPECT_EQ(out, "slide 4 of " + deck + " reshows 2 chart(s)\n");
    const pugi::xml_document doc = reshow();
    const pugi::xml_node info = doc.select_node("/tlxfile/reshow_info").node();
    EXPECT_EQ(childTexts(info).mid(0, 3), (QStringList{"rshFilterType=0", "reshowOnOneChart=False", "ShowLabels=False"}));
    const pugi::xml_node refs = info.child("Question_References").first_child();
    EXPECT_EQ(refs.type(), pugi::node_cdata);
    EXPECT_EQ(QString(refs.value()), "256|who|^Staff^Student^\n007|yn|^Yes^No^\n258|q3|^^");
    // The filters name the labels as the slides spell them; the area is in slide fractions.
    EXPECT_EQ(childTexts(doc.select_node("/tlxfile/reshow_graphs").node()),
              (QStringList{"QNSLIDE001=258|q3", "GROUPS001=^256:Staff^7:No^", "LEFT001=0.1", "TOP001=0.1", "WIDTH001=0.5",
                           "HEIGHT001=0.5", "QNSLIDE002=7|yn", "GROUPS002="}));

    for (const auto& [flag, type, labels] : {std::tuple{"--any", "1", "False"}, std::tuple{"--labels", "0", "True"}}) {
        ASSERT_EQ(run({"reshow", deck, "4", "--chart", "1", flag}), 0) << err.toStdString();
        const pugi::xml_document again = reshow();
        EXPECT_STREQ(again.select_node("//rshFilterType").node().child_value(), type) << flag;
        EXPECT_STREQ(again.select_node("//ShowLabels").node().child_value(), labels) << flag;
    }
}

TEST_F(ReshowTest, RefusesWithoutWritingAnything)
{
    const QByteArray before = readFile(deck);
    const QList<std::pair<QStringList, QString>> cases{
        {{"5", "--chart", "1"}, "no slide 5"},
        {{"4"}, "--chart SLIDE is required"},
        {{"4", "--chart", "4"}, "--chart: slide 4 is not a question slide"},
        {{"4", "--chart", "1", "--where", "4=Staff"}, "--where: slide 4 is not a question slide"},
        {{"4", "--chart", "1", "--where", "2=Staff"}, "slide 2 has no label \"Staff\""},
        {{"4", "--chart", "1", "--where", "3=Staff"}, "slide 3 has no label \"Staff\" (it has: none)"},
        {{"4", "--chart", "1", "--where", "1"}, "--where needs SLIDE=LABEL"},
        {{"4", "--where", "1=Staff", "--chart", "1"}, "--where belongs to a --chart"},
        {{"4", "--area", "1,2,3,4", "--chart", "1"}, "--area belongs to a --chart"},
        {{"4", "--chart", "1", "--area", "1,2,0,4"}, "--area needs L,T,W,H"},
        {{"4", "--chart", "1", "--area", "1,2,3,4", "--area", "1,2,3,4"}, "one --area"},
        // A later chart's fault stops the earlier ones too.
        {{"4", "--chart", "1", "--chart", "2", "--where", "1=Nobody"}, "no label \"Nobody\""},
    };
    for (const auto& [args, message] : cases) {
        SCOPED_TRACE(args.join(' ').toStdString());
        EXPECT_EQ(run(QStringList{"reshow", deck} + args), 2);
        EXPECT_TRUE(err.contains(message)) << err.toStdString();
    }
    EXPECT_EQ(readFile(deck), before);
}

TEST_F(DeckToolTest, AComparisonDeckIsBuiltFromScratch)
{
    // As the documentation builds it.
    for (const QStringList& args : QList<QStringList>{
             {"new", deck, "--slides", "4"},
             {"question", deck, "1", "--settings", settings, "--answers", "Staff|Student", "--groups", "Staff|Student"},
             {"question", deck, "2", "--settings", settings, "--answers", "North|South", "--groups", "North|South"},
             {"question", deck, "3", "--settings", settings, "--answers", "Good|Bad"},
             {"reshow", deck, "4", "--chart", "3", "--where", "1=Staff", "--area", "20,100,440,400", "--chart", "3",
              "--where", "1=Student", "--area", "500,100,440,400", "--labels"}})
        ASSERT_EQ(run(args), 0) << args.join(' ').toStdString() << ": " << err.toStdString();

    PptxHost host(deck);
    Slides& slides = *host.ActivePresentation()->GetSlides();
    QStringList refs;
    for (int n = 1; n <= 3; ++n)
        refs << QString::number(slides.Item(n)->SlideID()) + "|" +
                    settingsOf(slides.Item(n)->GetTags()->Item("tlxVote")).select_node("//QID").node().child_value();
    const pugi::xml_document doc = settingsOf(slides.Item(4)->GetTags()->Item("TLXRESHOW"));
    EXPECT_EQ(QString(doc.select_node("//Question_References").node().child_value()),
              refs[0] + "|^Staff^Student^\n" + refs[1] + "|^North^South^\n" + refs[2] + "|^^");
    const QString who = refs[0].section('|', 0, 0);
    EXPECT_EQ(childTexts(doc.select_node("//reshow_graphs").node()).filter(QRegularExpression("^(QNSLIDE|GROUPS|LEFT)")),
              (QStringList{"QNSLIDE001=" + refs[2], "GROUPS001=^" + who + ":Staff^", "LEFT001=0.0208333333333333",
                           "QNSLIDE002=" + refs[2], "GROUPS002=^" + who + ":Student^", "LEFT002=0.520833333333333"}));
}

} // namespace
