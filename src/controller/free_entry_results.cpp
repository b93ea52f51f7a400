#include "free_entry_results.h"

#include "charts/chart_procedures.h"
#include "controller/live_text.h"
#include "controller/scalepad_votes.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

#include <QRegularExpression>

#include <algorithm>

namespace tallix {

namespace {

const char* kModule = "scalepad_votes";
const QString kAnswers = QStringLiteral("tlx_answers");

void stop(RunContext& ctx, const QString& message, const QString& title = QStringLiteral("tallix"))
{
    ctx.dialogs->MsgBox(message, MsgBoxStyle::OKOnly, title);
    FullShutDown(ctx);
}

double numberIn(const QString& text) { return tlxVal(text.trimmed()); }

// The keypads' answers, each "|" field of a keypad's entry on its own.
QStringList answersOf(const RunContext& ctx)
{
    QStringList out;
    for (int k = 0; k <= ctx.votes.ubound(); ++k) {
        const QString& v = ctx.votes(k);
        if (v.isEmpty() || v == QLatin1String("-1"))
            continue;
        for (const QString& a : v.split(u'|'))
            if (!a.trimmed().isEmpty() && a != QLatin1String("-1"))
                out << a.trimmed();
    }
    return out;
}

// Old answer tags go before new ones are written: n + "tlx_answers" while there is one.
void storeAnswerTags(RunContext& ctx, host::Slide* slide)
{
    host::Tags* tags = slide->GetTags();
    for (int n = 1; !tags->Item(QString::number(n) + kAnswers).isEmpty(); ++n)
        tags->Delete(QString::number(n) + kAnswers);
    tags->Delete(QStringLiteral("tlx_answers_count"));
    QStringList answers = ctx.responseList;
    answers.removeAll(QStringLiteral("-1"));
    answers.removeAll(QString());
    const int chunk = std::max<int>(1, ctx.optionCount);
    int extra = 0;
    for (int from = 0; from < answers.size(); from += chunk) {
        const QString text = answers.mid(from, chunk).join(QStringLiteral("\r\n"));
        if (from == 0) {
            tags->Add(kAnswers, text);
        } else {
            ++extra;
            tags->Add(QString::number(extra) + kAnswers, text);
        }
    }
    if (extra > 0)
        tags->Add(QStringLiteral("tlx_answers_count"), QString::number(extra));
}

// The place the word cloud is drawn on, as fractions of the slide.
QRectF wordCloudPlace(RunContext& ctx, host::Slide* slide)
{
    const host::PageSetup page = ctx.oPres->GetPageSetup();
    QRectF points(0, 0, page.SlideWidth, page.SlideHeight);
    for (const char* name : {"tlx_answers_word_cloud", "tlx_answers_word_cloud-BAK"})
        if (host::Shape* s = ShapeNamed(slide, QString::fromLatin1(name))) {
            points = QRectF(s->Left(), s->Top(), s->Width(), s->Height());
            break;
        }
    return {points.left() / page.SlideWidth, points.top() / page.SlideHeight, points.width() / page.SlideWidth,
            points.height() / page.SlideHeight};
}

void showWordList(RunContext& ctx, host::Slide* slide, const QList<AnswerCount>& counts)
{
    QStringList words, numbers;
    for (const AnswerCount& c : counts) {
        words << c.answer;
        numbers << QString::number(c.count);
    }
    if (host::Shape* list = LiveAnswersShape(ctx)) {
        list->GetTextFrame()->SetText(words.join(QStringLiteral("\r\n")));
        RevealAnswerShape(ctx, kAnswers, 0);
    }
    if (host::Shape* count = ShapeNamed(slide, QStringLiteral("tlx_answers_count")); count && count->HasTextFrame()) {
        count->GetTextFrame()->SetText(numbers.join(QStringLiteral("\r\n")));
        RevealAnswerShape(ctx, QStringLiteral("tlx_answers_count"), 0);
    }
}

} // namespace

void ScoreSum(RunContext& ctx)
{
    ctx.aScores.redim(ctx.optionCount, 0.0);
    for (int k = 0; k <= ctx.votes.ubound(); ++k) {
        const QStringList fields = ctx.votes(k).split(u'|');
        for (int j = 0; j < fields.size() && j <= ctx.aScores.ubound(); ++j)
            if (tlxVal(fields[j]) != -1)
                ctx.aScores(j) += tlxVal(fields[j]);
    }
}

bool ReadAnswerRange(const QString& text, AnswerRange& range)
{
    static const QRegularExpression plainNumber(QStringLiteral("^\\s*[0-9]+(\\.[0-9]+)?\\s*$"));
    if (text.contains(u'<')) {
        range = {0, numberIn(text.mid(text.indexOf(u'<') + 1)) - 1e-9};
    } else if (text.contains(u'>')) {
        range = {numberIn(text.mid(text.indexOf(u'>') + 1)) + 1e-9, 999999};
    } else if (text.contains(u'-')) {
        const qsizetype at = text.indexOf(u'-');
        range = {numberIn(text.left(at)), numberIn(text.mid(at + 1))};
    } else if (text.contains(u'=')) {
        const double n = numberIn(text.mid(text.indexOf(u'=') + 1));
        range = {n, n};
    } else if (plainNumber.match(text).hasMatch() && numberIn(text) > 0) {
        range = {numberIn(text), numberIn(text)};
    } else {
        return false;
    }
    return true;
}

void Fraction_ResultsConversion(RunContext& ctx)
{
    Guarded(ctx, kModule, "Fraction_ResultsConversion", true, [&] {
        host::Shape* answers = ShapeNamed(SlideAt(ctx, ctx.currentSlide), kAnswers);
        if (!answers || !answers->HasTextFrame()) {
            stop(ctx, QStringLiteral("Answers box has been removed, please re-run setup"));
            return;
        }
        QList<AnswerRange> ranges;
        host::TextFrame* text = answers->GetTextFrame();
        for (int j = 1; j <= text->ParagraphCount(); ++j) {
            AnswerRange r;
            if (!ReadAnswerRange(text->Paragraph(j), r)) {
                stop(ctx, "Invalid answer option: " + text->Paragraph(j));
                return;
            }
            ranges << r;
        }
        for (int k = 0; k <= ctx.votes.ubound(); ++k) {
            QString& vote = ctx.votes(k);
            if (vote.isEmpty() || tlxVal(vote) == -1)
                continue;
            const double v = ConvertVoteToFormattedNumber(ctx, vote);
            QString choice = QStringLiteral("-1");
            for (int j = 0; j < ranges.size() && v >= 0; ++j)
                if (ranges[j].lower <= v && v <= ranges[j].upper) {
                    choice = QString::number(ctx.startFrom + j);
                    break;
                }
            vote = choice;
        }
    });
}

void QuickSortRows(QList<QStringList>& table, int keyColumn, int lastColumn, int first, int last)
{
    if (first >= last)
        return;
    const QString pivot = table[(first + last) / 2].value(keyColumn);
    int low = first, high = last;
    while (low <= high) {
        while (low < last && table[low].value(keyColumn) < pivot)
            ++low;
        while (high > first && table[high].value(keyColumn) > pivot)
            --high;
        if (low <= high) {
            for (int c = keyColumn; c <= lastColumn; ++c)
                if (c < table[low].size() && c < table[high].size())
                    std::swap(table[low][c], table[high][c]);
            ++low;
            --high;
        }
    }
    if (first < high)
        QuickSortRows(table, keyColumn, lastColumn, first, high);
    if (low < last)
        QuickSortRows(table, keyColumn, lastColumn, low, last);
}

void Numeric_ResultsDisplay(RunContext& ctx)
{
    const qint64 t0 = ctx.clock->perfCounter();
    Guarded(ctx, kModule, "Numeric_ResultsDisplay", true, [&] {
        if (ctx.NumberSigFigs > 0)
            ctx.NumberDecimalPlaces = 0;
        // Rows of (sort key, value, keypad): the key's text order is the numbers' order.
        QList<QStringList> rows;
        for (int k = 0; k <= ctx.votes.ubound(); ++k) {
            QString v = ctx.votes(k);
            v.remove(u'*');
            if (v.isEmpty() || tlxVal(v) < 0)
                continue;
            rows << QStringList{QString::number(tlxVal(v), 'f', 9).rightJustified(25, u'0'), v,
                                QString::number(k + 1)};
        }
        QuickSortRows(rows, 0, 2, 0, int(rows.size()) - 1);
        if (ctx.FreeNumDisplay_Order == 1)
            std::reverse(rows.begin(), rows.end());

        host::Shape* shape = LiveAnswersShape(ctx);
        if (!shape) {
            ctx.dialogs->MsgBox(
                QStringLiteral("Unable to find the results display, please use tallix slide editor to recreate the question"),
                MsgBoxStyle::OKOnly, QStringLiteral("tallix - Vote"));
            return;
        }
        host::Table* table = shape->HasTable() ? shape->GetTable() : nullptr;
        auto templateRow = [&]() {
            for (int r = 1; table && r <= table->RowCount(); ++r)
                for (int c = 1; c <= table->ColumnCount(); ++c)
                    if (table->Cell(r, c)->Text().contains(QLatin1String("^High^")))
                        return r;
            return 0;
        };
        const int first = templateRow();
        if (first == 0) {
            stop(ctx, QStringLiteral("The display settings can not be found, please run tallix SlideEditor"));
            return;
        }
        // The table keeps the box the slide gave it, however many rows it ends with.
        const double height = shape->Height();
        // Enough template rows for every value, each written from a copy of the first.
        int templates = 0;
        while (first + templates <= table->RowCount() &&
               table->Cell(first + templates, 1)->Text() == table->Cell(first, 1)->Text())
            ++templates;
        for (int extra = templates; extra < rows.size(); ++extra)
            table->AddRowCopy(first);
        for (int i = 0; i < rows.size(); ++i) {
            const int r = first + i;
            for (int c = 1; c <= table->ColumnCount(); ++c) {
                host::TextFrame* cell = table->Cell(r, c);
                const QString marker = cell->Text();
                if (marker.contains(QLatin1String("^High^"))) {
                    const double v = ConvertVoteToFormattedNumber(ctx, rows[i][1]);
                    cell->SetText(QString::number(v, 'f', std::max<int>(0, ctx.NumberDecimalPlaces)));
                } else if (marker.contains(QLatin1String("^Keypad "))) {
                    cell->SetText(ctx.FreeNumDisplay_ShowKP ? ParticipantName(ctx, rows[i][2].toInt()) : QString());
                }
            }
        }
        // No marker may remain: the template rows not needed go.
        for (int r = table->RowCount(); r >= first + int(rows.size()); --r)
            for (int c = 1; c <= table->ColumnCount(); ++c)
                if (table->Cell(r, c)->Text().contains(QLatin1String("^High^"))) {
                    table->DeleteRow(r);
                    break;
                }
        shape->SetHeight(height);
    });
    WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), QString(), "scalpad_votes",
                  "Numeric_ResultsDisplay");
}

QList<AnswerCount> CountDistinctAnswers(const QStringList& answers)
{
    QList<AnswerCount> out;
    for (const QString& a : answers) {
        auto hit = std::find_if(out.begin(), out.end(),
                                [&](const AnswerCount& c) { return c.answer.compare(a, Qt::CaseInsensitive) == 0; });
        if (hit != out.end())
            ++hit->count;
        else
            out.append({a, 1});
    }
    return out;
}

void JolttextVote_ResultsDisplay(RunContext& ctx)
{
    Guarded(ctx, kModule, "JolttextVote_ResultsDisplay", true, [&] {
        host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
        if (ctx.Joltdisplay == 0 && ctx.WLSListManagementMode == 2) {
            if (ctx.voteCancelled != 0)
                ctx.responseList = answersOf(ctx);
            storeAnswerTags(ctx, slide);
            if (ctx.voteCancelled == 1)
                if (host::Shape* shape = LiveAnswersShape(ctx)) {
                    shape->GetTextFrame()->SetText(ctx.responseList.join(QStringLiteral("\r\n")));
                    shape->Cut();
                    host::Shape* back = slide->GetShapes()->Paste();
                    back->SetName(kAnswers);
                    back->SetVisible(true);
                }
        }
        if (ctx.Joltdisplay != 1 && ctx.Joltdisplay != 2)
            return;
        const QList<AnswerCount> counts = CountDistinctAnswers(answersOf(ctx));
        if (ctx.Joltdisplay == 1) {
            showWordList(ctx, slide, counts);
            return;
        }
        QStringList words;
        QList<int> sizes;
        for (int i = 0; i < counts.size(); ++i) {
            words << counts[i].answer;
            sizes << counts[i].count;
            WriteDebugLog(ctx, 0, "aScores(" + QString::number(i) + ") = " + QString::number(counts[i].count),
                          kModule, "JolttextVote_ResultsDisplay");
        }
        DisplayWordCloud(ctx, words, sizes, wordCloudPlace(ctx, slide));
    });
}

} // namespace tallix
