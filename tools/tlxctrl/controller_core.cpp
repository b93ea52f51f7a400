#include "controller_core.h"

#include "foundation/clock.h"
#include "foundation/wire/json_lines.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cstdio>

namespace tallix {

void CommandLog::write(const QString& text)
{
    const QByteArray line =
        (clock_.now().toString("yyyy-MM-dd HH:mm:ss.zzz") + " " + text + "\n").toUtf8();
    if (path_.isEmpty()) {
        std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
        return;
    }
    QFile f(path_);
    if (f.open(QIODevice::WriteOnly | QIODevice::Append))
        f.write(line);
}

ControllerCore::ControllerCore(ControllerConfig config, CoreOptions options, Clock& clock, CommandLog& log)
    : config_(std::move(config)), options_(std::move(options)), clock_(clock), log_(log), rng_(options_.seed),
      heartbeatTimer_(clock.createTimer()), scriptTimer_(clock.createTimer()), idleTimer_(clock.createTimer())
{
    if (options_.simulate.voters > 0)
        simulator_ = std::make_unique<VoteSimulator>(clock_, rng_, options_.simulate,
                                                     [this](const QString& text) { broadcast(wire::FromTLXCtrl(text)); });
    heartbeatTimer_->setInterval(std::max(1, options_.heartbeatMs));
    heartbeatTimer_->onTick([this] { heartbeat(); });
    scriptTimer_->onTick([this] { runScriptDue(); });
    idleTimer_->onTick([this] {
        idleTimer_->setEnabled(false);
        log_.write(QString("no client for %1 s: exiting").arg(options_.idleExitMs / 1000));
        if (quit_)
            quit_();
    });
    clientCountChanged(0);
}

ControllerCore::~ControllerCore() = default;

qint64 ControllerCore::nowMs() const
{
    const qint64 freq = clock_.perfFrequency();
    if (freq > 0)
        return qint64(double(clock_.perfCounter()) * 1000.0 / double(freq));
    return clock_.now().toMSecsSinceEpoch();
}

qint64 ControllerCore::voteElapsedMs() const
{
    return (paused_ ? pausedAtMs_ : nowMs()) - voteStartMs_ - pausedTotalMs_;
}

QList<int> ControllerCore::votingKeypads() const
{
    const QList<int> room = config_.roomKeypads();
    if (activeKeypads_.isEmpty())
        return room;
    QList<int> out;
    for (int k : room)
        if (activeKeypads_.contains(k))
            out.append(k);
    return out;
}

void ControllerCore::broadcast(const QJsonObject& event)
{
    if (broadcast_)
        broadcast_(event);
}

void ControllerCore::handleMalformed(const QString& reason)
{
    log_.write("dropped: " + reason);
}

void ControllerCore::clientCountChanged(int clients)
{
    if (clients == 0 && voteOpen_)
        closeVote("no client left");
    if (clients == 0 && options_.idleExitMs > 0) {
        idleTimer_->setInterval(options_.idleExitMs);
        idleTimer_->setEnabled(true);
    } else {
        idleTimer_->setEnabled(false);
    }
}

void ControllerCore::handleMessage(const QJsonObject& message, const Send& reply)
{
    using namespace wire;
    if (message.contains(kCommand)) {
        const QJsonValue v = message.value(kCommand);
        if (!v.isString()) {
            log_.write("dropped: \"command\" is not a text");
            return;
        }
        const QString text = v.toString();
        log_.write("command " + EscapeForLog(text));
        const QStringList commands = SplitCommandText(text);
        if (commands.isEmpty())
            log_.write("  empty command ignored");
        for (const QString& c : commands)
            handleCommand(c, message, reply);
        return;
    }
    if (message.contains(kNotify)) {
        log_.write("notify " + message.value(kNotify).toString());
        return;
    }
    if (message.contains(kControl)) {
        const QString what = message.value(kControl).toString();
        log_.write("control " + what);
        if (what == "quit") {
            closeVote("quit");
            if (quit_)
                quit_();
        } else {
            log_.write("  unknown control ignored");
        }
        return;
    }
    log_.write("ignored a message with no command: " +
               QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact)).left(200));
}

void ControllerCore::handleCommand(const QString& command, const QJsonObject& message, const Send& reply)
{
    switch (ApplyCommand(setup_, command)) {
    case CommandKind::BaseInfo:
        if (reply)
            reply(wire::FromTLXCtrl(BuildBaseInfoReply(config_)));
        break;
    case CommandKind::StartVote:
        openVote();
        break;
    case CommandKind::EndVote:
        if (voteOpen_)
            closeVote("EndVote");
        // The next vote announces itself afresh.
        setup_ = VoteSetup{};
        break;
    case CommandKind::DeleteTask:
        if (voteOpen_)
            closeVote("task deleted");
        setup_ = VoteSetup{};
        break;
    case CommandKind::PauseVote:
        setPaused(true);
        break;
    case CommandKind::ResumeVote:
        setPaused(false);
        break;
    case CommandKind::ReadActiveKeypads: {
        // The list travels with the command, as the tag's text or as an array of numbers.
        const QJsonValue v = message.value(wire::kActiveKeypads);
        QList<int> list;
        bool bad = false;
        if (v.isString()) {
            for (const QString& part : v.toString().split(',', Qt::SkipEmptyParts)) {
                bool ok = false;
                const int k = part.toInt(&ok);
                if (ok && k > 0)
                    list.append(k);
                else
                    bad = true;
            }
        } else if (v.isArray()) {
            for (const QJsonValue& e : v.toArray()) {
                if (e.isDouble() && e.toInt() > 0)
                    list.append(e.toInt());
                else
                    bad = true;
            }
        } else {
            log_.write("  ReadActiveKeypads carried no activeKeypads list; the list stays as it was");
            break;
        }
        activeKeypads_ = list;
        log_.write(QString("  active keypads: %1%2").arg(list.size()).arg(bad ? " (unreadable entries skipped)" : ""));
        break;
    }
    case CommandKind::GetVoteInfo:
    case CommandKind::Setting:
    case CommandKind::Notice:
        break;
    case CommandKind::BadValue:
        log_.write("  bad value ignored: " + EscapeForLog(command));
        break;
    case CommandKind::Unknown:
        log_.write("  unknown command ignored: " + EscapeForLog(command));
        break;
    }
}

void ControllerCore::openVote()
{
    if (voteOpen_)
        closeVote("StartVote again");
    voteOpen_ = true;
    paused_ = false;
    voteStartMs_ = nowMs();
    pausedTotalMs_ = 0;
    ++startVotes_;
    voteScript_.clear();
    for (const ScriptEntry& e : options_.script)
        if (e.playsAt(startVotes_))
            voteScript_.append(e);
    scriptNext_ = 0;

    const QList<BaseConfig> bases = config_.basesInUse();
    log_.write(QString("vote opened (StartVote %1): options=%2 StartFrom=%3 VoteType=%4 Limits=%5 bases=%6")
                   .arg(startVotes_)
                   .arg(setup_.options)
                   .arg(setup_.startFrom)
                   .arg(setup_.voteType)
                   .arg(setup_.limits)
                   .arg(bases.size()));
    broadcast(wire::StartVoteCount(int(bases.size())));
    heartbeatTimer_->setEnabled(options_.heartbeatMs > 0);
    armScript();

    if (simulator_) {
        const QString blocker = SimulationBlocker(setup_);
        if (!blocker.isEmpty()) {
            log_.write("  simulated keypads stay silent: " + blocker);
        } else {
            simulator_->start(setup_, votingKeypads(), [this](int k) { return config_.baseOfKeypad(k); });
            QString more;
            if (simulator_->recordsDue() > simulator_->voters())
                more = QString(", %1 answers in all").arg(simulator_->recordsDue());
            log_.write(QString("  simulating %1 keypads at %2 records a second%3")
                           .arg(simulator_->voters())
                           .arg(options_.simulate.rate)
                           .arg(more));
        }
    }
}

void ControllerCore::closeVote(const QString& why)
{
    if (!voteOpen_)
        return;
    voteOpen_ = false;
    paused_ = false;
    heartbeatTimer_->setEnabled(false);
    scriptTimer_->setEnabled(false);
    int sent = 0;
    if (simulator_) {
        sent = simulator_->recordsSent();
        simulator_->stop();
    }
    log_.write(QString("vote closed (%1) after %2 ms; %3 simulated records, %4 of %5 script lines sent")
                   .arg(why)
                   .arg(voteElapsedMs())
                   .arg(sent)
                   .arg(scriptNext_)
                   .arg(voteScript_.size()));
}

void ControllerCore::setPaused(bool paused)
{
    if (!voteOpen_ || paused == paused_)
        return;
    if (paused) {
        pausedAtMs_ = nowMs();
    } else {
        pausedTotalMs_ += nowMs() - pausedAtMs_;
    }
    paused_ = paused;
    log_.write(paused ? "  sources held" : "  sources resumed");
    if (simulator_)
        simulator_->setPaused(paused);
    armScript();
}

void ControllerCore::armScript()
{
    scriptTimer_->setEnabled(false);
    if (!voteOpen_ || paused_ || scriptNext_ >= voteScript_.size())
        return;
    const qint64 delay = voteScript_[scriptNext_].atMs - voteElapsedMs();
    scriptTimer_->setInterval(int(std::clamp<qint64>(delay, 1, 24 * 3600 * 1000)));
    scriptTimer_->setEnabled(true);
}

void ControllerCore::runScriptDue()
{
    scriptTimer_->setEnabled(false);
    const qint64 elapsed = voteElapsedMs();
    while (voteOpen_ && !paused_ && scriptNext_ < voteScript_.size()
           && voteScript_[scriptNext_].atMs <= elapsed) {
        const ScriptEntry& e = voteScript_[scriptNext_++];
        switch (e.kind) {
        case ScriptEntry::Kind::Text:
            broadcast(wire::FromTLXCtrl(e.text));
            break;
        case ScriptEntry::Kind::BaseError:
            broadcast(wire::BaseError(e.base, e.text));
            break;
        case ScriptEntry::Kind::AllowedVotes:
            broadcast(wire::ItemText(wire::kAllowedVotesItem, e.text));
            break;
        case ScriptEntry::Kind::Die:
            log_.write(QString("script line %1: dying mid-vote").arg(e.line));
            if (die_)
                die_();
            return;
        }
    }
    armScript();
}

void ControllerCore::heartbeat()
{
    for (const auto& b : config_.basesInUse())
        broadcast(wire::BaseFeedback(b.index, "OK"));
}

} // namespace tallix
