#include "core/locale_fmt.h"

#include <QRegularExpression>

namespace kolibrino {

QChar FirstNonDigit(const QString& formatted, QChar fallback) {
    for (const QChar c : formatted)
        if (!c.isDigit()) return c;
    return fallback;
}

LocaleFormats::LocaleFormats(const QLocale& locale) : locale_(locale) {
    shortDateFmt_ = locale_.dateFormat(QLocale::ShortFormat);
    // A short date always carries four digits of the year.
    static const QRegularExpression years(QStringLiteral("y+"));
    shortDateFmt_.replace(years, QStringLiteral("yyyy"));
    shortTimeFmt_ = locale_.timeFormat(QLocale::ShortFormat);
    const QDate probeDate(2026, 11, 22);
    const QTime probeTime(13, 45, 30);
    dateSep_ = FirstNonDigit(locale_.toString(probeDate, shortDateFmt_), QLatin1Char('.'));
    timeSep_ = FirstNonDigit(locale_.toString(probeTime, shortTimeFmt_), QLatin1Char(':'));
    longTimeFmt_ = shortTimeFmt_;
    if (!longTimeFmt_.contains(QLatin1Char('s'))) {
        const qsizetype m = longTimeFmt_.lastIndexOf(QStringLiteral("mm"));
        if (m >= 0)
            longTimeFmt_.insert(m + 2, QString(timeSep_) + QStringLiteral("ss"));
        else
            longTimeFmt_ = QStringLiteral("HH%1mm%1ss").arg(timeSep_);
    }
}

QString LocaleFormats::ShortDate(const QDate& d) const {
    return locale_.toString(d, shortDateFmt_);
}
QString LocaleFormats::ShortTime(const QTime& t) const {
    return locale_.toString(t, shortTimeFmt_);
}
QString LocaleFormats::LongTime(const QTime& t) const {
    return locale_.toString(t, longTimeFmt_);
}

namespace {

QString TwoDigits(int v) {
    return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0'));
}

} // namespace

QString LocaleFormats::RecordDate(const QDate& d) const {
    return TwoDigits(d.day()) + dateSep_ + TwoDigits(d.month()) + dateSep_ +
           QStringLiteral("%1").arg(d.year(), 4, 10, QLatin1Char('0'));
}

QString LocaleFormats::RecordTime(const QTime& t) const {
    return TwoDigits(t.hour()) + timeSep_ + TwoDigits(t.minute()) + timeSep_ + TwoDigits(t.second());
}

namespace {

bool AllDigits(const QString& s) {
    if (s.isEmpty() || s.size() > 4) return false;
    for (const QChar c : s)
        if (c.unicode() < '0' || c.unicode() > '9') return false;
    return true;
}

} // namespace

std::optional<QTime> LocaleFormats::ParseTime(const QString& text) const {
    QString t = text.trimmed();
    // A date in front of the time is allowed and ignored.
    const qsizetype blank = t.lastIndexOf(QLatin1Char(' '));
    if (blank >= 0) {
        if (!ParseDate(t.left(blank).trimmed())) return std::nullopt;
        t = t.mid(blank + 1);
    }
    const QStringList parts = t.split(timeSep_);
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    int v[3] = {0, 0, 0};
    for (int i = 0; i < parts.size(); ++i) {
        if (!AllDigits(parts[i])) return std::nullopt;
        v[i] = parts[i].toInt();
    }
    if (v[0] > 23 || v[1] > 59 || v[2] > 59) return std::nullopt;
    return QTime(v[0], v[1], v[2]);
}

std::optional<QDate> LocaleFormats::ParseDate(const QString& text) const {
    const QString t = text.trimmed();
    const QStringList parts = t.split(dateSep_);
    if (parts.size() != 3) return std::nullopt;
    for (const QString& p : parts)
        if (!AllDigits(p)) return std::nullopt;
    // Follow the locale's order of day, month and year.
    const qsizetype d = shortDateFmt_.indexOf(QLatin1Char('d'));
    const qsizetype m = shortDateFmt_.indexOf(QLatin1Char('M'));
    const qsizetype y = shortDateFmt_.indexOf(QLatin1Char('y'));
    int order[3] = {0, 1, 2}; // positions of day, month, year
    if (d >= 0 && m >= 0 && y >= 0) {
        order[0] = (d > m) + (d > y);
        order[1] = (m > d) + (m > y);
        order[2] = (y > d) + (y > m);
    }
    int year = parts[order[2]].toInt();
    if (parts[order[2]].size() <= 2) year += (year < 30) ? 2000 : 1900;
    const QDate date(year, parts[order[1]].toInt(), parts[order[0]].toInt());
    if (!date.isValid()) return std::nullopt;
    return date;
}

std::optional<int> LocaleFormats::TimeSeconds(const QString& text) const {
    const auto t = ParseTime(text);
    if (!t) return std::nullopt;
    return t->msecsSinceStartOfDay() / 1000;
}

} // namespace kolibrino
