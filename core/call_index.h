// The call index: one text "¶" call "×" array index "¶" ... beside the records, so
// that finding a call is one substring search, never a walk of the records.
//
// Window thread only. Pure look-ups. An entry whose record index lies outside the
// records (a damaged index, or a call holding "×" read from a file) is an error the
// look-up reports in DupeVerdict::error, for the caller's "FEHLER" path.
#pragma once

#include "core/log_model.h"

#include <QString>
#include <QTime>
#include <optional>

namespace kolibrino {

inline constexpr QChar kPilcrow = QChar(0x00B6); // "¶"
inline constexpr QChar kTimes = QChar(0x00D7);   // "×"

struct CallIndexEntry {
    QString Call;
    int RecordIndex = 0;
};

// The entry behind the "¶" at or before the 1-based position; empty when none.
CallIndexEntry ParseIndexEntry(const QString& callIndex, qsizetype position);
// Appends one entry for the record at arrayIndex.
void AppendIndexEntry(QString& callIndex, const QString& call, qsizetype arrayIndex);
// "¶" call "×": the exact search key.
QString IndexKey(const QString& call);
// Whether the call has any entry in the index.
bool CallInIndex(const QString& callIndex, const QString& call);

// What the dupe rule answers for an entry of call, band, mode at entryTime.
struct DupeVerdict {
    bool isDupe = false;
    bool found = false;            // the call has at least one entry
    QString bezirk;                // district of the last record visited (fills the district box)
    std::optional<QTime> dupeTime; // time of the record that makes the dupe
    int dupeRecord = -1;
    QString error; // not empty: the walk met an entry outside the records and stopped
};

// The error of an index entry outside the records.
inline const QString kIndexOutOfRange = QStringLiteral("Index außerhalb des gültigen Bereichs");

// The contest's rule: one contact per call, band, mode and period. A stored dupe and a
// deleted record never make a dupe; a record at exactly 12:00:00 is in neither period.
// Without an entry time (the time field cannot be read) nothing is a dupe, but the
// records are still visited for the district.
DupeVerdict CallExistTest(const Model& m, const QString& call, int band, const QString& mode,
                          const std::optional<QTime>& entryTime);

// "Station bereits um <short time> Uhr gearbeitet!"
QString DupeWarningText(const Model& m, const QTime& recordTime);

} // namespace kolibrino
