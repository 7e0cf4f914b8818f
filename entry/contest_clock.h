// The contest clock and the main window's four timers, without the window.
//
// The window keeps its QTimers and menu entries and asks these functions what to show
// on each tick or click:
//   Timer1 (date and time fields)  -> DateTimeFieldTexts()
//   Timer2 (dupe button blinking)  -> DupeButton::Tick()
//   Timer3 (backup after an entry) -> DelayedBackup, RunDelayedBackup()
//   Timer4 (countdown, reminders)  -> CountdownTick() with a SubmissionReminders
//   zpm(index) Click               -> StoreZpmChoice(); Load reads ReadZpmIndex()
//   MnDateTimeLock / MnZeitDatumLock Click -> DateTimeLockState
//   MnCountdown Click              -> ReadCountdown() / WriteCountdown()
// "now" is always ContestNow() of core/clock.h: the computer's clock moved by
// ZeitOffset hours.
//
// Window thread only (the settings writes are not synchronised). Pure functions never
// fail; the countdown of a time that has no target simply shows zeros. The INI
// functions never report a failure (see core/settings.h); RunDelayedBackup() tells
// failures to the operator through the Dialogs given and never stops the logging.
#pragma once

#include "core/dialogs.h"
#include "core/locale_fmt.h"
#include "core/log_model.h"
#include "entry/entry_colours.h"

#include <QDateTime>
#include <QString>
#include <QTime>
#include <optional>

namespace kolibrino {

// Tick intervals: Timer1 and Timer4 often enough to show each second, Timer2 fast
// enough to blink, Timer3 shortly after an entry (single shot).
inline constexpr int kTimer1IntervalMs = 200;
inline constexpr int kTimer2IntervalMs = 300;
inline constexpr int kTimer3DelayMs = 1500;
inline constexpr int kTimer4IntervalMs = 250;

// ---- Time offset: the 25 zpm items ---------------------------------------------------

inline constexpr int kZpmCount = 25;
// Caption of item index: "-12:00h" .. "-01:00h" (0..11), "-00:00h" (12),
// "+01:00h" .. "+12:00h" (13..24); empty outside 0..24.
QString ZpmCaption(int index);
// The number at the start of a caption, in hours ("-00:00h" gives 0, "+03:00h" 3);
// 0 when the caption has no number.
int LeadingHours(const QString& caption);
// ZeitOffset of item index (the leading number of its caption); 0 outside 0..24.
int ZeitOffsetOfIndex(int index);
// Item index of an offset in hours; -1 outside -12..+12.
int ZpmIndexOfOffset(int hours);
// The item the stored key ZeitPM checks at Load. A first run reads 0 and so starts at
// "-12:00h"; a value outside 0..24 is taken as 0 as well.
int ReadZpmIndex(const QString& iniFile = {});
// zpm(index) Click: writes ZeitPM and gives the new ZeitOffset. The window unchecks all
// items and checks zpm(index). An index outside 0..24 writes nothing and gives nullopt.
std::optional<int> StoreZpmChoice(int index, const QString& iniFile = {});

// ---- Timer1: date and time fields ----------------------------------------------------

// New texts for Text1 and Text2; a field whose text already matches stays nullopt, so
// the caret in the field is left alone between minute changes.
struct DateTimeTexts {
    std::optional<QString> text1; // short date
    std::optional<QString> text2; // short time
};
// With manualTime (MnZeitDatumLock checked) nothing changes.
DateTimeTexts DateTimeFieldTexts(const LocaleFormats& formats, const QDateTime& contestNow, bool manualTime,
                                 const QString& text1, const QString& text2);

// ---- Timer2: the dupe button ---------------------------------------------------------

// DUPCommand1 while a dupe warning stands: lit (enabled, red) and blinking.
struct DupeButton {
    bool enabled = false;
    bool blinking = false; // Timer2 runs
    quint32 backColour = EntryColour::ButtonFace;

    // A dupe was found: red, enabled, Timer2 on.
    void Show();
    // One tick of Timer2: red to button face, anything else to red.
    void Tick();
    // The button's Click: Timer2 off, button disabled (the window focuses Text3).
    void Dismiss();
};
// The colour after one blink.
quint32 BlinkColour(quint32 backColour);

// ---- Timer3: the backup after an entry -----------------------------------------------

// Armed after each entry and at start; fires once, kTimer3DelayMs after the last arming.
class DelayedBackup {
public:
    void Arm(const QDateTime& now);
    bool Armed() const { return armed_; }
    // True exactly once when the delay has passed since the last Arm(); disarms then.
    bool Fire(const QDateTime& now);

private:
    bool armed_ = false;
    QDateTime due_;
};
// Copies the log from LogFolder to BackupFolder under its own name (the ".ALT" backup
// of core/backup.h), re-creating BackupFolder when it went missing. Nothing happens
// without a current log.
void RunDelayedBackup(const Model& m, Dialogs& dialogs);

// ---- Timer4: countdown and submission reminders --------------------------------------

inline const QString kBisContestBeginn = QStringLiteral(" bis Contest-Beginn");
inline const QString kBisContestEnde = QStringLiteral(" bis Contest-Ende");
inline const QString kBisBeginnPeriode2 = QStringLiteral(" bis Beginn Periode 2");
inline const QString kBisEndePeriode1 = QStringLiteral(" bis Ende Periode 1");

// Where the countdown runs to at a time of day. The contest times are compared as
// long-time texts; a time exactly on 05:00:00, 08:00:00 or 14:00:00 has no target for
// that tick, and from 17:00:00 on there is none either.
struct CountdownTarget {
    std::optional<QTime> target;
    QString text;
};
CountdownTarget CountdownTargetAt(const LocaleFormats& formats, const QTime& now);

// The text of MnZeitTimer: 20 blanks and hh:mm:ss to the target plus its text; when the
// seconds part is under 1 (every full minute, and whenever there is no target) 20
// blanks and "00" sep "00" sep "00" with the time separator and no text.
QString CountdownCaption(const LocaleFormats& formats, const QDateTime& contestNow);

// The two end-of-period reminders of the main window (flags OfferedPeriod1/2).
struct SubmissionReminders {
    bool OfferedPeriod1 = false;
    bool OfferedPeriod2 = false;

    enum Offer { None, Period1, Period2 };
    // Timer4's test: after 08:01:00 and before 08:02:00 (Periode 1), after 17:01:00 and
    // before 17:02:00 (Periode 2), with at least one contact in the grid and the
    // period's flag clear. Sets the flag of the reminder it gives; the window then runs
    // MnLogEinsenden. The date is not looked at.
    Offer OfferNow(const LocaleFormats& formats, const QTime& now, int gridDataRows);
    // A new contact earns a new reminder: clears both flags.
    void ContactLogged();
    // Closing on the contest day (1 May) with contacts and no reminder given yet offers
    // the submission once more.
    bool OfferAtClosing(const QDateTime& contestNow, int gridDataRows) const;
};

struct Timer4Result {
    QString caption;                                              // for MnZeitTimer
    SubmissionReminders::Offer offer = SubmissionReminders::None; // run MnLogEinsenden
};
// One tick of Timer4 at contestNow; gridDataRows counts the contacts in the grid (not
// its heading row).
Timer4Result CountdownTick(const LocaleFormats& formats, const QDateTime& contestNow,
                           SubmissionReminders& reminders, int gridDataRows);

// ---- Date and time lock --------------------------------------------------------------

inline const QString kCaptionGesperrt = QStringLiteral("&Datum/Zeit gesperrt");
inline const QString kCaptionEditierbar = QStringLiteral("&Datum/Zeit editierbar");

// The check marks of MnDateTimeLock (fields locked) and MnZeitDatumLock (manual time:
// Timer1 stands still and the fields are green).
struct DateTimeLockState {
    bool dateTimeLock = false;
    bool manualTime = false;

    // Load: DateTimeLock -1 locks, 0 leaves the fields free.
    static DateTimeLockState FromSetting(int dateTimeLock);
    // The value Unload writes to DateTimeLock: -1 or 0.
    int SettingValue() const { return dateTimeLock ? -1 : 0; }

    void ClickDateTimeLock();
    void ClickZeitDatumLock();

    QString DateTimeLockCaption() const { return dateTimeLock ? kCaptionGesperrt : kCaptionEditierbar; }
    bool FieldsLocked() const { return dateTimeLock; } // Text1, Text2 read-only
    bool Timer1Paused() const { return manualTime; }
    // Back colour of Text1 and Text2 without the focus: green, grey or white.
    quint32 FieldColour() const;
};

DateTimeLockState ReadDateTimeLock(const QString& iniFile = {});
void WriteDateTimeLock(const DateTimeLockState& state, const QString& iniFile = {});

// ---- Countdown on/off ----------------------------------------------------------------

// Countdown -1 checks MnCountdown and shows MnZeitTimer.
bool ReadCountdown(const QString& iniFile = {});
// MnCountdown Click: the new check mark (and visibility of MnZeitTimer), written.
bool CountdownClick(bool wasChecked, const QString& iniFile = {});

} // namespace kolibrino
