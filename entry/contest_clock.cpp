#include "entry/contest_clock.h"

#include "core/backup.h"
#include "core/settings.h"

#include <QDir>
#include <cstdlib>

namespace kolibrino {
namespace {

const QString kSection = QStringLiteral("Einstellungen");

// A contest time as the long-time text it is compared as: hh sep mm sep ss.
QString BoundText(const LocaleFormats& f, int h, int m) {
    return f.RecordTime(QTime(h, m));
}

QString NowText(const LocaleFormats& f, const QTime& now) {
    return f.RecordTime(now);
}

QString TwoDigits(qint64 v) {
    return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0'));
}

const QString kTwentyBlanks = QString(20, QLatin1Char(' '));

} // namespace

// ---- Time offset ---------------------------------------------------------------------

QString ZpmCaption(int index) {
    if (index < 0 || index >= kZpmCount) return {};
    const int hours = index - 12;
    const QChar sign = hours > 0 ? QLatin1Char('+') : QLatin1Char('-');
    return sign + TwoDigits(std::abs(hours)) + QStringLiteral(":00h");
}

int LeadingHours(const QString& caption) {
    qsizetype i = 0;
    bool negative = false;
    if (i < caption.size() && (caption[i] == QLatin1Char('-') || caption[i] == QLatin1Char('+'))) {
        negative = caption[i] == QLatin1Char('-');
        ++i;
    }
    int value = 0;
    bool any = false;
    while (i < caption.size() && caption[i] >= QLatin1Char('0') && caption[i] <= QLatin1Char('9')) {
        value = value * 10 + (caption[i].unicode() - '0');
        any = true;
        ++i;
    }
    if (!any) return 0;
    return negative ? -value : value;
}

int ZeitOffsetOfIndex(int index) {
    return LeadingHours(ZpmCaption(index));
}

int ZpmIndexOfOffset(int hours) {
    if (hours < -12 || hours > 12) return -1;
    return hours + 12;
}

int ReadZpmIndex(const QString& iniFile) {
    const int stored = int(IniReadInt(iniFile, kSection, QStringLiteral("ZeitPM")));
    return (stored < 0 || stored >= kZpmCount) ? 0 : stored;
}

std::optional<int> StoreZpmChoice(int index, const QString& iniFile) {
    if (index < 0 || index >= kZpmCount) return std::nullopt;
    IniWrite(iniFile, kSection, QStringLiteral("ZeitPM"), index);
    return ZeitOffsetOfIndex(index);
}

// ---- Timer1 --------------------------------------------------------------------------

DateTimeTexts DateTimeFieldTexts(const LocaleFormats& formats, const QDateTime& contestNow, bool manualTime,
                                 const QString& text1, const QString& text2) {
    DateTimeTexts out;
    if (manualTime) return out;
    const QString time = formats.ShortTime(contestNow.time());
    if (text2 != time) out.text2 = time;
    const QString date = formats.ShortDate(contestNow.date());
    if (text1 != date) out.text1 = date;
    return out;
}

// ---- Timer2 --------------------------------------------------------------------------

quint32 BlinkColour(quint32 backColour) {
    return backColour == EntryColour::Red ? EntryColour::ButtonFace : EntryColour::Red;
}

void DupeButton::Show() {
    backColour = EntryColour::Red;
    enabled = true;
    blinking = true;
}

void DupeButton::Tick() {
    if (blinking) backColour = BlinkColour(backColour);
}

void DupeButton::Dismiss() {
    blinking = false;
    enabled = false;
}

// ---- Timer3 --------------------------------------------------------------------------

void DelayedBackup::Arm(const QDateTime& now) {
    armed_ = true;
    due_ = now.addMSecs(kTimer3DelayMs);
}

bool DelayedBackup::Fire(const QDateTime& now) {
    if (!armed_ || now < due_) return false;
    armed_ = false;
    return true;
}

void RunDelayedBackup(const Model& m, Dialogs& dialogs) {
    if (m.CurrentLogName.isEmpty()) return;
    if (!m.BackupFolder.isEmpty()) QDir().mkpath(m.BackupFolder); // our own folder comes back
    BackupFile(dialogs, m.LogFolder + m.CurrentLogName, m.BackupFolder + m.CurrentLogName, m.ExtraBackupPath);
}

// ---- Timer4 --------------------------------------------------------------------------

CountdownTarget CountdownTargetAt(const LocaleFormats& formats, const QTime& now) {
    const QString t = NowText(formats, now);
    const QString p1Start = BoundText(formats, 5, 0);
    const QString p1End = BoundText(formats, 8, 0);
    const QString p2Start = BoundText(formats, 14, 0);
    const QString p2End = BoundText(formats, 17, 0);
    if (t < p1Start) return {QTime(5, 0), kBisContestBeginn};
    if (t > p2Start && t < p2End) return {QTime(17, 0), kBisContestEnde};
    if (t > p2Start) return {std::nullopt, QString()};
    if (t > p1End && t < p2Start) return {QTime(14, 0), kBisBeginnPeriode2};
    if (t > p1Start && t < p1End) return {QTime(8, 0), kBisEndePeriode1};
    return {std::nullopt, QString()}; // exactly on a bound
}

QString CountdownCaption(const LocaleFormats& formats, const QDateTime& contestNow) {
    const CountdownTarget target = CountdownTargetAt(formats, contestNow.time());
    // Without a target the difference runs to the start of the day: negative, and its
    // seconds part is never 1 or more.
    const int targetSecs = target.target ? target.target->msecsSinceStartOfDay() / 1000 : 0;
    const qint64 diff = qint64(targetSecs) - contestNow.time().msecsSinceStartOfDay() / 1000;
    const qint64 hours = diff / 3600;
    const qint64 minutes = (diff % 3600) / 60;
    const qint64 seconds = diff % 60;
    if (seconds < 1) {
        const QChar sep = formats.TimeSeparator();
        return kTwentyBlanks + QStringLiteral("00") + sep + QStringLiteral("00") + sep + QStringLiteral("00");
    }
    return kTwentyBlanks + TwoDigits(hours) + QLatin1Char(':') + TwoDigits(minutes) + QLatin1Char(':') +
           TwoDigits(seconds) + target.text;
}

SubmissionReminders::Offer SubmissionReminders::OfferNow(const LocaleFormats& formats, const QTime& now,
                                                         int gridDataRows) {
    const QString t = NowText(formats, now);
    const bool contacts = gridDataRows > 0; // the grid has more than its heading row
    if (t > BoundText(formats, 14, 0)) {
        if (t > BoundText(formats, 17, 1) && t < BoundText(formats, 17, 2) && contacts && !OfferedPeriod2) {
            OfferedPeriod2 = true;
            return Period2;
        }
    } else if (t > BoundText(formats, 8, 0)) {
        if (t > BoundText(formats, 8, 1) && t < BoundText(formats, 8, 2) && contacts && !OfferedPeriod1) {
            OfferedPeriod1 = true;
            return Period1;
        }
    }
    return None;
}

void SubmissionReminders::ContactLogged() {
    OfferedPeriod1 = false;
    OfferedPeriod2 = false;
}

bool SubmissionReminders::OfferAtClosing(const QDateTime& contestNow, int gridDataRows) const {
    const bool contestDay = contestNow.date().day() == 1 && contestNow.date().month() == 5;
    return contestDay && gridDataRows > 0 && !OfferedPeriod1 && !OfferedPeriod2;
}

Timer4Result CountdownTick(const LocaleFormats& formats, const QDateTime& contestNow,
                           SubmissionReminders& reminders, int gridDataRows) {
    Timer4Result r;
    r.offer = reminders.OfferNow(formats, contestNow.time(), gridDataRows);
    r.caption = CountdownCaption(formats, contestNow);
    return r;
}

// ---- Date and time lock --------------------------------------------------------------

DateTimeLockState DateTimeLockState::FromSetting(int dateTimeLock) {
    DateTimeLockState s;
    s.dateTimeLock = dateTimeLock != 0;
    return s;
}

void DateTimeLockState::ClickDateTimeLock() {
    if (dateTimeLock) {
        dateTimeLock = false;
    } else {
        manualTime = false;
        dateTimeLock = true;
    }
}

void DateTimeLockState::ClickZeitDatumLock() {
    if (manualTime) {
        manualTime = false;
        dateTimeLock = true; // Timer1 takes over again
    } else {
        manualTime = true;
        if (dateTimeLock) ClickDateTimeLock(); // unlocks
    }
}

quint32 DateTimeLockState::FieldColour() const {
    if (manualTime) return EntryColour::Green;
    if (dateTimeLock) return EntryColour::Grey;
    return EntryColour::White;
}

DateTimeLockState ReadDateTimeLock(const QString& iniFile) {
    return DateTimeLockState::FromSetting(int(IniReadInt(iniFile, kSection, QStringLiteral("DateTimeLock"))));
}

void WriteDateTimeLock(const DateTimeLockState& state, const QString& iniFile) {
    IniWrite(iniFile, kSection, QStringLiteral("DateTimeLock"), state.SettingValue());
}

// ---- Countdown on/off ----------------------------------------------------------------

bool ReadCountdown(const QString& iniFile) {
    return int(IniReadInt(iniFile, kSection, QStringLiteral("Countdown"))) == -1;
}

bool CountdownClick(bool wasChecked, const QString& iniFile) {
    const bool checked = !wasChecked;
    IniWrite(iniFile, kSection, QStringLiteral("Countdown"), checked ? -1 : 0);
    return checked;
}

} // namespace kolibrino
