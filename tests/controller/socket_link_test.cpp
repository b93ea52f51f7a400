#include "controller/comms.h"
#include "controller/socket_controller_link.h"
#include "foundation/environment.h"
#include "foundation/wire/json_lines.h"
#include "support/qt_print.h"
#include "support/test_context.h"
#include "vote/forms.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

// The votes-cast window as far as the controller's events reach it. Its base-error box
// is modal: `whileOpen` is the box's own event loop, until the test answers it.
class ModalVotesCast final : public VotesCastForm {
public:
    void ShowBaseErrorMessage(short base, const QString& m) override
    {
        errors << QString::number(base) + ":" + m;
        if (whileOpen)
            whileOpen();
    }
    int BaseIndicatorCount() const override { return 2; }
    qint32 BaseIndicatorColour(int i) const override { return colours[i]; }
    void SetBaseIndicatorColour(int i, qint32 c) override { colours[i] = c; }
    void ShowBaseIndicator(int) override {}
    void LogBaseResponded(short) override {}
    void SetCounterLabel(const QString& c, int) override { label = c; }

    QStringList errors;
    qint32 colours[2] = {0, 0};
    QString label;
    std::function<void()> whileOpen;
};

// `comms` over the socket link, its handlers bound as its Form_Load binds them.
struct SocketRun {
    TestRun run;
    RunContext& ctx = run.ctx;
    SocketControllerLink link;
    Comms comms{ctx, link};
    ModalVotesCast form;

    SocketRun()
    {
        ctx.comms = &comms;
        ctx.vCast = &form;
        ctx.ini.showBaseStatusDuringLiveVote = true;
        ctx.terminator = [](int code) { throw ProcessExit{code}; };
        ctx.keypadUniverse = 10;
        ctx.maxKeypads = 10;
        ctx.optionCount = 4;
        ctx.startFrom = 1;
        ctx.allowAbstain = true;
        ctx.controllerVoteType = "9";
        ctx.participants.redim(ctx.keypadUniverse);
        link.FromTLXCtrl = [this](const QString& t) { comms.oTLx_FromTLXCtrl(t); };
        link.FromTLXCtrlBaseError = [this](short b, const QString& m) { comms.oTLx_FromTLXCtrlBaseError(b, m); };
        link.FromTLXCtrlBaseFeedback = [this](short b, const QString& t) { comms.oTLx_FromTLXCtrlBaseFeedback(b, t); };
        reset();
    }
    ~SocketRun() { ctx.vCast = nullptr; }

    // A new vote on the same run.
    void reset()
    {
        ResetVoteArrays(ctx);
        ctx.votesCast = 0;
        comms.txt_VoteCounter = "0";
        form.errors.clear();
        form.colours[0] = form.colours[1] = 0;
    }

    // What a vote has taken in so far, as one text to compare.
    QString state() const
    {
        QStringList votes;
        for (int k = 0; k <= ctx.votes.ubound(); ++k)
            votes << ctx.votes(k);
        return votes.join(' ') + " | cast " + QString::number(ctx.votesCast) + " | records " + comms.txt_VoteCounter +
               " | base0 " + QString::number(form.colours[0], 16) + " | " + form.errors.join('/');
    }
};

TEST(SocketControllerLink, ARecordThatArrivesWhileABaseErrorBoxIsOpenIsCountedWhenItCloses)
{
    QTemporaryDir dir;
    QLocalServer server;
    ASSERT_TRUE(server.listen(dir.filePath("c.sock")));
    SocketRun r;
    ASSERT_TRUE(
        r.link.Connect(Environment::fromMap({{"TALLIX_CONTROLLER_SOCKET", dir.filePath("c.sock")}}), dir.path()).isEmpty());
    ASSERT_TRUE(server.waitForNewConnection(2000));
    QLocalSocket* controller = server.nextPendingConnection();

    bool answered = false;
    r.form.whileOpen = [&] {
        // The controller goes on while the box is up, then falls silent.
        controller->write(EncodeJsonLine(wire::FromTLXCtrl("[2;3],\r\n")));
        ASSERT_TRUE(controller->waitForBytesWritten(2000));
        for (int turn = 0; turn < 10; ++turn) {
            QCoreApplication::processEvents();
            r.run.t.pump.RunPosted();
        }
        answered = true;
    };
    controller->write(EncodeJsonLine(wire::FromTLXCtrl("[1;2],\r\n")) +
                      EncodeJsonLine(wire::BaseError(0, "Base 0 not responding")));
    controller->flush();
    const QDeadlineTimer by(3000);
    while (!answered && !by.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        r.run.t.pump.RunPosted();
    }
    ASSERT_TRUE(answered);
    // No more traffic: a few turns of the event loop, no waiting.
    for (int turn = 0; turn < 5; ++turn)
        r.run.t.pump.DoEvents();
    EXPECT_EQ(r.ctx.votesCast, 2);
    EXPECT_EQ(r.ctx.votes(1), "3");
    EXPECT_EQ(r.comms.txt_VoteCounter, "2");
}

// However the reads cut the stream, even inside a line or a character, the same votes
// come out; the decoder runs between the two reads.
TEST(SocketControllerLink, ABurstSplitAcrossTwoReadsAtAnyByteDecodesTheSame)
{
    const QByteArray stream =
        EncodeJsonLine(wire::FromTLXCtrl("[1;2],[2;3],\r\n")) + EncodeJsonLine(wire::BaseFeedback(0, "OK")) +
        EncodeJsonLine(wire::FromTLXCtrl("[3;4],[1;1],\r\n[4;X],\r\n")) +
        EncodeJsonLine(wire::BaseError(1, QStringLiteral("Basis 1 f\u00e4llt aus \u2013 \U0001F4E1"))) +
        EncodeJsonLine(wire::FromTLXCtrl("[5;0],[6;9],[7;2],\r\n"));
    SocketRun r;
    const auto decode = [&](qsizetype cut) {
        r.reset();
        JsonLineDecoder reader;
        for (const QByteArray& read : {stream.left(cut), stream.mid(cut)}) {
            for (const JsonLineDecoder::Line& line : reader.feed(read))
                r.link.dispatch(line.message);
            r.run.t.pump.DoEvents();
        }
        return r.state();
    };
    const QString whole = decode(stream.size());
    EXPECT_EQ(whole, "1 3 4 -2 0 -1 2 -1 -1 -1  | cast 6 | records 7 | base0 c0ffc0 | "
                     "1:Basis 1 f\u00e4llt aus \u2013 \U0001F4E1");
    for (qsizetype cut = 0; cut < stream.size(); ++cut)
        ASSERT_EQ(decode(cut), whole) << "cut after byte " << cut;
}

TEST(SocketControllerLink, MalformedLinesAndUnknownEventsAreDroppedAndTheRestGoesOn)
{
    QTemporaryDir dir;
    QLocalServer server;
    ASSERT_TRUE(server.listen(dir.filePath("c.sock")));
    SocketControllerLink link;
    QStringList texts;
    QStringList allowed;
    int malformed = 0;
    link.FromTLXCtrl = [&](const QString& t) { texts << t; };
    link.AllowedVotes = [&](const QString& t) { allowed << t; };
    link.onMalformed = [&](const QString&) { ++malformed; };
    const QString failure =
        link.Connect(Environment::fromMap({{"TALLIX_CONTROLLER_SOCKET", dir.filePath("c.sock")}}), dir.path());
    ASSERT_TRUE(failure.isEmpty()) << failure.toStdString();
    ASSERT_TRUE(server.waitForNewConnection(2000));
    QLocalSocket* controller = server.nextPendingConnection();
    controller->write("{not json\n"
                      "{\"event\": \"Frobnicate\", \"text\": \"ignored\"}\n"
                      "{\"item\": \"somethingElse\", \"text\": \"ignored\"}\n"
                      "{\"event\": \"FromTLXCtrl\", \"text\": \"[1;2],\\r\\n\", \"newField\": 7}\n"
                      "{\"item\": \"txt_allowedVotes\", \"text\": \"3\"}\n");
    controller->flush();
    const QDeadlineTimer by(3000);
    while (allowed.isEmpty() && !by.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    EXPECT_EQ(texts, QStringList({"[1;2],\r\n"}));
    EXPECT_EQ(allowed, QStringList({"3"}));
    EXPECT_EQ(malformed, 1);
    EXPECT_NO_THROW(link.SendCommand("options=4"));
}

} // namespace
