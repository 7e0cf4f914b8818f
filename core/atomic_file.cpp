#include "core/atomic_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kolibrino {
namespace {

QString SysError(const QString& what, const QString& path, int err) {
    return QStringLiteral("%1 %2: %3")
        .arg(what, QDir::toNativeSeparators(path), QString::fromLocal8Bit(std::strerror(err)));
}

// Owns a POSIX file descriptor.
class Fd {
public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() {
        if (fd_ >= 0) ::close(fd_);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return fd_; }
    int release() {
        const int f = fd_;
        fd_ = -1;
        return f;
    }

private:
    int fd_;
};

} // namespace

// The file a write of path lands in: a symbolic link is followed to its target (the
// operator's link stays a link), however many links deep.
QString WriteTarget(const QString& path) {
    QFileInfo info(path);
    for (int depth = 0; depth < 40 && info.isSymLink(); ++depth) {
        const QString next = info.symLinkTarget();
        if (next.isEmpty()) break;
        info = QFileInfo(next);
    }
    return info.absoluteFilePath();
}

QString WriteFileAtomic(const QString& path, const QByteArray& bytes) {
    const QFileInfo info(WriteTarget(path));
    const QString dir = info.absolutePath();
    const QByteArray tmp =
        QFile::encodeName(dir + QStringLiteral("/.") + info.fileName() + QStringLiteral(".tmp"));
    const QByteArray target = QFile::encodeName(info.absoluteFilePath());
    // The new file keeps the mode of the one it replaces; a read-only file is refused.
    mode_t mode = 0644;
    struct stat old {};
    if (::stat(target.constData(), &old) == 0) {
        mode = old.st_mode & 07777;
        if ((mode & 0222) == 0 || (::geteuid() != 0 && ::access(target.constData(), W_OK) != 0))
            return SysError(QStringLiteral("Datei ist schreibgeschützt:"), path, EACCES);
    }
    {
        Fd fd(::open(tmp.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        if (fd.get() < 0)
            return SysError(QStringLiteral("Datei kann nicht geschrieben werden:"), path, errno);
        if (::fchmod(fd.get(), mode) != 0) {
            const int err = errno;
            ::unlink(tmp.constData());
            return SysError(QStringLiteral("Datei kann nicht geschrieben werden:"), path, err);
        }
        const char* p = bytes.constData();
        qsizetype left = bytes.size();
        while (left > 0) {
            const ssize_t n = ::write(fd.get(), p, size_t(left));
            if (n < 0) {
                if (errno == EINTR) continue;
                const int err = errno;
                ::unlink(tmp.constData());
                return SysError(QStringLiteral("Fehler beim Schreiben von"), path, err);
            }
            p += n;
            left -= n;
        }
        if (::fsync(fd.get()) != 0) {
            const int err = errno;
            ::unlink(tmp.constData());
            return SysError(QStringLiteral("Fehler beim Speichern von"), path, err);
        }
        if (::close(fd.release()) != 0) {
            const int err = errno;
            ::unlink(tmp.constData());
            return SysError(QStringLiteral("Fehler beim Schließen von"), path, err);
        }
    }
    if (::rename(tmp.constData(), target.constData()) != 0) {
        const int err = errno;
        ::unlink(tmp.constData());
        return SysError(QStringLiteral("Datei kann nicht ersetzt werden:"), path, err);
    }
    Fd dfd(::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dfd.get() >= 0) ::fsync(dfd.get());
    return {};
}

QByteArray ReadWholeFile(const QString& path, bool* ok, QString* error) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (ok) *ok = false;
        if (error)
            *error = QStringLiteral("Datei kann nicht gelesen werden: %1 (%2)")
                         .arg(QDir::toNativeSeparators(path), f.errorString());
        return {};
    }
    QByteArray data = f.readAll();
    if (f.error() != QFileDevice::NoError) { // an I/O error part way: nothing half read counts
        if (ok) *ok = false;
        if (error)
            *error = QStringLiteral("Datei kann nicht gelesen werden: %1 (%2)")
                         .arg(QDir::toNativeSeparators(path), f.errorString());
        return {};
    }
    if (ok) *ok = true;
    return data;
}

bool CopyFileTo(const QString& source, const QString& target, bool overwrite) {
    if (!overwrite && QFileInfo::exists(target)) return false;
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(source, &ok);
    return ok && WriteFileAtomic(target, bytes).isEmpty();
}

bool FileExists(const QString& path) {
    const QFileInfo fi(path);
    return fi.exists() && fi.isFile();
}

bool FolderExists(const QString& path) {
    if (path.isEmpty()) return false;
    const QFileInfo fi(path);
    return fi.exists() && fi.isDir();
}

} // namespace kolibrino
