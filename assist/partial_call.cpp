#include "assist/partial_call.h"

#include "core/call_index.h"
#include "core/settings.h"
#include "core/vb_text.h"

#include <QHash>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kolibrino {

// ---- Period ----------------------------------------------------------------------------

PeriodRule::PeriodRule(const LocaleFormats& formats, const QTime& border)
    : formats_(&formats), borderText_(formats.ShortTime(border)) {
    for (int minute = 0; minute < 24 * 60; ++minute)
        beforeBorder_[size_t(minute)] =
            formats.ShortTime(QTime::fromMSecsSinceStartOfDay(minute * 60000)) < borderText_;
}

Period PeriodRule::OfTime(const QTime& t) const {
    return beforeBorder_[size_t(t.hour() * 60 + t.minute())] ? Period::Vormittag : Period::Nachmittag;
}

namespace {

int Digit(QChar c) {
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') ? int(u - u'0') : -1;
}

// Minute of the day of a record's "hh" sep "mm" [sep "ss"] time; -1 for any other text.
int RecordMinute(const QString& t, QChar sep) {
    if (t.size() != 5 && t.size() != 8) return -1;
    const int d[6] = {Digit(t[0]),
                      Digit(t[1]),
                      Digit(t[3]),
                      Digit(t[4]),
                      t.size() == 8 ? Digit(t[6]) : 0,
                      t.size() == 8 ? Digit(t[7]) : 0};
    for (int v : d)
        if (v < 0) return -1;
    if (t[2] != sep || (t.size() == 8 && t[5] != sep)) return -1;
    const int h = d[0] * 10 + d[1], m = d[2] * 10 + d[3], sec = d[4] * 10 + d[5];
    if (h > 23 || m > 59 || sec > 59) return -1;
    return h * 60 + m;
}

} // namespace

Period PeriodRule::OfText(const QString& timeText) const {
    // The record's own form first, without building a time: the same answer, quicker.
    if (const int minute = RecordMinute(timeText, formats_->TimeSeparator()); minute >= 0)
        return beforeBorder_[size_t(minute)] ? Period::Vormittag : Period::Nachmittag;
    if (const std::optional<QTime> t = formats_->ParseTime(timeText)) return OfTime(*t);
    // No time: the text itself is compared, as formatting leaves such a text alone.
    return TrimBlanks(timeText) < borderText_ ? Period::Vormittag : Period::Nachmittag;
}

// ---- The partial-call search --------------------------------------------------------------

QString PartialEntry::CellText() const {
    return call + QStringLiteral("  (") + bezirk + QLatin1Char(')');
}

QString PartialSearchText(const QString& callField) {
    QString s = TrimBlanks(callField).toUpper();
    if (s.startsWith(QLatin1String("OE")) && s.size() > 2) s.remove(0, 2);
    if (s == QLatin1String("OE") || s.size() < 2) return {};
    // The separators of the index never stand in a call; such a text finds nothing.
    if (s.contains(kPilcrow) || s.contains(kTimes)) return {};
    return s;
}

namespace {

// The next place of needle (two characters or more) in text from position from; -1 when
// there is none. A plain scan, eight characters a step where the processor can.
qsizetype FindFrom(QStringView text, QStringView needle, qsizetype from) {
    const qsizetype n = needle.size(), h = text.size();
    if (n < 2 || from < 0 || h - from < n) return n < 2 ? text.indexOf(needle, from) : -1;
    const char16_t* p = text.utf16();
    const char16_t* q = needle.utf16();
    const qsizetype last = h - n; // the last place a hit can start
    const size_t restBytes = size_t(n - 2) * sizeof(char16_t);
    qsizetype i = from;
#if defined(__SSE2__)
    const __m128i first = _mm_set1_epi16(short(q[0]));
    const __m128i second = _mm_set1_epi16(short(q[1]));
    for (; i + 9 <= h; i += 8) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 1));
        unsigned mask =
            unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(x, first), _mm_cmpeq_epi16(y, second))));
        while (mask) {
            const qsizetype at = i + __builtin_ctz(mask) / 2;
            if (at > last) return -1;
            if (std::memcmp(p + at + 2, q + 2, restBytes) == 0) return at;
            mask &= mask - 1;
            mask &= mask - 1; // both bytes of the character
        }
    }
#endif
    for (; i <= last; ++i)
        if (p[i] == q[0] && p[i + 1] == q[1] && std::memcmp(p + i + 2, q + 2, restBytes) == 0) return i;
    return -1;
}

} // namespace

std::vector<PartialEntry> PartialCallSearch(const QString& callIndex, const std::vector<QsoRecord>& records,
                                            const QString& callField, int band, const QString& mode,
                                            Period period, const PeriodRule& rule) {
    std::vector<PartialEntry> list;
    const QString s = PartialSearchText(callField);
    if (s.isEmpty()) return list;
    // Call -> its first place in list; further districts of the same call are chained
    // through next. The keys are views into the index, which stands still meanwhile.
    QHash<QStringView, qsizetype> first;
    std::vector<qsizetype> next;
    const QStringView index(callIndex);
    qsizetype hit = FindFrom(index, s, 0);
    while (hit >= 0) {
        // The entry around the hit: "¶" call "×" record number "¶".
        const char16_t* text = index.utf16();
        qsizetype open = hit;
        while (open >= 0 && text[open] != kPilcrow.unicode())
            --open;
        qsizetype close = hit;
        while (close < index.size() && text[close] != kPilcrow.unicode())
            ++close;
        if (open < 0 || close >= index.size()) break;
        const QStringView body = index.mid(open + 1, close - open - 1);
        qsizetype times = 0;
        while (times < body.size() && body[times] != kTimes)
            ++times;
        if (times == body.size()) times = -1;
        const QStringView call = times < 0 ? body : body.left(times);
        // A hit in the record number, not in the call, ends the scan.
        if (hit - open - 1 + s.size() > call.size() && !call.contains(s)) break;
        bool ok = false;
        const int recordIndex = times < 0 ? 0 : body.mid(times + 1).toInt(&ok);
        if (ok && recordIndex >= 0 && size_t(recordIndex) < records.size()) {
            const QsoRecord& r = records[size_t(recordIndex)];
            const bool fits = r.Band == band && r.Mode == mode && rule.OfText(r.Zeit) == period;
            qsizetype at = -1;
            const auto head = first.constFind(call);
            if (head != first.cend())
                for (qsizetype i = *head; i >= 0; i = next[size_t(i)])
                    if (list[size_t(i)].bezirk == r.Bezirk) {
                        at = i;
                        break;
                    }
            if (at >= 0) {
                if (fits) list[size_t(at)].worked = true;
            } else {
                const qsizetype place = qsizetype(list.size());
                if (head != first.cend()) {
                    qsizetype last = *head;
                    while (next[size_t(last)] >= 0)
                        last = next[size_t(last)];
                    next[size_t(last)] = place;
                } else {
                    first.insert(call, place);
                }
                list.push_back({call.toString(), r.Bezirk, fits});
                next.push_back(-1);
            }
        }
        // Further hits inside the same entry name the same call again: go on behind it.
        hit = FindFrom(index, s, close);
    }
    return list;
}

// ---- Colours -------------------------------------------------------------------------------

namespace {

const QString kSection = QStringLiteral("Teilrufzeichen");

bool Ok(const QString& file, const char* key) {
    return IniReadInt(file, kSection, QString::fromLatin1(key)) == 1;
}

} // namespace

PartialColours LoadPartialColours(const QString& iniFile) {
    PartialColours c;
    if (Ok(iniFile, "NichtGearOK")) {
        c.nichtGearFarbe = int(IniReadInt(iniFile, kSection, QStringLiteral("NichtGearFarbe")));
        c.nichtGearFarbeName = IniReadString(iniFile, kSection, QStringLiteral("NichtGearFarbeName"));
    }
    if (Ok(iniFile, "GearOK")) {
        c.gearFarbe = int(IniReadInt(iniFile, kSection, QStringLiteral("GearFarbe")));
        c.gearFarbeName = IniReadString(iniFile, kSection, QStringLiteral("GearFarbeName"));
    }
    if (Ok(iniFile, "HFarbeOK")) c.hFarbe = int(IniReadInt(iniFile, kSection, QStringLiteral("HFarbe")));
    return c;
}

void StoreGearFarbe(int colour, const QString& name, const QString& iniFile) {
    IniWrite(iniFile, kSection, QStringLiteral("GearFarbe"), colour);
    IniWrite(iniFile, kSection, QStringLiteral("GearFarbeName"), name);
    IniWrite(iniFile, kSection, QStringLiteral("GearOK"), 1);
}

void StoreNichtGearFarbe(int colour, const QString& name, const QString& iniFile) {
    IniWrite(iniFile, kSection, QStringLiteral("NichtGearFarbe"), colour);
    IniWrite(iniFile, kSection, QStringLiteral("NichtGearFarbeName"), name);
    IniWrite(iniFile, kSection, QStringLiteral("NichtGearOK"), 1);
}

void StoreHFarbe(int colour, const QString& iniFile) {
    IniWrite(iniFile, kSection, QStringLiteral("HFarbe"), colour);
    IniWrite(iniFile, kSection, QStringLiteral("HFarbeOK"), 1);
}

QString ColourNameOfAnswer(const QString& answer) {
    const QString t = TrimBlanks(answer);
    if (t.isEmpty()) return {};
    return t.left(kMaxColourName).toUpper();
}

QString ColourNameTitle(bool worked) {
    return worked ? QStringLiteral("Farbnamen f\u00fcr gearbeitetes Call")
                  : QStringLiteral("Farbnamen f\u00fcr nicht gearbeitetes Call");
}

QString ColourNamePrompt(bool worked) {
    return QStringLiteral("Gib hier den Namen der ausgew\u00e4hlten Farbe ein, der dann in der Kopfzeile des "
                          "Fensters Teilrufzeichen unter '") +
           (worked ? QStringLiteral("gearbeitet") : QStringLiteral("nicht gearbeitet")) +
           QStringLiteral("' erscheinen soll. Diese dient als Hilfestellung f\u00fcr die Farbzuordnung.\n"
                          "Der Name darf maximal 20 Zeichen lang sein!");
}

QString PartialCaption(const PartialColours& c, const QString& bandText, const QString& modeText) {
    return QStringLiteral("Teilrufzeichen") + QString(23, QLatin1Char(' ')) + c.gearFarbeName +
           QStringLiteral("=gearbeitet     ") + c.nichtGearFarbeName +
           QStringLiteral("=nicht gearbeitet     ") + bandText + QLatin1Char(' ') + modeText;
}

// ---- The call check window --------------------------------------------------------------

std::pair<int, int> TrackerCell(int band, const QString& mode, Period period) {
    int row = -1;
    if (band == kBand40)
        row = 0;
    else if (band == kBand80)
        row = 1;
    else if (band == kBand30)
        row = 2;
    if (row < 0) return {-1, -1};
    const bool am = period == Period::Vormittag;
    if (mode == QLatin1String("SSB")) return {row, am ? 0 : 2};
    if (mode == QLatin1String("CW")) {
        if (band == kBand30) return {row, 2}; // 30 m CW has one cell, under the afternoon SSB heading
        return {row, am ? 1 : 3};
    }
    return {-1, -1};
}

TrackerTicks CallCheckTicks(const QString& callIndex, const std::vector<QsoRecord>& records,
                            const QString& call, const PeriodRule& rule) {
    TrackerTicks ticks{};
    const QString key = IndexKey(call);
    qsizetype hit = callIndex.indexOf(key);
    while (hit >= 0) {
        const CallIndexEntry e = ParseIndexEntry(callIndex, hit + 1);
        if (e.Call != call) break;
        if (e.RecordIndex >= 0 && size_t(e.RecordIndex) < records.size()) {
            const QsoRecord& r = records[size_t(e.RecordIndex)];
            const auto [row, column] = TrackerCell(r.Band, r.Mode, rule.OfText(r.Zeit));
            if (row >= 0) ticks[size_t(row)][size_t(column)] = true;
        }
        hit = callIndex.indexOf(key, hit + 1);
    }
    return ticks;
}

QString TrackerCaption(const QString& call) {
    return QStringLiteral("Check   ") + call;
}

} // namespace kolibrino
