#pragma once
// The controller's behaviour without its sockets: commands in, events out. The socket
// server feeds it; tests drive it directly with a ManualClock.

#include "controller_config.h"
#include "vote_script.h"
#include "vote_setup.h"
#include "vote_simulator.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <random>

namespace tallix {

class Clock;
class IntervalTimer;

// --log FILE: one time-stamped line per received command and per notable event. Each
// line is appended and the file closed again, so a crash loses nothing. Without a file
// the lines go to stderr.
class CommandLog {
public:
    CommandLog(Clock& clock, QString path) : clock_(clock), path_(std::move(path)) {}
    void write(const QString& text);

private:
    Clock& clock_;
    QString path_;
};

struct CoreOptions {
    SimulatedRoom simulate;        // voters 0: no simulated room
    QList<ScriptEntry> script;
    quint32 seed = 0;
    int idleExitMs = 10 * 60 * 1000; // 0: never
    // 0: silent bases, so a test can be sure nothing arrives but what its script sends.
    int heartbeatMs = 500;
};

class ControllerCore {
public:
    using Send = std::function<void(const QJsonObject&)>;

    ControllerCore(ControllerConfig config, CoreOptions options, Clock& clock, CommandLog& log);
    ~ControllerCore();

    // Events that go to every connected client: vote records, heartbeats, base errors.
    void setBroadcast(Send broadcast) { broadcast_ = std::move(broadcast); }
    // Asked to end: --quit, the idle limit. The owner ends the event loop.
    void setQuitHandler(std::function<void()> quit) { quit_ = std::move(quit); }
    // A script's !die: the owner ends the process without any goodbye.
    void setDieHandler(std::function<void()> die) { die_ = std::move(die); }

    // One message from a client; `reply` reaches that client only.
    void handleMessage(const QJsonObject& message, const Send& reply);
    void handleMalformed(const QString& reason);
    void clientCountChanged(int clients);

    bool voteOpen() const { return voteOpen_; }
    bool paused() const { return paused_; }
    const VoteSetup& setup() const { return setup_; }
    const QList<int>& activeKeypads() const { return activeKeypads_; }
    // The keypads that may vote now: the room, narrowed to the active list if one came.
    QList<int> votingKeypads() const;

private:
    void handleCommand(const QString& command, const QJsonObject& message, const Send& reply);
    void openVote();
    void closeVote(const QString& why);
    void setPaused(bool paused);
    void armScript();
    void runScriptDue();
    void heartbeat();
    void broadcast(const QJsonObject& event);
    qint64 voteElapsedMs() const;
    qint64 nowMs() const;

    ControllerConfig config_;
    CoreOptions options_;
    Clock& clock_;
    CommandLog& log_;
    std::mt19937 rng_;
    Send broadcast_;
    std::function<void()> quit_;
    std::function<void()> die_;

    VoteSetup setup_;
    QList<int> activeKeypads_;
    bool voteOpen_ = false;
    bool paused_ = false;

    std::unique_ptr<VoteSimulator> simulator_;
    std::unique_ptr<IntervalTimer> heartbeatTimer_;
    std::unique_ptr<IntervalTimer> scriptTimer_;
    std::unique_ptr<IntervalTimer> idleTimer_;
    qint64 voteStartMs_ = 0;
    qint64 pausedAtMs_ = 0;
    qint64 pausedTotalMs_ = 0;
    int startVotes_ = 0;            // received since the controller started
    QList<ScriptEntry> voteScript_; // the script lines bound to the open vote, and the unbound
    int scriptNext_ = 0;
};

} // namespace tallix
