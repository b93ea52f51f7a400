#include "vote_setup.h"

#include "foundation/logs.h"
#include "vote/run_context.h"

#include <QFile>

namespace tallix::bench {

QString BurstText(int keypads)
{
    QString text;
    text.reserve(keypads * 10 + 2);
    for (int k = 1; k <= keypads; ++k)
        text += QStringLiteral("[%1;%2],").arg(k).arg((k * 7) % kOptions);
    text += QStringLiteral("\r\n");
    return text;
}

BigVote::BigVote(int keypads)
{
    ctx.comms = &comms;
    ctx.terminator = [](int code) { throw ProcessExit{code}; };
    ctx.keypadUniverse = keypads;
    ctx.maxKeypads = keypads;
    ctx.optionCount = kOptions;
    ctx.startFrom = 0; // 12 options from 0: a plain base takes them without Scalepads
    ctx.controllerVoteType = "9";
    ResetVoteArrays(ctx);
    AllocArrays(ctx);
    ctx.participants.redim(keypads);
    ctx.groupFilter.redim(0);
    ctx.optionCounts.redim(kOptions);
    ctx.seriesCounts.redim(kSeriesIterations, kOptions);
}

void BigVote::FillVotes()
{
    for (int i = 0; i < ctx.keypadUniverse; ++i)
        ctx.votes(i) = QString::number(((i + 1) * 7) % kOptions);
    ctx.votesCast = ctx.keypadUniverse;
}

void BigVote::FillSeriesVotes()
{
    ctx.vType = 2;
    ctx.Iterations = kSeriesIterations;
    ctx.seriesVotes.redim(kSeriesIterations, ctx.keypadUniverse, -1.0f);
    for (int it = 0; it < kSeriesIterations; ++it)
        for (int i = 0; i < ctx.keypadUniverse; ++i)
            ctx.seriesVotes(it, i) = float((i * 7 + it) % kOptions);
}

bool BigVote::LogSaysNotBuilt(const QString& procedure) const
{
    QFile f(DebugLogPath(run.ctx));
    return f.open(QIODevice::ReadOnly) &&
           QString::fromUtf8(f.readAll()).contains("[" + procedure + "] | not built yet");
}

} // namespace tallix::bench
