#pragma once
// The `.pptx` host: the deck file plays the presentation that the host program
// keeps open. The deck is loaded once; changes are made in memory and recorded, and
// a commit writes them under a lock file beside the deck. If another process wrote
// the deck meanwhile, the commit reloads it and makes this process's changes again
// on it, so neither process loses the other's work. Start-up writes nothing.

#include "deck_host.h"

namespace tallix::host {

class PptxHost : public DeckHost {
public:
    // Throws PackageError for a file that is not a usable deck.
    PptxHost(const QString& path, HostConfig config = {}, const PackageLimits& limits = {});
    ~PptxHost() override;

    QString FilePath() const override { return path_; }
    void SavePresentation() override { Commit(); }
    void Run(const QString& macro, const QString& argument = QString()) override; // commits first: a macro may read the deck
    int perform(const Op& op, const Clip* clip = nullptr) override;

    // Writes the pending changes. False when the lock was not had within the wait or
    // the write failed; the changes then stay pending for the next commit.
    bool Commit(int waitMs = -1);
    // The end of the process: commit waiting up to 10 s, else keep the model beside
    // the deck as <name>.unsaved-<pid>.pptx. Returns that file's path, or "".
    QString Detach(int waitMs = 10000);
    // Takes in another process's committed changes, making ours again on them.
    bool ReloadIfChanged();

    int PendingCount() const { return int(pending_.size()); }
    QString LockPath() const;
    void SetLockWait(int ms) { lockWaitMs_ = ms; }

private:
    struct Identity {
        qint64 device = -1, inode = -1, size = -1, mtimeNs = -1;
        bool operator==(const Identity&) const = default;
    };
    static Identity identityOf(const QString& path);
    bool reloadAndReplay();

    QString path_;
    PackageLimits limits_;
    Identity loaded_;
    QList<QPair<Op, Clip>> pending_;
    int lockWaitMs_ = 1000;
};

} // namespace tallix::host
