#include "vote_instances.h"

#include "foundation/wire/json_lines.h"

#include <QDir>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>

namespace tallix {

namespace {

// One question to another vote process, answered within a short while or not at all.
QJsonObject ask(const QString& socketPath, const QString& question, int waitMs = 300)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(100)) {
        // Nobody behind the name: a process that ended without tidying up.
        if (socket.error() == QLocalSocket::ConnectionRefusedError)
            QFile::remove(socketPath);
        return {};
    }
    socket.write(EncodeJsonLine(QJsonObject{{"ask", question}}));
    socket.flush();
    JsonLineDecoder decoder;
    while (socket.waitForReadyRead(waitMs)) {
        for (const auto& line : decoder.feed(socket.readAll()))
            if (line.ok())
                return line.message;
    }
    return {};
}

} // namespace

VoteInstanceServer::VoteInstanceServer(QString folder, qint64 pid, std::function<bool()> hasEnded,
                                       std::function<void()> closeRequested)
    : folder_(std::move(folder)), pid_(pid), hasEnded_(std::move(hasEnded)), closeRequested_(std::move(closeRequested))
{
}

VoteInstanceServer::~VoteInstanceServer()
{
    if (server_)
        server_->close();
}

QString VoteInstanceServer::Listen()
{
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    const QString path = QDir(folder_).filePath(QStringLiteral("vote-%1.sock").arg(pid_));
    QLocalServer::removeServer(path);
    if (!server_->listen(path))
        return server_->errorString();
    connect(server_.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* s = server_->nextPendingConnection()) {
            auto* channel = new JsonLineChannel(s, s);
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
            connect(channel, &JsonLineChannel::received, this, [this, channel](const QJsonObject& m) {
                const QString q = m.value("ask").toString();
                if (q == "ended") {
                    channel->send(QJsonObject{{"ended", hasEnded_()}});
                } else if (q == "close") {
                    channel->send(QJsonObject{{"closing", true}});
                    if (closeRequested_)
                        closeRequested_();
                }
            });
        }
    });
    return {};
}

QStringList VoteInstanceServer::otherSockets() const
{
    QStringList paths;
    const QString own = QStringLiteral("vote-%1.sock").arg(pid_);
    for (const QString& name : QDir(folder_).entryList({"vote-*.sock"}, QDir::System | QDir::Files))
        if (name != own)
            paths << QDir(folder_).filePath(name);
    return paths;
}

bool VoteInstanceServer::PrevInstance()
{
    for (const QString& path : otherSockets()) {
        const QJsonObject answer = ask(path, "ended");
        if (answer.contains("ended") && !answer.value("ended").toBool())
            return true;
    }
    return false;
}

void VoteInstanceServer::StartAnswering()
{
    if (server_ && server_->isListening())
        return;
    const QString failure = Listen();
    if (!failure.isEmpty() && log)
        log("Other votes cannot reach this one: " + failure);
}

void VoteInstanceServer::CloseOthers()
{
    for (const QString& path : otherSockets())
        ask(path, "close", 100);
}

} // namespace tallix
