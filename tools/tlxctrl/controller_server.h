#pragma once
// The controller socket: accepts any number of clients, hands their JSON lines to the
// core and carries its events back.

#include <QList>
#include <QLocalServer>
#include <QObject>
#include <QString>

class QLocalSocket;

namespace tallix {

class ControllerCore;
class JsonLineChannel;

class ControllerServer : public QObject {
    Q_OBJECT
public:
    explicit ControllerServer(ControllerCore& core, QObject* parent = nullptr);
    ~ControllerServer() override;

    // Listens at path, readable and writable by this user only. A stale socket file
    // must have been cleared by the caller. Returns an empty string on success.
    QString listen(const QString& path);
    // Stops listening, removes the socket file and drops every client.
    void close();
    int clientCount() const { return int(clients_.size()); }

private:
    void accept();
    void drop(JsonLineChannel* channel);

    ControllerCore& core_;
    QLocalServer server_;
    QList<JsonLineChannel*> clients_;
};

// The longest path a Unix socket address can hold.
constexpr int kMaxSocketPathBytes = 107;

} // namespace tallix
