#include "deck_tool.h"

#include "foundation/host.h"
#include "foundation/safe_write.h"
#include "foundation/vb_error.h"
#include "host/pptx_host.h"
#include "question/io_vote_setup.h"
#include "question/settings_document.h"
#include "vote/run_context.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUuid>
#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <pugixml.hpp>

namespace tallix::deck {

using namespace tallix::host;

namespace {

const QString kQuestionSentence = QStringLiteral("This slide is a tallix question");

struct UsageError {
    QString text;
};

const char* const kMainHelp =
    "usage: tallix-deck COMMAND ...\n"
    "commands:\n"
    "  new OUT.pptx --slides N          a blank 16:9 deck of N slides\n"
    "  question DECK.pptx SLIDE --settings FILE.xml [--answers \"A|B|C\"] [--title TEXT]\n"
    "           [--chart-area L,T,W,H] [--objects] [--rank-markers N] [--numbers-table N]\n"
    "           [--answers-backup] [--word-cloud L,T,W,H] [--qid ID] [--groups \"A|B\"]\n"
    "                                   make a slide a question slide\n"
    "  reshow DECK.pptx SLIDE --chart Q [--where S=LABEL]... [--area L,T,W,H] [--chart Q2 ...]...\n"
    "         [--any] [--labels]        show stored results of earlier questions again\n"
    "  tags DECK.pptx [SLIDE] [--set NAME=VALUE] [--delete NAME] [--json]\n"
    "  shapes DECK.pptx SLIDE [--json]\n"
    "  votes DECK.pptx SLIDE [--json]\n"
    "  default-group DECK.pptx SLIDE\n"
    "  export-csv DECK.pptx OUT.csv\n"
    "Each command takes --help.\n";

const QMap<QString, QString> kHelp{
    {"new", "usage: tallix-deck new OUT.pptx --slides N\n"
            "Writes a valid blank deck (16:9, one title-and-content layout, a theme) with N slides.\n"},
    {"question", "usage: tallix-deck question DECK.pptx SLIDE --settings FILE.xml [--answers \"A|B|C\"]\n"
                 "                            [--title TEXT] [--chart-area L,T,W,H] [--objects]\n"
                 "                            [--rank-markers N] [--numbers-table N] [--answers-backup]\n"
                 "                            [--word-cloud L,T,W,H] [--qid ID] [--groups \"A|B\"]\n"
                 "Stores the settings document in the slide's tag tlxVote, marks the notes, and\n"
                 "places the shapes tlx_question, tlx_answers (one paragraph per answer) and\n"
                 "\"tallix chart sample\" (at the chart area, in points).\n"
                 "--objects          adds per answer a hidden table tlx_object1, tlx_object2, ... of\n"
                 "                   one row: the answer, and an empty cell for an object vote's result\n"
                 "--rank-markers N   adds N (1 to 99) hidden, empty text shapes \"tallix rank marker 01\"\n"
                 "                   to \"tallix rank marker NN\" left of the chart area, one per item\n"
                 "--numbers-table N  makes tlx_answers a hidden table for a numeric result instead:\n"
                 "                   a header row \"Value | Participant\" and N (1 to 50) template rows\n"
                 "                   \"^High^ | ^Keypad ^\", in the answers' place; not with --objects\n"
                 "--answers-backup   names the answers shape tlx_answers-BAK, the backup a vote copies\n"
                 "                   into a live tlx_answers\n"
                 "--word-cloud L,T,W,H  adds a hidden rectangle tlx_answers_word_cloud there (points),\n"
                 "                   where a word cloud result is drawn\n"
                 "--qid ID           the question's identity, kept in the settings' file_info; without\n"
                 "                   it the settings file's QID, else the slide's, else a new one\n"
                 "--groups \"A|B\"    the labels a reshow can filter by, as group_info (replacing any)\n"
                 "Each option replaces the shapes it made before.\n"},
    {"reshow", "usage: tallix-deck reshow DECK.pptx SLIDE --chart Q [--where S=LABEL]... [--area L,T,W,H]\n"
               "                          [--chart Q2 [--where S=LABEL]... [--area L,T,W,H]]... [--any] [--labels]\n"
               "Stores in the tag TLXRESHOW of SLIDE a reshow: one chart per --chart, each showing\n"
               "the stored result of question slide Q again.\n"
               "--where S=LABEL    counts only the keypads that answered LABEL (one of its --groups)\n"
               "                   on question slide S; belongs to the --chart before it\n"
               "--area L,T,W,H     where that chart goes, in points; kept as fractions of the slide\n"
               "--any              a keypad counts when it meets any --where of its chart, not all\n"
               "--labels           titles each chart with its question and its filter\n"},
    {"tags", "usage: tallix-deck tags DECK.pptx [SLIDE] [--set NAME=VALUE]... [--delete NAME]... [--json]\n"
             "Changes and lists the tags of the presentation, or of slide SLIDE.\n"},
    {"shapes", "usage: tallix-deck shapes DECK.pptx SLIDE [--json]\n"
               "Lists the shapes of a slide: name, kind, visible, left, top, width, height (points), text.\n"
               "A group's members follow it, indented two blanks a level; with --json a group has\n"
               "a \"members\" array of the same objects. A table shows its cells, as\n"
               "\"cells: a | b ; c | d\" or, with --json, a \"cells\" array of rows of cell texts.\n"},
    {"default-group", "usage: tallix-deck default-group DECK.pptx SLIDE\n"
                      "Makes SLIDE the default group slide: a group launch (TLXGROUP,SLIDE,ANSWER) counts only\n"
                      "the keypads that gave ANSWER on it.\n"},
    {"votes", "usage: tallix-deck votes DECK.pptx SLIDE [--json]\n"
              "Lists the saved vote lines of a slide, and the answer of each keypad in the last one.\n"},
    {"export-csv", "usage: tallix-deck export-csv DECK.pptx OUT.csv\n"
                   "Writes every saved vote of every question slide: slide, question, date, time,\n"
                   "keypad, answer.\n"},
};

// Options and positional arguments of one command.
struct Args {
    QStringList positional;
    QMultiMap<QString, QString> options;
    // The options as given, for commands where an option belongs to the one before it.
    QList<std::pair<QString, QString>> ordered;
    bool flag(const QString& name) const { return options.contains(name); }
    QString value(const QString& name) const { return options.value(name); }
};

Args parse(const QStringList& args, const QStringList& withValue, const QStringList& flags)
{
    Args out;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (!a.startsWith("--") || a == "--") {
            out.positional << a;
            continue;
        }
        QString name = a.mid(2), value;
        const int eq = name.indexOf('=');
        if (eq >= 0) {
            value = name.mid(eq + 1);
            name = name.left(eq);
        }
        if (flags.contains(name)) {
            value.clear();
            out.options.insert(name, value);
        } else if (withValue.contains(name)) {
            if (eq < 0) {
                if (i + 1 >= args.size())
                    throw UsageError{QStringLiteral("--%1 needs a value").arg(name)};
                value = args[++i];
            }
            out.options.insert(name, value);
        } else {
            throw UsageError{QStringLiteral("unknown option --%1").arg(name)};
        }
        out.ordered.append({name, value});
    }
    return out;
}

int slideNumber(const QString& text, Presentation& pres)
{
    bool ok = false;
    const int n = text.toInt(&ok);
    if (!ok || n < 1 || n > pres.GetSlides()->Count())
        throw UsageError{QStringLiteral("no slide %1 (the deck has %2)").arg(text).arg(pres.GetSlides()->Count())};
    return n;
}

void need(const Args& a, int count, const QString& command)
{
    if (a.positional.size() != count)
        throw UsageError{QStringLiteral("wrong arguments\n") + kHelp.value(command)};
}

void print(QTextStream& out, const QJsonValue& value)
{
    out << (value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject()))
               .toJson(QJsonDocument::Indented);
}

Shape* findShape(Shapes& shapes, const std::function<bool(Shape&)>& test)
{
    for (int i = 1; i <= shapes.Count(); ++i)
        if (test(*shapes.Item(i)))
            return shapes.Item(i);
    return nullptr;
}

// The first element of that name anywhere in the settings document.
QString settingsText(const pugi::xml_document& doc, const char* name)
{
    pugi::xml_node n = doc.find_node([&](pugi::xml_node c) { return QByteArray(c.name()).compare(name, Qt::CaseInsensitive) == 0; });
    return QString::fromUtf8(n.child_value()).trimmed();
}

// Every element of that name, without case, under a node; not those inside one found, so
// that removing them all never removes one twice.
void collectElements(pugi::xml_node node, const char* name, std::vector<pugi::xml_node>& found)
{
    for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element)
            continue;
        if (QByteArray(c.name()).compare(name, Qt::CaseInsensitive) == 0)
            found.push_back(c);
        else
            collectElements(c, name, found);
    }
}

// The first section of that name anywhere, as the settings readers find it; made at the
// end of the document when there is none.
pugi::xml_node section(pugi::xml_document& doc, const char* name)
{
    pugi::xml_node s = doc.find_node([&](pugi::xml_node c) { return c.type() == pugi::node_element && !strcmp(c.name(), name); });
    return s ? s : doc.document_element().append_child(name);
}

pugi::xml_node addText(pugi::xml_node parent, const QString& name, const QString& text)
{
    pugi::xml_node e = parent.append_child(S(name).c_str());
    if (!text.isEmpty())
        e.append_child(pugi::node_pcdata).set_value(S(text).c_str());
    return e;
}

QString threeDigits(long n)
{
    return QStringLiteral("%1").arg(n, 3, 10, QLatin1Char('0'));
}

// The identity goes into file_info; a QID left anywhere else would be found first by a
// reader that looks for the first one, so it goes.
void setQuestionIdentity(pugi::xml_document& doc, const QString& qid)
{
    pugi::xml_node info = section(doc, "file_info");
    pugi::xml_node keep = info.child("QID");
    std::vector<pugi::xml_node> all;
    collectElements(doc, "QID", all);
    for (pugi::xml_node n : all)
        if (n != keep)
            n.parent().remove_child(n);
    if (!keep)
        keep = info.append_child("QID");
    while (keep.first_child())
        keep.remove_child(keep.first_child());
    keep.append_child(pugi::node_pcdata).set_value(S(qid).c_str());
}

// One group_info in the place of the first one there was.
void setGroupLabels(pugi::xml_document& doc, const QStringList& labels)
{
    std::vector<pugi::xml_node> old;
    collectElements(doc, "group_info", old);
    pugi::xml_node info = old.empty() ? doc.document_element().append_child("group_info")
                                      : old.front().parent().insert_child_before("group_info", old.front());
    for (pugi::xml_node n : old)
        n.parent().remove_child(n);
    for (int i = 0; i < labels.size(); ++i)
        addText(info, "GroupOption" + threeDigits(i + 1), labels[i]);
}

// '|' and '^' separate the fields and parts of a reshow's references, so neither may be
// part of what they separate.
const QRegularExpression kReferenceSeparators(QStringLiteral("[|^\r\n]"));

QString qidOption(const Args& a)
{
    const QString qid = a.value("qid").trimmed();
    if (qid.isEmpty() || qid.contains(kReferenceSeparators))
        throw UsageError{QStringLiteral("--qid needs an identity without | or ^")};
    return qid;
}

QStringList groupsOption(const Args& a)
{
    QStringList labels;
    for (const QString& part : a.value("groups").split('|')) {
        const QString label = part.trimmed();
        if (label.isEmpty() || label.contains(kReferenceSeparators))
            throw UsageError{QStringLiteral("--groups needs labels \"A|B|...\", none empty or with ^")};
        labels << label;
    }
    if (labels.size() > 999) // the element names carry three digits
        throw UsageError{QStringLiteral("--groups takes at most 999 labels")};
    return labels;
}

int cmdNew(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {"slides"}, {});
    need(a, 1, "new");
    bool ok = false;
    const int slides = a.value("slides").toInt(&ok);
    if (!ok || slides < 1 || slides > 500)
        throw UsageError{QStringLiteral("--slides needs a number from 1 to 500")};
    const QString failure = SafeWriteFile(a.positional[0], Deck::blank(slides).toZip());
    if (!failure.isEmpty())
        throw UsageError{failure};
    out << "wrote " << a.positional[0] << " with " << slides << " slide(s)\n";
    return 0;
}

// Takes away the shapes an earlier run placed, so that a question made again has one set.
void deleteShapes(Shapes& shapes, const QRegularExpression& names)
{
    for (int i = shapes.Count(); i >= 1; --i)
        if (names.match(shapes.Item(i)->Name()).hasMatch())
            shapes.Item(i)->Delete();
}

// One table per answer, in a column just right of the answers, each in line with its
// answer as far as the answers' font tells: the answer, then the cell for its result.
void placeObjectTables(Shapes& shapes, const PageSetup& page, Shape& list, const QStringList& answers)
{
    deleteShapes(shapes, QRegularExpression("^tlx_object\\d+$"));
    if (answers.isEmpty())
        return;
    const double margin = page.SlideWidth * 0.02;
    // Wide answers do not push the tables off the slide.
    const double left = qMin(list.Left() + list.Width() + margin, page.SlideWidth * 0.58);
    const double width = qMin(page.SlideWidth * 0.4, page.SlideWidth - margin - left);
    // An answer's pitch in the usual body style: a line (1.2 times the size) at 90 %
    // spacing, and 10 pt before it.
    const double pitch = list.GetTextFrame()->GetFont().Size * 1.08 + 10;
    double height = 30, step = qMax(pitch, height + 4);
    const double room = page.SlideHeight - margin - list.Top();
    if (step * answers.size() > room) {
        step = room / answers.size();
        height = qMin(height, step * 0.9);
    }
    for (int n = 1; n <= answers.size(); ++n) {
        Shape* t = shapes.AddTable(1, 2, left, list.Top() + (n - 1) * step, width, height);
        t->SetName(QStringLiteral("tlx_object%1").arg(n));
        t->GetTable()->Cell(1, 1)->SetText(answers[n - 1]);
        t->SetVisible(false);
    }
}

// The table a numeric result fills: a header, then template rows that the result copies
// for each value and removes when left over.
Shape* placeNumbersTable(Shapes& shapes, const QRectF& place, int templates)
{
    Shape* t = shapes.AddTable(templates + 1, 2, place.left(), place.top(), place.width(), place.height());
    Table& table = *t->GetTable();
    table.Cell(1, 1)->SetText("Value");
    table.Cell(1, 2)->SetText("Participant");
    for (int r = 2; r <= templates + 1; ++r) {
        table.Cell(r, 1)->SetText("^High^");
        table.Cell(r, 2)->SetText("^Keypad ^");
    }
    // Free-entry results are revealed when the vote ends.
    t->SetVisible(false);
    return t;
}

// L,T,W,H in points, as an option gives it.
QRectF parseRect(const QString& text, const QString& option)
{
    const QStringList parts = text.split(',');
    QList<double> v;
    for (const QString& p : parts) {
        bool ok = false;
        v << p.trimmed().toDouble(&ok);
        if (!ok)
            break;
    }
    if (v.size() != 4 || parts.size() != 4 || v[2] <= 0 || v[3] <= 0)
        throw UsageError{QStringLiteral("--%1 needs L,T,W,H in points").arg(option)};
    return QRectF(v[0], v[1], v[2], v[3]);
}

// An option's L,T,W,H in points; none when the option is not given.
std::optional<QRectF> rectOption(const Args& a, const QString& option)
{
    if (!a.flag(option))
        return std::nullopt;
    return parseRect(a.value(option), option);
}

// A number option from 1 to `max`; 0 when the option is not given.
int countOption(const Args& a, const QString& option, int max)
{
    if (!a.flag(option))
        return 0;
    bool ok = false;
    const int n = a.value(option).toInt(&ok);
    if (!ok || n < 1 || n > max)
        throw UsageError{QStringLiteral("--%1 needs a number from 1 to %2").arg(option).arg(max)};
    return n;
}

// Markers for the item being rated: one per item, down the left edge of the chart area.
void placeRankMarkers(Shapes& shapes, const QRectF& chart, int count)
{
    deleteShapes(shapes, QRegularExpression("^tallix rank marker \\d\\d$"));
    const double band = chart.height() / count;
    const double size = qMin(30.0, band);
    for (int i = 1; i <= count; ++i) {
        Shape* m = shapes.AddTextbox(qMax(0.0, chart.left() - size - 2), chart.top() + (i - 0.5) * band - size / 2,
                                     size, size);
        m->SetName(QStringLiteral("tallix rank marker %1").arg(i, 2, 10, QLatin1Char('0')));
        m->SetVisible(false);
    }
}

int cmdQuestion(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {"settings", "answers", "title", "chart-area", "rank-markers", "numbers-table", "word-cloud",
                                "qid", "groups"},
                         {"objects", "answers-backup"});
    need(a, 2, "question");
    if (!a.flag("settings"))
        throw UsageError{QStringLiteral("--settings FILE.xml is required")};
    const int markers = countOption(a, "rank-markers", 99); // the names carry two digits
    const int numberRows = countOption(a, "numbers-table", 50);
    if (numberRows && a.flag("objects"))
        throw UsageError{QStringLiteral("--numbers-table and --objects cannot be used together")};
    const std::optional<QRectF> chartArea = rectOption(a, "chart-area");
    const std::optional<QRectF> wordCloud = rectOption(a, "word-cloud");
    const std::optional<QString> qid = a.flag("qid") ? std::optional(qidOption(a)) : std::nullopt;
    const std::optional<QStringList> groups = a.flag("groups") ? std::optional(groupsOption(a)) : std::nullopt;
    QFile file(a.value("settings"));
    if (!file.open(QIODevice::ReadOnly))
        throw UsageError{QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString())};
    const QByteArray xmlBytes = file.readAll();
    pugi::xml_document settings;
    if (const pugi::xml_parse_result r = settings.load_buffer(xmlBytes.constData(), size_t(xmlBytes.size())); !r)
        throw UsageError{QStringLiteral("%1 is not well-formed XML: %2").arg(file.fileName(), QString::fromUtf8(r.description()))};

    PptxHost host(a.positional[0]);
    Presentation& pres = *host.ActivePresentation();
    Slide& slide = *pres.GetSlides()->Item(slideNumber(a.positional[1], pres));
    const PageSetup page = pres.GetPageSetup();
    const QRectF chart = chartArea.value_or(
        QRectF(page.SlideWidth * 0.52, page.SlideHeight * 0.25, page.SlideWidth * 0.43, page.SlideHeight * 0.65));

    SettingsDocument stored;
    if (!stored.loadXML(QString::fromUtf8(xmlBytes)))
        throw UsageError{QStringLiteral("%1: %2").arg(file.fileName(), stored.parseError().reason)};
    // A question made again keeps its identity, from the file or else from the slide, so
    // that reshows naming it still find it.
    QString identity = qid.value_or(settingsText(stored.doc(), "QID"));
    if (identity.isEmpty()) {
        SettingsDocument before;
        if (before.loadXML(slide.GetTags()->Item("tlxVote")))
            identity = settingsText(before.doc(), "QID");
    }
    if (identity.isEmpty())
        identity = QUuid::createUuid().toString(QUuid::WithoutBraces);
    setQuestionIdentity(stored.doc(), identity);
    if (groups)
        setGroupLabels(stored.doc(), *groups);
    SaveSettingsToSlide(host, slide.SlideIndex(), stored.xml());

    Shapes& shapes = *slide.GetShapes();
    QString title = a.flag("title") ? a.value("title") : settingsText(settings, "Question");
    if (title.isEmpty())
        title = QStringLiteral("Question %1").arg(slide.SlideIndex());
    Shape* question = findShape(shapes, [](Shape& s) { return s.Name() == "tlx_question"; });
    if (!question)
        question = findShape(shapes, [](Shape& s) {
            return s.PlaceholderFormatType() == PlaceholderType::Title ||
                   s.PlaceholderFormatType() == PlaceholderType::CenterTitle;
        });
    if (!question)
        question = shapes.AddTextbox(page.SlideWidth * 0.05, page.SlideHeight * 0.05, page.SlideWidth * 0.9,
                                     page.SlideHeight * 0.15);
    question->SetName("tlx_question");
    question->GetTextFrame()->SetText(title);

    QStringList answers = a.flag("answers") ? a.value("answers").split('|') : QStringList();
    if (!a.flag("answers"))
        for (const QString& line : settingsText(settings, "Answers").split(QRegularExpression("[\r\n]+"), Qt::SkipEmptyParts))
            answers << line.trimmed();
    // One answers shape, under its live name or its backup's: a text box made before under
    // either name is used again, anything else made before goes.
    const QString answersName = a.flag("answers-backup") ? QStringLiteral("tlx_answers-BAK") : QStringLiteral("tlx_answers");
    const QRectF answersPlace(page.SlideWidth * 0.05, chart.top(), qMax(36.0, chart.left() - page.SlideWidth * 0.07),
                              chart.height());
    auto isAnswers = [](Shape& s) { return s.Name() == "tlx_answers" || s.Name() == "tlx_answers-BAK"; };
    Shape* list = numberRows ? nullptr : findShape(shapes, [&](Shape& s) { return isAnswers(s) && s.HasTextFrame(); });
    for (int i = shapes.Count(); i >= 1; --i)
        if (shapes.Item(i) != list && isAnswers(*shapes.Item(i)))
            shapes.Item(i)->Delete();
    auto isBody = [](Shape& s) {
        const int t = s.PlaceholderFormatType();
        return s.HasTextFrame() && (t == PlaceholderType::Object || t == PlaceholderType::Body);
    };
    if (!list)
        list = findShape(shapes, isBody);
    if (numberRows) {
        // The table takes the content placeholder's place rather than lying over it.
        if (list)
            list->Delete();
        list = placeNumbersTable(shapes, answersPlace, numberRows);
    } else {
        if (!list)
            list = shapes.AddTextbox(answersPlace.left(), answersPlace.top(), answersPlace.width(), answersPlace.height());
        list->SetLeft(answersPlace.left());
        list->SetTop(answersPlace.top());
        list->SetWidth(answersPlace.width());
        list->SetHeight(answersPlace.height());
        list->GetTextFrame()->SetText(answers.join('\r'));
    }
    list->SetName(answersName);

    Shape* sample = findShape(shapes, [](Shape& s) { return s.Name() == "tallix chart sample"; });
    if (!sample) {
        sample = shapes.AddShape(AutoShape::Rectangle, chart.left(), chart.top(), chart.width(), chart.height());
        sample->SetName("tallix chart sample");
    }
    sample->SetLeft(chart.left());
    sample->SetTop(chart.top());
    sample->SetWidth(chart.width());
    sample->SetHeight(chart.height());

    if (a.flag("objects"))
        placeObjectTables(shapes, page, *list, answers);
    if (markers)
        placeRankMarkers(shapes, chart, markers);
    if (wordCloud) {
        deleteShapes(shapes, QRegularExpression("^tlx_answers_word_cloud$"));
        Shape* cloud = shapes.AddShape(AutoShape::Rectangle, wordCloud->left(), wordCloud->top(), wordCloud->width(),
                                       wordCloud->height());
        cloud->SetName("tlx_answers_word_cloud");
        cloud->SetVisible(false);
    }

    if (!host.Commit())
        throw UsageError{QStringLiteral("%1 is locked by another process; nothing written").arg(a.positional[0])};
    out << "slide " << slide.SlideIndex() << " of " << a.positional[0] << " is a question slide\n";
    return 0;
}

int cmdTags(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {"set", "delete"}, {"json"});
    if (a.positional.size() < 1 || a.positional.size() > 2)
        throw UsageError{QStringLiteral("wrong arguments\n") + kHelp.value("tags")};
    const bool changes = a.flag("set") || a.flag("delete");
    std::unique_ptr<PptxHost> host = std::make_unique<PptxHost>(a.positional[0]);
    Presentation& pres = *host->ActivePresentation();
    Tags& tags = a.positional.size() == 2 ? *pres.GetSlides()->Item(slideNumber(a.positional[1], pres))->GetTags()
                                          : *pres.GetTags();
    // Options apply in the order given.
    for (int i = 0; i < argv.size(); ++i) {
        QString arg = argv[i], value;
        if (arg == "--set" || arg == "--delete")
            value = argv.value(++i);
        else if (arg.startsWith("--set=") || arg.startsWith("--delete="))
            value = arg.section('=', 1), arg = arg.section('=', 0, 0);
        else
            continue;
        if (arg == "--delete") {
            tags.Delete(value);
            continue;
        }
        const int eq = value.indexOf('=');
        if (eq <= 0)
            throw UsageError{QStringLiteral("--set needs NAME=VALUE")};
        tags.Add(value.left(eq), value.mid(eq + 1));
    }
    if (changes && !host->Commit())
        throw UsageError{QStringLiteral("%1 is locked by another process; nothing written").arg(a.positional[0])};
    if (a.flag("json")) {
        QJsonObject o;
        for (int i = 1; i <= tags.Count(); ++i)
            o.insert(tags.Name(i), tags.Value(i));
        print(out, o);
    } else if (!changes) {
        for (int i = 1; i <= tags.Count(); ++i)
            out << tags.Name(i) << '=' << tags.Value(i) << '\n';
    }
    return 0;
}

// Only a group may be asked for its members; the host raises for any other shape.
QList<Shape*> groupMembers(Shape& s)
{
    QList<Shape*> out;
    if (s.Kind() != ShapeKind::Group)
        return out;
    GroupShapes& members = *s.GroupItems();
    for (int i = 1; i <= members.Count(); ++i)
        out << members.Item(i);
    return out;
}

QString shapeText(Shape& s)
{
    return s.HasTextFrame() ? s.GetTextFrame()->Text() : QString();
}

// A table's cell texts, row by row; none for any other shape.
QList<QStringList> tableCells(Shape& s)
{
    QList<QStringList> rows;
    if (!s.HasTable())
        return rows;
    Table& table = *s.GetTable();
    for (int r = 1; r <= table.RowCount(); ++r) {
        QStringList row;
        for (int c = 1; c <= table.ColumnCount(); ++c)
            row << table.Cell(r, c)->Text();
        rows << row;
    }
    return rows;
}

QJsonObject shapeJson(Shape& s)
{
    QJsonObject o{{"name", s.Name()}, {"kind", ShapeKindName(s.Kind())}, {"visible", s.Visible()},
                  {"left", s.Left()}, {"top", s.Top()}, {"width", s.Width()},
                  {"height", s.Height()}, {"text", shapeText(s)}};
    if (s.HasTable()) {
        QJsonArray rows;
        for (const QStringList& row : tableCells(s))
            rows.append(QJsonArray::fromStringList(row));
        o.insert("cells", rows);
    }
    if (s.Kind() == ShapeKind::Group) {
        QJsonArray members;
        for (Shape* m : groupMembers(s))
            members.append(shapeJson(*m));
        o.insert("members", members);
    }
    return o;
}

// A group's members follow it, two blanks further in for each level of nesting.
void printShape(QTextStream& out, Shape& s, int depth)
{
    const QString geometry = QStringLiteral("%1,%2 %3x%4").arg(s.Left()).arg(s.Top()).arg(s.Width()).arg(s.Height());
    QString text = shapeText(s);
    if (s.HasTable()) {
        QStringList rows;
        for (const QStringList& row : tableCells(s))
            rows << row.join(" | ");
        text = "cells: " + rows.join(" ; ");
    }
    // One pass over the names and texts, so a "%1" in them stays as it is.
    out << QStringLiteral("%1%2\t%3\t%4\t%5\t%6\n")
               .arg(QString(2 * depth, ' '), s.Name(), ShapeKindName(s.Kind()), s.Visible() ? "visible" : "hidden",
                    geometry, text.replace('\r', " / "));
    for (Shape* m : groupMembers(s))
        printShape(out, *m, depth + 1);
}

int cmdShapes(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {}, {"json"});
    need(a, 2, "shapes");
    PptxHost host(a.positional[0]);
    Presentation& pres = *host.ActivePresentation();
    Shapes& shapes = *pres.GetSlides()->Item(slideNumber(a.positional[1], pres))->GetShapes();
    QJsonArray list;
    for (int i = 1; i <= shapes.Count(); ++i) {
        Shape& s = *shapes.Item(i);
        if (a.flag("json"))
            list.append(shapeJson(s));
        else
            printShape(out, s, 0);
    }
    if (a.flag("json"))
        print(out, list);
    return 0;
}

int cmdVotes(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {}, {"json"});
    need(a, 2, "votes");
    PptxHost host(a.positional[0]);
    Presentation& pres = *host.ActivePresentation();
    const QStringList lines =
        VoteLines(pres.GetSlides()->Item(slideNumber(a.positional[1], pres))->GetTags()->Item("TLXVOTES"));
    if (a.flag("json")) {
        print(out, QJsonArray::fromStringList(lines));
        return 0;
    }
    for (const QString& line : lines)
        out << line << '\n';
    if (!lines.isEmpty()) {
        const QStringList tokens = VoteTokens(lines.last());
        for (int k = 0; k < tokens.size(); ++k)
            out << "keypad " << k + 1 << ": " << tokens[k] << '\n';
    }
    return 0;
}

// What a reshow needs of a question slide: its identity in the deck, its QID and the
// labels a filter can name, in number order.
struct QuestionRef {
    long id = 0;
    QString qid;
    QStringList labels;
};

std::optional<QuestionRef> questionOf(Slide& slide)
{
    const QString xml = slide.GetTags()->Item("tlxVote");
    if (xml.isEmpty())
        return std::nullopt;
    QuestionRef q{slide.SlideID(), {}, {}};
    SettingsDocument d;
    if (!d.loadXML(xml))
        return q; // still a question slide, one that names nothing
    q.qid = settingsText(d.doc(), "QID");
    const pugi::xml_node info =
        d.doc().find_node([](pugi::xml_node c) { return c.type() == pugi::node_element && !strcmp(c.name(), "group_info"); });
    QMap<int, QString> byNumber;
    static const QRegularExpression option(QStringLiteral("^GroupOption(\\d+)$"), QRegularExpression::CaseInsensitiveOption);
    for (pugi::xml_node c = info.first_child(); c; c = c.next_sibling())
        if (const QRegularExpressionMatch m = option.match(U(c.name())); m.hasMatch())
            byNumber.insert(m.captured(1).toInt(), NodeText(c));
    q.labels = byNumber.values();
    return q;
}

int cmdReshow(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {"chart", "where", "area"}, {"any", "labels"});
    need(a, 2, "reshow");
    // Each --where and --area belongs to the --chart before it.
    struct Chart {
        QString slide;
        QStringList where;
        std::optional<QRectF> area;
    };
    QList<Chart> charts;
    for (const auto& [name, value] : a.ordered) {
        if (name == "chart") {
            charts.append({value, {}, std::nullopt});
            continue;
        }
        if (name != "where" && name != "area")
            continue;
        if (charts.isEmpty())
            throw UsageError{QStringLiteral("--%1 belongs to a --chart and comes after it").arg(name)};
        if (name == "where") {
            if (value.indexOf('=') <= 0)
                throw UsageError{QStringLiteral("--where needs SLIDE=LABEL")};
            charts.last().where << value;
        } else {
            if (charts.last().area)
                throw UsageError{QStringLiteral("a chart takes one --area")};
            charts.last().area = parseRect(value, "area");
        }
    }
    if (charts.isEmpty())
        throw UsageError{QStringLiteral("--chart SLIDE is required")};
    if (charts.size() > 999) // the element names carry three digits
        throw UsageError{QStringLiteral("a reshow takes at most 999 charts")};

    PptxHost host(a.positional[0]);
    Presentation& pres = *host.ActivePresentation();
    Slides& slides = *pres.GetSlides();
    Slide& slide = *slides.Item(slideNumber(a.positional[1], pres));
    const auto question = [&](const QString& number, const QString& option) {
        const int n = slideNumber(number, pres);
        const std::optional<QuestionRef> q = questionOf(*slides.Item(n));
        if (!q)
            throw UsageError{QStringLiteral("--%1: slide %2 is not a question slide").arg(option).arg(n)};
        return *q;
    };

    SettingsDocument document;
    pugi::xml_node root = document.doc().append_child("tlxfile");
    pugi::xml_node info = root.append_child("reshow_info");
    addText(info, "rshFilterType", a.flag("any") ? "1" : "0");
    addText(info, "reshowOnOneChart", "False");
    addText(info, "ShowLabels", a.flag("labels") ? "True" : "False");
    QStringList references;
    for (int i = 1; i <= slides.Count(); ++i)
        if (const std::optional<QuestionRef> q = questionOf(*slides.Item(i)))
            references << threeDigits(q->id) + '|' + q->qid + "|^" + q->labels.join('^') + '^';
    info.append_child("Question_References").append_child(pugi::node_cdata).set_value(S(references.join('\n')).c_str());

    pugi::xml_node graphs = root.append_child("reshow_graphs");
    const PageSetup page = pres.GetPageSetup();
    for (int c = 0; c < charts.size(); ++c) {
        const QString nnn = threeDigits(c + 1);
        const QuestionRef shown = question(charts[c].slide, "chart");
        addText(graphs, "QNSLIDE" + nnn, QString::number(shown.id) + '|' + shown.qid);
        QStringList parts;
        for (const QString& where : charts[c].where) {
            const int eq = int(where.indexOf('='));
            const QuestionRef by = question(where.left(eq), "where");
            const QString wanted = where.mid(eq + 1).trimmed();
            // Written as the slide spells it, whichever way it was typed.
            const auto label = std::find_if(by.labels.cbegin(), by.labels.cend(), [&](const QString& l) {
                return l.trimmed().compare(wanted, Qt::CaseInsensitive) == 0;
            });
            if (label == by.labels.cend())
                throw UsageError{QStringLiteral("--where: slide %1 has no label \"%2\" (it has: %3)")
                                     .arg(where.left(eq), wanted, by.labels.isEmpty() ? "none" : by.labels.join(", "))};
            parts << QString::number(by.id) + ':' + *label;
        }
        addText(graphs, "GROUPS" + nnn, parts.isEmpty() ? QString() : '^' + parts.join('^') + '^');
        if (const std::optional<QRectF>& area = charts[c].area) {
            // Fractions of the slide, so that the chart keeps its place on any slide size.
            const auto fraction = [](double v) { return QString::number(v, 'g', 15); };
            addText(graphs, "LEFT" + nnn, fraction(area->left() / page.SlideWidth));
            addText(graphs, "TOP" + nnn, fraction(area->top() / page.SlideHeight));
            addText(graphs, "WIDTH" + nnn, fraction(area->width() / page.SlideWidth));
            addText(graphs, "HEIGHT" + nnn, fraction(area->height() / page.SlideHeight));
        }
    }
    slide.GetTags()->Add("TLXRESHOW", document.xml());
    if (!host.Commit())
        throw UsageError{QStringLiteral("%1 is locked by another process; nothing written").arg(a.positional[0])};
    out << "slide " << slide.SlideIndex() << " of " << a.positional[0] << " reshows " << charts.size() << " chart(s)\n";
    return 0;
}

QString csvField(const QString& s)
{
    if (!s.contains(QRegularExpression("[\",\r\n]")))
        return s;
    return '"' + QString(s).replace("\"", "\"\"") + '"';
}

int cmdDefaultGroup(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {}, {});
    need(a, 2, "default-group");
    PptxHost host(a.positional[0]);
    Presentation& pres = *host.ActivePresentation();
    Slide& slide = *pres.GetSlides()->Item(slideNumber(a.positional[1], pres));
    // The slide's identity and the answer that makes a keypad one of the group's.
    pres.GetTags()->Add("tlx_DefaultGroup", QString::number(slide.SlideID()) + "\r\n1");
    if (!host.Commit())
        throw UsageError{QStringLiteral("%1 is locked by another process; nothing written").arg(a.positional[0])};
    out << "slide " << slide.SlideIndex() << " of " << a.positional[0] << " is the default group slide\n";
    return 0;
}

int cmdExportCsv(const QStringList& argv, QTextStream& out)
{
    const Args a = parse(argv, {}, {});
    need(a, 2, "export-csv");
    PptxHost host(a.positional[0]);
    Slides& slides = *host.ActivePresentation()->GetSlides();
    QString csv = QStringLiteral("slide,question,date,time,keypad,answer\r\n");
    int rows = 0;
    for (int i = 1; i <= slides.Count(); ++i) {
        Slide& slide = *slides.Item(i);
        if (slide.GetTags()->Item("TLXVOTE").isEmpty())
            continue;
        QString question;
        try {
            question = slide.GetShapes()->Item("tlx_question")->GetTextFrame()->Text();
        } catch (const VbError&) {
            // A question slide without its question shape still has its votes.
        }
        for (const QString& line : VoteLines(slide.GetTags()->Item("TLXVOTES"))) {
            const QStringList fields = line.split(',');
            const QStringList tokens = VoteTokens(line);
            for (int k = 0; k < tokens.size(); ++k) {
                if (tokens[k] == "-")
                    continue; // not voted
                csv += QStringList{QString::number(i), csvField(question), csvField(fields.value(0)),
                                   csvField(fields.value(1)), QString::number(k + 1), csvField(tokens[k])}
                           .join(',') + "\r\n";
                ++rows;
            }
        }
    }
    const QString failure = SafeWriteFile(a.positional[1], csv.toUtf8());
    if (!failure.isEmpty())
        throw UsageError{failure};
    out << "wrote " << rows << " vote(s) to " << a.positional[1] << '\n';
    return 0;
}

} // namespace

QStringList VoteLines(const QString& tagValue)
{
    QString text = tagValue;
    text.replace("\r\n", "\n").replace('\r', '\n');
    QStringList lines = text.split('\n');
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QStringList VoteTokens(const QString& line)
{
    QStringList tokens = line.section(',', 2, 2).split(';');
    if (!tokens.isEmpty() && tokens.last().isEmpty())
        tokens.removeLast(); // every token ends in ";"
    return tokens;
}

void SaveSettingsToSlide(Application& app, int slideIndex, const QString& xml)
{
    // The deck tool stores a question the way a vote run does, through the same procedure.
    SettingsDocument document;
    if (!document.loadXML(xml))
        Raise(ErrNo::TypeMismatch, "settings: " + document.parseError().reason);
    RunContext ctx;
    ctx.app.folder = QDir::tempPath();
    ctx.oPPT = &app;
    ctx.oPres = app.ActivePresentation();
    SaveXMLtoPPTSlide(ctx, document, slideIndex);
}

int RunDeckTool(const QStringList& args, QTextStream& out, QTextStream& err)
{
    if (args.isEmpty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        (args.isEmpty() ? err : out) << kMainHelp;
        return args.isEmpty() ? 2 : 0;
    }
    const QString command = args[0];
    const QStringList rest = args.mid(1);
    if (!kHelp.contains(command)) {
        err << "tallix-deck: unknown command " << command << "\n" << kMainHelp;
        return 2;
    }
    if (rest.contains("--help") || rest.contains("-h")) {
        out << kHelp.value(command);
        return 0;
    }
    try {
        if (command == "new") return cmdNew(rest, out);
        if (command == "question") return cmdQuestion(rest, out);
        if (command == "tags") return cmdTags(rest, out);
        if (command == "shapes") return cmdShapes(rest, out);
        if (command == "votes") return cmdVotes(rest, out);
        if (command == "default-group") return cmdDefaultGroup(rest, out);
        if (command == "reshow") return cmdReshow(rest, out);
        return cmdExportCsv(rest, out);
    } catch (const UsageError& e) {
        err << "tallix-deck " << command << ": " << e.text << '\n';
        return 2;
    } catch (const PackageError& e) {
        err << "tallix-deck " << command << ": " << e.message() << '\n';
        return 1;
    } catch (const VbError& e) {
        err << "tallix-deck " << command << ": " << e.description() << '\n';
        return 1;
    }
}

} // namespace tallix::deck
