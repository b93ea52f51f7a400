#include "controller_link.h"

#include "foundation/vb_error.h"

#include <QStringList>

namespace tallix {

void RecordingControllerLink::SendCommand(const QString& text, const QJsonObject& extra)
{
    if (failSends)
        Raise(ErrNo::HostUnexpected, QStringLiteral("The controller is not running"));
    sent.append(text);
    extras.append(extra);
    if (onCommand)
        onCommand(text);
}

void RecordingControllerLink::NotifyVoteLoaded()
{
    if (failSends)
        Raise(ErrNo::HostUnexpected, QStringLiteral("The controller is not running"));
    ++voteLoadedCount;
}

} // namespace tallix
