// Logging one contact: the checks of the entry fields, the contest's rules, the dupe
// question, the tallies, the grid row, the record, the call index, the log text and
// the file.
//
// The main window reads its entry fields into EntryFields and calls TakeEntry(); it
// then shows the message, sets the focus, and does its own part (timers, backup,
// reset of the fields). Everything that decides lives here, so it runs without a
// window.
//
// Window thread only. TakeEntry() never throws. A failed check changes nothing but the
// state-station tally of check 9 (kept on purpose). A failed file write is offered
// again through the "FEHLER" trap; on Cancel the contact stays in the model, the grid
// and LogText, fileWritten is false, and the next successful write carries it.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "core/storable_text.h"
#include "entry/log_grid_model.h"

#include <QString>
#include <functional>
#include <optional>
#include <utility>

namespace kolibrino {

// The entry fields as the operator left them.
struct EntryFields {
    QString datum;        // Text1
    QString zeit;         // Text2
    QString call;         // Text3
    QString rstGesendet;  // Text4
    QString rstEmpfangen; // Text5
    QString notiz;        // Text8
    QString band;         // Combo1 text
    int bandIndex = -1;   // Combo1 list index
    QString mode;         // Combo2 text
    int modeIndex = -1;   // Combo2 list index
    QString bezirk;       // Combo5 text
    QString opCall;       // Combo6 text
    int qsl = 0;          // Check1 value
};

// The field a failed check puts the focus on.
enum class EntryFocus { None, Text1, Text2, Text3, Text4, Text5, Combo1, Combo2, Combo5, Text8, Combo6 };

struct CheckFailure {
    int check = 0;     // 1 to 11; 0 for the text gate (a box, flags 48)
    QString message;   // for the message line, or the text of the box
    int boxFlags = -1; // -1: the message goes to the message line; else it was shown in a box
    EntryFocus focus = EntryFocus::None;
};

// Messages of the checks.
inline const QString kMsgRufzeichen = QStringLiteral("Ungültiges Rufzeichen");
inline const QString kMsgBand = QStringLiteral("BAND ungültig");
inline const QString kMsgMode = QStringLiteral("MODE ungültig");
inline const QString kMsgRsts = QStringLiteral("RSTs ungültig");
inline const QString kMsgRste = QStringLiteral("RSTe ungültig");
inline const QString kMsgBezirk = QStringLiteral("BEZIRK ungültig");
inline const QString kMsgAmateur30 =
    QStringLiteral("Amateurfunk-Stationen dürfen nur auf 80/40m gearbeitet werden!");
inline const QString kMsgStaatsfunk40 =
    QStringLiteral("Staatsfunkstellen dürfen nur auf 80/30m gearbeitet werden!");
inline const QString kMsgZeit = QStringLiteral("Zeit Ungültige");
inline const QString kMsgDatum = QStringLiteral("Datum Ungültige");
inline const QString kMsgDupeFrage = QStringLiteral("Soll das QSO als DUPE geloggt werden?");
inline constexpr int kDupeFrageFlags = Msg::YesNo | Msg::Question | Msg::DefaultButton2; // 292

// The text gate on a contact form's text fields (call, reports, mode, district, note,
// operator), in the order of the form: the first field it refuses, with the German
// reason; nullopt when every field may be stored. Serves the entry and the edit window,
// whose fields and focus targets bear the same names.
template <class Fields, class Focus>
std::optional<std::pair<Focus, QString>> FirstRefusedContactField(const Fields& f) {
    const std::pair<TextField, std::pair<const QString*, Focus>> fields[] = {
        {TextField::Call, {&f.call, Focus::Text3}},
        {TextField::RstGesendet, {&f.rstGesendet, Focus::Text4}},
        {TextField::RstEmpfangen, {&f.rstEmpfangen, Focus::Text5}},
        {TextField::Mode, {&f.mode, Focus::Combo2}},
        {TextField::Bezirk, {&f.bezirk, Focus::Combo5}},
        {TextField::Bemerkung, {&f.notiz, Focus::Text8}},
        {TextField::Operator, {&f.opCall, Focus::Combo6}},
    };
    for (const auto& [field, what] : fields)
        if (QString problem = FieldTextProblem(field, *what.first); !problem.isEmpty())
            return std::pair{what.second, std::move(problem)};
    return std::nullopt;
}

// The text gate on the entry's text fields: the first refusal, its box not yet shown;
// nullopt when every field may be stored.
std::optional<CheckFailure> GateEntry(const EntryFields& f);
// The text fields as the record stores them (and the grid shows them).
EntryFields GatedEntryFields(const EntryFields& f);

// The text gate first (its box shown here, flags 48), then checks 1 to 11 in their
// order. Check 9 shows its boxes itself (flags 64) and counts a state station on 80 m
// or 30 m in StaatsfunkRecords before the later checks run.
std::optional<CheckFailure> CheckEntry(Model& m, Dialogs& dialogs, const EntryFields& f);

// Calls into companion windows; each is set only while its window is open.
struct CompanionCalls {
    std::function<void(const QString& bezirk)> fuellen; // district map
    std::function<void(const QString& bezirk, int gruppe, const QString& prefix)>
        gridCellColor;                                            // multiplier table
    std::function<std::optional<float>(int bandIndex)> frequency; // frequency window
};

// The log text as file bytes, kept beside LogText by whoever logs the entries, so that
// an entry encodes only its own line and not the whole log. The cache shares the very
// text it was made from; any change of LogText elsewhere (a rebuild, an edit in place)
// leaves it unshared, and the next entry encodes the text whole.
struct LogFileBytes {
    QString text;
    QByteArray bytes;
};

struct EntryResult {
    enum Outcome { Logged, CheckFailed, DupeRefused };
    Outcome outcome = CheckFailed;
    CheckFailure failure; // CheckFailed: what failed; DupeRefused: focus Text3
    bool isDupe = false;
    size_t recordIndex = 0;
    bool fileWritten = false;
    // Set when the dupe rule filled in the district of a worked station (the district
    // box shows it, also after a refused dupe).
    std::optional<QString> bezirk;
};

// The whole chain of one entry up to the counters: checks, dupe question, tallies,
// frequency, grid row, record, index, LogText, file (trapped), UpdateCounters.
EntryResult TakeEntry(Model& m, Dialogs& dialogs, LogGridModel& grid, const EntryFields& f,
                      const CompanionCalls& companions = {}, LogFileBytes* fileBytes = nullptr);

// The record a checked entry becomes (step by step as TakeEntry fills it).
QsoRecord RecordOfEntry(const Model& m, const EntryFields& f, bool isDupe, float frequency, float laufNr);

} // namespace kolibrino
