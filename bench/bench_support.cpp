#include "bench_support.h"

#include "deck_tool.h"
#include "foundation/safe_write.h"
#include "host/deck.h"
#include "host/pptx_host.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTextStream>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

namespace tallix::bench {

namespace {

// Bump when the deck's recipe changes, so a kept deck is made again.
const char* const kDeckRecipe = "deck60-v2";
const int kSlides = 60;
const int kPictures = 40;
const int kPictureSide = 418; // 418 x 418 RGB noise: about 512 KiB of PNG each

const QByteArray kQuestionSettings =
    "<tlxfile><vote_info><vType>0</vType><options>12</options><startFrom>0</startFrom></vote_info>"
    "<graph_info><GraphType>3</GraphType><GraphPlotting>0</GraphPlotting></graph_info></tlxfile>";

[[noreturn]] void fail(const QString& why)
{
    throw std::runtime_error(why.toStdString());
}

} // namespace

qint64 MonotonicNs()
{
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return qint64(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

QString BinDir()
{
    return QFileInfo(QFile::symLinkTarget("/proc/self/exe")).absolutePath();
}

QString WorkFolder()
{
    const QString dir = qEnvironmentVariableIsEmpty("TALLIX_BENCH_WORK") ? BinDir() + "/../bench-work"
                                                                          : qEnvironmentVariable("TALLIX_BENCH_WORK");
    QDir().mkpath(dir);
    return QDir(dir).absolutePath();
}

QString BigDeckName()
{
    return QStringLiteral("60 slides, 30 questions, 20 MiB pictures");
}

QString BigDeck()
{
    const QString path = WorkFolder() + "/deck60.pptx";
    const QString stamp = path + ".recipe";
    {
        QFile s(stamp);
        if (QFile::exists(path) && s.open(QIODevice::ReadOnly) && s.readAll() == kDeckRecipe)
            return path;
    }
    QFile::remove(stamp);
    const QString tmp = WorkFolder() + "/deck60.making.pptx";
    if (const QString why = SafeWriteFile(tmp, host::Deck::blank(kSlides).toZip()); !why.isEmpty())
        fail(why);

    // Questions first, while the deck is small: each one is a load and a commit.
    const QString settings = WorkFolder() + "/question12.xml";
    if (const QString why = SafeWriteFile(settings, kQuestionSettings); !why.isEmpty())
        fail(why);
    QStringList answers;
    for (int i = 1; i <= 12; ++i)
        answers << QStringLiteral("Answer %1").arg(i);
    for (int slide = 2; slide <= kSlides; slide += 2) {
        QString outText, errText;
        QTextStream out(&outText), err(&errText);
        // A fixed identity per question, so the deck made again is the same file.
        if (deck::RunDeckTool({"question", tmp, QString::number(slide), "--settings", settings, "--answers",
                               answers.join('|'), "--title", QStringLiteral("Question %1").arg(slide / 2), "--qid",
                               QStringLiteral("bench-question-%1").arg(slide)},
                              out, err) != 0)
            fail("making the bench deck: " + errText);
    }

    host::PptxHost host(tmp);
    host::Presentation& pres = *host.ActivePresentation();
    const QString picture = WorkFolder() + "/picture.png";
    for (int i = 0; i < kPictures; ++i) {
        QImage img(kPictureSide, kPictureSide, QImage::Format_RGB888);
        quint32 x = quint32(i) * 2654435761u + 1;
        for (int y = 0; y < img.height(); ++y) {
            uchar* line = img.scanLine(y);
            for (int b = 0; b < img.width() * 3; ++b) {
                x = x * 1664525u + 1013904223u; // fixed LCG: the same deck on every machine
                line[b] = uchar(x >> 24);
            }
        }
        if (!img.save(picture, "PNG"))
            fail("cannot write " + picture);
        // Pictures on slides 1..40 at a 3-slide stride, so questions carry some too.
        const int slide = 1 + (i * 3) % kSlides;
        pres.GetSlides()->Item(slide)->GetShapes()->AddPicture(picture, 0, -1, 20, 300, 120, 120);
    }
    if (!host.Commit())
        fail("cannot commit the bench deck");
    QFile::remove(picture);
    QFile::remove(path);
    if (!QFile::rename(tmp, path))
        fail("cannot rename the bench deck into place");
    QFile s(stamp);
    s.open(QIODevice::WriteOnly);
    s.write(kDeckRecipe);
    return path;
}

namespace {

void copyImpl(const QString& from, const QString& to, bool sync)
{
    const int in = ::open(QFile::encodeName(from).constData(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(QFile::encodeName(to).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (in < 0 || out < 0)
        fail("cannot copy " + from + " to " + to);
    static thread_local std::vector<char> buf(1 << 20);
    for (;;) {
        const ssize_t n = ::read(in, buf.data(), buf.size());
        if (n <= 0)
            break;
        for (ssize_t done = 0; done < n;) {
            const ssize_t w = ::write(out, buf.data() + done, size_t(n - done));
            if (w <= 0)
                fail("write failed on " + to);
            done += w;
        }
    }
    if (sync)
        ::fsync(out);
    ::close(in);
    ::close(out);
}

} // namespace

void CopyFileWithFsync(const QString& from, const QString& to)
{
    copyImpl(from, to, true);
}

void CopyFilePlain(const QString& from, const QString& to)
{
    copyImpl(from, to, false);
}

ChildRun RunChild(const QString& program, const QStringList& args, const QStringList& env, int timeoutMs)
{
    ChildRun r;
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0)
        fail("pipe failed");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);

    std::vector<QByteArray> argStore{QFile::encodeName(program)}, envStore;
    for (const QString& a : args)
        argStore.push_back(a.toLocal8Bit());
    for (const QString& e : env)
        envStore.push_back(e.toLocal8Bit());
    std::vector<char*> argv, envp;
    for (QByteArray& a : argStore)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    for (QByteArray& e : envStore)
        envp.push_back(e.data());
    envp.push_back(nullptr);

    pid_t pid = 0;
    r.startNs = MonotonicNs();
    const int rc = posix_spawn(&pid, argStore[0].constData(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    if (rc != 0) {
        ::close(pipeFds[0]);
        fail("cannot start " + program + ": " + QString::fromLocal8Bit(std::strerror(rc)));
    }

    const qint64 deadline = r.startNs + qint64(timeoutMs) * 1000000;
    bool open = true;
    int status = 0;
    rusage usage{};
    for (;;) {
        if (open) {
            pollfd p{pipeFds[0], POLLIN, 0};
            if (::poll(&p, 1, 20) > 0) {
                char buf[4096];
                const ssize_t n = ::read(pipeFds[0], buf, sizeof buf);
                if (n > 0) {
                    // Marks are stamped by the child itself; only their parsing happens here.
                    r.output.append(buf, n);
                    continue;
                }
                open = false;
            }
        } else {
            ::usleep(1000);
        }
        const pid_t done = ::wait4(pid, &status, WNOHANG, &usage);
        if (done == pid) {
            r.endNs = MonotonicNs();
            break;
        }
        if (MonotonicNs() > deadline) {
            ::kill(pid, SIGKILL);
            ::wait4(pid, &status, 0, &usage);
            r.endNs = MonotonicNs();
            break;
        }
    }
    // Whatever the child wrote just before it ended; a process it left behind may hold
    // the pipe open, so this must not wait.
    ::fcntl(pipeFds[0], F_SETFL, ::fcntl(pipeFds[0], F_GETFL) | O_NONBLOCK);
    char buf[4096];
    for (ssize_t n; (n = ::read(pipeFds[0], buf, sizeof buf)) > 0;)
        r.output.append(buf, n);
    ::close(pipeFds[0]);

    r.maxRssKb = usage.ru_maxrss;
    r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    for (const QByteArray& line : r.output.split('\n')) {
        const QList<QByteArray> parts = line.trimmed().split(' ');
        if (parts.size() == 3 && parts[0] == "TALLIX_BENCH_MARK")
            r.marks.insert(QString::fromLatin1(parts[1]), parts[2].toLongLong());
    }
    return r;
}

VoteSandbox::VoteSandbox()
{
    for (const char* d : {"xdg", "appdata/tallix", "allusers", "temp", "home"})
        QDir(dir_.path()).mkpath(d);
    QFile::setPermissions(path("xdg"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    env_ << "XDG_RUNTIME_DIR=" + path("xdg") << "TALLIX_CONTROLLER_SOCKET=" + path("xdg/controller.sock")
         << "APPDATA=" + path("appdata") << "ALLUSERSPROFILE=" + path("allusers") << "temp=" + path("temp")
         << "HOME=" + path("home") << "QT_QPA_PLATFORM=offscreen" << "TALLIX_BENCH_MARK=1"
         << "PATH=" + qEnvironmentVariable("PATH") << "LANG=C.UTF-8";
    // The debug log is on so that a run says which procedures are not built yet.
    QFile ini(path("appdata/tallix/tlx.ini"));
    if (ini.open(QIODevice::WriteOnly))
        ini.write("[DEBUG]\r\nLOGEVENTS TO FILE=1\r\n");
    QFile script(path("votes.txt"));
    script.open(QIODevice::WriteOnly);
    script.close();

    std::vector<QByteArray> store{QFile::encodeName(BinDir() + "/tlxctrl"), "--log", path("controller.log").toLocal8Bit(),
                                  "--script", path("votes.txt").toLocal8Bit(), "--idle-exit", "600"};
    std::vector<QByteArray> envStore;
    for (const QString& e : env_)
        envStore.push_back(e.toLocal8Bit());
    std::vector<char*> argv, envp;
    for (QByteArray& a : store)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    for (QByteArray& e : envStore)
        envp.push_back(e.data());
    envp.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    if (posix_spawn(&pid, store[0].constData(), &actions, nullptr, argv.data(), envp.data()) == 0)
        controllerPid_ = pid;
    posix_spawn_file_actions_destroy(&actions);
    for (int i = 0; i < 250 && !QFile::exists(path("xdg/controller.sock")); ++i)
        QThread::msleep(20);
}

VoteSandbox::~VoteSandbox()
{
    RunChild(BinDir() + "/tlxctrl", {"--quit"}, env_, 5000);
    if (controllerPid_ > 0) {
        int status = 0;
        for (int i = 0; i < 100 && ::waitpid(pid_t(controllerPid_), &status, WNOHANG) == 0; ++i)
            QThread::msleep(20);
        if (::waitpid(pid_t(controllerPid_), &status, WNOHANG) == 0) {
            ::kill(pid_t(controllerPid_), SIGKILL);
            ::waitpid(pid_t(controllerPid_), &status, 0);
        }
    }
}

bool VoteSandbox::LogSaysNotBuilt(const QString& procedure) const
{
    const QString needle = "[" + procedure + "] | not built yet";
    for (const QFileInfo& f : QDir(path("temp")).entryInfoList({"tlx_debug_*.log"}, QDir::Files)) {
        QFile file(f.filePath());
        if (file.open(QIODevice::ReadOnly) && QString::fromUtf8(file.readAll()).contains(needle))
            return true;
    }
    return false;
}

namespace {
std::unique_ptr<VoteSandbox>& sandbox()
{
    static std::unique_ptr<VoteSandbox> box;
    return box;
}
} // namespace

VoteSandbox& SharedSandbox()
{
    if (!sandbox())
        sandbox() = std::make_unique<VoteSandbox>();
    return *sandbox();
}

void DropSharedSandbox()
{
    sandbox().reset();
}

void VoteSandbox::ClearLogs()
{
    for (const QFileInfo& f : QDir(path("temp")).entryInfoList({"tlx_debug_*.log"}, QDir::Files))
        QFile::remove(f.filePath());
}

} // namespace tallix::bench
