#include "controller_server.h"

#include "controller_core.h"
#include "foundation/wire/json_lines.h"

#include <QLocalSocket>

namespace tallix {

ControllerServer::ControllerServer(ControllerCore& core, QObject* parent) : QObject(parent), core_(core)
{
    connect(&server_, &QLocalServer::newConnection, this, &ControllerServer::accept);
    core_.setBroadcast([this](const QJsonObject& event) {
        // A copy: a failed send may drop a client from the list.
        const QList<JsonLineChannel*> clients = clients_;
        for (JsonLineChannel* c : clients)
            c->send(event);
    });
}

ControllerServer::~ControllerServer()
{
    core_.setBroadcast({});
    close();
}

QString ControllerServer::listen(const QString& path)
{
    if (path.toLocal8Bit().size() > kMaxSocketPathBytes)
        return QString("socket path %1 is longer than %2 bytes").arg(path).arg(kMaxSocketPathBytes);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_.listen(path))
        return QString("cannot listen on %1: %2").arg(path, server_.errorString());
    return {};
}

void ControllerServer::close()
{
    server_.close();
    const QList<JsonLineChannel*> clients = clients_;
    clients_.clear();
    for (JsonLineChannel* c : clients) {
        c->disconnect(this);
        c->socket()->disconnect(this);
        c->socket()->abort();
        c->socket()->deleteLater();
    }
}

void ControllerServer::accept()
{
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        auto* channel = new JsonLineChannel(socket, socket);
        clients_.append(channel);
        connect(channel, &JsonLineChannel::received, this, [this, channel](const QJsonObject& message) {
            core_.handleMessage(message, [channel](const QJsonObject& reply) { channel->send(reply); });
        });
        connect(channel, &JsonLineChannel::malformed, this, [this](const QString& reason) { core_.handleMalformed(reason); });
        connect(channel, &JsonLineChannel::disconnected, this, [this, channel] { drop(channel); });
        core_.clientCountChanged(clientCount());
    }
}

void ControllerServer::drop(JsonLineChannel* channel)
{
    if (!clients_.removeOne(channel))
        return;
    channel->socket()->deleteLater();
    core_.clientCountChanged(clientCount());
}

} // namespace tallix
