#include "save_votes.h"

#include "foundation/clock.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "vote/run_context.h"

#include <QLocale>

#include <cmath>

namespace tallix {

namespace {

const char* const kModule = "Common_IO";
const QString kLiveDataTag = QStringLiteral("TLXLIVEDATAISVISIBLE");
const QString kLiveDataText = QStringLiteral("This slide has live data visible");

host::Slide* questionSlide(RunContext& ctx)
{
    if (!ctx.oPres)
        Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
    return ctx.oPres->GetSlides()->Item(ctx.currentSlide);
}

// Date and time as the user reads them. The reader never parses them, but a comma
// would shift every later field of the line.
QString stampFields(RunContext& ctx)
{
    const QDateTime now = ctx.clock->now();
    QString date = QLocale::system().toString(now.date(), QLocale::ShortFormat);
    QString time = now.time().toString(QStringLiteral("hh:mm:ss"));
    return date.remove(',') + "," + time.remove(',') + ",";
}

bool hasVote(const QString& v)
{
    return !v.isEmpty() && v != QLatin1String("-1") && v != QLatin1String("-2");
}

// Rounded to milliseconds; the text always carries "." whatever the machine's decimal.
QString timeToken(float seconds)
{
    const double rounded = std::nearbyint(double(seconds) * 1000.0) / 1000.0;
    return QString::number(rounded, 'g', 15);
}

// A series answer as the runtime writes a Single: up to seven significant digits.
QString seriesToken(float v)
{
    if (v == -2.0f)
        return QStringLiteral("X");
    if (v == -1.0f)
        return QStringLiteral("-");
    return QString::number(double(v), 'g', 7);
}

void markLiveData(host::Slide* slide)
{
    // Only a marker for the chart export; a failure here must not lose the saved line.
    try {
        slide->GetTags()->Add(kLiveDataTag, kLiveDataText);
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
    }
}

float secondsSince(RunContext& ctx, qint64 t0)
{
    return float(CounterSeconds(ctx, t0, ctx.clock->perfCounter()));
}

void commit(RunContext& ctx)
{
    if (ctx.CommitPresentation)
        ctx.CommitPresentation();
}

} // namespace

QString SavedVoteToken(const QString& vote)
{
    if (vote == QLatin1String("-2"))
        return QStringLiteral("X");
    if (vote.isEmpty() || vote == QLatin1String("-1"))
        return QStringLiteral("-");
    return vote;
}

// Failures go to the caller's report: the end routines decide what a lost save means.
void SaveVotes(RunContext& ctx, short item)
{
    const qint64 t0 = ctx.clock->perfCounter();
    host::Slide* slide = questionSlide(ctx);

    const int tokens = ctx.votes.ubound();   // the top element is never saved
    QString list;
    QString names;
    list.reserve(tokens * 3);
    for (int i = 0; i < tokens; ++i) {
        const QString& v = ctx.votes(i);
        list += SavedVoteToken(v);
        list += ';';
        if (ctx.WLSUseResponsesAsNames && hasVote(v))
            names += QString::number(i + 1) + "^^" + v.section('|', -1) + "|";
    }
    if (!names.isEmpty()) {
        host::Tags* pres = ctx.oPres->GetTags();
        pres->Delete("Participant Names");
        pres->Add("Participant Names", names);
    }
    // "," separates the line's fields: a comma inside an answer is dropped.
    list.remove(',');

    const QString stamp = stampFields(ctx);
    QString line = stamp + list;
    if (ctx.GraphType == 7)
        line += "," + QString::number(item + 1) + "of" + QString::number(ctx.NumberRankVotes);
    line += "\r\n";

    WriteDebugLog(ctx, secondsSince(ctx, t0), QString(line).replace("\r\n", " [vbCrLf] "), kModule, "SaveVotes");
    WriteVoteDataLog(ctx, "VOTES SAVED TO SLIDE", QString(line).remove("\r\n"));

    // An append, not a rewrite: another process's line saved meanwhile must survive.
    slide->GetTags()->Append("TLXVOTES", line);
    markLiveData(slide);

    QString times = stamp;
    const int timeTokens = ctx.voteTimes.ubound();
    for (int i = 0; i < timeTokens; ++i)
        times += timeToken(ctx.voteTimes(i)) + ';';
    slide->GetTags()->Append("TLXProcessTime", times + "\r\n");

    commit(ctx);
}

void saveSeriesVotes(RunContext& ctx)
{
    const qint64 t0 = ctx.clock->perfCounter();
    host::Slide* slide = questionSlide(ctx);
    const QString stamp = stampFields(ctx);
    QString lines;
    for (int t = 0; t < ctx.Iterations; ++t) {
        QString line = stamp;
        for (int k = 0; k < ctx.keypadUniverse; ++k)
            line += seriesToken(ctx.seriesVotes(t, k)) + ';';
        line += "," + QString::number(t + 1) + "of" + QString::number(ctx.Iterations) + "\r\n";
        WriteVoteDataLog(ctx, "VOTES SAVED TO SLIDE", QString(line).remove("\r\n"));
        lines += line;
    }
    WriteDebugLog(ctx, secondsSince(ctx, t0), QString(lines).replace("\r\n", " [vbCrLf] "), kModule,
                  "saveSeriesVotes");
    if (!lines.isEmpty())
        slide->GetTags()->Append("TLXVOTES", lines);
    markLiveData(slide);
    commit(ctx);
}

} // namespace tallix
