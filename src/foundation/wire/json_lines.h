#pragma once
// JSON lines over a local socket: one JSON object per line, UTF-8, each line ended by
// "\n". Texts travel as JSON strings, so CR LF inside them survives the framing.
// A line that is not a JSON object is reported and dropped; the stream goes on.

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>

class QLocalSocket;

namespace tallix {

// One complete JSON object, compact, with its "\n".
QByteArray EncodeJsonLine(const QJsonObject& message);

// Splits a byte stream into lines and parses each; a partial line waits in the buffer
// for the rest.
class JsonLineDecoder {
public:
    struct Line {
        QJsonObject message;
        QString error; // empty for a good line
        bool ok() const { return error.isEmpty(); }
    };

    // A line that grows past this without its "\n" is reported and skipped up to the
    // next "\n", so a peer that never ends a line cannot exhaust memory.
    static constexpr qsizetype kDefaultMaxLine = 64 * 1024 * 1024;

    explicit JsonLineDecoder(qsizetype maxLine = kDefaultMaxLine) : maxLine_(maxLine) {}

    QList<Line> feed(const QByteArray& bytes);
    qsizetype pendingBytes() const { return buffer_.size(); }

private:
    QByteArray buffer_;
    qsizetype maxLine_;
    bool skipping_ = false;
};

// A connected socket speaking JSON lines. Owns nothing but its decoder: the socket's
// lifetime stays with whoever made it.
class JsonLineChannel : public QObject {
    Q_OBJECT
public:
    explicit JsonLineChannel(QLocalSocket* socket, QObject* parent = nullptr);

    // Fails at once, with lastError() set, when the peer is gone or the write fails,
    // so a lost link is seen at the send that needed it.
    bool send(const QJsonObject& message);
    QString lastError() const { return lastError_; }
    QLocalSocket* socket() const { return socket_; }

    // Delivers every whole line the socket holds now. Runs on the socket's readyRead, and
    // may be called from inside a handler (a wait for a reply); lines keep their order.
    void readAvailable();

signals:
    void received(const QJsonObject& message);
    void malformed(const QString& reason);
    void disconnected();

private:
    QLocalSocket* socket_;
    JsonLineDecoder decoder_;
    QList<JsonLineDecoder::Line> pending_; // read, not yet delivered
    QString lastError_;
};

// The message shapes of the controller link: field names and event names.
namespace wire {
inline constexpr char kCommand[] = "command";
inline constexpr char kNotify[] = "notify";
inline constexpr char kEvent[] = "event";
inline constexpr char kItem[] = "item";
inline constexpr char kText[] = "text";
inline constexpr char kBase[] = "base";
inline constexpr char kMessage[] = "message";
inline constexpr char kCount[] = "count";
inline constexpr char kActiveKeypads[] = "activeKeypads";
inline constexpr char kControl[] = "control";

inline constexpr char kFromTLXCtrl[] = "FromTLXCtrl";
inline constexpr char kBaseError[] = "FromTLXCtrlBaseError";
inline constexpr char kBaseFeedback[] = "FromTLXCtrlBaseFeedback";
inline constexpr char kStartVoteCount[] = "FromCtrlFormBaseStationStartVoteCount";
inline constexpr char kAllowedVotesItem[] = "txt_allowedVotes";

QJsonObject Command(const QString& text);
QJsonObject Notify(const QString& name);
QJsonObject FromTLXCtrl(const QString& text);
QJsonObject BaseError(int base, const QString& message);
QJsonObject BaseFeedback(int base, const QString& text);
QJsonObject StartVoteCount(int count);
QJsonObject ItemText(const QString& item, const QString& text);
} // namespace wire

} // namespace tallix
