#include "core/log_lock.h"

#include "core/atomic_file.h"
#include "core/log_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace kolibrino {
namespace {

QString LockedText(const QString& logPath, const QString& holder) {
    const QString who = holder.isEmpty() ? QStringLiteral("ein anderes Kolibrino-Programm")
                                         : QStringLiteral("ein anderes Kolibrino-Programm (Prozess %1)").arg(holder);
    return QStringLiteral("Das Log %1 ist gesperrt: %2 schreibt es gerade.\r\n\r\n"
                          "Zwei Programme auf einem Log würden einander Kontakte überschreiben. "
                          "Dieses Programm schreibt das Log nicht.")
        .arg(QDir::toNativeSeparators(logPath), who);
}

// The process number the holder wrote into the lock file, or the empty text.
QString HolderOf(int fd) {
    char buf[32] = {};
    const ssize_t n = ::pread(fd, buf, sizeof buf - 1, 0);
    if (n <= 0) return {};
    const QString text = QString::fromLatin1(buf, int(n)).trimmed();
    bool ok = false;
    text.toLongLong(&ok);
    return ok ? text : QString();
}

} // namespace

QString LockFileOf(const QString& logPath) {
    const QFileInfo target(WriteTarget(logPath));
    return target.absolutePath() + QStringLiteral("/.") + target.fileName() + QStringLiteral(".lock");
}

LogLock::LogLock(int fd, QString logPath, QString lockPath)
    : fd_(fd), logPath_(std::move(logPath)), lockPath_(std::move(lockPath)) {}

LogLock::~LogLock() {
    if (fd_ >= 0) ::close(fd_); // drops the lock
}

bool LogLock::Covers(const QString& logPath) const {
    return LockFileOf(logPath) == lockPath_;
}

std::shared_ptr<LogLock> LogLock::Take(const QString& logPath, QString* error) {
    const QString lockPath = LockFileOf(logPath);
    const QByteArray name = QFile::encodeName(lockPath);
    const int fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        const int err = errno;
        if (error)
            *error = QStringLiteral("Sperrdatei kann nicht angelegt werden: %1: %2")
                         .arg(QDir::toNativeSeparators(lockPath), QString::fromLocal8Bit(std::strerror(err)));
        return nullptr;
    }
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = 0;
    fl.l_len = 0; // the whole file
    if (::fcntl(fd, F_OFD_SETLK, &fl) != 0) {
        const int err = errno;
        const QString holder = HolderOf(fd);
        ::close(fd);
        if (error) {
            if (err == EAGAIN || err == EACCES)
                *error = LockedText(logPath, holder);
            else
                *error = QStringLiteral("Das Log %1 kann nicht gesperrt werden: %2")
                             .arg(QDir::toNativeSeparators(logPath), QString::fromLocal8Bit(std::strerror(err)));
        }
        return nullptr;
    }
    // The holder's number, for the refusal another program shows; a failure here costs
    // only the number in that text.
    const QByteArray pid = QByteArray::number(qint64(::getpid())) + '\n';
    if (::ftruncate(fd, 0) == 0) {
        [[maybe_unused]] const ssize_t n = ::pwrite(fd, pid.constData(), size_t(pid.size()), 0);
    }
    return std::shared_ptr<LogLock>(new LogLock(fd, logPath, lockPath));
}

bool LockedByOther(const QString& logPath, QString* error) {
    QString e;
    const std::shared_ptr<LogLock> probe = LogLock::Take(logPath, &e);
    if (error) *error = e;
    return !probe && e.contains(QStringLiteral("gesperrt"));
}

QString TakeWriteLock(Model& m) {
    const QString path = CurrentLogPath(m);
    if (m.WriteLock && m.WriteLock->Covers(path)) return {};
    QString error;
    std::shared_ptr<LogLock> lock = LogLock::Take(path, &error);
    if (!lock) return error;
    m.WriteLock = std::move(lock);
    return {};
}

bool TakeWriteLock(Model& m, Dialogs& dialogs) {
    const QString error = TakeWriteLock(m);
    if (error.isEmpty()) return true;
    dialogs.MsgBox(error, Msg::Exclamation);
    return false;
}

} // namespace kolibrino
