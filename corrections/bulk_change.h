// The bulk change of a log range after the contest: the kinds of change with their
// value lists, the checks of a value, the change of a working copy of the records,
// and the save that rewrites the log file and reads it back.
//
// Called by the window ZeitAendern on the window thread. ApplyBulkChange() checks
// everything before it writes the first record, so a refused value leaves the working
// copy as it was. SaveBulkChange() writes through the "FEHLER" trap; after Cancel the
// model and the old file are left as they were. A file that cannot be read back ends
// the program (the caller does that after the box).
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QStringList>
#include <optional>
#include <vector>

namespace kolibrino::corrections {

namespace BulkKind {
inline constexpr int Stunden = 0;
inline constexpr int Minuten = 1;
inline constexpr int Datum = 2;
inline constexpr int OpCall = 3;
inline constexpr int Band = 4;
inline constexpr int Mode = 5;
} // namespace BulkKind

inline const QString kMsgBulkFertig = QStringLiteral(
    "Änderungen erfolgreich abgeschlossen\nDie Änderungen wurden noch nicht gespeichert.\nDu musst noch auf "
    "'Speichern' klicken um die Änderungen dauerhaft zu übernehmen!");

// Caption of the kind's option, its label and its second label ("+/-" or empty).
QString BulkOptionCaption(int kind);
QString BulkLabel(int kind);
QString BulkSecondLabel(int kind);
// The list of the value box for a kind; opCalls is the operator list of the settings.
QStringList BulkValues(int kind, const QStringList& opCalls);
// Label2 for the year typed so far: the contest day of that year, or "ungültig".
QString DateLabelText(const Model& m, const QString& yearText);

struct BulkFailure {
    QString message;
    int flags = Msg::Critical;
};

// Changes records first to last (indices into copy, both included) by kind and value
// (trimmed, in capitals). label2 is the date shown for a change of year.
std::optional<BulkFailure> ApplyBulkChange(const Model& m, std::vector<QsoRecord>& copy, int kind,
                                           const QString& value, const QString& label2, int first, int last);

enum class BulkSave { Saved, WriteCancelled, ReadBackFailed };
// "Die Datei", the name, "ist fehlerhaft oder keine gültige Kolibrino Logdatei!", ...
QString ReadBackFailureText(const QString& fileName);
// Puts the working copy in place of the log, writes the file, reads it back.
BulkSave SaveBulkChange(Model& m, Dialogs& dialogs, const std::vector<QsoRecord>& copy, int year);

} // namespace kolibrino::corrections
