// The contest score and the results text file, computed from the log's counters.
//
// Who calls it: the result window (Statistik) on every tick of its Timer1, the
// Cabrillo writer for CLAIMED-SCORE, and kolibrino-cli ("score", "results"). Each
// call works in one pass over the counters of the Model (QsoCount, ModeBandCount,
// PeriodBandCount, GruppeBandCount, the district tallies, StaatsfunkRecords) and the
// log header; it never walks the log, except ResultsText() for the operator list.
//
// Window thread (or any thread that owns the Model for the call); reads only.
//
// How it fails: ComputeScore() never fails and never throws. The one thing it relies
// on is the district table being read (BezirkRecords with its empty element 0): when
// it is not, ScoreResult::valid is false, every figure is 0, and ClaimedScore() gives
// nullopt. A caller that must refuse then (the Cabrillo writer) shows
// kScoreFailureText ("Fehler im LOG, Cabrillo kann nicht erzeugt werden!") with the
// stop icon. Counters that went negative through corrections are shown as they are.
#pragma once

#include "core/log_model.h"

#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace kolibrino {

inline constexpr const char* kScoreFailureText = "Fehler im LOG, Cabrillo kann nicht erzeugt werden!";

// One row of a table of the result window: its title (column 0) and its figures.
struct ScoreGridRow {
    QString title;
    std::vector<long long> cells;
};

// Every value of the result window's labels, named after the labels, and the rows of
// its five tables.
struct ScoreResult {
    bool valid = true;
    double Label6 = 0;                            // valid QSOs (QsoCount)
    long long Label7 = 0, Label8 = 0, Label9 = 0; // QSOs on 40, 80, 30 m (mode table)
    int Label12 = 0, Label13 = 0, Label14 = 0;    // districts on 40, 80, 30 m
    int Label2 = 0;                               // districts scored: 40 m + 80 m
    int Label10 = 0, Label4 = 0, Label3 = 0;      // federal states on 40, 80, 30 m
    int Label11 = 0;                              // states scored: 40 m + 80 m
    int Label21 = 0, Label20 = 0;                 // state-station prefixes on 80, 30 m
    int Label1 = 0;                               // prefixes scored (80 m)
    QString Label15 = QStringLiteral("0/0");      // SSB/CW share in percent
    int Label23 = 0;                              // MYNPOWER
    long long Label16 = 0;                        // multipliers
    double Label18 = 0;                           // claimed score

    // MSFlexGrid1 (prefix: 80, 30), MSFlexGrid2 (district: 40, 80, 30),
    // MSFlexGrid3 (state: 40, 80, 30), MSFlexGrid4 (mode: 40, 80, 30, sum),
    // MSFlexGrid5 (SSB-Vm ... CW-Nm: 40, 80, 30, sum).
    std::vector<ScoreGridRow> prefixes, districts, states, modes, periods;
};

// The recomputation of the result window, in one pass.
ScoreResult ComputeScore(const Model& m);

// A whole number as the window shows it ("132"; no grouping, no fraction).
QString ScoreNumberText(double value);

// The label texts in the window's order, each as caption and value:
// {"Gültige QSOs", "6"}, ..., {"Punkte gesamt", "132"}.
std::vector<std::pair<QString, QString>> ScoreLabels(const ScoreResult& s);

// The text of Label18 (what goes out as CLAIMED-SCORE); nullopt when the score
// cannot be made (see above).
std::optional<QString> ClaimedScore(const Model& m);
// The same as a number, for the Cabrillo writer's CLAIMED-SCORE.
std::optional<long> ClaimedScoreValue(const Model& m);

// The results text file, lines joined by CR LF (write it with ToCp1252). year is the
// current year for the CREATED-BY line.
QString ResultsText(const Model& m, const ScoreResult& s, int year);

// The operators of the log for the results file: "OE1ABC, OE3XYZ", or empty.
QString OperatorList(const Model& m);

// The category line for a scoring class and power; empty when there is none.
QString CategoryLine(int wertungsst, int pwr);

// The file name the save dialog's answer stands for: ".txt" added unless it already
// ends in ".TXT" in any case.
QString ResultsFileName(const QString& answer);

} // namespace kolibrino
