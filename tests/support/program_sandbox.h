#pragma once
// Folders and an environment of their own for the tests that start the real programs, so
// that runs side by side (ctest -j, or several in one test) never meet: their own runtime
// folder and controller socket, settings, temporary files and home.

#include <QDir>
#include <QTemporaryDir>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

namespace tallix::testing {

inline QString ProgramPath(const QString& program) { return QStringLiteral(TALLIX_BINARY_DIR "/bin/") + program; }

struct ProgramSandbox {
    QString root;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();

    // Makes the folders under `root` and points the environment at them.
    void setUp(const QString& folder)
    {
        root = folder;
        for (const char* d : {"xdg", "appdata/tallix", "allusers", "temp", "home"})
            QDir(root).mkpath(QString::fromLatin1(d));
        QFile::setPermissions(path("xdg"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        env.insert("XDG_RUNTIME_DIR", path("xdg"));
        env.insert("TALLIX_CONTROLLER_SOCKET", controllerSocket());
        env.insert("APPDATA", path("appdata"));
        env.insert("ALLUSERSPROFILE", path("allusers"));
        env.insert("temp", path("temp"));
        env.insert("HOME", path("home"));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.remove("TALLIX_DECK");
    }

    QString path(const QString& name) const { return root + QLatin1Char('/') + name; }
    QString controllerSocket() const { return path("xdg/controller.sock"); }

    QString write(const QString& name, const QByteArray& text) const
    {
        QFile f(path(name));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        return f.fileName();
    }

    // Runs one of our programs to its end within `ms`: its exit code, -1 if it had to be
    // killed, -2 if it crashed.
    int run(const QString& program, const QStringList& args, int ms = 30000, QString* out = nullptr) const
    {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(ProgramPath(program), args);
        if (!p.waitForFinished(ms)) {
            p.kill();
            p.waitForFinished(2000);
            return -1;
        }
        if (out)
            *out = QString::fromUtf8(p.readAllStandardOutput());
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    }

    // Starts the controller stand-in and waits, at most five seconds, until it listens.
    bool startController(QProcess& controller, const QStringList& args) const
    {
        controller.setProcessEnvironment(env);
        controller.start(ProgramPath("tlxctrl"), args);
        if (!controller.waitForStarted(3000))
            return false;
        for (int i = 0; i < 250 && !QFile::exists(controllerSocket()); ++i)
            QThread::msleep(20);
        return QFile::exists(controllerSocket());
    }

    // Asks the controller to quit, and ends it if it does not.
    void stopController(QProcess& controller) const
    {
        run("tlxctrl", {"--quit"}, 5000);
        if (controller.state() != QProcess::NotRunning && !controller.waitForFinished(2000)) {
            controller.kill();
            controller.waitForFinished(2000);
        }
    }
};

// A test over a deck of `slides` slides in a sandbox of its own, with a controller stand-in
// that the test may start and that is always stopped at the end.
class ProgramTest : public ::testing::Test {
protected:
    explicit ProgramTest(int slides = 3) : slides_(slides) {}

    QTemporaryDir dir;
    ProgramSandbox box;
    QProcessEnvironment& env = box.env;
    QProcess controller;

    void SetUp() override
    {
        box.setUp(dir.path());
        ASSERT_EQ(run("tallix-deck", {"new", deck(), "--slides", QString::number(slides_)}), 0);
    }
    void TearDown() override
    {
        box.stopController(controller);
        // A report the programs wrote that the test did not expect fails it, as in-process.
        QFile log(box.path("appdata/tallix/Err.log"));
        if (!expectErrorReports && log.open(QIODevice::ReadOnly))
            ADD_FAILURE() << "unexpected error report: " << log.readAll().left(600).toStdString();
    }

    // Set by a test whose programs are meant to write error reports.
    bool expectErrorReports = false;

    QString deck() const { return dir.filePath("deck.pptx"); }
    QString write(const QString& name, const QByteArray& text) { return box.write(name, text); }
    int run(const QString& program, const QStringList& args, int ms = 30000, QString* out = nullptr)
    {
        return box.run(program, args, ms, out);
    }
    // Puts a four-answer question on `slide`.
    void question(int slide, const QByteArray& settings, const QString& answers = "Red|Green|Blue|Yellow")
    {
        ASSERT_EQ(run("tallix-deck", {"question", deck(), QString::number(slide), "--settings", write("q.xml", settings),
                                      "--answers", answers, "--title", "Favourite colour?"}),
                  0);
    }

private:
    int slides_;
};

} // namespace tallix::testing
