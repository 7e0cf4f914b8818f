// The backup copy of the log, under the ".ALT" scheme: the old copy is kept as
// "<target>.ALT" until the new copy is complete, so a failed copy never leaves the
// target without a good one.
//
// Window thread only. Failures are told to the operator through Dialogs and never stop
// the logging: the contact is already in the log file.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <functional>

namespace kolibrino {

// Free bytes of the file system that holds path's folder; -1 when that folder is
// missing or not mounted.
double DriveFreeBytes(const QString& path);

using FreeSpaceProbe = std::function<double(const QString&)>;

// Copies source to target. extraBackupPath is the operator's backup folder from the
// settings (it must exist when it is set).
void BackupFile(Dialogs& dialogs, const QString& source, const QString& target,
                const QString& extraBackupPath, const FreeSpaceProbe& freeSpace = DriveFreeBytes);

} // namespace kolibrino
