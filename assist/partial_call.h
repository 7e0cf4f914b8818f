// The logic of the call assistance: the partial-call search on the call index, the
// period rule both windows share, the colours and caption of the partial-call window,
// and the worked matrix of the call check window.
//
// Called by the partial-call window (DBLog), the call check window (LogTracker),
// kolibrino-cli and the benchmarks, on the window thread (or any single thread: the
// functions share nothing). Nothing here fails: an index entry that points outside
// the records is skipped, an unreadable time counts by its text.
#pragma once

#include "core/locale_fmt.h"
#include "core/log_model.h"

#include <QString>
#include <QTime>
#include <array>
#include <vector>

namespace kolibrino {

enum class Period { Vormittag, Nachmittag };

// The period of a time as the windows decide it: the time formatted as short time is
// compared, as text, with the border formatted the same way; before it is Vormittag,
// all else Nachmittag. A text that is no time is compared as it stands. Build one per
// locale and border and keep it: the constructor formats every minute of the day once.
class PeriodRule {
public:
    PeriodRule(const LocaleFormats& formats, const QTime& border);
    Period OfTime(const QTime& t) const;
    // A record's time text or the time field's text.
    Period OfText(const QString& timeText) const;

private:
    const LocaleFormats* formats_;
    QString borderText_;
    std::array<bool, 24 * 60> beforeBorder_{};
};

// One station of the partial-call list: a call with one district, worked here or not.
struct PartialEntry {
    QString call;
    QString bezirk; // two characters as the record holds them
    bool worked = false;
    // "OE1ABC  (WI)": what the grid cell shows.
    QString CellText() const;
};

// What the colour of an entry says, in words: "gearbeitet" or "neu".
inline QString WorkedText(bool worked) {
    return worked ? QStringLiteral("gearbeitet") : QStringLiteral("neu");
}

// The text searched for: the call field trimmed and in capitals, a leading "OE"
// dropped when more follows. Empty when there is nothing to search (one character,
// or "OE" alone).
QString PartialSearchText(const QString& callField);

// Every call and district pair of the log whose call contains the search text of
// callField, in the order the call index first names it; worked when at least one of
// its contacts has this band, mode and period. The scan runs over the index text once;
// a hit that lies in an entry's record number, not in its call, ends the scan.
std::vector<PartialEntry> PartialCallSearch(const QString& callIndex, const std::vector<QsoRecord>& records,
                                            const QString& callField, int band, const QString& mode,
                                            Period period, const PeriodRule& rule);

// Rows of a grid of five cells a row for n entries.
inline int PartialGridRows(qsizetype entries) {
    return int((entries + 4) / 5);
}

// ---- Colours of the partial-call window (section "Teilrufzeichen") ------------------

inline constexpr int kMaxColourName = 20;

struct PartialColours {
    int gearFarbe = 255; // worked: red
    QString gearFarbeName = QStringLiteral("ROT");
    int nichtGearFarbe = 65280; // not worked: green
    QString nichtGearFarbeName = QStringLiteral("GR\u00dcN");
    int hFarbe = 0xFF0000; // background: blue
};

// Reads the section; each pair counts only when its OK key is 1.
PartialColours LoadPartialColours(const QString& iniFile = {});
void StoreGearFarbe(int colour, const QString& name, const QString& iniFile = {});
void StoreNichtGearFarbe(int colour, const QString& name, const QString& iniFile = {});
void StoreHFarbe(int colour, const QString& iniFile = {});

// The answer of the colour-name box: trimmed, cut to 20 characters, in capitals;
// empty when nothing is to change.
QString ColourNameOfAnswer(const QString& answer);

// Title and prompt of the colour-name box for the worked or the not-worked colour.
QString ColourNameTitle(bool worked);
QString ColourNamePrompt(bool worked);

// "Teilrufzeichen", the colour legend, band and mode.
QString PartialCaption(const PartialColours& c, const QString& bandText, const QString& modeText);

// ---- The call check window -----------------------------------------------------------

// Ticks of the matrix: rows 40 m, 80 m, 30 m; columns SSB Vormittag, CW Vormittag,
// SSB Nachmittag, CW Nachmittag.
using TrackerTicks = std::array<std::array<bool, 4>, 3>;

// The cell of the matrix a contact ticks, as row and column from 0; {-1, -1} for a
// band or mode the matrix has no place for. 30 m in CW always ticks column 2 (the
// third), whatever the period.
std::pair<int, int> TrackerCell(int band, const QString& mode, Period period);

// Every contact whose call is exactly call, found on the index by its whole entry key.
TrackerTicks CallCheckTicks(const QString& callIndex, const std::vector<QsoRecord>& records,
                            const QString& call, const PeriodRule& rule);

// "Check   " and the call.
QString TrackerCaption(const QString& call);

} // namespace kolibrino
