#include "pptx_host.h"

#include "foundation/safe_write.h"
#include "foundation/vb_error.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallix::host {

namespace {

// An exclusive lock on the lock file beside the deck, for one commit.
class DeckLock {
public:
    DeckLock(const QString& path, int waitMs)
    {
        fd_ = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (fd_ < 0)
            return;
        QDeadlineTimer deadline(qMax(0, waitMs));
        for (;;) {
            if (::flock(fd_, LOCK_EX | LOCK_NB) == 0) {
                held_ = true;
                return;
            }
            if (deadline.hasExpired())
                return;
            QThread::msleep(5);
        }
    }
    ~DeckLock()
    {
        if (fd_ >= 0) {
            if (held_)
                ::flock(fd_, LOCK_UN);
            ::close(fd_);
        }
    }
    bool held() const { return held_; }

private:
    int fd_ = -1;
    bool held_ = false;
};

} // namespace

PptxHost::PptxHost(const QString& path, HostConfig config, const PackageLimits& limits)
    : DeckHost(Deck::fromFile(path, limits), std::move(config)), path_(path), limits_(limits)
{
    loaded_ = identityOf(path);
}

PptxHost::~PptxHost() = default;

PptxHost::Identity PptxHost::identityOf(const QString& path)
{
    struct stat st;
    Identity id;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return id;
    id.device = qint64(st.st_dev);
    id.inode = qint64(st.st_ino);
    id.size = qint64(st.st_size);
    id.mtimeNs = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    return id;
}

QString PptxHost::LockPath() const { return path_ + QStringLiteral(".lock"); }

int PptxHost::perform(const Op& op, const Clip* clip)
{
    const int id = DeckHost::perform(op, clip);
    pending_.append({op, clip ? *clip : Clip{}});
    return id;
}

void PptxHost::Run(const QString& macro, const QString& argument)
{
    Commit();
    DeckHost::Run(macro, argument);
}

bool PptxHost::reloadAndReplay()
{
    Deck fresh;
    try {
        fresh = Deck::fromFile(path_, limits_);
    } catch (const PackageError& e) {
        log(QStringLiteral("Deck reload failed: %1").arg(e.message()));
        return false;
    }
    for (const auto& [op, clip] : pending_) {
        try {
            fresh.apply(op, &clip);
        } catch (const VbError& e) {
            // The other process removed what the change was about; it has no target now.
            log(QStringLiteral("Change not replayed on the reloaded deck: %1").arg(e.description()));
        }
    }
    deck_ = std::move(fresh);
    loaded_ = identityOf(path_);
    return true;
}

bool PptxHost::ReloadIfChanged()
{
    if (identityOf(path_) == loaded_)
        return false;
    DeckLock lock(LockPath(), lockWaitMs_);
    if (!lock.held())
        return false;
    return reloadAndReplay();
}

bool PptxHost::Commit(int waitMs)
{
    if (pending_.isEmpty())
        return true;
    DeckLock lock(LockPath(), waitMs < 0 ? lockWaitMs_ : waitMs);
    if (!lock.held()) {
        log(QStringLiteral("Deck is locked by another process; %1 change(s) stay pending").arg(pending_.size()));
        return false;
    }
    if (!(identityOf(path_) == loaded_) && !reloadAndReplay())
        return false;
    // The zip is written straight into the file beside the deck: a large deck never
    // passes through memory on its way to the disk.
    const QString failure = SafeWriteFileWith(path_, [this](const QString& temp) { return deck_.writeZipFile(temp); });
    if (!failure.isEmpty()) {
        log(QStringLiteral("Deck not written: %1").arg(failure));
        return false;
    }
    loaded_ = identityOf(path_);
    pending_.clear();
    return true;
}

QString PptxHost::Detach(int waitMs)
{
    if (Commit(waitMs))
        return {};
    // Nothing is lost: the whole model goes beside the deck for the presenter to pick up.
    const QFileInfo info(path_);
    const QString unsaved = info.absolutePath() + '/' + info.completeBaseName() +
                            QStringLiteral(".unsaved-%1.pptx").arg(QCoreApplication::applicationPid());
    QString failure;
    try {
        failure = SafeWriteFile(unsaved, deck_.toZip());
    } catch (const PackageError& e) {
        failure = e.message();
    }
    if (!failure.isEmpty()) {
        log(QStringLiteral("Unsaved changes lost: %1").arg(failure));
        return {};
    }
    log(QStringLiteral("Deck could not be written; changes kept in %1").arg(unsaved));
    pending_.clear();
    return unsaved;
}

} // namespace tallix::host
