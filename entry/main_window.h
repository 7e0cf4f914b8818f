// HauptForm, the main window: the menus, the entry area, the log grid, the timers,
// and the program's start (Load) and end (Unload).
//
// The application makes one HauptForm over its one Model and calls Load(); tests make
// their own over their own Model, ScriptedDialogs and FixedTimeSource. The window reads
// its controls and calls the logic (entry/qso_entry.h, entry/log_grid_model.h,
// entry/entry_keys.h, entry/contest_clock.h) for every key, click, tick and change of
// the model; it decides no contest rule itself.
//
// GUI thread only. Load() returns false when there is no log to open (the window is
// then closed and the program should end). File errors are shown through the
// "FEHLER" trap of the Dialogs given; nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/contest_clock.h"
#include "entry/entry_keys.h"
#include "entry/log_grid_model.h"
#include "entry/qso_entry.h"
#include "ui/window_support.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <array>
#include <functional>
#include <optional>

class QAction;
class QActionGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QWidget;

namespace kolibrino {

class LogGridView;

class HauptForm : public QMainWindow {
    Q_OBJECT
public:
    HauptForm(Model& m, Dialogs& dialogs, const TimeSource& clock, QWidget* parent = nullptr);
    ~HauptForm() override;

    // Start-up in its fixed order; false when the program ends here.
    bool Load();
    // Picks the log to open into CurrentLogName. The log chooser window plugs in
    // through logChooser; without it the log named by $KOLIBRINO_LOG or by the
    // setting Pathe/LastLogFile is taken when it exists in LogFolder.
    void ChooseLog();

    // Logs the contact in the entry fields (Enter in an entry field).
    void Uebernehmen();
    // Clears the entry fields for the next contact.
    void ResetEntry();
    // Refills the grid from the records and rebuilds every counter.
    void DatenInGrid1Neu();
    // Column widths, hidden columns and alignment of the grid.
    void SetGrid1();
    // One of the sort orders of the pop-up (GridSort numbers).
    void Sortieren(int sortMode);

    // Menu commands of this window.
    void MnBeneden();
    void MnSicherungenOpen();
    void MnHilfePDF();
    void MnContestregeln();
    void MnEingesendeteLogsAnzeigen();
    void MnLastLogOpen();
    void MnFensterPostOrg();
    void ZpmClick(int index);
    void MnDateTimeLock();
    void MnZeitDatumLock();
    void MnCallVorgabe();
    void MnEingabe();
    void MnCountdown();
    // Submission of the log. The submission window plugs in through logEinsenden; until
    // then the menu entry stands disabled and this runs the hook only. The end-of-period
    // reminders of Timer4 and the offer at closing come here.
    void MnLogEinsenden();

    // Timer ticks: date and time fields, dupe blinking, delayed backup, countdown and
    // reminders.
    void Timer1Tick();
    void Timer2Tick();
    void Timer3Tick();
    void Timer4Tick();
    QTimer& Timer1() { return timer1_; }
    QTimer& Timer2() { return timer2_; }
    QTimer& Timer3() { return timer3_; }
    QTimer& Timer4() { return timer4_; }

    LogGridModel& Grid() { return grid_; }
    LogGridView* GridView() const { return gridView_; }
    QMenu* PopupMenu() const { return mnVersteckt_; }
    // A menu entry by its object name ("MnBeneden", "zpm12", ...); null when unknown.
    QAction* Action(const QString& objectName) const;
    // Whether the last contact reached the file.
    bool FileUpToDate() const { return fileUpToDate_; }
    // A correction tells whether its rewrite of the file worked; when it did not, the
    // next contact or the closing writes the whole file again.
    void SetFileUpToDate(bool upToDate) { fileUpToDate_ = upToDate; }

    // Window members: ShiftDown, the reminder flags OfferedPeriod1 and OfferedPeriod2,
    // the call list.
    ShiftTracker Shift;
    SubmissionReminders Reminders;
    QString OeCallListText;
    // The state of the date and time fields' lock and of the dupe button, as shown.
    const DateTimeLockState& DateTimeLock() const { return lock_; }
    const DupeButton& DupeWarning() const { return dupe_; }

    // Hooks for the windows of other parts of the program and for tests.
    std::function<void()> logChooser;                   // the log chooser window
    std::function<void()> logEinsenden;                 // submission of the log
    std::function<bool(const QUrl&)> openUrl;           // the desktop's shell (browser, files)
    std::function<void(Companion)> companionOpener;     // shows a companion window modeless
    std::function<void(const QString&)> bzKarteFuellen; // district map: colour a district
    std::function<void(const QString&, int, const QString&)> gridKarteCellColor; // multiplier table
    std::function<std::optional<float>(int)> frequenzOf;                         // frequency window
    // The frequency window is told a new band (FreqALT) or mode (SetMode) list index;
    // it sets its own busy flag around the call. Called only while it is open.
    std::function<void(int)> frequenzFreqAlt;
    std::function<void(int)> frequenzSetMode;
    std::function<int()> dbLogRows; // rows of the partial-call window's grid
    // The update window at start, before this window is up.
    std::function<void()> updateAtStart;
    // A companion window hands itself over when it is built, so that it can be
    // hidden, shown, moved and closed with the main window.
    void RegisterCompanion(Companion id, QWidget* window);

    // Design place and size of the main window, in pixels.
    static QRect DesignGeometry();

signals:
    void bearbeitenRequested(int row);
    void loeschenRequested(int row);
    void statistikRefreshRequested();
    // The district map and the multiplier table (only while open): repaint everything,
    // after a change that can take a colour away (deletion, edit, colour change).
    void bzKarteRefreshRequested();
    void gridKarteRefreshRequested();
    void trackerRefreshRequested();
    // The partial-call window (only while it is open): refresh its list, or empty it.
    void dbLogRefreshRequested();
    void dbLogClearRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildMenus();
    QAction* AddItem(QMenu* menu, const QString& objectName, const QString& caption, bool enabled);
    void AddSeparator(QMenu* menu, const QString& objectName);
    void ConnectClick(QAction* action, void (HauptForm::*click)());
    void BuildEntryArea(QWidget* host);
    void BuildGrid(QWidget* host);
    void Unload();
    EntryFields ReadEntryFields() const;
    void FocusField(EntryFocus field);
    void SetReports(int modeIndex);
    void ConnectEntryEvents();
    // Keys and focus of the entry fields (main_window_keys.cpp).
    std::optional<EntryField> FieldOf(const QObject* o) const;
    QWidget* FieldWidget(EntryField f) const;
    bool WindowKeyDown(QKeyEvent* e);
    bool FieldKeyPress(EntryField f, QKeyEvent* e);
    bool FieldTab(EntryField f, QKeyEvent* e);
    void FieldGotFocus(EntryField f);
    void FieldLostFocus(EntryField f);
    void Text3Change();
    void Text3LostFocus();
    void Text2LostFocus();
    void Combo1Click();
    void Combo2Click();
    void Check1Click();
    void Combo6Enter();
    void Combo6Click(int index);
    void DupCommand1Click();
    void Label13Click();
    std::optional<QTime> EntryTime() const;
    void ApplyCallCheck(const CallCheck& check);
    void ShowDupeButton();
    void PaintDupeButton();
    void PaintField(EntryField f, bool focused);
    QStringList Operators() const;
    void SetOperators(const QStringList& calls);
    void ApplyEntryPanel(const EntryPanelLayout& panel);
    // The clock (main_window_clock.cpp).
    void ApplyDateTimeLock();
    void ApplyZpm(int index);
    bool OpenInShell(const QUrl& url);
    QWidget* CompanionWindow(Companion id) const;
    // The first showing of a companion window with no stored place: beside or below
    // this window, never over the entry line.
    void PlaceCompanion(Companion id, QWidget* window);
    // The call, report and district fields, in global pixels.
    QRect EntryLineRect();
    void GridRowChanged(int row);
    void GridPopup(int row, const QPoint& globalPos);
    void RememberPopupRow(int row) { popupRow_ = row; }
    // The screen reader and the keyboard alone (main_window_access.cpp).
    void BuildAccess();
    void FocusLogGrid();
    void BringUpCompanion(Companion id, const QString& caption);
    void AnnounceCompanion(QWidget* window);
    bool CompanionShown(QObject* watched, QEvent* event);
    void ShowDupeState();
    void SpeakValue(const QString& caption, const QComboBox* box);

    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    LogGridModel grid_;
    LogFileBytes fileBytes_;
    LogGridView* gridView_ = nullptr;
    bool fileUpToDate_ = true;
    bool unloaded_ = false;
    int popupRow_ = -1;
    std::array<QPointer<QWidget>, kCompanionCount> companions_;
    DateTimeLockState lock_;
    DupeButton dupe_;
    EntryPanelLayout entryPanel_ = EntryPanel(false);
    bool combo6Busy_ = false;

    QTimer timer1_;
    QTimer timer2_;
    QTimer timer3_;
    QTimer timer4_;

    // Entry area.
    QWidget* picture3_ = nullptr;
    QWidget* picture4_ = nullptr;
    QLineEdit* text1_ = nullptr;
    QLineEdit* text2_ = nullptr;
    QLineEdit* text3_ = nullptr;
    QLineEdit* text4_ = nullptr;
    QLineEdit* text5_ = nullptr;
    QLineEdit* text8_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QComboBox* combo2_ = nullptr;
    QComboBox* combo5_ = nullptr;
    QComboBox* combo6_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QLabel* label10_ = nullptr;
    QLabel* label12_ = nullptr;
    QLabel* label13_ = nullptr;
    QGroupBox* frame1_ = nullptr;
    QPushButton* dupCommand1_ = nullptr;

    // Menus.
    QMenu* mnVersteckt_ = nullptr;
    QActionGroup* zpmGroup_ = nullptr;
    std::array<QAction*, kZpmCount> zpm_{};
    QAction* mnZeitTimer_ = nullptr;
};

} // namespace kolibrino
