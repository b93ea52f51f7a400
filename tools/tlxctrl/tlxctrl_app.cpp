#include "tlxctrl_app.h"

#include "controller_config.h"
#include "controller_core.h"
#include "controller_server.h"
#include "text_answers.h"
#include "vote_script.h"
#include "vote_simulator.h"

#include "foundation/clock.h"
#include "foundation/environment.h"
#include "foundation/wire/controller_socket.h"
#include "foundation/wire/json_lines.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLockFile>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

namespace tallix {

namespace {

constexpr int kExitBadInput = 2;
constexpr int kExitFailure = 1;
// A script's !die stands for a crash: no goodbye, the socket file left behind.
constexpr int kExitDied = 3;

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char b = 1;
    [[maybe_unused]] const auto n = ::write(signalPipe[1], &b, 1);
}

void say(const QString& text)
{
    std::fprintf(stderr, "tlxctrl: %s\n", text.toLocal8Bit().constData());
}

int runQuit(const QString& path)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(2000)) {
        say(QString("no controller listens on %1").arg(path));
        return kExitFailure;
    }
    socket.write(EncodeJsonLine({{wire::kControl, "quit"}}));
    socket.waitForBytesWritten(2000);
    if (socket.state() != QLocalSocket::UnconnectedState && !socket.waitForDisconnected(3000)) {
        say(QString("the controller on %1 did not end within 3 s").arg(path));
        return kExitFailure;
    }
    return 0;
}

// The socket's folder: the per-user runtime folder is made private; a folder named
// through the environment is created private when missing and otherwise left alone.
QString prepareFolder(const Environment& env, const QString& path)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (QDir::cleanPath(folder) == QDir::cleanPath(RuntimeFolder(env)) || !QFileInfo::exists(folder))
        return EnsurePrivateFolder(folder);
    return {};
}

bool somethingListens(const QString& path)
{
    QLocalSocket probe;
    probe.connectToServer(path);
    return probe.waitForConnected(300);
}

} // namespace

int TlxctrlMain(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("tlxctrl");

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Controller stand-in: owns pretend keypad bases and speaks the controller protocol on a local socket.");
    parser.addHelpOption();
    const QCommandLineOption configOpt("config", "Read the bases from FILE instead of tlxctrl.ini.", "FILE");
    const QCommandLineOption simulateOpt(
        "simulate",
        "N keypads vote at random after StartVote, RATE records a second (default 10): an option within those announced; "
        "in VoteType=11 a whole number of up to Limits digits; in VoteType=99 with CPPOptions=1 a number with two "
        "decimals, up to Limits digits before the point; in VoteType=7 a text answer.",
        "N[:RATE]");
    const QCommandLineOption textsOpt(
        "texts",
        "With --simulate: the answers of a text vote, one a line (UTF-8, blank lines skipped; semicolons, commas and "
        "control characters become blanks, brackets are dropped). Default: a built-in list.",
        "FILE");
    const QCommandLineOption multiOpt("multi", "With --simulate: in a text vote each keypad sends up to N answers, one record each (default 1).", "N");
    const QCommandLineOption scriptOpt("script", "Send the timed texts of FILE after each StartVote; a line that starts with @N only after the N-th.", "FILE");
    const QCommandLineOption logOpt("log", "Append a time-stamped line per received command to FILE (default: stderr).", "FILE");
    const QCommandLineOption seedOpt("seed", "Seed of the simulated room (default: from the time).", "N");
    const QCommandLineOption idleOpt("idle-exit", "Exit after SECONDS with no client (default 600; 0: never).", "SECONDS", "600");
    const QCommandLineOption heartbeatOpt("heartbeat", "Send each base's heartbeat every MS milliseconds of an open vote (default 500; 0: none).", "MS", "500");
    const QCommandLineOption socketOpt("socket", "Listen at PATH instead of the usual controller socket.", "PATH");
    const QCommandLineOption quitOpt("quit", "Tell the running controller to end, and wait for it.");
    const QCommandLineOption detachOpt("detach", "Leave the starter's session, as a controller started on first use does; without --log, log beside the socket.");
    const QCommandLineOption printOpt("print-baseinfo", "Print the BaseInfo reply the configuration gives, and exit.");
    parser.addOptions({configOpt, simulateOpt, textsOpt, multiOpt, scriptOpt, logOpt, seedOpt, idleOpt, heartbeatOpt, socketOpt, quitOpt, detachOpt, printOpt});
    if (!parser.parse(app.arguments())) {
        say(parser.errorText());
        return kExitBadInput;
    }
    if (parser.isSet("help")) {
        std::fputs(parser.helpText().toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        say(QString("unexpected argument \"%1\"; see --help").arg(parser.positionalArguments().front()));
        return kExitBadInput;
    }

    const Environment env = Environment::fromProcess();
    const QString path = parser.isSet(socketOpt) ? parser.value(socketOpt) : ControllerSocketPath(env);
    if (parser.isSet(quitOpt))
        return runQuit(path);

    const QString configPath = parser.isSet(configOpt) ? parser.value(configOpt) : FindControllerConfig(env);
    if (parser.isSet(configOpt) && !QFileInfo::exists(configPath)) {
        say(QString("configuration %1 does not exist").arg(configPath));
        return kExitBadInput;
    }
    ConfigResult config = LoadControllerConfig(configPath);
    if (!config.ok()) {
        for (const QString& e : config.errors)
            say(e);
        return kExitBadInput;
    }
    if (parser.isSet(printOpt)) {
        std::fputs(BuildBaseInfoReply(config.config).toUtf8().constData(), stdout);
        return 0;
    }

    CoreOptions options;
    if (parser.isSet(simulateOpt)) {
        QString error;
        if (!ParseSimulateArg(parser.value(simulateOpt), options.simulate, error)) {
            say(error);
            return kExitBadInput;
        }
    } else if (parser.isSet(textsOpt) || parser.isSet(multiOpt)) {
        say(QString("--%1 needs --simulate").arg(parser.isSet(textsOpt) ? "texts" : "multi"));
        return kExitBadInput;
    }
    if (parser.isSet(textsOpt)) {
        const TextAnswers texts = LoadTextAnswers(parser.value(textsOpt));
        if (!texts.ok()) {
            say(texts.error);
            return kExitBadInput;
        }
        if (texts.cleaned > 0)
            say(QString("%1: %2 had characters a record cannot carry; they were replaced or dropped")
                    .arg(parser.value(textsOpt), texts.cleaned == 1 ? "1 line" : QString("%1 lines").arg(texts.cleaned)));
        options.simulate.texts = texts.answers;
    }
    if (parser.isSet(multiOpt)) {
        bool ok = false;
        options.simulate.multi = parser.value(multiOpt).toInt(&ok);
        if (!ok || options.simulate.multi < 1 || options.simulate.multi > 100) {
            say(QString("--multi \"%1\" is not a whole number from 1 to 100").arg(parser.value(multiOpt)));
            return kExitBadInput;
        }
    }
    if (parser.isSet(scriptOpt)) {
        ScriptResult script = LoadVoteScript(parser.value(scriptOpt));
        if (!script.ok()) {
            for (const QString& e : script.errors)
                say(e);
            return kExitBadInput;
        }
        options.script = script.entries;
    }
    bool ok = true;
    if (parser.isSet(seedOpt)) {
        options.seed = parser.value(seedOpt).toUInt(&ok);
        if (!ok) {
            say(QString("--seed \"%1\" is not a whole number").arg(parser.value(seedOpt)));
            return kExitBadInput;
        }
    } else {
        options.seed = std::random_device{}();
    }
    const int idleSeconds = parser.value(idleOpt).toInt(&ok);
    if (!ok || idleSeconds < 0 || idleSeconds > 24 * 3600) {
        say(QString("--idle-exit \"%1\" is not a number of seconds from 0 to 86400").arg(parser.value(idleOpt)));
        return kExitBadInput;
    }
    options.idleExitMs = idleSeconds * 1000;
    options.heartbeatMs = parser.value(heartbeatOpt).toInt(&ok);
    if (!ok || options.heartbeatMs < 0 || options.heartbeatMs > 60 * 1000) {
        say(QString("--heartbeat \"%1\" is not a number of milliseconds from 0 to 60000").arg(parser.value(heartbeatOpt)));
        return kExitBadInput;
    }

    if (const QString error = prepareFolder(env, path); !error.isEmpty()) {
        say(error);
        return kExitFailure;
    }
    // One controller per socket: a second one started by a racing vote process bows out.
    QLockFile lock(path + ".lock");
    lock.setStaleLockTime(0);
    if (!lock.tryLock(0)) {
        say(QString("another tlxctrl already serves %1").arg(path));
        return 0;
    }
    if (somethingListens(path)) {
        say(QString("something already listens on %1").arg(path));
        return 0;
    }
    QLocalServer::removeServer(path); // left behind by a controller that died

    if (parser.isSet(detachOpt))
        ::setsid();

    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0) {
        say("cannot set up signal handling");
        return kExitFailure;
    }
    QSocketNotifier signalNotifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, &app, [] {
        char b = 0;
        [[maybe_unused]] const auto n = ::read(signalPipe[0], &b, 1);
        QCoreApplication::quit();
    });
    struct sigaction sa {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    ::sigaction(SIGTERM, &sa, nullptr);
    ::sigaction(SIGINT, &sa, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    // A detached controller has no terminal to write to: its log goes beside its socket.
    QString logPath = parser.value(logOpt);
    if (logPath.isEmpty() && parser.isSet(detachOpt))
        logPath = QFileInfo(path).absolutePath() + "/tlxctrl.log";
    SystemClock clock;
    CommandLog log(clock, logPath);
    ControllerCore core(config.config, options, clock, log);
    core.setQuitHandler([] { QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit); });
    core.setDieHandler([] { ::_exit(kExitDied); });
    ControllerServer server(core);
    if (const QString error = server.listen(path); !error.isEmpty()) {
        say(error);
        return kExitFailure;
    }
    log.write(QString("listening on %1 (pid %2, configuration %3)")
                  .arg(path)
                  .arg(QCoreApplication::applicationPid())
                  .arg(configPath.isEmpty() ? "built-in" : configPath));

    const int rc = app.exec();
    server.close();
    log.write("stopped");
    return rc;
}

} // namespace tallix
