#include "core/atomic_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdlib>
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
    const QByteArray target = QFile::encodeName(info.absoluteFilePath());
    // The new file keeps the mode of the one it replaces; a read-only file is refused.
    mode_t mode = 0644;
    struct stat old {};
    if (::stat(target.constData(), &old) == 0) {
        mode = old.st_mode & 07777;
        if ((mode & 0222) == 0 || (::geteuid() != 0 && ::access(target.constData(), W_OK) != 0))
            return SysError(QStringLiteral("Datei ist schreibgeschützt:"), path, EACCES);
    }
    // A temporary name of its own for every write: two writers never share one.
    QByteArray tmp = QFile::encodeName(dir + QStringLiteral("/.") + info.fileName()) + ".XXXXXX.tmp";
    {
        Fd fd(::mkostemps(tmp.data(), 4, O_CLOEXEC));
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
    return SyncFolder(dir, path);
}

QString SyncFolder(const QString& dir, const QString& path) {
    // The rename is only safe from a power cut once the folder is on the disk too. The
    // new file is in place already; a failure here says that it may not survive one.
    Fd dfd(::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    int err = 0;
    if (dfd.get() < 0)
        err = errno;
    else if (::fsync(dfd.get()) != 0)
        err = errno;
    // EINVAL: a file system that has no way to sync a folder (nothing to wait for).
    if (err == 0 || err == EINVAL) return {};
    return SysError(QStringLiteral("Ordner kann nicht auf die Festplatte geschrieben werden (die Datei ist "
                                   "ersetzt, übersteht aber einen Stromausfall vielleicht nicht):"),
                    path, err);
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

bool CopyFileTo(const QString& source, const QString& target, bool overwrite, QString* error) {
    if (!overwrite && QFileInfo::exists(target)) {
        if (error) *error = SysError(QStringLiteral("Datei existiert bereits:"), target, EEXIST);
        return false;
    }
    bool ok = false;
    QString e;
    const QByteArray bytes = ReadWholeFile(source, &ok, &e);
    if (ok) e = WriteFileAtomic(target, bytes);
    if (error) *error = e;
    return e.isEmpty();
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
