// Disks that fail for the tests: a write limit for this process, and a small tmpfs.
//
// WriteBlock makes every write of this process beyond its first byte fail with EFBIG
// ("Datei zu groß") until it is lifted: the next rewrite of a log fails, while reading
// goes on. SmallDisk mounts a tmpfs of a few pages (or a few inodes) on a folder, so
// that writes there end with ENOSPC as on a full disk; it needs the right to mount
// (root on the build machine), and Mounted() says whether it got it.
//
// Test thread only.
#pragma once

#include <QDir>
#include <QFile>
#include <QString>
#include <QtTest>
#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>

namespace kolibrino::test {

class WriteBlock {
public:
    WriteBlock() {
        std::signal(SIGXFSZ, SIG_IGN); // the failed write answers EFBIG instead
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        struct rlimit tight = saved_;
        tight.rlim_cur = 1;
        active_ = ::setrlimit(RLIMIT_FSIZE, &tight) == 0;
    }
    ~WriteBlock() { Lift(); }
    WriteBlock(const WriteBlock&) = delete;
    WriteBlock& operator=(const WriteBlock&) = delete;
    void Lift() {
        if (active_) ::setrlimit(RLIMIT_FSIZE, &saved_);
        active_ = false;
    }
    bool Active() const { return active_; }

private:
    struct rlimit saved_ {};
    bool active_ = false;
};

class SmallDisk {
public:
    // options: "size=64k" or "nr_inodes=4" and the like.
    SmallDisk(const QString& folder, const QString& options) : folder_(folder) {
        QDir().mkpath(folder);
        const QByteArray opts = options.toLatin1();
        mounted_ = ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, opts.constData()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) ::umount2(QFile::encodeName(folder_).constData(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    bool Mounted() const { return mounted_; }
    // Fills what is left of the disk with one file of that name.
    void Fill(const QString& name = QStringLiteral("fuell.bin")) {
        QFile f(folder_ + QLatin1Char('/') + name);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Append)) return;
        const QByteArray block(4096, 'x');
        while (f.write(block) == block.size() && f.flush()) {}
        const QByteArray one(1, 'x');
        while (f.write(one) == 1 && f.flush()) {}
    }

private:
    QString folder_;
    bool mounted_ = false;
};

} // namespace kolibrino::test
