#include "socket_controller_link.h"

#include "foundation/environment.h"
#include "foundation/vb_error.h"
#include "foundation/wire/controller_socket.h"
#include "foundation/wire/json_lines.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>

namespace tallix {

SocketControllerLink::SocketControllerLink() = default;
SocketControllerLink::~SocketControllerLink() = default;

bool SocketControllerLink::connected() const
{
    return socket_ && socket_->state() == QLocalSocket::ConnectedState;
}

QString SocketControllerLink::Connect(const Environment& env, const QString& programFolder, int startWaitMs)
{
    const QString path = ControllerSocketPath(env);
    socket_ = std::make_unique<QLocalSocket>();
    socket_->connectToServer(path);
    if (!socket_->waitForConnected(200)) {
        const QString started = StartControllerStandIn(programFolder);
        if (!started.isEmpty())
            return "no controller at " + path + " and " + started;
        QElapsedTimer waited;
        waited.start();
        for (;;) {
            socket_->abort();
            socket_->connectToServer(path);
            if (socket_->waitForConnected(100))
                break;
            if (waited.elapsed() > startWaitMs)
                return "no controller answered at " + path;
            QThread::msleep(25);
        }
    }
    channel_ = std::make_unique<JsonLineChannel>(socket_.get());
    connect(channel_.get(), &JsonLineChannel::received, this, &SocketControllerLink::dispatch);
    connect(channel_.get(), &JsonLineChannel::malformed, this, [this](const QString& reason) {
        if (onMalformed)
            onMalformed(reason);
    });
    return {};
}

void SocketControllerLink::sendOrRaise(const QJsonObject& message)
{
    if (!channel_ || !channel_->send(message))
        Raise(ErrNo::HostUnexpected, channel_ ? channel_->lastError() : QStringLiteral("the controller link is not open"));
}

void SocketControllerLink::SendCommand(const QString& text, const QJsonObject& extra)
{
    QJsonObject message = wire::Command(text);
    for (auto it = extra.begin(); it != extra.end(); ++it)
        message.insert(it.key(), it.value());
    const bool askingSettings = text == QLatin1String("BaseInfo");
    if (askingSettings)
        settingsArrived_ = false;
    sendOrRaise(message);
    // The controller answered BaseInfo before its command returned, so the reply was in
    // by the end of the call; the socket is given the same moment to deliver it.
    if (askingSettings) {
        QElapsedTimer waited;
        waited.start();
        while (!settingsArrived_ && connected() && waited.elapsed() < kSettingsReplyWaitMs) {
            socket_->waitForReadyRead(int(kSettingsReplyWaitMs - waited.elapsed()));
            // Asked from inside an event's handler the socket reads without signalling.
            channel_->readAvailable();
        }
    }
}

void SocketControllerLink::NotifyVoteLoaded()
{
    sendOrRaise(wire::Notify("VoteLoaded"));
}

void SocketControllerLink::dispatch(const QJsonObject& m)
{
    // Unknown events and fields are ignored: a newer controller may say more.
    if (m.contains(wire::kItem)) {
        if (m.value(wire::kItem).toString() == wire::kAllowedVotesItem && AllowedVotes)
            AllowedVotes(m.value(wire::kText).toString());
        return;
    }
    const QString event = m.value(wire::kEvent).toString();
    const short base = short(m.value(wire::kBase).toInt());
    if (event == wire::kFromTLXCtrl) {
        if (m.value(wire::kText).toString().contains(QLatin1String("BASETYPE"), Qt::CaseInsensitive))
            settingsArrived_ = true;
        if (FromTLXCtrl)
            FromTLXCtrl(m.value(wire::kText).toString());
    } else if (event == wire::kBaseError) {
        if (FromTLXCtrlBaseError)
            FromTLXCtrlBaseError(base, m.value(wire::kMessage).toString());
    } else if (event == wire::kBaseFeedback) {
        if (FromTLXCtrlBaseFeedback)
            FromTLXCtrlBaseFeedback(base, m.value(wire::kText).toString());
    } else if (event == wire::kStartVoteCount) {
        if (FromCtrlFormBaseStationStartVoteCount)
            FromCtrlFormBaseStationStartVoteCount(short(m.value(wire::kCount).toInt()));
    }
}

} // namespace tallix
