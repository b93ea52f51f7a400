#include "vote_simulator.h"

#include "text_answers.h"

#include "foundation/clock.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <map>

namespace tallix {

int RandomInRange(std::mt19937& rng, int lo, int hi)
{
    if (hi <= lo)
        return lo;
    const quint64 span = quint64(qint64(hi) - qint64(lo) + 1);
    return int(qint64(lo) + qint64(quint64(rng()) % span));
}

namespace {

// Beyond this a typed number no longer fits a double exactly.
constexpr int kMostDigits = 15;

bool isSingleValueType(const QString& t)
{
    return t == "9" || t == "7" || t == "11" || t == "12" || t == "99";
}

// k distinct option numbers in lo..hi, in random order.
QList<int> distinctOptions(std::mt19937& rng, int lo, int hi, int k)
{
    QList<int> pool;
    for (int v = lo; v <= hi; ++v)
        pool.append(v);
    k = std::clamp(k, 0, int(pool.size()));
    for (int i = 0; i < k; ++i)
        std::swap(pool[i], pool[RandomInRange(rng, i, int(pool.size()) - 1)]);
    return pool.mid(0, k);
}

int selectionCount(const VoteSetup& s, std::mt19937& rng, int available)
{
    const int most = std::clamp(s.limits, 1, std::max(1, available));
    return RandomInRange(rng, 1, most);
}

void shuffle(std::mt19937& rng, QList<int>& list)
{
    for (int i = 0; i + 1 < list.size(); ++i)
        std::swap(list[i], list[RandomInRange(rng, i, int(list.size()) - 1)]);
}

// Digits a keypad types: the length drawn first, so that short and long numbers
// both turn up; no leading zero except for a lone "0" when allowed.
QString typedDigits(std::mt19937& rng, int most, bool zero)
{
    const int n = RandomInRange(rng, 1, most);
    QString out = QString::number(RandomInRange(rng, n == 1 && zero ? 0 : 1, 9));
    for (int i = 1; i < n; ++i)
        out += QChar(u'0' + RandomInRange(rng, 0, 9));
    return out;
}

// Most of a room types positive numbers; one in twenty a negative one.
QString typedNumber(const VoteSetup& s, std::mt19937& rng, bool decimals)
{
    const int digits = std::clamp(s.limits, 1, kMostDigits);
    QString out = typedDigits(rng, digits, decimals);
    if (decimals)
        out += QString(".%1").arg(RandomInRange(rng, 0, 99), 2, 10, QChar(u'0'));
    if (RandomInRange(rng, 0, 19) == 0 && out != "0.00")
        out.prepend(u'-');
    return out;
}

} // namespace

namespace {
// Number entry without a numbered list: any number is a vote, whatever the options.
bool isFreeNumber(const VoteSetup& s)
{
    return s.voteType == "11" || (s.voteType == "99" && s.cppOptions && !s.numberedList);
}
} // namespace

QString SimulationBlocker(const VoteSetup& s)
{
    if (s.voteType == "7" || isFreeNumber(s))
        return {};
    if (s.options < 1)
        return "no options announced";
    if (s.top() < s.startFrom)
        return "the announced options leave no valid value";
    return {};
}

QString SimulatedValue(const VoteSetup& s, std::mt19937& rng, const QStringList& texts)
{
    const QString& t = s.voteType;
    const int lo = s.startFrom;
    const int hi = s.top();

    if (t == "7") {
        const QStringList& pool = texts.isEmpty() ? BuiltInTextAnswers() : texts;
        return pool[RandomInRange(rng, 0, int(pool.size()) - 1)];
    }

    // One keypad in twenty abstains when the vote allows it.
    if (s.abstain && isSingleValueType(t) && RandomInRange(rng, 0, 19) == 0)
        return "X";

    // Typed numbers: the options announced do not bound them, Limits counts the digits.
    if (isFreeNumber(s))
        return typedNumber(s, rng, t == "99");

    // Told 99 without CPPOptions or 12: several selections, read one character each
    // (highest option below 10) or closed by "*".
    if ((t == "99" && !s.cppOptions && s.limits > 1) || t == "12") {
        const QList<int> picks = distinctOptions(rng, lo, hi, selectionCount(s, rng, hi - lo + 1));
        QString out;
        const bool digits = t == "99" && hi < 10 && lo >= 0;
        for (int v : picks)
            out += digits ? QString::number(v) : QString::number(v) + "*";
        return out;
    }
    if (t == "3") {
        // A row of flags, field i for option startFrom + i.
        const QList<int> picks = distinctOptions(rng, 0, s.options - 1, selectionCount(s, rng, s.options));
        QStringList flags;
        for (int i = 0; i < s.options; ++i)
            flags.append(picks.contains(i) ? "1" : "0");
        return flags.join('|');
    }
    if (t == "5" || t == "1") {
        QStringList fields;
        for (int v : distinctOptions(rng, lo, hi, selectionCount(s, rng, hi - lo + 1)))
            fields.append(QString::number(v));
        return fields.join('|');
    }
    if (t == "6") {
        const int items = std::max(1, s.limits);
        QStringList fields;
        for (int i = 0; i < items; ++i)
            fields.append(QString::number(RandomInRange(rng, lo, hi)));
        // A lone last field does not count as a rating, so one item gets a closing "|".
        return items == 1 ? fields.front() + "|" : fields.join('|');
    }
    return QString::number(RandomInRange(rng, lo, hi));
}

bool ParseSimulateArg(const QString& text, SimulatedRoom& out, QString& error)
{
    const QStringList parts = text.split(':');
    if (parts.size() > 2) {
        error = QString("--simulate \"%1\": expected N or N:RATE").arg(text);
        return false;
    }
    bool ok = false;
    const int n = parts[0].toInt(&ok);
    if (!ok || n < 0 || n > 1'000'000) {
        error = QString("--simulate \"%1\": N must be a whole number from 0 to 1000000").arg(text);
        return false;
    }
    double rate = 10;
    if (parts.size() == 2) {
        rate = parts[1].toDouble(&ok);
        if (!ok || !std::isfinite(rate) || rate <= 0 || rate > 1e6) {
            error = QString("--simulate \"%1\": RATE must be a number of records a second above 0").arg(text);
            return false;
        }
    }
    out.voters = n;
    out.rate = rate;
    return true;
}

VoteSimulator::VoteSimulator(Clock& clock, std::mt19937& rng, SimulatedRoom room, Sink sink)
    : clock_(clock), rng_(rng), room_(room), sink_(std::move(sink)), timer_(clock.createTimer())
{
    timer_->setInterval(kTickMs);
    timer_->onTick([this] { tick(); });
}

VoteSimulator::~VoteSimulator() = default;

void VoteSimulator::start(const VoteSetup& setup, const QList<int>& keypads, std::function<int(int)> baseOf)
{
    setup_ = setup;
    baseOf_ = std::move(baseOf);
    voters_ = keypads;
    const int n = std::min<int>(room_.voters, int(voters_.size()));
    for (int i = 0; i < n; ++i)
        std::swap(voters_[i], voters_[RandomInRange(rng_, i, int(voters_.size()) - 1)]);
    voters_ = voters_.mid(0, n);

    // Everyone answers once before anyone answers again, as a room does.
    schedule_ = voters_;
    answered_.clear();
    if (setup_.voteType == "7" && room_.multi > 1) {
        QList<int> more;
        for (int i = 0; i < n; ++i)
            more.append(RandomInRange(rng_, 1, room_.multi) - 1);
        for (bool any = true; any;) {
            any = false;
            QList<int> round;
            for (int i = 0; i < n; ++i)
                if (more[i] > 0) {
                    --more[i];
                    round.append(voters_[i]);
                    any = true;
                }
            shuffle(rng_, round);
            schedule_ += round;
        }
    }
    ticks_ = 0;
    next_ = 0;
    running_ = true;
    paused_ = false;
    timer_->setEnabled(n > 0);
}

QString VoteSimulator::valueFor(int keypad)
{
    QString v = SimulatedValue(setup_, rng_, room_.texts);
    if (setup_.voteType != "7" || room_.multi < 2)
        return v;
    // Someone who answers again says something new, while the list has anything left.
    QStringList& given = answered_[keypad];
    for (int tries = 0; tries < 8 && given.contains(v); ++tries)
        v = SimulatedValue(setup_, rng_, room_.texts);
    given.append(v);
    return v;
}

void VoteSimulator::stop()
{
    running_ = false;
    timer_->setEnabled(false);
}

void VoteSimulator::setPaused(bool paused)
{
    paused_ = paused;
    timer_->setEnabled(running_ && !paused_ && next_ < schedule_.size());
}

void VoteSimulator::tick()
{
    ++ticks_;
    const double due = room_.rate * double(ticks_ * kTickMs) / 1000.0;
    const int until = std::min<int>(int(schedule_.size()), int(std::floor(due + 1e-9)));
    if (until <= next_)
        return;

    // A rating record is read as one keypad per text, so each travels alone.
    const bool alone = setup_.voteType == "6";
    std::map<int, QString> lines; // by base, so each base's records form one line
    QSet<int> inBurst;
    for (; next_ < until; ++next_) {
        const int k = schedule_[next_];
        // A keypad's answers are separate presses: never two in one burst.
        if (inBurst.contains(k))
            break;
        inBurst.insert(k);
        const QString record = "[" + QString::number(k) + ";" + valueFor(k) + "],";
        if (alone)
            sink_(record + "\r\n");
        else
            lines[baseOf_ ? baseOf_(k) : 0] += record;
    }
    if (!lines.empty()) {
        QString text;
        for (const auto& [base, line] : lines)
            text += line + "\r\n";
        sink_(text);
    }
    if (next_ >= schedule_.size())
        timer_->setEnabled(false);
}

} // namespace tallix
