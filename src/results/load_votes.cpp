#include "load_votes.h"

#include "foundation/clock.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

namespace tallix {

namespace {

QString savedVotesOf(RunContext& ctx, const QString& slideField)
{
    if (!ctx.oPres)
        Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
    host::Slides* slides = ctx.oPres->GetSlides();
    const double n = tlxVal(slideField);
    // Revotes pass an index, reshow passes a slide id; ids start far above any index a
    // deck reaches. The last slide is an index too, or its own revote could not load.
    host::Slide* slide = (n >= 1 && n <= slides->Count()) ? slides->Item(int(n)) : slides->FindBySlideID(long(n));
    return slide->GetTags()->Item("TLXVOTES");
}

QStringList splitLines(QString text)
{
    for (const char* end : {"\r\n", "\r", "\n"})
        while (text.endsWith(QLatin1String(end)))
            text.chop(qsizetype(qstrlen(end)));
    if (text.contains("\r\n"))
        return text.split("\r\n");
    if (text.contains('\n'))
        return text.split('\n');
    if (text.contains('\r'))
        return text.split('\r');
    return text.isEmpty() ? QStringList{} : QStringList{text};
}

QString unquoted(const QString& field)
{
    if (field.size() >= 2 && field.startsWith('"') && field.endsWith('"'))
        return field.mid(1, field.size() - 2);
    return field;
}

bool filteredRun(const RunContext& ctx)
{
    return ctx.arg1 == QLatin1String("TLXGROUP") || ctx.arg1 == QLatin1String("TLXRESHOW");
}

} // namespace

QString LastFinishedVoteList(const QString& saved)
{
    const QStringList lines = splitLines(saved);
    for (auto it = lines.crbegin(); it != lines.crend(); ++it) {
        if (*it == QLatin1String("99"))
            continue;   // a marker of older writers, never a vote
        const QString list = unquoted(it->split(u',').value(2));
        if (!list.isEmpty())
            return list;
    }
    return {};
}

bool LoadVotes(RunContext& ctx, const QString& reference, short item)
{
    const qint64 t0 = ctx.clock->perfCounter();
    ctx.votes.erase();
    ctx.votesBackup.erase();
    ctx.voteTimes.erase();

    const QStringList ref = reference.split(':');
    if (ref.size() < 2)
        return false;
    // A reshow names its slide by id; this program's identity is always "vote", so the
    // id is resolved below with the index.

    QStringList lines = splitLines(savedVotesOf(ctx, ref[0]));
    if (lines.isEmpty())
        return false;
    // "99" is a marker line of older writers, never a vote.
    while (!lines.isEmpty() && lines.last() == QLatin1String("99"))
        lines.removeLast();
    if (lines.isEmpty())
        return false;

    if (item >= 0) {
        const QString mark = "," + QString::number(item + 1) + "of";
        QStringList kept;
        for (const QString& line : lines)
            if (line.contains(mark, Qt::CaseInsensitive))
                kept << line;
        if (kept.isEmpty())
            return false;
        lines = kept;
        lines << QString();
    }

    QString line;
    for (auto it = lines.crbegin(); it != lines.crend() && line.isEmpty(); ++it)
        line = *it;
    if (line.isEmpty())
        return false;

    const QStringList fields = line.split(',');
    const QString voteList = unquoted(fields.value(2));
    const QStringList tokens = voteList.split(';');

    ctx.keypadUniverse = qint32(tokens.size() - 1);
    AllocArrays(ctx);

    const bool filtered = filteredRun(ctx) && ctx.groupFilter.size() > 1;
    const int top = std::min(ctx.votes.ubound(), int(tokens.size()) - 1);
    for (int i = 0; i <= top; ++i) {
        QString token = tokens[i];
        // A keypad outside the group is read as if it had not voted.
        if (filtered && i < ctx.groupFilter.ubound() && ctx.groupFilter(i) == 0)
            token = QStringLiteral("-");
        if (token == QLatin1String("-"))
            ctx.votes(i) = QStringLiteral("-1");
        else if (token == QLatin1String("X"))
            ctx.votes(i) = QStringLiteral("-2");
        else if (token == QLatin1String("A"))   // option 10 of the oldest writer
            ctx.votes(i) = QStringLiteral("10");
        else
            ctx.votes(i) = token;
    }
    ctx.voteReceived = true;
    WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), reference, "common_IO_LoadVotes",
                  "LoadVotes");
    return true;
}

} // namespace tallix
