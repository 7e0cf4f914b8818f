// Dates and times as the operator's locale writes them.
//
// Records keep dates as "dd" sep "mm" sep "yyyy" and times as "hh" sep "mm" sep "ss",
// with the separators of the locale (de_AT: "." and ":"). Screens show the locale's
// short date, always with a four-digit year, and its short or long time.
//
// A LocaleFormats value is immutable after construction; any thread may use it.
// Parsers return nullopt for text that is no valid date or time; nothing throws.
#pragma once

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QTime>
#include <optional>

namespace kolibrino {

class LocaleFormats {
public:
    explicit LocaleFormats(const QLocale& locale = QLocale());

    QChar DateSeparator() const { return dateSep_; }
    QChar TimeSeparator() const { return timeSep_; }
    const QLocale& Locale() const { return locale_; }

    QString ShortDate(const QDate& d) const;  // locale order, four-digit year
    QString ShortTime(const QTime& t) const;  // hours and minutes
    QString LongTime(const QTime& t) const;   // hours, minutes, seconds
    QString RecordDate(const QDate& d) const; // dd sep mm sep yyyy
    QString RecordTime(const QTime& t) const; // hh sep mm sep ss

    // A time of day, alone or behind a date ("14:05", "14:05:30", "01.05.2026 14:05").
    std::optional<QTime> ParseTime(const QString& text) const;
    // A date in day-first order with the locale's separator or the short-date form.
    std::optional<QDate> ParseDate(const QString& text) const;
    // A record's time text as seconds of the day; nullopt when unreadable.
    std::optional<int> TimeSeconds(const QString& text) const;

private:
    QLocale locale_;
    QChar dateSep_;
    QChar timeSep_;
    QString shortDateFmt_;
    QString shortTimeFmt_;
    QString longTimeFmt_;
};

// First character of a formatted date or time that is no digit (the separator rule).
QChar FirstNonDigit(const QString& formatted, QChar fallback);

} // namespace kolibrino
