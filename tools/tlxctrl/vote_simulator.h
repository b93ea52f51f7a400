#pragma once
// --simulate N[:RATE]: a room of N keypads that vote at random within what the voting
// module announced, at RATE records a second, the records of each moment batched into
// one text per burst as a base delivers them. In a free-entry vote they type numbers
// or texts; with --multi a text vote gets several answers from a keypad.

#include "vote_setup.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <random>

namespace tallix {

class Clock;
class IntervalTimer;

// A random integer in lo..hi from the generator's raw output, the same on every library.
int RandomInRange(std::mt19937& rng, int lo, int hi);

// Empty when the setup allows simulated votes, else why not (logged by the controller).
QString SimulationBlocker(const VoteSetup& setup);

// One keypad's value in the grammar its vote type is read by; a text vote's answer is
// drawn from `texts`, or from the built-in answers when it is empty.
QString SimulatedValue(const VoteSetup& setup, std::mt19937& rng, const QStringList& texts = {});

struct SimulatedRoom {
    int voters = 0;
    double rate = 10;  // records a second
    QStringList texts; // --texts; empty: the built-in answers
    int multi = 1;     // --multi: most answers a keypad sends in a text vote
};

// Reads "N" or "N:RATE" into the room's voters and rate; false with a reason on bad input.
bool ParseSimulateArg(const QString& text, SimulatedRoom& out, QString& error);

class VoteSimulator {
public:
    using Sink = std::function<void(const QString& text)>;
    // baseOf maps a keypad number to its base index; records of one base share a line.
    VoteSimulator(Clock& clock, std::mt19937& rng, SimulatedRoom room, Sink sink);
    ~VoteSimulator();

    void start(const VoteSetup& setup, const QList<int>& keypads, std::function<int(int)> baseOf);
    void stop();
    void setPaused(bool paused);
    bool running() const { return running_; }
    int recordsSent() const { return next_; }
    int recordsDue() const { return int(schedule_.size()); }
    int voters() const { return int(voters_.size()); }

    static constexpr int kTickMs = 100;

private:
    void tick();
    QString valueFor(int keypad);

    Clock& clock_;
    std::mt19937& rng_;
    SimulatedRoom room_;
    Sink sink_;
    std::unique_ptr<IntervalTimer> timer_;
    VoteSetup setup_;
    QList<int> voters_;
    QList<int> schedule_; // the keypad of each record, in sending order
    QHash<int, QStringList> answered_; // a text vote's answers so far, by keypad
    std::function<int(int)> baseOf_;
    qint64 ticks_ = 0;
    int next_ = 0;
    bool running_ = false;
    bool paused_ = false;
};

} // namespace tallix
