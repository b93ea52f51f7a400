#pragma once
// Vote processes find each other through sockets of their own beside the controller's:
// vote-<pid>.sock in the per-user runtime folder. A process answers whether it has
// recorded its end, and takes a close request as the close of its main window.

#include "vote/instances.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QLocalServer;

namespace tallix {

class VoteInstanceServer final : public QObject, public VoteInstances {
    Q_OBJECT
public:
    VoteInstanceServer(QString folder, qint64 pid, std::function<bool()> hasEnded, std::function<void()> closeRequested);
    ~VoteInstanceServer() override;

    // Starts answering; an empty string on success, else the reason.
    QString Listen();
    bool PrevInstance() override;
    void CloseOthers() override;
    void StartAnswering() override;

    std::function<void(const QString&)> log;

private:
    QStringList otherSockets() const;
    QString folder_;
    qint64 pid_;
    std::function<bool()> hasEnded_;
    std::function<void()> closeRequested_;
    std::unique_ptr<QLocalServer> server_;
};

} // namespace tallix
