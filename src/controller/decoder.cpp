// The vote stream decoder: keypad records arriving as text become votes.

#include "comms.h"

#include "controller/live_text.h"
#include "controller/scalepad_votes.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "vote/forms.h"
#include "vote/participants.h"
#include "vote/random_votes.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/votes_cast_boxes.h"

#include <cmath>

namespace tallix {

namespace {

const QString kNone = QStringLiteral("-1");

enum class Path { Rating, List, Single, Unknown };

Path pathFor(const QString& voteType)
{
    if (voteType == "6")
        return Path::Rating;
    if (voteType == "3" || voteType == "5" || voteType == "1")
        return Path::List;
    if (voteType == "9" || voteType == "7" || voteType == "11" || voteType == "12" || voteType == "99")
        return Path::Single;
    return Path::Unknown;
}

// Selections under the multi-select style are rewritten as a "|" list: "1*2*" or "12".
QString asSelectionList(const QString& record)
{
    const qsizetype semi = record.indexOf(';');
    const QString head = record.left(semi + 1);
    const QString value = record.mid(semi + 1);
    QString list;
    if (!value.contains('*')) {
        for (QChar c : value)
            list += QString(c) + "|";
    } else {
        list = QString(value).replace('*', '|');
    }
    return head + list;
}

class Decoder {
public:
    explicit Decoder(RunContext& ctx) : ctx_(ctx), comms_(*ctx.comms) {}

    void run(const QString& message);

private:
    void ratingRecord(const QString& record);
    void listRecord(const QString& record);
    // False when the rest of the line is to be dropped.
    bool singleRecord(const QString& record);
    void countRecord() { comms_.bumpVoteCounter(); }

    RunContext& ctx_;
    Comms& comms_;
    QStringList lines_;
    QString seenExclusive_;   // kept for the whole message, across keypads
    bool pauseRequested_ = false;
    // The records of one message arrived together: one reading of the clock serves them
    // all, and spares a local-time lookup per keypad in a burst.
    float passTime_ = 0;
};

void Decoder::run(const QString& message)
{
    QString text = message;
    text.remove('[');
    lines_ = text.split("\r\n");
    bool holdsVotes = false;
    // A line's leading number ends at its first ';' at the latest, so only the text
    // before it is read: a burst's one line is long.
    for (const QString& line : lines_)
        if (const qsizetype semi = line.indexOf(';'); semi >= 0 && tlxVal(line.left(semi)) > 0) {
            holdsVotes = true;
            break;
        }
    if (!holdsVotes) {
        comms_.dropFromBuffer(comms_.txt_data());
        return;
    }
    if (comms_.voteStartTimer == 0)
        comms_.voteStartTimer = float(ctx_.clock->secondsSinceMidnight());
    if (comms_.livePaused) {
        comms_.pausedQueue.append(message);
        return;
    }

    const Path path = pathFor(ctx_.controllerVoteType);
    passTime_ = float(ctx_.clock->secondsSinceMidnight() - comms_.voteStartTimer);
    int li = 0;
    for (; li < lines_.size(); ++li) {
        ctx_.pump->DoEvents();
        const QStringList pieces = lines_[li].split("],");
        for (QString record : pieces) {
            if (!record.contains(';'))
                continue;
            if (ctx_.Iterations >= 1 && ctx_.PriorMultiVote == 1)
                record = asSelectionList(record);
            if (path == Path::Unknown) {
                ctx_.dialogs->MsgBox("Scalepad vote type not definied", MsgBoxStyle::OKOnly, "tallix vote");
                continue;
            }
            if (path == Path::Rating)
                ratingRecord(record);
            else if (path == Path::List)
                listRecord(record);
            else if (!singleRecord(record))
                break;
            if (pauseRequested_)
                break;
        }
        if (pauseRequested_)
            break;
    }

    if (pauseRequested_) {
        comms_.livePaused = true;
        comms_.SendCommandToController("PAUSEVOTE");
        if (ctx_.vCast)
            ctx_.vCast->SetCounterLabel("Paused", 18);
        ctx_.liveLineCount = 0;
        // The lines still to come are held, in order, for the resume to replay.
        for (int rest = li + 1; rest < lines_.size(); ++rest)
            if (!lines_[rest].isEmpty())
                comms_.pausedQueue.append("[" + lines_[rest] + "],");
    }
    RefreshKeypadsNotVoted(ctx_, true);
    if (!comms_.livePaused && ctx_.vType != 1 && ctx_.voteEnded != 1) {
        if (ctx_.controllerVoteType == "9" && ctx_.vType == 2)
            showMakeCast(ctx_, ctx_.optionCount, ctx_.currentIteration);
        else
            ShowVotesCast(ctx_);
    }
}

void Decoder::ratingRecord(const QString& record)
{
    ctx_.pump->DoEvents();
    const QStringList f = record.split(';');
    if (f.size() != 2)
        return;
    if (ctx_.GraphType == 7) {
        // One message carries one keypad on this path: the first line names it.
        const int keypad = int(Val(lines_.value(0)));
        QStringList values = f[1].split('|');
        if (ctx_.startFrom == 1)
            for (QString& v : values)
                if (tlxVal(v) == 0)
                    v = kNone;
        int first = -1;
        for (int i = 0; i < values.size(); ++i)
            if (tlxVal(values[i]) > -1) {
                first = i;
                break;
            }
        if (first < 0 || first >= values.size() - 1)
            return;
        if (ctx_.votes(keypad - 1) == kNone)
            ++ctx_.votesCast;
        ctx_.votes(keypad - 1) = QStringLiteral("1");
        for (int i = 0; i < values.size(); ++i)
            ctx_.ratingVotes(keypad, i) = short(std::nearbyint(tlxVal(values[i])));
        countRecord();
        ctx_.voteReceived = true;
        return;
    }
    const int keypad = int(tlxVal(f[0]));
    if (ctx_.votes(keypad - 1) == kNone)
        ++ctx_.votesCast;
    ctx_.votes(keypad - 1) = f[1];
    ctx_.voteReceived = true;
}

void Decoder::listRecord(const QString& record)
{
    ctx_.pump->DoEvents();
    const QStringList f = record.split(';');
    if (f.size() != 2 || f[1].isEmpty())
        return;
    const int k = int(tlxVal(f[0])) - 1;
    const QStringList list = f[1].split('|');
    if (ctx_.votes(k) == kNone)
        ++ctx_.votesCast;
    ctx_.votes(k) = QStringLiteral("1");

    if (ctx_.controllerVoteType != "3") {
        for (int s = 0; s < ctx_.Iterations; ++s) {
            float stored = -1;
            if (s < list.size()) {
                const double v = tlxVal(list[s]);
                stored = v <= ctx_.optionCount ? float(v) : -1;
            }
            ctx_.seriesVotes(s, k) = stored;
        }
    } else if (ctx_.PriorMultiVote == 1) {
        const double top = ctx_.optionCount - (1 - ctx_.startFrom);
        int s = 0;
        for (int i = 0; i < list.size() - 1 && s < ctx_.Iterations; ++i) {
            const double v = tlxVal(list[i]);
            if (v < ctx_.startFrom || v > top)
                continue;
            if (ctx_.Exclusive) {
                const QString mark = "|" + list[i] + "|";
                if (seenExclusive_.contains(mark))
                    continue;
                seenExclusive_ += mark;
            }
            ctx_.seriesVotes(s++, k) = float(v);
        }
    } else {
        // A row of flags: field i stands for option i + startFrom.
        int s = 0;
        for (int i = 0; i < ctx_.optionCount && s < ctx_.Iterations; ++i)
            if (i < list.size() && tlxVal(list[i]) == 1)
                ctx_.seriesVotes(s++, k) = float(i + ctx_.startFrom);
    }
    countRecord();
    ctx_.voteReceived = true;
}

bool Decoder::singleRecord(const QString& record)
{
    // Exactly one ';': keypad before it, value after. Found in place rather than split,
    // as a burst has a record per keypad.
    const qsizetype semi = record.indexOf(';');
    if (semi < 0 || record.indexOf(';', semi + 1) >= 0)
        return true;
    QString value = record.mid(semi + 1).trimmed();
    const int keypad = int(tlxVal(record.left(semi)));

    if (ctx_.controllerVoteType == "7" && !CheckTextVoteAgainstBannedList(ctx_, value))
        return true;
    const bool withinLimit = ctx_.votesCast <= ctx_.maxKeypads - 1 && ctx_.votesCast <= ctx_.keypadUniverse;
    const bool liveBeyond = ctx_.vType == 4 && !(ctx_.votesCast <= ctx_.maxKeypads - 1 &&
                                                  ctx_.votesCast <= ctx_.keypadUniverse - (ctx_.firstKeypad - 1));
    if (!withinLimit && !liveBeyond && !ctx_.randomFill)
        return true;
    if (tlxVal(value) == 20 && ctx_.ini.debugAcceptDetectAsVotes)
        value = RandomValue(ctx_, std::uniform_real_distribution<double>(0.0, 1.0)(ctx_.rnd));
    if (ctx_.FixedFree != 1) {
        const double v = tlxVal(value);
        const double top = ctx_.optionCount - (1 - ctx_.startFrom);
        const bool outOfRange = v < ctx_.startFrom || v > top;
        const bool abstain = (value == "X" || value == "-2" || value == "0") && ctx_.allowAbstain;
        if (outOfRange && !abstain)
            return true;
    }
    if (value.isEmpty())
        return true;
    if (keypad - 1 > ctx_.votes.ubound() || value == "*")
        return true;
    const int k = keypad - 1;
    if (ctx_.votesCast >= ctx_.maxKeypads && ctx_.vType == 4 && ctx_.votes(k) == kNone)
        return false;

    countRecord();
    ctx_.voteReceived = true;
    ctx_.liveChartDirty = true;
    const bool hadVote = ctx_.votes(k) != kNone;
    if (!hadVote)
        ++ctx_.votesCast;
    if (value == "X" || tlxVal(value) == -2)
        ctx_.votes(k) = QStringLiteral("-2");
    else if (ctx_.JoltMultiVote && ctx_.Joltdisplay == 0 && hadVote)
        ctx_.votes(k) = ctx_.votes(k) + "|" + value;
    else if (ctx_.FractionalJoltTEXT == 2)
        ctx_.votes(k) = "Keypad " + QString::number(keypad) + " ";
    else
        ctx_.votes(k) = value;
    ctx_.voteTimes(k) = passTime_;

    if (ctx_.vType == 2) {
        QString v = value == "X" ? QStringLiteral("-2") : value;
        bool takenBack = false;
        if (tlxVal(v) != -2 && ctx_.Exclusive && ctx_.currentIteration > 0) {
            for (int it = 0; it < ctx_.currentIteration; ++it)
                if (ctx_.seriesVotes(it, k) == float(tlxVal(v))) {
                    // An exclusive series takes back a repeat of an earlier selection.
                    takenBack = true;
                    --ctx_.votesCast;
                    ctx_.votes(k) = kNone;
                    break;
                }
        }
        if (!takenBack)
            ctx_.seriesVotes(ctx_.currentIteration, k) = float(tlxVal(v));
    }
    if (ctx_.FixedFree == 1 && ctx_.FractionalJoltTEXT == 1 && ctx_.Joltdisplay == 0 && ctx_.WLSShow)
        pauseRequested_ = LiveTextDisplay(ctx_, keypad, value);
    return true;
}

} // namespace

void Comms::bumpVoteCounter()
{
    txt_VoteCounter = QString::number(qint64(tlxVal(txt_VoteCounter)) + 1);
}

void txt_data_Change(RunContext& ctx)
{
    Comms* comms = ctx.comms;
    if (!comms || comms->decoderBusy)
        return;
    comms->decoderBusy = true;
    bool again = false;
    try {
        const QString text = comms->txt_data();
        comms->setTxt_data(QString());
        if (!text.isEmpty()) {
            HandleSettingsBlock(ctx, text);
            if (ctx.participants.empty()) {
                const qint64 t0 = ctx.clock->perfCounter();
                ParticipantSetup(ctx);
                WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), "Load Participants",
                              "comms", "txt_data_Change");
            }
            // Only text that ends as a base ends it is vote data; anything else goes whole.
            if (text.endsWith('\n') || text.endsWith(']') || text.endsWith(',')) {
                Decoder(ctx).run(text);
                ctx.randomFill = false;
            }
            again = true;
        }
    } catch (const ProcessExit&) {
        comms->decoderBusy = false;
        throw;
    } catch (...) {
        // A failure of the decoder is fatal for the run.
        ReportFailure(ctx, std::current_exception(), "comms", "txt_data_Change", ctx.ShowErrors);
        comms->decoderBusy = false;
        FullShutDown(ctx);
        return;
    }
    comms->decoderBusy = false;
    // Whatever arrived during the pass is picked up now.
    if (again && !comms->txt_data().isEmpty())
        txt_data_Change(ctx);
}

} // namespace tallix
