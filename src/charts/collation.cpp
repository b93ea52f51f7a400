#include "collation.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/forms.h"
#include "vote/run_context.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace tallix {

namespace {

const char* const kModule = "Common_ChartDisplay";

// A failure inside the tally loops does not stop the tally: the statement is skipped
// and counting goes on. Only the first is reported, so that a thousand bad keypads do
// not raise a thousand reports; the rest are counted in the debug log.
class LoopFailures {
public:
    LoopFailures(RunContext& ctx, const char* procedure) : ctx_(ctx), procedure_(procedure) {}
    ~LoopFailures()
    {
        if (count_ > 1)
            WriteDebugLog(ctx_, 0, QStringLiteral("%1 further failures skipped").arg(count_ - 1), kModule,
                          procedure_);
    }
    void raised(long number, const QString& text) { add(std::make_exception_ptr(VbError(number, text))); }
    void add(const std::exception_ptr& e)
    {
        if (count_++ == 0)
            ReportFailure(ctx_, e, kModule, procedure_, ctx_.ShowErrors);
    }
    int count() const { return count_; }

private:
    RunContext& ctx_;
    QString procedure_;
    int count_ = 0;
};

const QString kOutOfRange = QStringLiteral("Subscript out of range");

double nextRandom(RunContext& ctx)
{
    return std::uniform_real_distribution<double>(0.0, 1.0)(ctx.rnd);
}

// Keypads send plain digits nearly always; reading those here keeps the loop free of
// the string copies the general reader makes. Anything else goes to the general reader.
bool plainInteger(const QString& s, int& out)
{
    const qsizetype n = s.size();
    if (n == 0 || n > 9)
        return false;
    const QChar* p = s.constData();
    qsizetype i = 0;
    const bool negative = p[0] == u'-';
    if (negative) {
        if (n == 1)
            return false;
        i = 1;
    }
    int v = 0;
    for (; i < n; ++i) {
        const char16_t c = p[i].unicode();
        if (c < u'0' || c > u'9')
            return false;
        v = v * 10 + int(c - u'0');
    }
    out = negative ? -v : v;
    return true;
}

bool isAbstainText(const QString& v)
{
    return v == QLatin1String("-2") || v == QLatin1String("0") || v == QLatin1String("X");
}

void addCounted(RunContext& ctx, LoopFailures& failures, double w)
{
    // A 16-bit count, as the charts read it.
    if (ctx.votersCounted == std::numeric_limits<short>::max())
        failures.raised(ErrNo::Overflow, QStringLiteral("Overflow"));
    else
        ++ctx.votersCounted;
    ctx.weightedVoteTotal += w;
}

void countVotes(RunContext& ctx, short filterAlreadySet)
{
    // A reshow brings the filter it built; every other caller starts with all keypads in.
    if (ctx.arg1 != QLatin1String("TLXRESHOW") && filterAlreadySet <= 0)
        ctx.groupFilter.redim(ctx.votes.ubound(), 1);
    ctx.votersCounted = 0;
    if (ctx.keypadUniverse <= 0)
        return;

    LoopFailures failures(ctx, "CollateVotes");
    const int participantsTop = ctx.participants.ubound();
    const int filterTop = ctx.groupFilter.ubound();
    const int votesTop = ctx.votes.ubound();
    const int countsTop = ctx.optionCounts.ubound();
    const short* filter = ctx.groupFilter.data();
    const QString* votes = ctx.votes.data();
    double* counts = ctx.optionCounts.data();
    const Participant* participants = ctx.participants.data();
    const int options = ctx.optionCount;

    for (qint32 i = std::max(ctx.firstKeypad - 1, 0); i <= ctx.keypadUniverse - 1; ++i) {
        if (i > filterTop)
            break;
        if (filter[i] != 1)
            continue;
        if (i > votesTop) {
            failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
            continue;
        }
        double w = 1.0;
        if (ctx.ParticipantWeighting && i < participantsTop && participants[i + 1].number > 0)
            w = participants[i + 1].weighting;

        const QString& text = votes[i];
        int whole = 0;
        const bool plain = plainInteger(text, whole);
        const double value = plain ? double(whole) : tlxVal(text);

        if (ctx.startFrom != 0) {
            if (value > 0 && value <= options) {
                // A fractional vote text lands on the nearest option.
                const int index = int(std::nearbyint(value - 1));
                if (index <= countsTop)
                    counts[index] += w;
                else
                    failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
                addCounted(ctx, failures, w);
            }
            if (ctx.allowAbstain && isAbstainText(text))
                ctx.abstainTotal += w;
        } else if (value >= 0 && value <= options) {
            // Option 0 exists here, so "0" is a vote and nothing is an abstain. A vote
            // equal to the option count lands in the spare top element, never drawn.
            int index = whole;
            bool converted = plain;
            if (!plain) {
                try {
                    index = CLng(text);
                    converted = true;
                } catch (const VbError&) {
                    failures.add(std::current_exception());
                }
            }
            if (converted) {
                if (index >= 0 && index <= countsTop)
                    counts[index] += w;
                else
                    failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
            }
            addCounted(ctx, failures, w);
        }
    }
}

// Invented totals for a chart shown before any vote: never a zero bar.
void sampleTotals(RunContext& ctx)
{
    ctx.votersCounted = 0;
    for (int i = 0; i <= ctx.optionCount - 1; ++i) {
        double c = std::trunc(nextRandom(ctx) * 25);
        if (c == 0)
            c = std::trunc(nextRandom(ctx) * 25);
        if (c == 0)
            c = 10;
        ctx.optionCounts(i) = c;
        ctx.votersCounted = short(ctx.votersCounted + c);
    }
    ctx.seriesVoterTotal = 25;
}

void setSeriesWeights(RunContext& ctx)
{
    VbArray<double>& weights = ctx.SeriesWeighting;
    if (weights.ubound() < 9)
        weights.redimPreserve(9, 0.0);
    if (ctx.UseWeighting == 0) {
        for (int i = 0; i <= 9; ++i)
            weights(i) = 1.0;
        // Ranked series: the first choice weighs most, one less per place.
        const double type = tlxVal(ctx.controllerVoteType);
        if (type == 5 || type == 1)
            for (int i = 0; i <= 9; ++i)
                weights(i) = ctx.Iterations - i;
    }
    bool anyPositive = false;
    for (double w : weights)
        anyPositive = anyPositive || w > 0;
    if (!anyPositive)
        for (double& w : weights)
            w = 1.0;
}

void sampleSeriesTotals(RunContext& ctx)
{
    for (int t = 0; t <= ctx.Iterations - 1; ++t) {
        for (int o = 0; o <= ctx.optionCount - 1; ++o) {
            double c = std::trunc(nextRandom(ctx) * 25);
            ctx.optionCounts(o) = c == 0 ? 10 : c;
            double s = std::trunc(nextRandom(ctx) * 50 / ctx.Iterations);
            ctx.seriesCounts(t, o) = s == 0 ? 10 : s;
        }
    }
    ctx.seriesVoterTotal = 25;
}

void countSeriesVotes(RunContext& ctx, short filterAlreadySet)
{
    if (filterAlreadySet == 0)
        ctx.groupFilter.redim(ctx.votes.ubound(), 1);

    LoopFailures failures(ctx, "CollateSeriesVotes");
    const int iterations = ctx.Iterations;
    const float from = ctx.startFrom;
    const float options = ctx.optionCount;
    const int countsTop = ctx.optionCounts.ubound();
    short* filter = ctx.groupFilter.data();
    const int filterTop = ctx.groupFilter.ubound();

    // Keypads and iterations beyond what the arrays hold cannot be read.
    const int rowsHeld = std::min(iterations, ctx.seriesVotes.ubound1() + 1);
    if (rowsHeld < iterations)
        failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
    const int keypadsHeld = std::min(ctx.keypadUniverse, ctx.seriesVotes.ubound2() + 1);

    // Step over the rows keypad-contiguously: the array is stored iteration by iteration.
    if (ctx.RequireAll && !ctx.groupFilter.empty()) {
        const int top = std::min({ctx.keypadUniverse, filterTop, ctx.seriesVotes.ubound2()});
        if (top < std::min(ctx.keypadUniverse, filterTop))
            failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
        for (int t = 0; t < rowsHeld; ++t) {
            const float* row = ctx.seriesVotes.row(t);
            for (int k = 0; k <= top; ++k)
                if (filter[k] == 1 && row[k] == -1.0f)
                    filter[k] = 0;
        }
    }

    const int keypads = std::min(keypadsHeld, filterTop + 1);
    if (keypads < ctx.keypadUniverse)
        failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);

    // Per-keypad weights, read once: a series counts whole people only (1.4 is 1, 0.4 is 0).
    std::vector<double> keypadWeight(std::size_t(std::max(keypads, 0)), 1.0);
    if (ctx.ParticipantWeighting) {
        const int participantsTop = ctx.participants.ubound();
        for (int k = 0; k < keypads; ++k) {
            if (k + 1 > participantsTop) {
                failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
                continue;
            }
            const double rounded = std::nearbyint(ctx.participants(k + 1).weighting);
            if (rounded < std::numeric_limits<short>::min() || rounded > std::numeric_limits<short>::max())
                failures.raised(ErrNo::Overflow, QStringLiteral("Overflow"));
            else
                keypadWeight[std::size_t(k)] = rounded;
        }
    }

    std::vector<char> answered(std::size_t(std::max(keypads, 0)), 0);
    double* totals = ctx.optionCounts.data();
    const int weightsTop = ctx.SeriesWeighting.ubound();
    for (int t = 0; t < rowsHeld; ++t) {
        const float* row = ctx.seriesVotes.row(t);
        double* perIteration = ctx.seriesCounts.row(t);
        // Weights exist for ten places only; a later selection weighs 1.
        const double iterationWeight = t <= weightsTop ? ctx.SeriesWeighting(t) : 1.0;
        for (int k = 0; k < keypads; ++k) {
            if (filter[k] != 1)
                continue;
            const float v = row[k];
            if (!(from <= v && v <= options))
                continue;
            answered[std::size_t(k)] = 1;
            const int index = int(std::nearbyint(v - from));
            if (index > countsTop) {
                failures.raised(ErrNo::SubscriptOutOfRange, kOutOfRange);
                continue;
            }
            const double add = keypadWeight[std::size_t(k)] * iterationWeight;
            totals[index] += add;
            perIteration[index] += add;
        }
    }
    for (char a : answered)
        ctx.seriesVoterTotal += a;
}

float secondsSince(RunContext& ctx, qint64 t0)
{
    return float(CounterSeconds(ctx, t0, ctx.clock->perfCounter()));
}

} // namespace

void CollateVotes(RunContext& ctx, short& filterAlreadySet, short& sample, short& keepCounts)
{
    const qint64 t0 = ctx.clock->perfCounter();
    Guarded(ctx, kModule, "CollateVotes", ctx.ShowErrors, [&] {
        // A free numeric vote has no option totals; its display builds its own.
        if (sample == 0 && ctx.FixedFree == 1 && ctx.FractionalJoltTEXT >= 1)
            return;
        if (keepCounts == 0) {
            ctx.optionCounts.redim(ctx.optionCount, 0.0);
            ctx.abstainTotal = 0;
        }
        if (ctx.optionCounts.ubound() != ctx.optionCount) {
            keepCounts = 0;
            ctx.optionCounts.redim(ctx.optionCount, 0.0);
        }
        if (sample < 1) {
            if (keepCounts == 0)
                countVotes(ctx, filterAlreadySet);
        } else if (keepCounts <= 0) {
            sampleTotals(ctx);
        }
    });
    WriteDebugLog(ctx, secondsSince(ctx, t0), "", kModule, "CollateVotes");
}

void CollateSeriesVotes(RunContext& ctx, short& filterAlreadySet, short& sample)
{
    const qint64 t0 = ctx.clock->perfCounter();
    Guarded(ctx, kModule, "CollateSeriesVotes", ctx.ShowErrors, [&] {
        ctx.optionCounts.redim(ctx.optionCount - 1, 0.0);
        ctx.seriesCounts.redim(ctx.Iterations - 1, ctx.optionCount - 1, 0.0);
        setSeriesWeights(ctx);
        if (sample != 0)
            sampleSeriesTotals(ctx);
        else
            countSeriesVotes(ctx, filterAlreadySet);
    });
    WriteDebugLog(ctx, secondsSince(ctx, t0), "", kModule, "CollateSeriesVotes");
}

float CollateRatingItem(RunContext& ctx, short itemIndex, short filterSet)
{
    return Guarded(ctx, kModule, "CollateRatingItem", ctx.ShowErrors, 0.0f, [&] {
        const int item = itemIndex - 1;
        if (item < 0)
            return 0.0f;
        if (ctx.ratingAverages.ubound() < item)
            ctx.ratingAverages.redimPreserve(item);
        const int marks = std::max<int>(ctx.optionCount + 1, ctx.ratingDistribution.ubound1() + 1);
        const int items = std::max<int>({ctx.NumberRankVotes, itemIndex, ctx.ratingDistribution.ubound2() + 1});
        if (marks - 1 != ctx.ratingDistribution.ubound1() || items - 1 != ctx.ratingDistribution.ubound2())
            ctx.ratingDistribution.redimPreserve(marks - 1, items - 1);
        // A revote of the item counts it afresh.
        for (int m = 0; m <= ctx.ratingDistribution.ubound1(); ++m)
            ctx.ratingDistribution(m, item) = 0;
        if (filterSet == 0)
            ctx.groupFilter.redim(ctx.votes.ubound(), 1);
        const double top = ctx.optionCount - (1 - ctx.startFrom);
        qint64 counted = 0;
        double sum = 0;
        for (int k = 0; k <= ctx.votes.ubound(); ++k) {
            if (k > ctx.groupFilter.ubound() || ctx.groupFilter(k) != 1)
                continue;
            const double mark = tlxVal(ctx.votes(k));
            if (ctx.votes(k).isEmpty() || mark < ctx.startFrom || mark > top)
                continue;
            ++counted;
            sum += mark;
            const int index = int(mark) - (ctx.startFrom != 0 ? 1 : 0);
            if (index >= 0 && index <= ctx.ratingDistribution.ubound1())
                ctx.ratingDistribution(index, item) += 1;
        }
        const float average = float(sum / double(counted == 0 ? 1 : counted));
        ctx.ratingAverages(item) = average;
        return average;
    });
}

QString GetPercentFormatString(RunContext& ctx)
{
    QString format = QStringLiteral("0");
    for (int i = 1; i <= ctx.PercentDP; ++i) {
        if (format.size() == 1)
            format += '.';
        format += '0';
    }
    return format + '%';
}

bool FormIsLoaded(RunContext& ctx, const QString& name1, const QString& name2, const QString& name3,
                  const QString& name4)
{
    if (!ctx.forms)
        return false;
    const QStringList loaded = ctx.forms->LoadedForms();
    for (auto it = loaded.crbegin(); it != loaded.crend(); ++it)
        for (const QString* n : {&name1, &name2, &name3, &name4})
            if (!n->isEmpty() && it->compare(*n, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

} // namespace tallix
