#pragma once
// The channel to the controller process, whatever carries it: commands go out one text
// at a time, in order; text and base events come back through the handlers.

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace tallix {

class ControllerLink {
public:
    virtual ~ControllerLink() = default;
    // The command operation; raises VbError when the controller cannot be reached.
    // `extra` carries the fields of the one command that has any (ReadActiveKeypads).
    virtual void SendCommand(const QString& text, const QJsonObject& extra = {}) = 0;
    // The notification that the question is loaded; raises like SendCommand.
    virtual void NotifyVoteLoaded() = 0;

    std::function<void(const QString& text)> FromTLXCtrl;
    std::function<void(short base, const QString& message)> FromTLXCtrlBaseError;
    std::function<void(short base, const QString& text)> FromTLXCtrlBaseFeedback;
    std::function<void(short count)> FromCtrlFormBaseStationStartVoteCount;
    // The one item the controller may set.
    std::function<void(const QString& text)> AllowedVotes;
};

// For tests: records what is sent; fails on demand, as a controller that went away.
class RecordingControllerLink final : public ControllerLink {
public:
    void SendCommand(const QString& text, const QJsonObject& extra = {}) override;
    void NotifyVoteLoaded() override;

    QStringList sent;
    QList<QJsonObject> extras;
    int voteLoadedCount = 0;
    bool failSends = false;
    // Called after each command is recorded: a scripted controller answers here.
    std::function<void(const QString& text)> onCommand;
};

} // namespace tallix
