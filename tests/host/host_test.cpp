#include "host_fixtures.h"

#include "foundation/vb_error.h"
#include "host/deck_host.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

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

// A deck reopened from its own bytes: what another process would read.
Deck reread(Deck& deck) { return Deck::open(Package::fromZip(deck.toZip())); }

class MemoryHostTest : public ::testing::Test {
protected:
    MemoryHost host{2};
    Presentation& pres = *host.ActivePresentation();
    Slide& slide = *pres.GetSlides()->Item(1);
    Shapes& shapes = *slide.GetShapes();
    QTemporaryDir dir;
    QString png = WriteFile(dir.filePath("chart.png"), OnePixelPng());
};

TEST_F(MemoryHostTest, TagNamesAreCaseBlindAndWrittenUpperCase)
{
    Tags& tags = *slide.GetTags();
    tags.Add("tlxVote", "<tlxfile/>");
    EXPECT_EQ(tags.Name(1), "TLXVOTE");
    EXPECT_EQ(tags.Item("TlXvOtE"), "<tlxfile/>");
    EXPECT_EQ(tags.Item("missing"), "");
    tags.Add("TLXVOTE", "second");
    EXPECT_EQ(tags.Count(), 1);
    tags.Delete("tlxvote");
    tags.Delete("never there");
    EXPECT_EQ(tags.Count(), 0);
}

TEST_F(MemoryHostTest, TagValuesSurviveWritingExactly)
{
    const QString votes = "16/11/2026,02:31:12,3;X;-;Red|Blue;\r\n16/11/2026,02:35:00,1;2;-;X;\r\n";
    const QString odd = "tab\there\rcr only\nlf only  trailing  ";
    slide.GetTags()->Add("TLXVOTES", votes);
    pres.GetTags()->Add("tlx_odd", odd);
    pres.GetTags()->Add("empty", "");
    // A typed answer may carry a control character that XML cannot hold.
    slide.GetTags()->Add("typed", QString("bell\x07 and nul") + QChar(0) + "!");
    Deck again = reread(host.deck());
    EXPECT_EQ(again.tag(again.slideIdAt(1), "typed"), "bell and nul!");
    EXPECT_EQ(again.tag(again.slideIdAt(1), "tlxvotes"), votes);
    EXPECT_EQ(again.tag(0, "TLX_ODD"), odd);
    EXPECT_EQ(again.tags(0).size(), 2);
}

TEST_F(MemoryHostTest, HostErrorsCarryTheHostsNumber)
{
    struct Case {
        const char* what;
        std::function<void()> call;
        long number;
    };
    Shape* pic = shapes.AddPicture(png, 0, -1, 0, 0);
    pic->Delete();
    const Case cases[] = {
        {"shape by missing name", [&] { shapes.Item("tallix chart"); }, ErrNo::ItemNotFound},
        {"shape name differing in case", [&] { shapes.Item("TITLE 1"); }, ErrNo::ItemNotFound},
        {"shape index 0", [&] { shapes.Item(0); }, ErrNo::ItemNotFound},
        {"shape index past the end", [&] { shapes.Item(shapes.Count() + 1); }, ErrNo::ItemNotFound},
        {"slide index", [&] { pres.GetSlides()->Item(3); }, ErrNo::ItemNotFound},
        {"slide id", [&] { pres.GetSlides()->FindBySlideID(4711); }, ErrNo::ItemNotFound},
        {"deleted shape", [&] { pic->Visible(); }, ErrNo::HostUnexpected},
        {"picture has no text", [&] { shapes.AddPicture(png, 0, -1, 0, 0)->GetTextFrame(); }, ErrNo::HostUnexpected},
        {"no show running", [&] { pres.GetSlideShowWindow(); }, ErrNo::HostUnexpected},
        {"missing picture file", [&] { shapes.AddPicture(dir.filePath("none.png"), 0, -1, 0, 0); }, ErrNo::FileNotFound},
        {"presentation by another name", [&] { host.Presentations("other.pptx"); }, ErrNo::ItemNotFound},
        {"group of none", [&] { shapes.Group({}); }, ErrNo::HostUnexpected},
        {"members of a shape that is no group", [&] { shapes.Item("Title 1")->GroupItems(); }, ErrNo::HostUnexpected},
    };
    for (const Case& c : cases)
        EXPECT_EQ(errorNumber(c.call), c.number) << c.what;
}

TEST_F(MemoryHostTest, PicturesAreAddedHiddenOrShownAndPlacedInPoints)
{
    Shape* hidden = shapes.AddPicture(png, 0, -1, 0, 0, 0, 0);
    EXPECT_EQ(hidden->Width(), 0.75); // one pixel at 96 per inch
    hidden->SetVisible(false);
    hidden->SetLockAspectRatio(false);
    hidden->SetLeft(10.123);
    hidden->SetTop(20);
    hidden->SetWidth(300.5);
    hidden->SetHeight(200);
    hidden->SetLockAspectRatio(true);
    hidden->SetName("tallix chart");
    Shape* shown = shapes.AddPicture(png, 0, -1, 1, 2, 3, 4);
    shown->SetName("tallix chart 1");

    Deck again = reread(host.deck());
    const QString part = again.slidePart(again.slideIdAt(1));
    pugi::xml_node h = again.findShape(part, "tallix chart");
    ASSERT_TRUE(h);
    EXPECT_TRUE(Deck::shapeHidden(h));
    EXPECT_TRUE(Deck::lockAspect(h));
    EXPECT_EQ(again.geometry(part, h), QRectF(qRound(10.123 * 12700) / 12700.0, 20, 300.5, 200));
    EXPECT_FALSE(Deck::shapeHidden(again.findShape(part, "tallix chart 1")));
    EXPECT_EQ(Deck::kindName(h), "picture");
    // Both pictures have their own image part of the right type.
    EXPECT_EQ(again.package().contentType("ppt/media/image1.png"), "image/png");
    EXPECT_TRUE(again.package().has("ppt/media/image2.png"));
}

TEST_F(MemoryHostTest, ZOrderAndGroupingWorkOnTheShapeTree)
{
    Shape* a = shapes.AddShape(AutoShape::Rectangle, 10, 10, 100, 50);
    a->SetName("a");
    Shape* b = shapes.AddShape(AutoShape::Rectangle, 200, 100, 50, 50);
    b->SetName("b");
    b->ZOrder(ZOrderCmd::SendToBack);
    EXPECT_EQ(shapes.Item(1)->Name(), "b");
    b->ZOrder(ZOrderCmd::BringToFront);
    EXPECT_EQ(shapes.Item(shapes.Count())->Name(), "b");

    const int before = shapes.Count();
    Shape* group = shapes.Group({"a", "b"});
    group->SetName("tallix chart 2");
    EXPECT_EQ(shapes.Count(), before - 1);
    EXPECT_EQ(group->Kind(), ShapeKind::Group);
    EXPECT_EQ(QRectF(group->Left(), group->Top(), group->Width(), group->Height()), QRectF(10, 10, 240, 140));
    EXPECT_EQ(errorNumber([&] { shapes.Item("a"); }), ErrNo::ItemNotFound); // inside the group now
    group->SetLeft(20); // the group moves as one
    EXPECT_EQ(group->Left(), 20);

    // Members are reached through the group, and the objects held from before keep working.
    GroupShapes* members = group->GroupItems();
    ASSERT_EQ(members->Count(), 2);
    EXPECT_EQ(members->Item(1)->Name(), "a");
    members->Item("b")->SetVisible(false);
    EXPECT_FALSE(b->Visible());
    a->SetVisible(false);
    EXPECT_FALSE(members->Item("a")->Visible());
    EXPECT_EQ(errorNumber([&] { members->Item("c"); }), ErrNo::ItemNotFound);

    // One shape is a group of one.
    Shape* c = shapes.AddShape(AutoShape::Rectangle, 0, 0, 10, 10);
    c->SetName("tallix iteration 1");
    Shape* single = shapes.Group({"tallix iteration 1"});
    EXPECT_EQ(single->Kind(), ShapeKind::Group);
    EXPECT_EQ(single->GroupItems()->Count(), 1);
}

TEST_F(MemoryHostTest, DeletingAShapeTakesItsAnimationAndUnusedPictureAlong)
{
    Shape* pic = shapes.AddPicture(png, 0, -1, 0, 0, 10, 10);
    Shape* keep = shapes.AddShape(AutoShape::Rectangle, 0, 0, 10, 10);
    const int picId = pic->Id(), keepId = keep->Id();
    // One click that fades in the picture and then the rectangle.
    Package& pkg = host.deck().package();
    const QString part = host.deck().slidePart(slide.SlideID());
    auto effect = [](int id) {
        return QStringLiteral("<p:par><p:cTn id=\"%1\" presetID=\"10\" presetClass=\"entr\" nodeType=\"clickEffect\">"
                              "<p:childTnLst><p:set><p:cBhvr><p:cTn id=\"9%1\"/><p:tgtEl><p:spTgt spid=\"%1\"/></p:tgtEl>"
                              "</p:cBhvr></p:set></p:childTnLst></p:cTn></p:par>").arg(id);
    };
    const QString timing = QStringLiteral(
        "<p:timing><p:tnLst><p:par><p:cTn id=\"1\" nodeType=\"tmRoot\"><p:childTnLst><p:seq><p:cTn id=\"2\" nodeType=\"mainSeq\">"
        "<p:childTnLst><p:par><p:cTn id=\"3\"><p:childTnLst>%1%2</p:childTnLst></p:cTn></p:par></p:childTnLst></p:cTn></p:seq>"
        "</p:childTnLst></p:cTn></p:par></p:tnLst><p:bldLst><p:bldP spid=\"%3\" grpId=\"0\"/><p:bldP spid=\"%4\" grpId=\"0\"/></p:bldLst></p:timing>")
                               .arg(effect(picId), effect(keepId)).arg(picId).arg(keepId);
    QByteArray xml = pkg.bytes(part);
    xml.replace("<p:clrMapOvr>", ("<p:clrMapOvr>"));
    xml.replace("</p:clrMapOvr>", "</p:clrMapOvr>" + timing.toUtf8());
    pkg.setXml(part, xml);
    EXPECT_TRUE(pic->Animate());
    EXPECT_EQ(slide.MainSequenceCount(), 2);

    pic->Delete();
    EXPECT_FALSE(pkg.has("ppt/media/image1.png"));
    EXPECT_EQ(slide.MainSequenceCount(), 1);
    EXPECT_TRUE(keep->Animate());
    EXPECT_EQ(QString::fromUtf8(pkg.bytes(part)).count("bldP"), 1);

    keep->SetAnimate(false); // the last effect goes, and the timeline with it
    EXPECT_FALSE(QString::fromUtf8(pkg.bytes(part)).contains("timing"));
}

TEST_F(MemoryHostTest, TextIsReadAndWrittenByParagraph)
{
    TextFrame& text = *shapes.Item("Content Placeholder 2")->GetTextFrame();
    text.SetText("Apple\r\nBanana\rCherry\nDate");
    EXPECT_EQ(text.ParagraphCount(), 4);
    EXPECT_EQ(text.Text(), "Apple\rBanana\rCherry\rDate");
    EXPECT_EQ(text.Paragraph(2), "Banana");
    EXPECT_EQ(text.Length(), 24);
    text.SetText(QString("one line") + QChar(11) + "broken");
    EXPECT_EQ(text.ParagraphCount(), 1);
    EXPECT_EQ(text.Text(), QString("one line") + QChar(11) + "broken");
    // The body placeholder's font comes from the master's body style and the theme.
    const Font font = text.GetFont();
    EXPECT_EQ(font.Size, 28);
    EXPECT_EQ(font.Name, "Liberation Sans");
    EXPECT_EQ(shapes.Item("Content Placeholder 2")->PlaceholderFormatType(), PlaceholderType::Object);
    EXPECT_EQ(shapes.Item("Title 1")->PlaceholderFormatType(), PlaceholderType::Title);
}

// Every run properties element of a text body: runs, breaks and paragraph ends.
QList<pugi::xml_node> runProperties(pugi::xml_node body)
{
    QList<pugi::xml_node> out;
    for (pugi::xml_node p : body.children())
        for (pugi::xml_node c : p.children()) {
            if (LocalName(c) == "endParaRPr")
                out << c;
            else if (pugi::xml_node rPr = Child(c, "rPr"))
                out << rPr;
        }
    return out;
}

TEST_F(MemoryHostTest, FontIsSetOnAllTextAndKeptForNewText)
{
    Shape* box = shapes.AddTextbox(10, 10, 200, 50);
    box->SetName("box");
    box->GetTextFrame()->SetText(QString("first") + QChar(11) + "line\rsecond");
    shapes.AddTextbox(10, 100, 200, 50)->SetName("empty");
    shapes.AddTable(1, 2, 10, 200, 200, 30)->SetName("table");
    struct Case {
        const char* shape;
        int row, column; // 0: the shape's own text
        QString name;
        double size;
        long color;
        const char* rgb;
        bool glyph;
    };
    const Case cases[] = {
        {"box", 0, 0, "Wingdings", 40, 0x0000FF, "FF0000", true},
        {"box", 0, 0, "Arial", 24.5, 0x123456, "563412", false}, // the symbol font goes again
        {"empty", 0, 0, "Wingdings 3", 30, 0xFF0000, "0000FF", true},
        {"table", 1, 2, "Courier New", 12, 0x00FF00, "00FF00", false},
    };
    auto frame = [](Shapes& in, const Case& c) {
        Shape* s = in.Item(c.shape);
        return c.row ? s->GetTable()->Cell(c.row, c.column) : s->GetTextFrame();
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        TextFrame& text = *frame(shapes, c);
        const QString before = text.Text();
        text.SetFont(c.name, c.size, c.color);
        EXPECT_EQ(text.Text(), before);

        MemoryHost again(reread(host.deck()), {});
        Font font = frame(*again.ActivePresentation()->GetSlides()->Item(1)->GetShapes(), c)->GetFont();
        EXPECT_EQ(font.Name, c.name);
        EXPECT_EQ(font.Size, c.size);
        EXPECT_EQ(font.Color, c.color);

        pugi::xml_node shape = host.deck().findShape(host.deck().slidePart(slide.SlideID()), c.shape);
        pugi::xml_node body = c.row ? Deck::tableCellBody(shape, c.row, c.column) : Deck::textBody(shape);
        const QList<pugi::xml_node> props = runProperties(body);
        ASSERT_FALSE(props.isEmpty());
        for (pugi::xml_node rPr : props) {
            EXPECT_EQ(QString(Child(Child(rPr, "solidFill"), "srgbClr").attribute("val").value()), c.rgb);
            EXPECT_EQ(QString::fromUtf8(Child(rPr, "latin").attribute("typeface").value()), c.name);
            EXPECT_EQ(QString::fromUtf8(Child(rPr, "sym").attribute("typeface").value()), c.glyph ? c.name : "");
        }

        // Text written afterwards, into a text or into an empty one, keeps the font.
        text.SetText("x\ry");
        font = text.GetFont();
        EXPECT_EQ(font.Name, c.name);
        EXPECT_EQ(font.Color, c.color);
        for (pugi::xml_node rPr : runProperties(c.row ? Deck::tableCellBody(shape, c.row, c.column) : Deck::textBody(shape)))
            EXPECT_EQ(rPr.attribute("sz").as_double(), c.size * 100);
        text.SetText(before);
    }
    EXPECT_EQ(errorNumber([&] { shapes.Item("box")->GetTextFrame()->SetFont("Arial", 0, 0); }), ErrNo::ItemNotFound);
    EXPECT_EQ(errorNumber([&] { shapes.Item("box")->GetTextFrame()->SetFont("", 12, 0); }), ErrNo::ItemNotFound);
}

TEST_F(MemoryHostTest, TablesAreAddedEvenlyDividedAndResizedByTheirGrid)
{
    Shape* t = shapes.AddTable(2, 3, 10, 20, 300, 61);
    EXPECT_EQ(t->Name(), QStringLiteral("Table %1").arg(t->Id() - 1));
    EXPECT_EQ(t->Kind(), ShapeKind::Table);
    EXPECT_FALSE(t->HasTextFrame());
    ASSERT_TRUE(t->HasTable());
    Table& table = *t->GetTable();
    EXPECT_EQ(table.RowCount(), 2);
    EXPECT_EQ(table.ColumnCount(), 3);
    EXPECT_EQ(QRectF(t->Left(), t->Top(), t->Width(), t->Height()), QRectF(10, 20, 300, 61));
    for (int r = 1; r <= 2; ++r)
        for (int c = 1; c <= 3; ++c)
            EXPECT_EQ(table.Cell(r, c)->ParagraphCount(), 1);
    // A renderer draws columns and rows, so they have to fill the frame exactly.
    auto grid = [&] {
        pugi::xml_node tbl = Deck::table(host.deck().findShape(host.deck().slidePart(slide.SlideID()), t->Name()));
        QList<qint64> widths, heights;
        for (pugi::xml_node c : Child(tbl, "tblGrid").children())
            widths << c.attribute("w").as_llong();
        for (pugi::xml_node r : tbl.children())
            if (LocalName(r) == "tr")
                heights << r.attribute("h").as_llong();
        return std::pair{widths, heights};
    };
    EXPECT_EQ(grid().first, (QList<qint64>{1270000, 1270000, 1270000}));
    EXPECT_EQ(grid().second, (QList<qint64>{387350, 387350})); // 61 pt halved
    t->SetWidth(600);
    t->SetHeight(122);
    EXPECT_EQ(grid().first, (QList<qint64>{2540000, 2540000, 2540000}));
    EXPECT_EQ(grid().second, (QList<qint64>{774700, 774700}));

    table.Cell(2, 3)->SetText("last");
    t->SetVisible(false);
    MemoryHost again(reread(host.deck()), {});
    Shape& read = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item(t->Name());
    EXPECT_FALSE(read.Visible());
    EXPECT_EQ(read.GetTable()->Cell(2, 3)->Text(), "last");
    EXPECT_EQ(read.GetTable()->Cell(1, 1)->Text(), "");
    read.SetVisible(true);
    EXPECT_TRUE(read.Visible());

    for (auto [rows, columns] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{76, 1}})
        EXPECT_EQ(errorNumber([&] { shapes.AddTable(rows, columns, 0, 0, 10, 10); }), ErrNo::ItemNotFound);
}

// Puts a shape's XML, written with the blank deck's prefixes, into a part's shape tree.
void addShapeXml(Package& pkg, const QString& part, const QString& xml)
{
    QByteArray bytes = pkg.bytes(part);
    bytes.replace("</p:spTree>", xml.toUtf8() + "</p:spTree>");
    pkg.setXml(part, bytes);
}

QString textShape(const QString& name, const QString& body)
{
    return QStringLiteral("<p:sp><p:nvSpPr><p:cNvPr id=\"90\" name=\"%1\"/><p:cNvSpPr txBox=\"1\"/><p:nvPr/></p:nvSpPr>"
                          "<p:spPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"2540000\" cy=\"1270000\"/></a:xfrm></p:spPr>"
                          "<p:txBody><a:bodyPr/>%2</p:txBody></p:sp>")
        .arg(name, body);
}

TEST(Numbering, FollowsTheNearestLevelThatNamesABullet)
{
    struct Case {
        const char* what;
        const char* shape;
        QString shapeXml;  // added to the slide when not empty
        QString lstStyle;  // put into the content placeholder's list style on the layout
        bool numbered;
    };
    const QString numberedPara = "<a:p><a:pPr><a:buAutoNum type=\"arabicPeriod\"/></a:pPr><a:r><a:rPr lang=\"en-US\"/><a:t>one</a:t></a:r></a:p>";
    const QString numberedList = "<a:lstStyle><a:lvl1pPr><a:buAutoNum type=\"alphaLcParenR\"/></a:lvl1pPr></a:lstStyle>";
    const QString plainPara = "<a:p><a:r><a:rPr lang=\"en-US\"/><a:t>one</a:t></a:r></a:p>";
    const Case cases[] = {
        {"text box without bullets", "box", textShape("box", "<a:lstStyle/>" + plainPara), {}, false},
        {"body placeholder with the master's bullet", "Content Placeholder 2", {}, {}, false},
        {"numbered paragraph", "box", textShape("box", "<a:lstStyle/>" + numberedPara), {}, true},
        {"numbered list style of the shape", "box", textShape("box", numberedList + plainPara), {}, true},
        {"bullet font alone leaves the list style's number", "box",
         textShape("box", numberedList + "<a:p><a:pPr><a:buFont typeface=\"Arial\"/></a:pPr></a:p>"), {}, true},
        {"no bullet over a numbered list style", "box",
         textShape("box", numberedList + "<a:p><a:pPr><a:buNone/></a:pPr></a:p>"), {}, false},
        {"second level takes its own level", "box",
         textShape("box", "<a:lstStyle><a:lvl1pPr><a:buNone/></a:lvl1pPr><a:lvl2pPr><a:buAutoNum type=\"romanUcPeriod\"/>"
                          "</a:lvl2pPr></a:lstStyle><a:p><a:pPr lvl=\"1\"/></a:p>"), {}, true},
        {"placeholder numbered by its layout", "Content Placeholder 2", {}, numberedList, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        MemoryHost host(1);
        Package& pkg = host.deck().package();
        if (!c.shapeXml.isEmpty())
            addShapeXml(pkg, "ppt/slides/slide1.xml", c.shapeXml);
        if (!c.lstStyle.isEmpty()) {
            QByteArray layout = pkg.bytes("ppt/slideLayouts/slideLayout1.xml");
            const int body = layout.indexOf("Content Placeholder 2");
            ASSERT_GT(body, 0);
            layout.replace(layout.indexOf("<a:lstStyle/>", body), 13, c.lstStyle.toUtf8());
            pkg.setXml("ppt/slideLayouts/slideLayout1.xml", layout);
        }
        Shape& shape = *host.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item(c.shape);
        EXPECT_EQ(shape.GetTextFrame()->ParagraphsNumbered(), c.numbered);
    }
}

// A text body's paragraphs as "[look]text" stretches, the look being the run's b, i, u
// and sz (a line break shows as "|"), a centred paragraph marked "<ctr>" and its end
// mark's look in braces.
QString looks(pugi::xml_node body)
{
    auto lookOf = [](pugi::xml_node rPr) {
        QString l;
        for (const char* a : {"b", "i", "u", "sz"})
            if (rPr.attribute(a))
                l += a;
        return l;
    };
    QStringList paragraphs;
    for (pugi::xml_node p : body.children()) {
        QString out = QString(Child(p, "pPr").attribute("algn").value()) == "ctr" ? "<ctr>" : "", current = "-";
        for (pugi::xml_node c : p.children()) {
            if (LocalName(c) != "r" && LocalName(c) != "br")
                continue;
            if (lookOf(Child(c, "rPr")) != current)
                out += "[" + (current = lookOf(Child(c, "rPr"))) + "]";
            out += LocalName(c) == "br" ? QString("|") : QString::fromUtf8(Child(c, "t").text().get());
        }
        if (LocalName(p) == "p")
            paragraphs << out + "{" + lookOf(Child(p, "endParaRPr")) + "}";
    }
    return paragraphs.join(" / ");
}

TEST(ReplaceText, KeepsTheLookAroundTheStretchAndSurvivesReloading)
{
    // "Hello big world\rSecond": three looks in the first paragraph, one in the second.
    const QString body =
        "<a:lstStyle/><a:p><a:pPr algn=\"ctr\"/><a:r><a:rPr lang=\"en-US\" b=\"1\"/><a:t>Hello </a:t></a:r>"
        "<a:r><a:rPr lang=\"en-US\" i=\"1\"/><a:t>big</a:t></a:r><a:r><a:rPr lang=\"en-US\" sz=\"2000\"/><a:t> world</a:t></a:r>"
        "<a:endParaRPr lang=\"en-US\" sz=\"2000\"/></a:p>"
        "<a:p><a:r><a:rPr lang=\"en-US\" u=\"sng\"/><a:t>Second</a:t></a:r><a:endParaRPr lang=\"en-US\" u=\"sng\"/></a:p>";
    struct Case {
        int start, length;
        QString text;
        QString expectedLooks; // the text read back, with its looks
    };
    const Case cases[] = {
        {8, 1, "a", "<ctr>[b]Hello [i]bag[sz] world{sz} / [u]Second{u}"},
        {5, 5, "X", "<ctr>[b]HellX[sz] world{sz} / [u]Second{u}"},     // across runs, in the first one's look
        {16, 1, " ", "<ctr>[b]Hello [i]big[sz] world [u]Second{u}"},   // the paragraph break: joined
        {14, 5, "", "<ctr>[b]Hello [i]big[sz] wor[u]cond{u}"},
        {10, 1, "\r\n", "<ctr>[b]Hello [i]big{sz} / <ctr>[sz]world{sz} / [u]Second{u}"},
        {1, 5, "One\rTwo\nThree", "<ctr>[b]One{sz} / <ctr>[b]Two{sz} / <ctr>[b]Three [i]big[sz] world{sz} / [u]Second{u}"},
        {10, 1, QString(QChar(11)), "<ctr>[b]Hello [i]big[sz]|world{sz} / [u]Second{u}"},
        {17, 100, "x", "<ctr>[b]Hello [i]big[sz] world{sz} / [u]x{u}"}, // a stretch past the end ends there
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expectedLooks.toStdString());
        MemoryHost host(1);
        addShapeXml(host.deck().package(), "ppt/slides/slide1.xml", textShape("box", body));
        TextFrame& text = *host.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item("box")->GetTextFrame();
        ASSERT_EQ(text.Length(), 22);
        text.ReplaceText(c.start, c.length, c.text);

        MemoryHost again(reread(host.deck()), {});
        Shape& read = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item("box");
        QString plain = c.expectedLooks;
        plain.remove(QRegularExpression("<ctr>|\\[\\w*\\]|\\{\\w*\\}")).replace(" / ", "\r").replace('|', QChar(11));
        EXPECT_EQ(read.GetTextFrame()->Text().toStdString(), plain.toStdString());
        pugi::xml_node node = again.deck().findShape(again.deck().slidePart(again.deck().slideIdAt(1)), "box");
        EXPECT_EQ(looks(Deck::textBody(node)).toStdString(), c.expectedLooks.toStdString());
    }

    MemoryHost host(1);
    addShapeXml(host.deck().package(), "ppt/slides/slide1.xml", textShape("box", body));
    TextFrame& text = *host.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item("box")->GetTextFrame();
    for (auto [start, length] : {std::pair{0, 1}, std::pair{24, 0}, std::pair{1, -1}})
        EXPECT_EQ(errorNumber([&] { text.ReplaceText(start, length, "x"); }), ErrNo::ItemNotFound) << start << "," << length;
    EXPECT_EQ(text.Text(), "Hello big world\rSecond");
}

TEST_F(MemoryHostTest, TableRowsAreCopiedAndDeletedAndTheFrameFollows)
{
    Shape* t = shapes.AddTable(3, 2, 10, 20, 200, 90);
    Table& table = *t->GetTable();
    table.Cell(2, 1)->SetText("^High^");
    table.Cell(2, 1)->SetFont("Courier New", 14, 0x0000FF);
    table.Cell(3, 1)->SetText("last");
    EXPECT_EQ(table.AddRowCopy(2), 3);
    EXPECT_EQ(table.AddRowCopy(3), 4);
    EXPECT_EQ(t->Height(), 150);
    table.Cell(3, 1)->ReplaceText(1, 6, "42"); // a copy is filled on its own
    table.DeleteRow(4);
    table.DeleteRow(1);

    MemoryHost again(reread(host.deck()), {});
    Shape& read = *again.ActivePresentation()->GetSlides()->Item(1)->GetShapes()->Item(t->Name());
    Table& rows = *read.GetTable();
    QStringList texts;
    for (int r = 1; r <= rows.RowCount(); ++r)
        texts << rows.Cell(r, 1)->Text();
    EXPECT_EQ(texts, (QStringList{"^High^", "42", "last"}));
    EXPECT_EQ(rows.Cell(2, 1)->GetFont().Name, "Courier New");
    EXPECT_EQ(read.Height(), 90);
    qint64 sum = 0; // the rows still fill the frame exactly
    for (pugi::xml_node tr : Deck::table(again.deck().findShape(again.deck().slidePart(again.deck().slideIdAt(1)), t->Name())).children())
        sum += tr.attribute("h").as_llong();
    EXPECT_EQ(sum, 90 * 12700);

    for (int row : {0, 4}) {
        EXPECT_EQ(errorNumber([&] { rows.AddRowCopy(row); }), ErrNo::ItemNotFound) << row;
        EXPECT_EQ(errorNumber([&] { rows.DeleteRow(row); }), ErrNo::ItemNotFound) << row;
    }
    rows.DeleteRow(1);
    rows.DeleteRow(1);
    EXPECT_EQ(errorNumber([&] { rows.DeleteRow(1); }), ErrNo::HostUnexpected); // a table keeps one row
    EXPECT_EQ(read.Height(), 30);
}

TEST_F(MemoryHostTest, ThemeColoursAreBlueGreenRed)
{
    EXPECT_EQ(pres.ThemeColorScheme(ThemeColor::Accent1), 0xC47244); // 4472C4
    EXPECT_EQ(pres.ThemeColorScheme(ThemeColor::Dark1), 0);
    EXPECT_EQ(pres.ThemeColorScheme(ThemeColor::Light1), 0xFFFFFF);
    EXPECT_EQ(errorNumber([&] { pres.ThemeColorScheme(13); }), ErrNo::InvalidProcedureCall);
    EXPECT_EQ(pres.GetPageSetup().SlideWidth, 960);
    EXPECT_EQ(pres.GetPageSetup().SlideHeight, 540);
}

TEST_F(MemoryHostTest, NotesPageIsMadeWhenMissing)
{
    Shapes& notes = *slide.NotesPage();
    ASSERT_EQ(notes.Count(), 2);
    Shape* body = notes.Item(2);
    EXPECT_EQ(body->PlaceholderFormatType(), PlaceholderType::Body);
    body->GetTextFrame()->SetText("speaker notes");
    Deck again = reread(host.deck());
    const QString part = again.notesPart(again.slideIdAt(1), false);
    ASSERT_FALSE(part.isEmpty());
    EXPECT_EQ(Deck::paragraphs(Deck::textBody(again.shapes(part).at(1))), QStringList{"speaker notes"});
    // A second notes page shares the notes master.
    pres.GetSlides()->Item(2)->NotesPage()->Count();
    EXPECT_FALSE(host.deck().package().has("ppt/notesMasters/notesMaster2.xml"));
}

TEST_F(MemoryHostTest, ShowStateFollowsGotoAndNext)
{
    EXPECT_EQ(host.SlideShowWindowsCount(), 0);
    pres.RunSlideShow();
    ASSERT_EQ(host.SlideShowWindowsCount(), 1);
    View& view = *host.SlideShowWindows(1)->GetView();
    EXPECT_EQ(view.GetSlide()->SlideIndex(), 1);
    view.Next();
    EXPECT_EQ(view.GetSlide()->SlideIndex(), 2);
    view.Next(); // stays on the last slide
    EXPECT_EQ(view.GetSlide()->SlideIndex(), 2);
    view.GotoSlide(1);
    EXPECT_EQ(view.GetSlide()->SlideIndex(), 1);
    EXPECT_EQ(errorNumber([&] { view.GotoSlide(3); }), ErrNo::ItemNotFound);
    // The document window keeps its own slide.
    EXPECT_EQ(host.Windows(1)->GetView()->GetSlide()->SlideIndex(), 1);
    // The show covers the primary screen unless told otherwise.
    host.config().primaryScreenRect = [] { return QRect(0, 0, 1280, 720); };
    EXPECT_EQ(host.SlideShowWindows(1)->Rect(), QRect(0, 0, 1280, 720));
    host.config().showWindowRect = QRect(1280, 0, 800, 600);
    EXPECT_EQ(host.SlideShowWindows(1)->Rect(), QRect(1280, 0, 800, 600));
    host.ClosePresentation();
    EXPECT_EQ(host.PresentationsCount(), 0);
    EXPECT_EQ(errorNumber([&] { host.ActivePresentation(); }), ErrNo::HostUnexpected);
}

TEST_F(MemoryHostTest, MacrosRunThroughTheConfiguredHook)
{
    QStringList ran, logged;
    host.config().runMacro = [&](const QString& m, const QString&) { ran << m; };
    host.config().log = [&](const QString& l) { logged << l; };
    host.Run("instaGraph");
    EXPECT_EQ(ran, QStringList{"instaGraph"});
    EXPECT_EQ(logged.size(), 1);
    EXPECT_FALSE(host.CommandBarItemChecked("Menu Bar|&Quilmark|&Voting Results|Vote history dialog box"));
    EXPECT_EQ(host.Version(), "16.0");
    EXPECT_EQ(host.AddInPath("tallix"), QCoreApplication::applicationDirPath());
}

TEST(OwnShapeNames, AreTheTlxAndTallixShapes)
{
    for (const char* ours : {"tlx_answers", "TLXloadingLabel", "tallix chart", "reshow 2 Tallix chart 1", "A tallix ratings 1"})
        EXPECT_TRUE(IsOwnShapeName(ours)) << ours;
    for (const char* theirs : {"Picture 3", "Title 1", "tl_x", "tal lix"})
        EXPECT_FALSE(IsOwnShapeName(theirs)) << theirs;
}

TEST_F(MemoryHostTest, CopiedPictureIsPastedWithItsImage)
{
    Shape* pic = shapes.AddPicture(png, 0, -1, 5, 5, 50, 50);
    pic->SetName("tallix chart");
    pic->Copy();
    Shapes& other = *pres.GetSlides()->Item(2)->GetShapes();
    Shape* pasted = other.Paste();
    EXPECT_EQ(pasted->Name(), "tallix chart");
    EXPECT_EQ(pasted->Left(), 5);
    pic->Delete(); // the pasted copy keeps its own image
    Deck again = reread(host.deck());
    const QString part = again.slidePart(again.slideIdAt(2));
    const auto rels = again.package().rels(part);
    bool image = false;
    for (const Relationship& r : rels)
        if (r.type == Rel::Image)
            image = again.package().bytes(again.package().resolve(part, r.target)) == OnePixelPng();
    EXPECT_TRUE(image);
}

} // namespace
