// The main window's contest clock: the four timers, the time offset menu (zpm), the
// lock of the date and time fields, the countdown in the menu bar and the submission
// it reminds of. The rules come from entry/contest_clock.h; this file shows them.
#include "entry/main_window.h"
#include "ui/back_colour.h"

#include <QAction>
#include <QLineEdit>

namespace kolibrino {

void HauptForm::Timer1Tick() {
    const DateTimeTexts t = DateTimeFieldTexts(m_.Formats, ContestNow(clock_, m_.ZeitOffset),
                                               lock_.Timer1Paused(), text1_->text(), text2_->text());
    if (t.text2) text2_->setText(*t.text2);
    if (t.text1) text1_->setText(*t.text1);
}

void HauptForm::Timer2Tick() {
    dupe_.Tick();
    PaintDupeButton();
}

void HauptForm::Timer3Tick() {
    timer3_.stop();
    RunDelayedBackup(m_, dialogs_);
}

void HauptForm::Timer4Tick() {
    const Timer4Result r =
        CountdownTick(m_.Formats, ContestNow(clock_, m_.ZeitOffset), Reminders, grid_.DataRows());
    mnZeitTimer_->setText(r.caption);
    if (r.offer != SubmissionReminders::None) MnLogEinsenden();
}

void HauptForm::MnLogEinsenden() {
    if (logEinsenden) logEinsenden();
}

void HauptForm::ApplyZpm(int index) {
    for (QAction* a : zpm_)
        a->setChecked(false);
    if (index >= 0 && index < kZpmCount) zpm_[size_t(index)]->setChecked(true);
}

void HauptForm::ZpmClick(int index) {
    const std::optional<int> offset = StoreZpmChoice(index);
    if (!offset) return;
    ApplyZpm(index);
    m_.ZeitOffset = *offset;
    Timer1Tick();
}

void HauptForm::ApplyDateTimeLock() {
    QAction* lock = Action(QStringLiteral("MnDateTimeLock"));
    lock->setChecked(lock_.dateTimeLock);
    lock->setText(lock_.DateTimeLockCaption());
    Action(QStringLiteral("MnZeitDatumLock"))->setChecked(lock_.manualTime);
    for (QLineEdit* e : {text1_, text2_}) {
        e->setReadOnly(lock_.FieldsLocked());
        SetBackColour(e, lock_.FieldColour());
    }
}

void HauptForm::MnDateTimeLock() {
    lock_.ClickDateTimeLock();
    ApplyDateTimeLock();
}

void HauptForm::MnZeitDatumLock() {
    lock_.ClickZeitDatumLock();
    ApplyDateTimeLock();
    Timer1Tick(); // with the manual time ended, the clock shows at once
}

void HauptForm::MnCountdown() {
    QAction* a = Action(QStringLiteral("MnCountdown"));
    const bool on = CountdownClick(a->isChecked());
    a->setChecked(on);
    mnZeitTimer_->setVisible(on);
    if (on) Timer4Tick();
}

} // namespace kolibrino
