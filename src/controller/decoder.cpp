// The vote stream decoder: keypad records arriving as text become votes.

#include "comms.h"

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

#include <QRegularExpression>

#include <cmath>

namespace tallix {

namespace {

const QString kNone = QStringLiteral("-1");
const QString kAbstain = QStringLiteral("-2");

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
QString asSelectionList(QStringView record)
{
    const qsizetype semi = record.indexOf(u';');
    QString list = record.left(semi + 1).toString();
    const QStringView value = record.mid(semi + 1);
    if (!value.contains(u'*')) {
        for (QChar c : value)
            list += QString(c) + "|";
    } else {
        list += value.toString().replace('*', '|');
    }
    return list;
}

// Records are a few characters long: a plain scan finds a character in them sooner than
// a library call gets going.
qsizetype indexOfChar(QStringView text, char16_t c, qsizetype from = 0)
{
    for (qsizetype i = from; i < text.size(); ++i)
        if (text[i] == QChar(c))
            return i;
    return -1;
}

// Where the two-character separator first and second next occurs in `text` from `from`.
// Found by its first character, which a library search for a short string is slower at.
qsizetype indexOfPair(QStringView text, char16_t first, char16_t second, qsizetype from)
{
    for (qsizetype at; (at = text.indexOf(QChar(first), from)) >= 0; from = at + 1)
        if (at + 1 < text.size() && text[at + 1] == QChar(second))
            return at;
    return -1;
}

// The pieces of `text` between two-character separators, as split() cuts them, empty
// ones kept; views into `text`, so a burst's records cost no string each. `fn` returns
// false to stop.
template <typename Fn>
void forEachPiece(QStringView text, char16_t first, char16_t second, Fn&& fn)
{
    for (qsizetype from = 0;;) {
        const qsizetype at = indexOfPair(text, first, second, from);
        if (at < 0) {
            fn(text.mid(from));
            return;
        }
        if (!fn(text.mid(from, at - from)))
            return;
        from = at + 2;
    }
}

} // namespace

bool FreeEntryValueCounts(const RunContext& ctx, QStringView value)
{
    // No keypad sends that much; kept, it would fill every saved line and the live list.
    if (value.size() > 1000)
        return false;
    const bool numbers = ctx.FractionalJoltTEXT == 0 &&
                         (ctx.controllerVoteType == u"11" || ctx.controllerVoteType == u"99");
    if (!numbers || value == u"X")
        return true;
    // A slip on a keypad must not become a number: plain decimals only.
    static const QRegularExpression plain(QStringLiteral("^-?[0-9]+(\\.[0-9]+)?$"));
    return plain.match(value.toString()).hasMatch();
}

namespace {

class Decoder {
public:
    explicit Decoder(RunContext& ctx)
        : ctx_(ctx), comms_(*ctx.comms), textVote_(ctx.controllerVoteType == "7")
    {
    }
    // Accepted records are counted in one step at the end of the pass, whatever ends it.
    ~Decoder() { flushCounter(); }

    void run(const QString& message);

private:
    void ratingRecord(QStringView record);
    void listRecord(QStringView record);
    // False when the rest of the line is to be dropped.
    bool singleRecord(QStringView record);
    void countRecord() { ++counted_; }
    void flushCounter()
    {
        if (counted_)
            comms_.addToVoteCounter(counted_);
        counted_ = 0;
    }

    RunContext& ctx_;
    Comms& comms_;
    const bool textVote_;
    QString text_;                // the message without its '['; lines_ are views into it
    QList<QStringView> lines_;
    QString seenExclusive_;       // kept for the whole message, across keypads
    bool pauseRequested_ = false;
    qint64 counted_ = 0;
    // The records of one message arrived together: one reading of the clock serves them
    // all, and spares a local-time lookup per keypad in a burst.
    float passTime_ = 0;
};

void Decoder::run(const QString& message)
{
    text_ = message;
    text_.remove('[');
    forEachPiece(QStringView(text_), u'\r', u'\n', [&](QStringView line) {
        lines_.append(line);
        return true;
    });
    bool holdsVotes = false;
    // A line's leading number ends at its first ';' at the latest, so only the text
    // before it is read: a burst's one line is long.
    for (QStringView line : lines_)
        if (const qsizetype semi = line.indexOf(u';'); semi >= 0 && tlxVal(line.left(semi)) > 0) {
            holdsVotes = true;
            break;
        }
    // The buffer was emptied when this text was read: what it holds now arrived during
    // the pass (a settings reply asked for by the block itself) and is the next pass's.
    if (!holdsVotes)
        return;
    if (comms_.voteStartTimer == 0)
        comms_.voteStartTimer = float(ctx_.clock->secondsSinceMidnight());
    if (comms_.livePaused) {
        comms_.pausedQueue.append(message);
        return;
    }

    const Path path = pathFor(ctx_.controllerVoteType);
    passTime_ = float(ctx_.clock->secondsSinceMidnight() - comms_.voteStartTimer);
    qsizetype li = 0;
    for (; li < lines_.size(); ++li) {
        ctx_.pump->DoEvents();
        forEachPiece(lines_[li], u']', u',', [&](QStringView record) {
            if (indexOfChar(record, u';') < 0)
                return true;
            QString rewritten;
            if (ctx_.Iterations >= 1 && ctx_.PriorMultiVote == 1) {
                rewritten = asSelectionList(record);
                record = rewritten;
            }
            if (path == Path::Unknown) {
                ctx_.dialogs->MsgBox("Scalepad vote type not definied", MsgBoxStyle::OKOnly, "tallix vote");
                return true;
            }
            if (path == Path::Rating)
                ratingRecord(record);
            else if (path == Path::List)
                listRecord(record);
            else if (!singleRecord(record))
                return false;
            return !pauseRequested_;
        });
        if (pauseRequested_)
            break;
    }
    flushCounter();

    if (pauseRequested_) {
        comms_.livePaused = true;
        comms_.SendCommandToController("PAUSEVOTE");
        if (ctx_.vCast)
            ctx_.vCast->SetCounterLabel("Paused", 18);
        ctx_.liveLineCount = 0;
        // The line it paused in and the lines still to come are held, in order, for the
        // resume to replay; the paused line's last records are in it. Only when it was
        // the last line is nothing held.
        if (li + 1 < lines_.size()) {
            comms_.pausedQueue.append(u'[' + lines_[li].toString() + "],");
            for (qsizetype rest = li + 1; rest < lines_.size(); ++rest)
                if (!lines_[rest].isEmpty())
                    comms_.pausedQueue.append(u'[' + lines_[rest].toString() + "],");
        }
    }
    RefreshKeypadsNotVoted(ctx_, true);
    if (!comms_.livePaused && ctx_.vType != 1 && ctx_.voteEnded != 1) {
        if (ctx_.controllerVoteType == "9" && ctx_.vType == 2)
            showMakeCast(ctx_, ctx_.optionCount, ctx_.currentIteration);
        else
            ShowVotesCast(ctx_);
    }
}

void Decoder::ratingRecord(QStringView record)
{
    ctx_.pump->DoEvents();
    const QList<QStringView> f = record.split(u';');
    if (f.size() != 2)
        return;
    if (ctx_.GraphType == 7) {
        // One message carries one keypad on this path: the first line names it.
        const int keypad = TruncToLong(Val(lines_.value(0).toString()));
        QList<QStringView> values = f[1].split(u'|');
        if (ctx_.startFrom == 1)
            for (QStringView& v : values)
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
            ctx_.ratingVotes(keypad, i) = RoundToShort(tlxVal(values[i]));
        countRecord();
        ctx_.voteReceived = true;
        return;
    }
    const int keypad = TruncToLong(tlxVal(f[0]));
    if (ctx_.votes(keypad - 1) == kNone)
        ++ctx_.votesCast;
    ctx_.votes(keypad - 1) = SharedText(f[1]);
    ctx_.voteReceived = true;
}

void Decoder::listRecord(QStringView record)
{
    ctx_.pump->DoEvents();
    const QList<QStringView> f = record.split(u';');
    if (f.size() != 2 || f[1].isEmpty())
        return;
    const int k = TruncToLong(tlxVal(f[0])) - 1;
    const QList<QStringView> list = f[1].split(u'|');
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
                const QString mark = u'|' + list[i].toString() + u'|';
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

bool Decoder::singleRecord(QStringView record)
{
    // Exactly one ';': keypad before it, value after.
    const qsizetype semi = indexOfChar(record, u';');
    if (semi < 0 || indexOfChar(record, u';', semi + 1) >= 0)
        return true;
    QStringView value = record.mid(semi + 1).trimmed();
    QString drawn; // holds a value the random generator put in place of the one sent
    const int keypad = TruncToLong(tlxVal(record.left(semi)));

    if (textVote_ && !CheckTextVoteAgainstBannedList(ctx_, value.toString()))
        return true;
    const bool withinLimit = ctx_.votesCast <= ctx_.maxKeypads - 1 && ctx_.votesCast <= ctx_.keypadUniverse;
    const bool liveBeyond = ctx_.vType == 4 && !(ctx_.votesCast <= ctx_.maxKeypads - 1 &&
                                                  ctx_.votesCast <= ctx_.keypadUniverse - (ctx_.firstKeypad - 1));
    if (!withinLimit && !liveBeyond && !ctx_.randomFill)
        return true;
    double number = tlxVal(value);
    if (number == 20 && ctx_.ini.debugAcceptDetectAsVotes) {
        drawn = RandomValue(ctx_, std::uniform_real_distribution<double>(0.0, 1.0)(ctx_.rnd));
        value = drawn;
        number = tlxVal(value);
    }
    const bool isX = value == u"X";
    if (ctx_.FixedFree == 1 && !FreeEntryValueCounts(ctx_, value))
        return true;
    if (ctx_.FixedFree != 1) {
        const double top = ctx_.optionCount - (1 - ctx_.startFrom);
        const bool outOfRange = number < ctx_.startFrom || number > top;
        const bool abstain = (isX || value == u"-2" || value == u"0") && ctx_.allowAbstain;
        if (outOfRange && !abstain)
            return true;
    }
    if (value.isEmpty())
        return true;
    if (keypad - 1 > ctx_.votes.ubound() || value == u"*")
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
    if (isX || number == -2)
        ctx_.votes(k) = kAbstain;
    else if (ctx_.JoltMultiVote && ctx_.Joltdisplay == 0 && hadVote)
        ctx_.votes(k) = ctx_.votes(k) + u'|' + value.toString();
    else if (ctx_.FractionalJoltTEXT == 2)
        ctx_.votes(k) = "Keypad " + QString::number(keypad) + " ";
    else
        ctx_.votes(k) = SharedText(value);
    ctx_.voteTimes(k) = passTime_;

    if (ctx_.vType == 2) {
        const double selection = isX ? -2.0 : number;
        bool takenBack = false;
        if (selection != -2 && ctx_.Exclusive && ctx_.currentIteration > 0) {
            for (int it = 0; it < ctx_.currentIteration; ++it)
                if (ctx_.seriesVotes(it, k) == float(selection)) {
                    // An exclusive series takes back a repeat of an earlier selection.
                    takenBack = true;
                    --ctx_.votesCast;
                    ctx_.votes(k) = kNone;
                    break;
                }
        }
        if (!takenBack)
            ctx_.seriesVotes(ctx_.currentIteration, k) = float(selection);
    }
    if (ctx_.FixedFree == 1 && ctx_.FractionalJoltTEXT == 1 && ctx_.Joltdisplay == 0 && ctx_.WLSShow)
        pauseRequested_ = comms_.liveTextDisplay(keypad, value.toString());
    return true;
}

} // namespace

void Comms::addToVoteCounter(qint64 records)
{
    txt_VoteCounter = QString::number(qint64(tlxVal(txt_VoteCounter)) + records);
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
