// The contact rate of the log: contacts per 10-minute slot of both contest periods
// (05:00 to 08:00 and 14:00 to 17:00, contest time), per band, and the rate of the
// last 10 and 60 minutes. Counted is every contact that is not a dupe (and not
// deleted), on any band; the slot is taken from the record's time alone, the rate
// from its date and time.
//
// Who calls it: the rate window (scoring/qso_rate.h) and `kolibrino-cli rate`.
// Window thread only (it reads the Model). Never fails: a contact whose time cannot be
// read counts outside the periods and in no rate.
#pragma once

#include "core/log_model.h"

#include <QDateTime>
#include <QString>
#include <array>
#include <vector>

namespace kolibrino {

inline constexpr int kSlotMinutes = 10;
inline constexpr int kSlotsPerPeriod = 18;
inline constexpr int kRateSlots = 2 * kSlotsPerPeriod;
// Bands of the chart: 40 m, 80 m, 30 m, and any other band a log may hold.
inline constexpr int kRateBands = 4;

// Slot of a time of day in seconds: 0..17 for 05:00..07:59:59, 18..35 for
// 14:00..16:59:59, -1 for any other time.
int RateSlot(int secondsOfDay);
// Start of a slot as "HH:MM".
QString SlotStart(int slot);
// Slot of a contest time (the present), -1 outside the periods.
int SlotOf(const QTime& t);

struct RateTable {
    std::array<int, kRateSlots> perSlot{}; // all bands
    std::array<std::array<int, kRateSlots>, kRateBands> perBand{};
    int outside = 0;  // counted contacts in no slot
    int period1 = 0;  // in 05:00..08:00
    int period2 = 0;  // in 14:00..17:00
    int last10 = 0;   // contacts with now - 10 min < time <= now
    int last60 = 0;   // contacts with now - 60 min < time <= now
    int present = -1; // slot of now, -1 outside the periods
    int PerHour10() const { return last10 * 6; }
    int PerHour60() const { return last60; }
};

// The counted contacts of a log, read once each: the window appends the contacts
// logged since its last refresh and reads the whole log again after any other change.
class RateBook {
public:
    // Reads every record of the log.
    void Rebuild(const Model& m);
    // Reads the records behind the last one read; reads all when the log has fewer.
    void Append(const Model& m);
    // Records read so far (counted or not).
    size_t RecordsRead() const { return read_; }
    RateTable Count(const QDateTime& now) const;

private:
    struct Entry {
        int band = 0;     // 0..3 as in RateTable::perBand
        int slot = -1;    // -1 outside the periods
        qint64 when = -1; // seconds since the epoch of the record's date and time; -1 unreadable
    };
    void Read(const Model& m, const QsoRecord& r);
    std::vector<Entry> entries_;
    size_t read_ = 0;
};

// The whole count of a log at a moment: what `kolibrino-cli rate` prints.
RateTable CountRate(const Model& m, const QDateTime& now);
// The 36 lines "HH:MM N" and the line "außerhalb der Perioden: N", each with "\n".
QString RateText(const RateTable& t);

// A record's time as seconds of the day; -1 when unreadable.
int RecordSeconds(const Model& m, const QString& zeit);

} // namespace kolibrino
