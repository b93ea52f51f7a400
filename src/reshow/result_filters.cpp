#include "result_filters.h"

#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/numbers.h"
#include "foundation/vb_error.h"
#include "results/load_votes.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

namespace tallix {

namespace {
const char* kModule = "Common_Reshow";
} // namespace

void getVoteSlideAndFilter(RunContext& ctx, const QString& part, long slideID, QString& answerNumber)
{
    answerNumber.clear();
    const QStringList pieces = part.split(u':');
    if (pieces.size() != 2)
        return;
    int slideNumber = 65535;
    IgnoringErrors([&] { slideNumber = ctx.oPres->GetSlides()->FindBySlideID(slideID)->SlideIndex(); });
    const QString label = pieces[1].trimmed();
    QStringList lines;
    for (const QString& line : ctx.questionReferences.split(u'\n'))
        if (line.contains(u'^' + label + u'^', Qt::CaseInsensitive) &&
            line.contains(pieces[0] + u'|', Qt::CaseInsensitive))
            lines << line;
    if (lines.size() != 1)
        return;
    const QString qid = lines[0].split(u'|').value(1);
    QStringList found;
    for (const QString& s : ctx.slideList)
        if (s.contains(u'|' + qid + u'|'))
            found << s;
    if (found.size() != 1 && slideNumber != 65535) {
        found.clear();
        for (const QString& s : ctx.slideList)
            if (s.contains(QString::number(short(slideID)) + u'|'))
                found << s;
    }
    if (found.size() != 1)
        return;
    const QStringList labels = found[0].split(u'|').value(2).split(u'^');
    for (int i = 1; i < labels.size(); ++i)
        if (!labels[i].trimmed().isEmpty() && labels[i].trimmed().toUpper() == label.toUpper()) {
            answerNumber = QString::number(i);
            return;
        }
}

void makeFilter(RunContext& ctx, const QString& slideIdentity, const QString& answerNumber, bool first)
{
    if (first)
        ctx.filterStarted = false;
    host::Slide* slide = nullptr;
    try {
        slide = ctx.oPres->GetSlides()->FindBySlideID(long(tlxVal(slideIdentity)));
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
        return;   // a question deleted since: its part changes nothing
    }
    const QString list = LastFinishedVoteList(slide->GetTags()->Item(QStringLiteral("TLXVOTES")));
    if (list.isEmpty()) {
        ctx.dialogs->MsgBox("Could not find results for groups slide " + QString::number(slide->SlideIndex()), 0,
                            "tallix");
        FullShutDown(ctx);
        return;
    }
    const QStringList entries = list.split(u';');
    const bool any = ctx.rshFilterType == 1;
    for (int i = 0; i < entries.size() && i <= ctx.groupFilter.ubound(); ++i) {
        const bool same = entries[i] == answerNumber;
        short& flag = ctx.groupFilter(i);
        if (any) {
            // Either part lets a keypad in: the first part decides alone, later ones add.
            if (same)
                flag = 1;
            else if (!ctx.filterStarted)
                flag = 0;
        } else if (!same) {
            flag = 0;   // every part must hold
        }
    }
    // Keypads past the saved entries stay as they were.
    ctx.filterStarted = true;
}

void createFilter(RunContext& ctx, const QString& filterText)
{
    Guarded(ctx, kModule, "createFilter", true, [&] {
        if (ctx.keypadUniverse < 1)
            return;
        ctx.groupFilter.redim(ctx.keypadUniverse - 1, 1);
        QString text = filterText;
        if (text.isEmpty() || text == QLatin1String(":"))
            return;
        if (!text.contains(u'^'))
            text = u'^' + text + u'^';
        const QStringList parts = text.split(u'^');
        bool first = true;
        for (int i = 1; i < parts.size() - 1; ++i) {
            if (parts[i].isEmpty())
                continue;
            // The identity leads the part; a part written without the blank after ":" reads alike.
            const qsizetype at = parts[i].indexOf(QLatin1String(": "));
            const QString identity = at >= 0 ? parts[i].left(at + 2) : parts[i];
            QString answer;
            getVoteSlideAndFilter(ctx, parts[i], long(tlxVal(identity)), answer);
            makeFilter(ctx, QString::number(long(tlxVal(identity))), answer, first);
            first = false;   // only the filter's first part starts it afresh
        }
    });
}

} // namespace tallix
