// The log file (".KOLBO") and the district table ("bez_koord.txt").
//
// LoadLog() parses a log file into the model; BuildLogText() makes the file's text
// from the model; WriteLogFile() replaces the file on disk with LogText. The district
// table is read once at start by LoadBezirkTable().
//
// Window thread only. Failures are told through Dialogs as the functions say; none
// throws, and a failed load leaves an empty model.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QDateTime>

namespace kolibrino {

class TimeSource;

// The message a damaged or foreign log file gives.
QString LoadFailureText(const QString& path);

// Parses the file at path into m.Header, m.LogRecords, m.CallIndex and m.LogText, and
// sets what follows from the header (ApplyHeaderRules). Returns 1 on success, 0 after a
// failure (stop box shown, model emptied). Counters, district tallies and state
// stations are left alone: RebuildTallies() makes them.
[[nodiscard]] int LoadLog(Model& m, Dialogs& dialogs, const QString& path);
// The same parse on bytes already read; no box, the failure text in *error.
[[nodiscard]] bool ParseLog(Model& m, const QByteArray& bytes, QString* error = nullptr);
// The values that follow from the header, so that every window and every command of
// kolibrino-cli judges a log alike: IsStaatsfunkstelle (scoring class 4) and the
// border between the periods, MittagsGrenze.
void ApplyHeaderRules(Model& m);

// "CREATED-BY Kolibrino v1.0.0, ©<year> by ZZ9QQQ" and its line end.
QString IdentificationLine(int year);
// The header's tag lines, "[ENDHEAD:]" included.
QString HeaderText(const LogHeader& h);
// One contact line, "¶" behind every field, CR LF at the end.
QString ContactLine(const QsoRecord& r);
// Rebuilds the whole text, stores it in m.LogText and gives it back. With
// rebuildIndex true, m.CallIndex is made anew in the same walk.
QString BuildLogText(Model& m, bool rebuildIndex, int year);
QString BuildLogText(Model& m, bool rebuildIndex, const TimeSource& clock);

// Full path of the open log.
QString CurrentLogPath(const Model& m);
// Replaces the open log's file with m.LogText (code page 1252, atomically).
// Returns the empty text on success, else the error's description. A log whose write
// lock another program holds is never written (the text says so); a model that does
// not hold the lock itself takes it for this one write.
[[nodiscard]] QString WriteLogFile(const Model& m);
// The same with the file's bytes already made.
[[nodiscard]] QString WriteLogBytes(const Model& m, const QByteArray& bytes);

// Adds (doAdd "True") or takes away (doAdd "False") one contact in ModeBandCount and
// PeriodBandCount. Any other doAdd text changes nothing, as does an unknown band.
void UpdateCounters(Model& m, int band, const QString& mode, const QTime& time, const QString& doAdd);
void UpdateCounters(Model& m, int band, const QString& mode, const QTime& time, bool doAdd);
// A string literal would silently pick the bool overload: say QStringLiteral("True").
void UpdateCounters(Model& m, int band, const QString& mode, const QTime& time, const char* doAdd) = delete;
// Raises GruppeBandCount for a Gruppe 1..9 and a band 40, 80 or 30.
void RaiseGruppeBandCount(Model& m, int gruppe, int band);

// Reads bez_koord.txt from m.DataFolder into BezirkRecords and BezirkIndex. An
// unreadable file or line shows the "FEHLER" box; Retry tries the step again, Cancel
// keeps what was read so far. Returns the number of districts read.
int LoadBezirkTable(Model& m, Dialogs& dialogs);
int LoadBezirkTable(Model& m, Dialogs& dialogs, const QString& path);
// The same read on the file's bytes (a line that cannot be read still shows its box).
int ParseBezirkTable(Model& m, Dialogs& dialogs, const QByteArray& bytes);
// Element number of a district code, 0 when unknown (position / 3 in BezirkIndex).
// Only a whole code of the table counts: "I;" or ";W", which stand in the index across
// two entries, are unknown.
int BezirkNumber(const Model& m, const QString& code);
// True for a two-character code that is one whole entry of the district table.
bool IsBezirkCode(const Model& m, const QString& code);

// "930" -> "09:30", "1415" -> "14:15"; a text with a separator stays.
QString NormalizeTime(const QString& text, QChar timeSeparator);

} // namespace kolibrino
