#pragma once
// `comms`: the form that talks to the controller for the whole run. Everything said to
// the controller is one text through SendCommandToController; everything it says lands
// in the buffer `txt_data`, whose change runs the decoder.

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tallix {

class ControllerLink;
class IntervalTimer;
struct RunContext;

class Comms {
public:
    Comms(RunContext& ctx, ControllerLink& link);
    ~Comms();
    Comms(const Comms&) = delete;
    Comms& operator=(const Comms&) = delete;

    void Form_Load();

    // The buffer. Setting it raises its change event at once, as a text box does;
    // setting it to the text it already holds raises nothing.
    const QString& txt_data() const { return txt_data_; }
    void setTxt_data(const QString& text);
    // Text from the controller: appended (after CR LF when the buffer holds text), and
    // decoded from a later pump, never inside the transport's own signal.
    void oTLx_FromTLXCtrl(const QString& text);
    void oTLx_FromTLXCtrlBaseError(short base, const QString& message);
    void oTLx_FromTLXCtrlBaseFeedback(short base, const QString& text);
    void oTLx_FromCtrlFormBaseStationStartVoteCount(short count);

    // Removes text from the buffer without raising its change.
    void dropFromBuffer(const QString& text) { txt_data_.remove(text); }

    const QString& txt_allowedVotes() const { return txt_allowedVotes_; }
    void setTxt_allowedVotes(const QString& text);

    void ReadPortInfo();
    bool StartVote();
    void EndVote();
    void VoteLoaded();
    void SendCommandToController(const QString& text, const QJsonObject& extra = {});

    QString txt_VoteCounter = QStringLiteral("0");
    short chk_WaitingForData = 0;
    float voteStartTimer = 0;
    bool startVoteFailed = false;
    bool linkLost = false;
    bool decoderBusy = false;
    bool livePaused = false;
    QStringList pausedQueue;
    // The live text display, shown each accepted free text; true asks for a pause.
    std::function<bool(qint32 keypad, const QString& value)> liveTextDisplay;
    std::unique_ptr<IntervalTimer> tmrCloseEverything;

    // More accepted vote records.
    void addToVoteCounter(qint64 records);

private:
    RunContext& ctx_;
    ControllerLink& link_;
    QString txt_data_;
    QString txt_allowedVotes_;
    bool changePosted_ = false;
};

// The decoder: runs on every change of `txt_data`.
void txt_data_Change(RunContext& ctx);
// Whether a free-entry value is taken: in a number vote a plain decimal or "X" only, and
// never more than 1,000 characters.
bool FreeEntryValueCounts(const RunContext& ctx, QStringView value);

// The settings block a controller sends in reply to BaseInfo; true when `text` was one.
bool HandleSettingsBlock(RunContext& ctx, const QString& text);

} // namespace tallix
