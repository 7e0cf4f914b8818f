// One writer per log. A program (window or command) that writes a log holds its write
// lock: an open-file-description lock (fcntl F_OFD_SETLK) on a small hidden file beside
// the log, ".<log name>.lock". The system drops the lock when the holder's descriptor
// closes, so a program that dies (kill -9 included) never leaves a stale lock behind;
// the file itself stays and means nothing by itself. The holder writes its process
// number into the file, so that the refusal can name it.
//
// Any thread; a LogLock is owned by one Model (Model::WriteLock) or held for the length
// of one write. Take() fails with a German text: another program holds the lock, or the
// lock file cannot be made (then no write would succeed either).
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QString>
#include <memory>

namespace kolibrino {

class LogLock {
public:
    // The lock of the log at logPath (links followed to the file a write replaces).
    // nullptr with *error set when another program holds it or it cannot be taken.
    [[nodiscard]] static std::shared_ptr<LogLock> Take(const QString& logPath, QString* error);
    ~LogLock();
    LogLock(const LogLock&) = delete;
    LogLock& operator=(const LogLock&) = delete;

    // Whether this lock is the one of the log at logPath.
    [[nodiscard]] bool Covers(const QString& logPath) const;
    const QString& LogPath() const { return logPath_; }

private:
    LogLock(int fd, QString logPath, QString lockPath);
    int fd_;
    QString logPath_;
    QString lockPath_;
};

// The hidden lock file of the log at logPath.
QString LockFileOf(const QString& logPath);
// Whether another program holds the lock of logPath now (a probe: takes and drops it).
[[nodiscard]] bool LockedByOther(const QString& logPath, QString* error = nullptr);
// Makes m hold the lock of its current log (the old one is dropped once the new one is
// held). A log that another program holds is refused with the German box (48) and false;
// m keeps what it held.
[[nodiscard]] bool TakeWriteLock(Model& m, Dialogs& dialogs);
[[nodiscard]] QString TakeWriteLock(Model& m); // the same without a box; the text, empty on success

} // namespace kolibrino
