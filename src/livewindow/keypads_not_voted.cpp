#include "keypads_not_voted.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/numbers.h"
#include "results/common_io.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

#include <algorithm>
#include <vector>

namespace tallix {

namespace {
const char* kModule = "keypadsNotVoted";
const QString kNotVoted = QStringLiteral("-1");
} // namespace

void RefreshKeypadsNotVoted(RunContext& ctx, bool force)
{
    Guarded(ctx, kModule, "RefreshKeypadsNotVoted", false, [&] {
        if (!force && ctx.activeKeypads.size() == 1 && ctx.notVotedCount == ctx.notVotedPopupAt)
            return;
        if (ctx.voteEnded == 1)
            return;
        ctx.notVotedCount = 0;
        // With no active list every keypad of the range counts as responded. A keypad is
        // on the list when an entry reads as its number exactly; flags by number spare a
        // text search per keypad, which a list of thousands made quadratic.
        const QStringList& active = ctx.activeKeypads;
        const bool noList = active.isEmpty() || (active.size() == 1 && active[0].isEmpty());
        const std::vector<bool> onList = ActiveKeypadFlags(active, ctx.keypadUniverse);
        QStringList responded;
        responded.reserve(std::clamp(ctx.keypadUniverse - std::max(ctx.firstKeypad - 1, 0), 0, ctx.votes.ubound() + 1));
        for (qint32 i = ctx.firstKeypad - 1; i <= ctx.keypadUniverse - 1 && i < ctx.votes.ubound(); ++i) {
            if (i < 0)
                continue;
            const bool inList = size_t(i + 1) < onList.size() && onList[size_t(i + 1)];
            if (inList && ctx.votes(i) == kNotVoted)
                ++ctx.notVotedCount;
            else if (noList || inList)
                responded.append(NumberText(i + 1));
            if (ctx.notVotedCount > ctx.votes.ubound() - ctx.votesCast)
                break;
        }
        const bool anyResponded = !responded.isEmpty();
        ctx.respondedKeypads = anyResponded ? std::move(responded) : QStringList{QString()};
        if (ctx.autoEndByPercent == 1 && anyResponded) {
            const double n = ctx.respondedKeypads.size();
            const double a = ctx.activeKeypads.size();
            if (double(ctx.autoEndPercent) / 100.0 * a <= n || n >= ctx.keypadUniverse) {
                ctx.voteEnded = 1;
                const bool single = ctx.vType == 0 || ctx.vType == 1 || ctx.vType == 3 || ctx.vType == 4;
                if (single && !ctx.randomFill)
                    closeVote(ctx);
            }
            return;
        }
        if (!force && ctx.notVotedCount != 0 && ctx.notVotedCount <= ctx.notVotedPopupAt) {
            if (ctx.forms && !ctx.forms->IsLoaded(FormName::keypadsNotVoted) && !ctx.notVotedShown) {
                ctx.notVotedShown = true;
                ctx.forms->Load(FormName::keypadsNotVoted);
                if (ctx.vCast && ctx.vCast->IsVisible())
                    ctx.vCast->BringToFront();
            }
            return;
        }
        // A burst of votes is still coming in: look again a little later.
        if (!ctx.notVotedShown && ctx.vCast)
            ctx.vCast->StartKeypadsNotVotedCheck();
    });
}

namespace {

// One entry of the list: the base's own number with the base where offsets are used.
QString entryFor(RunContext& ctx, qint32 keypad)
{
    const qint32 row = keypad - 1;
    if (ctx.useOffsets && row >= 0 && row <= ctx.keypadRows.ubound()) {
        const QStringList f = ctx.keypadRows(row).split(',');
        const qint32 baseIndex = f.size() > 2 ? qint32(tlxVal(f[2])) : 0;
        if (baseIndex > 0)
            return f[0] + "(" + QString::number(baseIndex + 1) + ")" + " ";
    }
    return QString::number(keypad) + " ";
}

bool notVoted(RunContext& ctx, qint32 keypad)
{
    return keypad > 0 && keypad - 1 <= ctx.votes.ubound() && ctx.votes(keypad - 1) == "-1";
}

} // namespace

QString showNotVoted(RunContext& ctx, NotVotedListState& state, bool& ended)
{
    ended = false;
    return Guarded(ctx, kModule, "showNotVoted", false, QString(), [&]() -> QString {
        if (ctx.keypadRows.ubound() < 0 && ctx.keypadUniverse > 0) {
            ctx.keypadRows.redim(ctx.keypadUniverse - 1);
            for (qint32 k = 1; k <= ctx.keypadUniverse; ++k)
                ctx.keypadRows(k - 1) = QString::number(k) + ",0,0";
        }
        if (state.lastRedraw >= 0) {
            for (;;) {
                const double t = ctx.clock->secondsSinceMidnight() - state.lastRedraw;
                if (t < 0 || t >= 1)
                    break;
                ctx.pump->WaitForEvents(50);
            }
        }
        state.lastRedraw = ctx.clock->secondsSinceMidnight();
        if (ctx.autoEndByPercent == 1 &&
            double(ctx.autoEndPercent) / 100.0 * ctx.activeKeypads.size() <= ctx.votesCast) {
            ctx.voteEnded = 1;
            ended = true;
            if (ctx.vType != 2 && ctx.vCast)
                closeVote(ctx);
            return {};
        }
        QString text;
        int count = 0;
        const qsizetype n = ctx.activeKeypads.size();
        auto add = [&](qsizetype index) {
            const qint32 keypad = qint32(tlxVal(ctx.activeKeypads[index]));
            if (notVoted(ctx, keypad)) {
                text += entryFor(ctx, keypad);
                ++count;
            }
        };
        if (!ctx.scrollingDisplay) {
            for (qsizetype i = 0; i < n && count < ctx.notVotedShowCount; ++i)
                add(i);
            return text;
        }
        if (state.listStart > n - 1)
            state.listStart = 0;
        state.autoSize = state.listStart == 0 || state.listStart % 5 == 0;
        qsizetype start = state.listStart;
        while (start < n && !notVoted(ctx, qint32(tlxVal(ctx.activeKeypads[start]))))
            ++start;
        if (start >= n)
            start = 0;
        for (qsizetype step = 0; step < n; ++step) {
            if (text.size() >= 64 || count >= ctx.notVotedShowCount)
                break;
            add((start + step) % n);
        }
        state.listStart = qint32(start) + 1;
        return text;
    });
}

} // namespace tallix
