#include "scoring/rate.h"

namespace kolibrino {

namespace {

constexpr int kPeriod1Start = 5 * 3600;
constexpr int kPeriod2Start = 14 * 3600;
constexpr int kPeriodSeconds = 3 * 3600;

int Digit(QChar c) {
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') ? int(u - u'0') : -1;
}

// Two digits at position i, -1 when either is none.
int Two(const QString& s, qsizetype i) {
    const int a = Digit(s[i]);
    const int b = Digit(s[i + 1]);
    return (a < 0 || b < 0) ? -1 : a * 10 + b;
}

int BandIndex(int band) {
    const int column = BandColumn(band);
    return column < 0 ? kRateBands - 1 : column;
}

// A record's date as its Julian day; 0 when unreadable. The records' own form
// "dd" sep "mm" sep "yyyy" is read directly, anything else through the locale.
qint64 RecordDay(const Model& m, const QString& datum) {
    if (datum.size() == 10 && datum[2] == m.DateSeparator && datum[5] == m.DateSeparator) {
        const int d = Two(datum, 0);
        const int mo = Two(datum, 3);
        const int y1 = Two(datum, 6);
        const int y2 = Two(datum, 8);
        if (d >= 0 && mo >= 0 && y1 >= 0 && y2 >= 0) {
            const QDate date(y1 * 100 + y2, mo, d);
            return date.isValid() ? date.toJulianDay() : 0;
        }
    }
    const auto date = m.Formats.ParseDate(datum);
    return date ? date->toJulianDay() : 0;
}

qint64 Moment(qint64 julianDay, int seconds) {
    return julianDay * 86400 + seconds;
}

} // namespace

int RateSlot(int secondsOfDay) {
    for (int period = 0; period < 2; ++period) {
        const int start = period == 0 ? kPeriod1Start : kPeriod2Start;
        if (secondsOfDay >= start && secondsOfDay < start + kPeriodSeconds)
            return period * kSlotsPerPeriod + (secondsOfDay - start) / (kSlotMinutes * 60);
    }
    return -1;
}

QString SlotStart(int slot) {
    const int start = slot < kSlotsPerPeriod ? kPeriod1Start : kPeriod2Start;
    const int minutes = start / 60 + (slot % kSlotsPerPeriod) * kSlotMinutes;
    return QStringLiteral("%1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

int SlotOf(const QTime& t) {
    return t.isValid() ? RateSlot(t.msecsSinceStartOfDay() / 1000) : -1;
}

int RecordSeconds(const Model& m, const QString& zeit) {
    // The records' own form "hh" sep "mm" sep "ss" directly, anything else through the
    // locale's reading of a time.
    if (zeit.size() == 8 && zeit[2] == m.Formats.TimeSeparator() && zeit[5] == m.Formats.TimeSeparator()) {
        const int h = Two(zeit, 0);
        const int mi = Two(zeit, 3);
        const int s = Two(zeit, 6);
        if (h >= 0 && mi >= 0 && s >= 0) return (h > 23 || mi > 59 || s > 59) ? -1 : h * 3600 + mi * 60 + s;
    }
    const auto seconds = m.Formats.TimeSeconds(zeit);
    return seconds ? *seconds : -1;
}

void RateBook::Read(const Model& m, const QsoRecord& r) {
    if (r.Status != Status::Normal) return;
    Entry e;
    e.band = BandIndex(r.Band);
    const int seconds = RecordSeconds(m, r.Zeit);
    if (seconds >= 0) {
        e.slot = RateSlot(seconds);
        const qint64 day = RecordDay(m, r.Datum);
        if (day != 0) e.when = Moment(day, seconds);
    }
    entries_.push_back(e);
}

void RateBook::Rebuild(const Model& m) {
    entries_.clear();
    read_ = 0;
    Append(m);
}

void RateBook::Append(const Model& m) {
    if (m.LogRecords.size() < read_) {
        Rebuild(m);
        return;
    }
    for (size_t i = read_; i < m.LogRecords.size(); ++i)
        Read(m, m.LogRecords[i]);
    read_ = m.LogRecords.size();
}

RateTable RateBook::Count(const QDateTime& now) const {
    RateTable t;
    const bool haveNow = now.isValid();
    const qint64 at = haveNow ? Moment(now.date().toJulianDay(), now.time().msecsSinceStartOfDay() / 1000) : 0;
    t.present = haveNow ? SlotOf(now.time()) : -1;
    for (const Entry& e : entries_) {
        if (e.slot < 0) {
            ++t.outside;
        } else {
            ++t.perSlot[size_t(e.slot)];
            ++t.perBand[size_t(e.band)][size_t(e.slot)];
            ++(e.slot < kSlotsPerPeriod ? t.period1 : t.period2);
        }
        if (!haveNow || e.when < 0 || e.when > at) continue;
        if (e.when > at - 60 * 60) ++t.last60;
        if (e.when > at - 10 * 60) ++t.last10;
    }
    return t;
}

RateTable CountRate(const Model& m, const QDateTime& now) {
    RateBook book;
    book.Rebuild(m);
    return book.Count(now);
}

QString RateText(const RateTable& t) {
    QString s;
    for (int slot = 0; slot < kRateSlots; ++slot)
        s += SlotStart(slot) + QLatin1Char(' ') + QString::number(t.perSlot[size_t(slot)]) + QLatin1Char('\n');
    s += QStringLiteral("außerhalb der Perioden: %1\n").arg(t.outside);
    return s;
}

} // namespace kolibrino
