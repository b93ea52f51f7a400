#include "random_votes.h"

#include "controller/comms.h"
#include "foundation/clock.h"
#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

#include "foundation/text_files.h"

#include <QFile>
#include <QRegularExpression>

#include <cmath>

namespace tallix {

namespace {
double nextRandom(RunContext& ctx)
{
    return std::uniform_real_distribution<double>(0.0, 1.0)(ctx.rnd);
}
} // namespace

void rndGenerator(RunContext& ctx)
{
    Guarded(ctx, "Vote", "rndGenerator", false, [&] {
        ctx.rnd.seed(std::uint32_t(std::trunc(ctx.clock->secondsSinceMidnight())));
        ctx.randomFill = true;
        QString text;
        for (qint32 k = ctx.firstKeypad - 1; k <= ctx.keypadUniverse - 1; ++k) {
            if (k < 0 || k > ctx.votes.ubound())
                continue;
            const QString& v = ctx.votes(k);
            if (v.isEmpty() || tlxVal(v) == -1)
                text += "[" + QString::number(k + 1) + ";" + RandomValue(ctx, nextRandom(ctx)) + "],";
        }
        if (ctx.comms)
            ctx.comms->setTxt_data(text + "\r\n");
        ctx.voteEnded = 1;
    });
}

QString RandomValue(RunContext& ctx, double r)
{
    if (ctx.controllerVoteType != "99" && ctx.FixedFree != 1) {
        if (r < 1)
            r = std::nearbyint(r * (ctx.optionCount + ctx.startFrom - 1));
        // With options numbered from 1 a draw of 0 gives the top option.
        if (r < 1 && ctx.startFrom == 1)
            r = ctx.optionCount;
        return QString::number(qint64(r));
    }
    if (ctx.FractionalJoltTEXT != 1) {
        double n = std::trunc(nextRandom(ctx) * std::pow(10.0, ctx.Limits) - 1);
        n = std::round(n * 100.0) / 100.0;
        if (ctx.controllerVoteType == "99")
            n = std::nearbyint(n);
        return QString::number(n, 'g', 15);
    }
    LoadRandomTexts(ctx);
    int index = int(r);
    if (r < 1)
        index = int(std::trunc(r * ctx.rndTextList.size()));
    if (index > ctx.rndTextList.size() - 1)
        index = ctx.rndTextList.size() - 1;
    return ctx.rndTextList.value(index);
}

void LoadRandomTexts(RunContext& ctx)
{
    if (ctx.rndTextsLoaded)
        return;
    ctx.rndTextsLoaded = true;
    QFile f(JoinPath(ctx.env.perUserBase(), "\\tallix\\rndTextVotes.txt"));
    if (f.open(QIODevice::ReadOnly)) {
        // One answer a line, ended by CR LF or LF; the last line's break adds no answer, and an
        // empty file is one empty answer.
        ctx.rndTextList = DecodeUserText(f.readAll()).split(QRegularExpression("\r?\n"));
        if (ctx.rndTextList.size() > 1 && ctx.rndTextList.last().isEmpty())
            ctx.rndTextList.removeLast();
    }
    if (ctx.rndTextList.isEmpty()) {
        for (int i = 1; i <= 10; ++i)
            ctx.rndTextList << QStringLiteral("Text %1").arg(i);
    }
}

} // namespace tallix
