#pragma once
// What the figures share: the decks they run on, timing of child processes, and the
// file copy that is the floor of every figure that writes a deck.

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace tallix::bench {

qint64 MonotonicNs();
QString BinDir();
// Where generated decks are kept between runs (they are deterministic).
QString WorkFolder();

// 60 slides, every even one a 12-option (0 to 11) 3D bar question without the growing animation,
// 40 of them carrying noise pictures of 512 KiB: 20 MiB of pictures in all.
QString BigDeck();
constexpr int kBigDeckLastQuestion = 60;
QString BigDeckName();

// The floor of a deck write: the same bytes read, written and flushed to disk.
void CopyFileWithFsync(const QString& from, const QString& to);
void CopyFilePlain(const QString& from, const QString& to);

struct ChildRun {
    qint64 startNs = 0;           // just before the process was started
    qint64 endNs = 0;             // when it was seen to end
    QMap<QString, qint64> marks;  // "TALLIX_BENCH_MARK <name> <ns>" lines of its output
    long maxRssKb = 0;
    int exitCode = -1;            // -1: killed or timed out
    QByteArray output;
};
// Runs a program to its end (killed after timeoutMs), with `env` as its whole environment.
ChildRun RunChild(const QString& program, const QStringList& args, const QStringList& env, int timeoutMs = 60000);

// A private set of folders and a controller stand-in for runs of tallix-vote, so a run
// of the benchmarks never meets a real vote or another run.
class VoteSandbox {
public:
    VoteSandbox();
    ~VoteSandbox();
    QStringList env() const { return env_; }
    QString path(const QString& rel) const { return dir_.filePath(rel); }
    // True when a debug log of the runs says `procedure` is not built yet.
    bool LogSaysNotBuilt(const QString& procedure) const;
    void ClearLogs();

private:
    QTemporaryDir dir_;
    QStringList env_;
    qint64 controllerPid_ = 0;
};

// One sandbox and controller for every figure that runs tallix-vote.
VoteSandbox& SharedSandbox();
void DropSharedSandbox();

} // namespace tallix::bench
