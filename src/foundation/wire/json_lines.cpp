#include "json_lines.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QLocalSocket>

#include <algorithm>

namespace tallix {

QByteArray EncodeJsonLine(const QJsonObject& message)
{
    // Compact JSON escapes control characters inside strings, so the only raw "\n" is ours.
    QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact);
    line.append('\n');
    return line;
}

QList<JsonLineDecoder::Line> JsonLineDecoder::feed(const QByteArray& bytes)
{
    QList<Line> out;
    // Only the new bytes can hold the next "\n": a long line arriving in small pieces
    // is scanned once, not once per piece.
    qsizetype scanFrom = buffer_.size();
    buffer_.append(bytes);
    qsizetype start = 0;
    for (;;) {
        const qsizetype nl = buffer_.indexOf('\n', std::max(start, scanFrom));
        if (nl < 0)
            break;
        QByteArray line = buffer_.mid(start, nl - start);
        start = nl + 1;
        if (skipping_) {
            skipping_ = false;
            continue;
        }
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.trimmed().isEmpty())
            continue;
        QJsonParseError err{};
        const QJsonDocument doc = QJsonDocument::fromJson(line, &err);
        if (err.error != QJsonParseError::NoError) {
            out.append({{}, QString("malformed JSON line (%1 at offset %2): %3")
                                .arg(err.errorString())
                                .arg(err.offset)
                                .arg(QString::fromUtf8(line.left(200)))});
        } else if (!doc.isObject()) {
            out.append({{}, QString("JSON line is not an object: %1").arg(QString::fromUtf8(line.left(200)))});
        } else {
            out.append({doc.object(), {}});
        }
    }
    buffer_.remove(0, start);
    if (buffer_.size() > maxLine_) {
        if (!skipping_)
            out.append({{}, QString("line longer than %1 bytes dropped").arg(maxLine_)});
        skipping_ = true;
        buffer_.clear();
    }
    return out;
}

JsonLineChannel::JsonLineChannel(QLocalSocket* socket, QObject* parent)
    : QObject(parent), socket_(socket)
{
    connect(socket_, &QLocalSocket::readyRead, this, &JsonLineChannel::readAvailable);
    connect(socket_, &QLocalSocket::disconnected, this, &JsonLineChannel::disconnected);
}

bool JsonLineChannel::send(const QJsonObject& message)
{
    if (socket_->state() != QLocalSocket::ConnectedState) {
        lastError_ = "the controller link is not connected";
        return false;
    }
    const QByteArray line = EncodeJsonLine(message);
    if (socket_->write(line) != line.size()) {
        lastError_ = socket_->errorString();
        return false;
    }
    socket_->flush();
    // flush() hands the bytes to the kernel; a peer that vanished shows up here.
    if (socket_->state() != QLocalSocket::ConnectedState) {
        lastError_ = "the controller link was lost";
        return false;
    }
    return true;
}

void JsonLineChannel::readAvailable()
{
    // A handler may run a nested event loop (a message box). The socket reads what
    // arrives meanwhile but does not signal it again inside its own signal, so it is
    // taken here when the handler returns, not left waiting for more traffic.
    do {
        pending_.append(decoder_.feed(socket_->readAll()));
        while (!pending_.isEmpty()) {
            const JsonLineDecoder::Line line = pending_.takeFirst();
            if (line.ok())
                emit received(line.message);
            else
                emit malformed(line.error);
        }
    } while (socket_->bytesAvailable() > 0);
}

namespace wire {

QJsonObject Command(const QString& text) { return {{kCommand, text}}; }
QJsonObject Notify(const QString& name) { return {{kNotify, name}}; }
QJsonObject FromTLXCtrl(const QString& text) { return {{kEvent, kFromTLXCtrl}, {kText, text}}; }
QJsonObject BaseError(int base, const QString& message)
{
    return {{kEvent, kBaseError}, {kBase, base}, {kMessage, message}};
}
QJsonObject BaseFeedback(int base, const QString& text)
{
    return {{kEvent, kBaseFeedback}, {kBase, base}, {kText, text}};
}
QJsonObject StartVoteCount(int count) { return {{kEvent, kStartVoteCount}, {kCount, count}}; }
QJsonObject ItemText(const QString& item, const QString& text) { return {{kItem, item}, {kText, text}}; }

} // namespace wire

} // namespace tallix
