#include "host_fixtures.h"

#include "foundation/vb_error.h"
#include "host/pptx_host.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

using namespace tallix;
using namespace tallix::host;
using namespace tallix::host::test;

namespace {

long errorNumber(const std::function<void()>& f)
{
    try {
        f();
    } catch (const VbError& e) {
        return e.number();
    }
    return 0;
}

// Known children of `node` must come in the schema's order.
void expectSchemaOrder(pugi::xml_node node, const QStringList& order, const QString& where)
{
    int last = -1;
    for (pugi::xml_node c : node.children()) {
        if (c.type() != pugi::node_element)
            continue;
        const int at = order.indexOf(LocalName(c));
        if (at < 0)
            continue;
        EXPECT_GE(at, last) << where.toStdString() << ": " << c.name() << " out of order";
        last = qMax(last, at);
    }
}

void expectDeckOrder(Deck& deck, qint64 slideId)
{
    Package& pkg = deck.package();
    QString presentation;
    for (const Relationship& r : pkg.rels(QString()))
        if (r.type == Rel::OfficeDocument)
            presentation = pkg.resolve(QString(), r.target);
    expectSchemaOrder(pkg.xml(presentation).document_element(),
                      {"sldMasterIdLst", "notesMasterIdLst", "handoutMasterIdLst", "sldIdLst", "sldSz", "notesSz",
                       "smartTags", "embeddedFontLst", "custShowLst", "photoAlbum", "custDataLst", "kinsoku",
                       "defaultTextStyle", "modifyVerifier", "extLst"},
                      presentation);
    const QString slide = deck.slidePart(slideId);
    pugi::xml_node sld = pkg.xml(slide).document_element();
    expectSchemaOrder(sld, {"cSld", "clrMapOvr", "transition", "timing", "extLst"}, slide);
    expectSchemaOrder(Child(sld, "cSld"), {"bg", "spTree", "custDataLst", "controls", "extLst"}, slide);
    for (pugi::xml_node list : {Child(Child(sld, "cSld"), "custDataLst"),
                                Child(pkg.xml(presentation).document_element(), "custDataLst")})
        expectSchemaOrder(list, {"custData", "tags"}, slide);
    for (pugi::xml_node s : deck.shapes(slide)) {
        if (LocalName(s) == "pic")
            expectSchemaOrder(s, {"nvPicPr", "blipFill", "spPr", "style", "extLst"}, slide);
        if (LocalName(s) == "grpSp")
            expectSchemaOrder(s, {"nvGrpSpPr", "grpSpPr", "sp", "grpSp", "graphicFrame", "cxnSp", "pic", "contentPart", "extLst"}, slide);
    }
}

class PptxHostTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString deckPath = dir.filePath("talk.pptx");
    QString png = WriteFile(dir.filePath("chart.png"), OnePixelPng());
    void SetUp() override { WriteFile(deckPath, Deck::blank(2).toZip()); }
};

TEST_F(PptxHostTest, EveryTestDeckTakesChangesAndKeepsTheRest)
{
    const QDir decks(TestDecksDir());
    ASSERT_GE(decks.entryList({"*.pptx"}).size(), 10) << decks.path().toStdString();
    const QString votes = "16/11/2026,02:31:12,3;X;-;Red|Blue;\r\n16/11/2026,02:40:00,1;1;2;-;\r\n";
    for (const QString& name : decks.entryList({"*.pptx"})) {
        SCOPED_TRACE(name.toStdString());
        const QString copy = dir.filePath(name);
        QFile::copy(decks.filePath(name), copy);
        QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
        const Package before = Package::fromFile(copy);

        QString deleted;
        qint64 slideId = 0;
        {
            PptxHost host(copy);
            Presentation& pres = *host.ActivePresentation();
            pres.GetTags()->Add("tlxVoteTerminated", "Vote finished\r\n4242");
            Slide& slide = *pres.GetSlides()->Item(1);
            slideId = slide.SlideID();
            Shapes& shapes = *slide.GetShapes();
            if (shapes.Count() > 0) {
                deleted = shapes.Item(1)->Name();
                shapes.Item(1)->SetName("tlx doomed");
                shapes.Item(1)->Delete();
            }
            slide.GetTags()->Add("TLXVOTES", votes);
            Shape* hidden = shapes.AddPicture(png, 0, -1, 0, 0, 0, 0);
            hidden->SetVisible(false);
            hidden->SetLeft(12);
            hidden->SetTop(34);
            hidden->SetWidth(300);
            hidden->SetHeight(200);
            hidden->SetName("tallix chart");
            shapes.AddPicture(png, 0, -1, 40, 40, 80, 60)->SetName("tallix iteration 1");
            shapes.AddPicture(png, 0, -1, 140, 40, 80, 60)->SetName("tallix iteration 2");
            shapes.Group({"tallix iteration 1", "tallix iteration 2"})->SetName("tallix chart 2");
            ASSERT_EQ(host.Detach(), "");
        }

        const Package after = Package::fromFile(copy);
        const QSet<QString> mayChange{"[Content_Types].xml", "ppt/presentation.xml", "ppt/_rels/presentation.xml.rels"};
        Deck reopened = Deck::fromFile(copy);
        const QString slidePart = reopened.slidePart(slideId);
        for (const QString& part : before.partNames()) {
            if (mayChange.contains(part) || part == slidePart || part == Package::relsName(slidePart) ||
                part.startsWith("ppt/tags/"))
                continue;
            if (!after.has(part)) {
                EXPECT_TRUE(part.startsWith("ppt/media/")) << "lost " << part.toStdString();
                continue;
            }
            EXPECT_EQ(after.bytes(part), before.bytes(part)) << "changed " << part.toStdString();
        }

        EXPECT_EQ(reopened.tag(0, "TLXVOTETERMINATED"), "Vote finished\r\n4242");
        EXPECT_EQ(reopened.tag(slideId, "tlxvotes"), votes);
        pugi::xml_node chart = reopened.findShape(slidePart, "tallix chart");
        ASSERT_TRUE(chart);
        EXPECT_TRUE(Deck::shapeHidden(chart));
        EXPECT_EQ(reopened.geometry(slidePart, chart), QRectF(12, 34, 300, 200));
        pugi::xml_node group = reopened.findShape(slidePart, "tallix chart 2");
        ASSERT_TRUE(group);
        EXPECT_EQ(Deck::kindName(group), "group");
        EXPECT_FALSE(reopened.findShape(slidePart, "tlx doomed"));
        expectDeckOrder(reopened, slideId);
        // Every picture the slide points at is in the package.
        for (const Relationship& r : reopened.package().rels(slidePart))
            if (r.type == Rel::Image) {
                EXPECT_TRUE(reopened.package().has(reopened.package().resolve(slidePart, r.target)))
                    << r.target.toStdString();
            }
    }
}

TEST_F(PptxHostTest, SlideSizeIsReadWhateverTheAttributeOrder)
{
    // This deck writes cy before cx.
    const QString google = TestDecksDir() + "/sc__074_google_slides.pptx";
    ASSERT_TRUE(QFile::exists(google)) << google.toStdString();
    PptxHost host(google);
    EXPECT_EQ(host.ActivePresentation()->GetPageSetup().SlideWidth, 720);
    EXPECT_EQ(host.ActivePresentation()->GetPageSetup().SlideHeight, 405);
}

TEST_F(PptxHostTest, StartUpAndReadingWriteNothing)
{
    const QByteArray bytes = ReadFile(deckPath);
    const QDateTime modified = QFileInfo(deckPath).lastModified();
    {
        PptxHost host(deckPath);
        Presentation& pres = *host.ActivePresentation();
        pres.GetSlides()->Item(1)->GetShapes()->Item(1)->Name();
        pres.GetTags()->Item("tlxVoteTerminated");
        EXPECT_TRUE(host.Commit());
        EXPECT_EQ(host.Detach(), "");
    }
    EXPECT_EQ(ReadFile(deckPath), bytes);
    EXPECT_EQ(QFileInfo(deckPath).lastModified(), modified);
}

TEST_F(PptxHostTest, TwoProcessesAppendingVotesKeepBothLines)
{
    PptxHost first(deckPath), second(deckPath);
    Tags& a = *first.ActivePresentation()->GetSlides()->Item(1)->GetTags();
    Tags& b = *second.ActivePresentation()->GetSlides()->Item(1)->GetTags();
    // SaveVotes' pattern: the old value plus a line.
    a.Add("TLXVOTES", a.Item("TLXVOTES") + "line A\r\n");
    a.Add("TLXVOTES", a.Item("TLXVOTES") + "line A2\r\n");
    b.Add("TLXVOTES", b.Item("TLXVOTES") + "line B\r\n");
    second.ActivePresentation()->GetSlides()->Item(2)->GetShapes()->Item("Title 1")->SetName("tlx_question");
    ASSERT_TRUE(first.Commit());
    ASSERT_TRUE(second.Commit()); // reloads what the first wrote, then makes its changes again
    EXPECT_EQ(b.Item("TLXVOTES"), "line A\r\nline A2\r\nline B\r\n");

    Deck onDisk = Deck::fromFile(deckPath);
    EXPECT_EQ(onDisk.tag(onDisk.slideIdAt(1), "TLXVOTES"), "line A\r\nline A2\r\nline B\r\n");
    EXPECT_TRUE(onDisk.findShape(onDisk.slidePart(onDisk.slideIdAt(2)), "tlx_question"));
    // The first process takes the second's changes in when told to.
    EXPECT_TRUE(first.ReloadIfChanged());
    EXPECT_EQ(a.Item("TLXVOTES"), "line A\r\nline A2\r\nline B\r\n");
}

TEST_F(PptxHostTest, ALockedDeckKeepsChangesPendingThenWritesThemBesideIt)
{
    PptxHost host(deckPath);
    host.SetLockWait(20);
    QStringList logged;
    host.config().log = [&](const QString& l) { logged << l; };
    const QByteArray bytes = ReadFile(deckPath);

    const int fd = ::open(QFile::encodeName(host.LockPath()).constData(), O_RDWR | O_CREAT, 0644);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    host.ActivePresentation()->GetTags()->Add("tlxVoteTerminated", "Vote finished\r\n1");
    EXPECT_FALSE(host.Commit());
    EXPECT_EQ(host.PendingCount(), 1);
    EXPECT_EQ(ReadFile(deckPath), bytes);
    EXPECT_EQ(logged.size(), 1);

    const QString unsaved = host.Detach(20);
    ASSERT_FALSE(unsaved.isEmpty());
    EXPECT_EQ(QFileInfo(unsaved).fileName(),
              QStringLiteral("talk.unsaved-%1.pptx").arg(QCoreApplication::applicationPid()));
    EXPECT_EQ(Deck::fromFile(unsaved).tag(0, "tlxVoteTerminated"), "Vote finished\r\n1");
    EXPECT_EQ(ReadFile(deckPath), bytes);
    ::flock(fd, LOCK_UN);
    ::close(fd);
}

TEST_F(PptxHostTest, MacroRunCommitsFirst)
{
    PptxHost host(deckPath);
    bool written = false;
    host.config().runMacro = [&](const QString&, const QString&) { written = Deck::fromFile(deckPath).tag(0, "x") == "1"; };
    host.ActivePresentation()->GetTags()->Add("x", "1");
    host.Run("InstaQ");
    EXPECT_TRUE(written);
}

TEST_F(PptxHostTest, PicturesAndGroupsAreMadeAgainOnADeckAnotherProcessWrote)
{
    PptxHost first(deckPath), second(deckPath);
    Shapes& shapes = *first.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    shapes.Item("Title 1")->Delete();
    Shape* chart = shapes.AddPicture(png, 0, -1, 10, 20, 30, 40);
    chart->SetVisible(false);
    chart->SetName("tallix iteration 1");
    shapes.AddPicture(png, 0, -1, 50, 20, 30, 40)->SetName("tallix iteration 2");
    Shape* group = shapes.Group({"tallix iteration 1", "tallix iteration 2"});
    group->SetName("tallix chart 2");
    second.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->AddTextbox(1, 1, 50, 20)->SetName("theirs");
    ASSERT_TRUE(second.Commit());
    ASSERT_TRUE(first.Commit());

    // The objects the first process holds still reach the shapes, now on the reloaded deck.
    EXPECT_EQ(group->Kind(), ShapeKind::Group);
    EXPECT_EQ(group->Left(), 10);
    EXPECT_EQ(shapes.Item("theirs")->Width(), 50);
    Deck onDisk = Deck::fromFile(deckPath);
    const QString part = onDisk.slidePart(onDisk.slideIdAt(1));
    EXPECT_TRUE(onDisk.findShape(part, "theirs"));
    EXPECT_TRUE(onDisk.findShape(part, "tallix chart 2"));
    EXPECT_FALSE(onDisk.findShape(part, "Title 1"));
    EXPECT_EQ(onDisk.package().bytes("ppt/media/image2.png"), OnePixelPng());
    QSet<int> ids;
    for (pugi::xml_node s : onDisk.shapes(part)) {
        EXPECT_FALSE(ids.contains(Deck::shapeId(s))) << "shape id used twice";
        ids.insert(Deck::shapeId(s));
    }
}

TEST_F(PptxHostTest, TableCellsAreReadAndWritten)
{
    const QString source = TestDecksDir() + "/pptx__tbl-cell.pptx";
    ASSERT_TRUE(QFile::exists(source)) << source.toStdString();
    const QString copy = dir.filePath("table.pptx");
    WriteFile(copy, ReadFile(source));
    Shape* tableShape = nullptr;
    {
        PptxHost host(copy);
        Shapes& shapes = *host.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
        for (int i = 1; i <= shapes.Count() && !tableShape; ++i)
            if (shapes.Item(i)->HasTable())
                tableShape = shapes.Item(i);
        ASSERT_NE(tableShape, nullptr);
        Table& table = *tableShape->GetTable();
        ASSERT_GE(table.RowCount(), 2);
        ASSERT_GE(table.ColumnCount(), 2);
        table.Cell(2, 2)->SetText("42 %");
        table.Cell(1, 1)->SetText("");
        EXPECT_EQ(errorNumber([&] { table.Cell(table.RowCount() + 1, 1); }), ErrNo::ItemNotFound);
        ASSERT_EQ(host.Detach(), "");
    }
    PptxHost again(copy);
    Shapes& shapes = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    for (int i = 1; i <= shapes.Count(); ++i)
        if (shapes.Item(i)->HasTable()) {
            EXPECT_EQ(shapes.Item(i)->GetTable()->Cell(2, 2)->Text(), "42 %");
            EXPECT_EQ(shapes.Item(i)->GetTable()->Cell(1, 1)->Length(), 0);
            break;
        }
}

TEST_F(PptxHostTest, TablesAndFontsAreMadeAgainOnADeckAnotherProcessWrote)
{
    PptxHost first(deckPath), second(deckPath);
    Shapes& shapes = *first.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    Shape* table = shapes.AddTable(1, 2, 100, 50, 300, 30);
    table->SetName("tlx_object1");
    table->GetTable()->Cell(1, 1)->SetText("Apple");
    table->GetTable()->Cell(1, 2)->SetFont("Arial", 20, 0x0000FF);
    table->SetVisible(false);
    shapes.Item("Title 1")->GetTextFrame()->SetText("Rated");
    shapes.Item("Title 1")->GetTextFrame()->SetFont("Wingdings", 28, 0x00FF00);
    second.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->AddTextbox(1, 1, 50, 20)->SetName("theirs");
    ASSERT_TRUE(second.Commit());
    ASSERT_TRUE(first.Commit());

    PptxHost again(deckPath);
    Shapes& read = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    EXPECT_EQ(read.Item("theirs")->Width(), 50);
    Shape& t = *read.Item("tlx_object1");
    EXPECT_FALSE(t.Visible());
    EXPECT_EQ(t.GetTable()->Cell(1, 1)->Text(), "Apple");
    t.GetTable()->Cell(1, 2)->SetText("42 %"); // the result lands in the cell set up for it
    t.SetVisible(true);
    ASSERT_EQ(again.Detach(), "");

    Deck onDisk = Deck::fromFile(deckPath);
    const QString part = onDisk.slidePart(onDisk.slideIdAt(1));
    pugi::xml_node frame = onDisk.findShape(part, "tlx_object1");
    EXPECT_FALSE(Deck::shapeHidden(frame));
    const Font result = onDisk.font(part, frame, Deck::tableCellBody(frame, 1, 2));
    EXPECT_EQ(Deck::paragraphs(Deck::tableCellBody(frame, 1, 2)), QStringList{"42 %"});
    EXPECT_EQ(result.Name, "Arial");
    EXPECT_EQ(result.Size, 20);
    EXPECT_EQ(result.Color, 0x0000FF);
    pugi::xml_node title = onDisk.findShape(part, "Title 1");
    const Font glyphs = onDisk.font(part, title, Deck::textBody(title));
    EXPECT_EQ(glyphs.Name, "Wingdings");
    EXPECT_EQ(glyphs.Color, 0x00FF00);
}

TEST_F(PptxHostTest, RowsAndReplacedTextAreMadeAgainOnADeckAnotherProcessWrote)
{
    PptxHost first(deckPath), second(deckPath);
    Shapes& shapes = *first.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    Table& table = *shapes.AddTable(2, 2, 100, 50, 300, 60)->GetTable();
    table.Cell(2, 1)->SetText("^High^");
    table.AddRowCopy(2);
    table.AddRowCopy(2);
    table.DeleteRow(4);
    table.Cell(2, 1)->ReplaceText(1, 6, "7");
    second.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->AddTextbox(1, 1, 50, 20)->SetName("theirs");
    ASSERT_TRUE(second.Commit());
    ASSERT_TRUE(first.Commit());

    PptxHost again(deckPath);
    Shapes& read = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes();
    EXPECT_TRUE(read.Item("theirs"));
    Shape& t = *read.Item(read.Count());
    ASSERT_EQ(t.GetTable()->RowCount(), 3);
    EXPECT_EQ(t.GetTable()->Cell(2, 1)->Text(), "7");
    EXPECT_EQ(t.GetTable()->Cell(3, 1)->Text(), "^High^");
    EXPECT_EQ(t.Height(), 90);
}

TEST_F(PptxHostTest, ChangesToAShapeAnotherProcessDeletedAreDropped)
{
    PptxHost first(deckPath), second(deckPath);
    first.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item("Title 1")->Delete();
    ASSERT_TRUE(first.Commit());
    second.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item("Title 1")->SetVisible(false);
    second.ActivePresentation()->GetTags()->Add("after", "yes");
    ASSERT_TRUE(second.Commit());
    Deck onDisk = Deck::fromFile(deckPath);
    EXPECT_FALSE(onDisk.findShape(onDisk.slidePart(onDisk.slideIdAt(1)), "Title 1"));
    EXPECT_EQ(onDisk.tag(0, "after"), "yes");
}

TEST_F(PptxHostTest, MalformedDecksAreRefusedWithOneClearError)
{
    auto variant = [](const std::function<void(Package&)>& change) {
        Deck deck = Deck::blank(1);
        change(deck.package());
        return deck.toZip();
    };
    const QByteArray good = Deck::blank(1).toZip();
    struct Case {
        const char* what;
        QByteArray bytes;
        const char* message;
    };
    const Case cases[] = {
        {"text file", "just some text, not a zip", "not a zip"},
        {"empty file", "", "not a zip"},
        {"truncated zip", good.left(good.size() / 2), "not a zip"},
        {"zip without presentationml", variant([](Package& p) {
             p.setBytes("[Content_Types].xml",
                        "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                        "<Default Extension=\"xml\" ContentType=\"application/xml\"/></Types>");
         }), "no presentationml"},
        {"broken slide XML", variant([](Package& p) { p.setBytes("ppt/slides/slide1.xml", "<p:sld><p:cSld>"); }),
         "broken XML in ppt/slides/slide1.xml"},
        {"broken tags XML", variant([](Package& p) {
             p.setBytes("ppt/tags/tag1.xml", "<p:tagLst><p:tag name=\"A\" val=\"1\"></p:tagLst>");
         }), "broken XML in ppt/tags/tag1.xml"},
        {"relationship to a missing part", variant([](Package& p) { p.remove("ppt/slideLayouts/slideLayout1.xml"); }),
         "missing part ppt/slideLayouts/slideLayout1.xml"},
        {"missing slide", variant([](Package& p) { p.remove("ppt/slides/slide1.xml"); }), "missing part"},
        {"zip bomb", variant([](Package& p) { p.setBytes("ppt/media/bomb.bin", QByteArray(64 * 1024 * 1024, '\0')); }),
         "zip bomb"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteFile(deckPath, c.bytes);
        try {
            PptxHost host(deckPath);
            ADD_FAILURE() << "opened";
        } catch (const PackageError& e) {
            EXPECT_TRUE(e.message().contains(c.message)) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains(deckPath)) << e.message().toStdString();
        }
        EXPECT_EQ(ReadFile(deckPath), c.bytes);
    }
}

TEST_F(PptxHostTest, TotalSizeCapStopsAnInflatingDeck)
{
    PackageLimits limits;
    limits.maxTotalUncompressed = 10000;
    EXPECT_THROW(PptxHost(deckPath, {}, limits), PackageError);
}

} // namespace
