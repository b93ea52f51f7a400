#pragma once
// The controller link over the local socket: JSON lines to and from the controller
// process. When nothing listens, the controller stand-in beside the program is started
// and the connection tried again for up to two seconds, as a server is started on
// first use.

#include "controller/controller_link.h"

#include <QObject>

#include <memory>

class QLocalSocket;

namespace tallix {

class Environment;
class JsonLineChannel;

class SocketControllerLink final : public QObject, public ControllerLink {
    Q_OBJECT
public:
    SocketControllerLink();
    ~SocketControllerLink() override;

    // Returns an empty string when connected, else the reason.
    QString Connect(const Environment& env, const QString& programFolder, int startWaitMs = 2000);
    bool connected() const;

    void SendCommand(const QString& text, const QJsonObject& extra = {}) override;
    void NotifyVoteLoaded() override;

    // Lines that were not JSON, for the debug log.
    std::function<void(const QString& reason)> onMalformed;

    // One message from the controller to its handler, as read from the socket.
    void dispatch(const QJsonObject& message);

private:
    void sendOrRaise(const QJsonObject& message);

    static constexpr int kSettingsReplyWaitMs = 1000;
    bool settingsArrived_ = false;
    std::unique_ptr<QLocalSocket> socket_;
    std::unique_ptr<JsonLineChannel> channel_;
};

} // namespace tallix
