// The update list KOLBOUpd.txt and its comparison with the installed versions.
//
// Pure logic: the update window, the command line and the tests call it on the window
// (or main) thread. Nothing here touches the network or shows anything. Parsing never
// fails and never throws: a line that counts but is no valid entry, or whose file name
// is not one the update may replace, is refused with its number and a German reason,
// so that the caller can name it to the operator.
#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <vector>

namespace kolibrino::upkeep {

// One published file, in the list's field order.
struct UpdateEntry {
    QString Name; // as it stands in the list (trimmed at use)
    int Version = 0;
    QString Datum; // digits as in the list
    int Size = 0;
    QString Md5;
    QString Info;
};

// The list's name on the server and in Tmp/.
inline const char* const kUpdateListName = "KOLBOUpd.txt";

// Whether a line of the list counts: trimmed, longer than 10 characters and not
// starting with ";", ":" or "'".
bool IsListLine(const QString& line);
// One counting line split on "|" without trimming. A line whose name is empty, whose
// version or size is no whole number from 0 to 2147483647, or whose MD5 is not 32
// hexadecimal digits, is no entry (false). A missing info field is empty.
bool ParseListLine(const QString& line, UpdateEntry& entry);
// The whole list text (lines ending in CR LF, LF or CR); refused lines are left out.
std::vector<UpdateEntry> ParseUpdateList(const QString& text);

// A line of the list that counts but is not used, and why.
struct RefusedLine {
    int number = 0; // 1 for the list's first line
    QString text;   // the line as it stands, control characters shown as <0xNN>
    QString reason; // German, one sentence
};
// The same, with the refused lines.
std::vector<UpdateEntry> ParseUpdateList(const QString& text, std::vector<RefusedLine>& refused);
// Why a line that counts is not used; empty when it is a valid entry with a file name
// the update may replace.
QString RefusedLineReason(const QString& line);

// The files an update may replace: the data files the program ships and reads, and the
// program itself (kProgramUpdateName, which goes to the program's folder).
QStringList UpdatableFiles();
inline const char* const kProgramUpdateName = "kolibrino.bin";
// Why a file name of the list may not be used; empty when it is a plain file name of
// UpdatableFiles() (compared without case). A name is plain when it has no folder part
// ("/" or "\\"), no "..", no leading dot and no control character.
QString RefusedNameReason(const QString& name);
// The spelling under which a file of UpdatableFiles() lies in DataFolder (the list may
// write it in another case); the name itself when it is none of them.
QString DataFileName(const QString& name);
// The operator's message for refused lines (one box for all of them).
QString RefusedLinesText(const std::vector<RefusedLine>& refused);

// Version recorded for a file in the settings (its section, key "Version"); 0 when none.
int InstalledVersion(const QString& iniFile, const QString& name);
// Writes the version under the file's name as it stands in the list.
void NoteInstalledVersion(const QString& iniFile, const QString& name, int version);
// Indices of the entries whose version is greater than the installed one.
std::vector<int> OfferedEntries(const std::vector<UpdateEntry>& entries, const QString& iniFile);

// "123 Bytes", "12,35 KB", "1,20 MB" with the locale's decimal sign.
QString SizeText(int size, const QLocale& locale);
// "01052026" -> "01" sep "05" sep "2026".
QString DateText(const QString& digits, QChar separator);
// The caption of an entry's check box, lines joined with "\n".
QString EntryCaption(const UpdateEntry& e, const QLocale& locale, QChar dateSeparator);
// One line of the command line's --check: name, version, size.
QString EntryLine(const UpdateEntry& e);

// The running program as a number: major in 2 digits, minor in 2, revision in 3.
int RunningVersionNumber();
// Whether a list entry is the program itself: the executable's name and ".BIN", or
// kProgramUpdateName.
bool IsProgramEntry(const UpdateEntry& e, const QString& executableName);

} // namespace kolibrino::upkeep
