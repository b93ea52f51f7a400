#include "vote_app.h"

#include "app/ui/app_forms.h"
#include "app/ui/operator_script.h"
#include "app/ui/program_windows.h"
#include "app/ui/vote_instances.h"
#include "controller/comms.h"
#include "controller/socket_controller_link.h"
#include "foundation/clock.h"
#include "foundation/environment.h"
#include "foundation/event_pump.h"
#include "foundation/logs.h"
#include "foundation/settings_file.h"
#include "foundation/ui/qt_dialogs.h"
#include "foundation/wire/controller_socket.h"
#include "host/package.h"
#include "host/pptx_host.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/vote_main.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <memory>
#include <unistd.h>

namespace tallix {

namespace {

const char* const kUsage =
    "Usage: tallix-vote [--deck FILE] [--show-slide N | --no-show] [--operator-script FILE] LAUNCH\n"
    "\n"
    "Runs one vote over a presentation deck, from the question's settings on the slide to\n"
    "a chart picture placed back on it, then exits.\n"
    "\n"
    "  LAUNCH                  the launch string: ACTION,SLIDE[,GROUP[,COUNTER[,MODE]]]\n"
    "                          e.g. TLXVOTE,7 (a vote on slide 7), TLXGROUP,7,2, TLXVOTE,ALL\n"
    "  --deck FILE             the presentation (default: $TALLIX_DECK)\n"
    "  --show-slide N          a slide show runs and stands on slide N (default: the launch slide)\n"
    "  --no-show               no slide show runs\n"
    "  --operator-script FILE  the operator's keys and clicks at set times (docs/operator-script.md)\n"
    "  --help                  this text\n"
    "\n"
    "Exit status: 0 after an orderly end of the vote, 2 when the vote cannot start\n"
    "(no readable deck, bad options).\n";

struct Options {
    QString deck;
    QString launch;
    QString operatorScript;
    int showSlide = 0;   // 0: the launch slide
    bool noShow = false;
};

int fail(const QString& message)
{
    std::fprintf(stderr, "tallix-vote: %s\n", qPrintable(message));
    return 2;
}

// Returns -1 to go on, else an exit status.
int parseOptions(const QStringList& args, Options& o)
{
    for (int i = 1; i < args.size(); ++i) {
        const QString& a = args[i];
        const auto value = [&](QString& into) {
            if (i + 1 >= args.size())
                return false;
            into = args[++i];
            return true;
        };
        QString v;
        if (a == "--help" || a == "-h") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (a == "--deck") {
            if (!value(o.deck))
                return fail("--deck needs a file");
        } else if (a == "--operator-script") {
            if (!value(o.operatorScript))
                return fail("--operator-script needs a file");
        } else if (a == "--show-slide") {
            bool ok = false;
            if (!value(v) || (o.showSlide = v.toInt(&ok), !ok) || o.showSlide < 1)
                return fail("--show-slide needs a slide number");
        } else if (a == "--no-show") {
            o.noShow = true;
        } else if (a.startsWith("--")) {
            return fail("unknown option " + a + "\n" + QString::fromLatin1(kUsage));
        } else if (o.launch.isNull()) {
            o.launch = a;
        } else {
            return fail("more than one launch string: \"" + o.launch + "\" and \"" + a + "\"");
        }
    }
    if (o.deck.isEmpty())
        o.deck = qEnvironmentVariable("TALLIX_DECK");
    if (o.launch.isNull())
        o.launch = QString();
    return -1;
}

// TALLIX_BENCH_MARK (any value): the benchmarks time this process from outside and need
// to know when it reached a point. Each point prints one line on stdout,
// "TALLIX_BENCH_MARK <name> <CLOCK_MONOTONIC nanoseconds>": "handover" when Main has
// handed the vote over to the event loop, "key" at the first key the operator presses.
bool benchMarks()
{
    static const bool on = !qEnvironmentVariableIsEmpty("TALLIX_BENCH_MARK");
    return on;
}

void benchMark(const char* name)
{
    if (!benchMarks())
        return;
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    std::printf("TALLIX_BENCH_MARK %s %lld\n", name, (long long)ts.tv_sec * 1000000000LL + ts.tv_nsec);
    std::fflush(stdout);
}

class FirstKeyMark : public QObject {
public:
    bool eventFilter(QObject* o, QEvent* e) override
    {
        if (e->type() == QEvent::KeyPress) {
            benchMark("key");
            QCoreApplication::instance()->removeEventFilter(this);
        }
        return QObject::eventFilter(o, e);
    }
};

int launchSlide(const QString& launch)
{
    const QStringList parts = launch.split(',');
    return parts.size() > 1 ? std::max(1, parts[1].trimmed().toInt()) : 1;
}

} // namespace

int RunVoteProgram(int argc, char** argv)
{
    // With no display at all the program still runs a whole vote, offscreen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName("tallix-vote");
    QApplication::setQuitOnLastWindowClosed(false);

    Options options;
    if (const int status = parseOptions(QApplication::arguments(), options); status >= 0)
        return status;
    if (options.deck.isEmpty())
        return fail("no presentation: give --deck FILE or set TALLIX_DECK");

    QList<OperatorAction> script;
    if (!options.operatorScript.isEmpty()) {
        QFile f(options.operatorScript);
        if (!f.open(QIODevice::ReadOnly))
            return fail("cannot read the operator script " + options.operatorScript);
        QString error;
        if (!ParseOperatorScript(QString::fromUtf8(f.readAll()), script, error))
            return fail(options.operatorScript + ": " + error);
    }

    static SystemClock clock;
    static QtEventPump pump;
    static QtDialogs dialogs;
    static RunContext ctx;
    ctx.clock = &clock;
    ctx.pump = &pump;
    ctx.dialogs = &dialogs;
    ctx.env = Environment::fromProcess();
    ctx.app = AppInfo::forThisProcess();
    ctx.commandLine = options.launch;

    host::HostConfig config;
    config.showRunning = !options.noShow;
    config.showSlide = options.showSlide > 0 ? options.showSlide : launchSlide(options.launch);
    config.primaryScreenRect = [] {
        const QScreen* s = QGuiApplication::primaryScreen();
        return s ? s->geometry() : QRect(0, 0, 1920, 1080);
    };
    config.log = [](const QString& line) { WriteDebugLog(ctx, 0, line, "Host", "PresentationHost"); };
    config.runMacro = [](const QString& macro, const QString& argument) {
        // The add-in's macros run as commands configured in tlx.ini, detached, never waited for.
        // A macro run without an argument is given the vote's slide.
        const QString command = ReadIniSetting(ctx.env, "MACROS", macro, QString(), QString());
        WriteDebugLog(ctx, 0, "Run macro " + macro + (command.isEmpty() ? " (none configured)" : ": " + command),
                      "Host", "Run");
        if (!command.isEmpty()) {
            QStringList parts = QProcess::splitCommand(command);
            const QString program = parts.takeFirst();
            QProcess::startDetached(program, parts << (argument.isEmpty() ? QString::number(ctx.currentSlide) : argument));
        }
    };

    static std::unique_ptr<host::PptxHost> ppt;
    try {
        ppt = std::make_unique<host::PptxHost>(options.deck, config);
    } catch (const std::exception& e) {
        return fail("no presentation: " + QString::fromLocal8Bit(e.what()));
    }
    ctx.oPPT = ppt.get();
    ctx.CommitPresentation = [] { ppt->Commit(); };
    ctx.ReloadPresentation = [] { ppt->ReloadIfChanged(); };
    ctx.terminator = [](int code) {
        // The deck is written before anything else can go wrong; nothing of the vote is lost.
        const QString unsaved = ppt->Detach();
        if (!unsaved.isEmpty())
            std::fprintf(stderr, "tallix-vote: the deck was busy; the result is kept in %s\n", qPrintable(unsaved));
        std::fflush(nullptr);
        ::_exit(code);
    };

    static AppForms forms(ctx);
    ctx.forms = &forms;
    static SocketControllerLink link;
    static std::unique_ptr<Comms> comms;
    link.onMalformed = [](const QString& why) { WriteDebugLog(ctx, 0, "Malformed controller line: " + why, "comms", "link"); };
    forms.Register(FormName::comms, {[] {
                                         const QString failure = link.Connect(ctx.env, ctx.app.folder);
                                         if (!failure.isEmpty())
                                             WriteDebugLog(ctx, 0, failure, "comms", "Form_Load", 1);
                                         comms = std::make_unique<Comms>(ctx, link);
                                         ctx.comms = comms.get();
                                         comms->Form_Load();
                                     },
                                     [] {
                                         ctx.comms = nullptr;
                                         comms.reset();
                                     }});
    RegisterProgramWindows(ctx, forms);

    // Main's second-instance step starts the answering, so that two votes started
    // together never close each other.
    static std::unique_ptr<VoteInstanceServer> instances;
    const QString folder = RuntimeFolder(ctx.env);
    if (EnsurePrivateFolder(folder).isEmpty()) {
        instances = std::make_unique<VoteInstanceServer>(
            folder, ctx.app.processId, [] { return ctx.voteEndRecorded || !ctx.voteRunning; },
            [] { QTimer::singleShot(0, [] { FullShutDown(ctx); }); });
        instances->log = [](const QString& line) { WriteDebugLog(ctx, 0, line, "Vote", "Main"); };
        ctx.instances = instances.get();
    }

    static FirstKeyMark firstKey;
    if (benchMarks())
        app.installEventFilter(&firstKey);
    QTimer::singleShot(0, [] {
        Main(ctx);
        benchMark("handover");
        // With no window left to drive it, the vote cannot go on: end it in order.
        const QStringList open = ctx.forms->LoadedForms();
        if (open.isEmpty() || open == QStringList{FormName::comms})
            FullShutDown(ctx);
    });
    PlayOperatorScript(script);
    return app.exec();
}

} // namespace tallix
