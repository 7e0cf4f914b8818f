// Replacing the running program after an update. A new program arrives as
// "<name>.bin" in DataFolder; it cannot replace itself while it runs, so a generated
// POSIX shell script does it after the program has ended, in this order: wait until the
// process with the given id has ended; replace the executable (its real path), keeping
// its mode bits, by a copy renamed over it; delete the source; start the new program;
// delete the script itself. Without a source the script only starts the program and
// deletes itself.
//
// Called by the update window (window thread). Failures come back as a German text
// (empty on success); nothing throws. Every path in the script is single-quoted, so
// blanks, quotes, "$" and umlauts (written in the file system's encoding) are safe.
#pragma once

#include <QByteArray>
#include <QString>

namespace kolibrino::upkeep {

// A shell word that the shell reads back as exactly these bytes.
QByteArray ShellQuote(const QByteArray& bytes);
// The script's text for the source, the target, the id of the process to wait for,
// the target's mode (octal, e.g. 0755) and the script's own path.
QByteArray ReplacementScript(const QString& source, const QString& target, qint64 pid, int mode,
                             const QString& scriptPath);
// The script's name: the source's name and ".sh".
QString ReplacementScriptPath(const QString& source);
// Writes the script beside the source (executable by its owner). Returns the empty
// text or a German description of the failure.
QString WriteReplacementScript(const QString& source, const QString& target, qint64 pid);
// Starts the script detached (/bin/sh, no window, no wait). False when it cannot start.
bool StartReplacementScript(const QString& scriptPath);

// The running executable's real path (links resolved).
QString ExecutablePath();
// Whether files can be created in a folder (tried for real, so it holds for root too).
bool FolderWritable(const QString& folder);

} // namespace kolibrino::upkeep
