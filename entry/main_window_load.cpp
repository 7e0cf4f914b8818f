// Start and end of the main window: Load in its fixed order, the choice of the log,
// and Unload, which writes the settings and closes the companion windows.
#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/log_lock.h"
#include "core/paths.h"
#include "core/print_choice.h"
#include "core/settings.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

namespace kolibrino {
namespace {

const QString kEinst = QString::fromLatin1(kSectionEinstellungen);
const QString kPos = QString::fromLatin1(kSectionFensterPos);
// The question when the last write before the end failed and the operator cancelled it.
const QString kUnwrittenAtClose =
    QStringLiteral("Die letzten Kontakte und Änderungen sind NICHT in der Logdatei gespeichert: "
                   "die Datei konnte nicht geschrieben werden.\r\n\r\n"
                   "Wird Kolibrino jetzt beendet, sind diese Kontakte verloren.\r\n\r\n"
                   "Trotzdem beenden?");

int ReadInt(const QString& section, const QString& key) {
    return int(IniReadInt({}, section, key));
}

// Version bookkeeping in the sections of the program file and of its update file.
void RecordVersion() {
    const int running = ProgramVersionNumber();
    const QString base = ProgramTitle().toUpper();
    const QStringList sections = {base + QStringLiteral(".EXE"), base + QStringLiteral(".BIN")};
    bool differs = false;
    for (const QString& s : sections)
        if (ReadInt(s, QStringLiteral("Version")) != running) differs = true;
    if (!differs) return;
    const QString text = QStringLiteral("%1").arg(running, 7, 10, QLatin1Char('0'));
    for (const QString& s : sections)
        IniWrite({}, s, QStringLiteral("Version"), text);
}

} // namespace

void HauptForm::ChooseLog() {
    // KOLIBRINO_LOG names a log in Logs/ that opens at once, without the log manager.
    const QString named = QFileInfo(qEnvironmentVariable("KOLIBRINO_LOG").trimmed()).fileName();
    if (!named.isEmpty()) {
        for (const QString& n : {named, named + QLatin1String(kLogExtension)})
            if (FileExists(m_.LogFolder + n)) {
                m_.CurrentLogName = n;
                return;
            }
    }
    if (logChooser) {
        logChooser();
        return;
    }
    QString name = IniReadString({}, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"));
    name = QFileInfo(name.trimmed()).fileName();
    if (name.isEmpty()) return;
    if (FileExists(m_.LogFolder + name))
        m_.CurrentLogName = name;
    else if (FileExists(m_.LogFolder + name + QLatin1String(kLogExtension)))
        m_.CurrentLogName = name + QLatin1String(kLogExtension);
}

bool HauptForm::Load() {
    // 1-3: folders and settings file, version bookkeeping.
    if (m_.AppFolder.isEmpty()) IniStartup(m_, QCoreApplication::applicationDirPath());
    SetupFolders(m_);
    RecordVersion();
    // 4: the date separator as today's short date shows it.
    m_.DateSeparator = FirstNonDigit(m_.Formats.ShortDate(clock_.Now().date()), m_.DateSeparator);
    // No log yet: the header holds its defaults (the exam date's with this separator),
    // so that a log created in the log manager starts from them.
    if (m_.CurrentLogName.isEmpty()) m_.Header = DefaultHeader(m_);
    // 5: the update window, before this window is up.
    if (updateAtStart) updateAtStart();
    // 6: the district table.
    LoadBezirkTable(m_, dialogs_);
    // 7, 8: the choice of the log. This window stays hidden behind it: an empty main
    // window is never seen, and with no log the program ends without showing it.
    ChooseLog();
    // 9: no log, no program.
    if (m_.CurrentLogName.isEmpty() || !FileExists(m_.LogFolder + m_.CurrentLogName)) {
        m_.CurrentLogName.clear();
        close();
        return false;
    }
    show();
    // 10, 11: title and stored geometry.
    setWindowTitle(QStringLiteral("Kolibrino (") + m_.CurrentLogName + QLatin1Char(')'));
    const int top = ReadInt(kPos, QStringLiteral("HauptFormTop"));
    const int left = ReadInt(kPos, QStringLiteral("HauptFormLeft"));
    const int height = ReadInt(kPos, QStringLiteral("HauptFormHeight"));
    QPoint place = pos();
    if (top >= 0 && top < ScreenHeightTwips()) place.setY(TwipsToPixels(top));
    if (left >= 0 && left < ScreenWidthTwips()) place.setX(TwipsToPixels(left));
    move(place);
    if (height > PixelsToTwips(this->height()) && height < ScreenHeightTwips())
        resize(width(), TwipsToPixels(height));
    // 12: the entry fonts are set when the fields are built.
    // 13: time separator, noon, districts, operators.
    m_.TimeSeparator = FirstNonDigit(m_.Formats.ShortTime(clock_.Now().time()), m_.TimeSeparator);
    m_.MittagsGrenze = QTime(12, 0);
    combo5_->clear();
    for (size_t i = 1; i < m_.BezirkRecords.size(); ++i)
        combo5_->addItem(m_.BezirkRecords[i].Code);
    combo5_->setCurrentIndex(-1);
    combo5_->clearEditText();
    SetOperators(LoadOperators());
    // 14: band and mode of the last run, reports to match.
    combo1_->setCurrentIndex(ReadInt(kEinst, QStringLiteral("Band")));
    combo2_->setCurrentIndex(ReadInt(kEinst, QStringLiteral("Mode")));
    SetReports(combo2_->currentIndex());
    // 15: extended entry, time offset, date lock, call default.
    ApplyEntryPanel(EntryPanel(ReadErwEingabe()));
    const int zeitPm = ReadZpmIndex();
    ApplyZpm(zeitPm);
    m_.ZeitOffset = ZeitOffsetOfIndex(zeitPm);
    lock_ = ReadDateTimeLock();
    ApplyDateTimeLock();
    const bool vorgabe = ReadCallVorgabe();
    Action(QStringLiteral("MnCallVorgabe"))->setChecked(vorgabe);
    if (text3_->text().isEmpty()) text3_->setText(ResetCallText(vorgabe));
    // 16: the log itself, the call list, the manual, the grid.
    const QString path = m_.LogFolder + m_.CurrentLogName;
    // One writer per log: a log that another program holds is not opened here at all.
    if (!TakeWriteLock(m_, dialogs_)) {
        m_.CurrentLogName.clear();
        close();
        return false;
    }
    if (LoadLog(m_, dialogs_, path) != 1) {
        dialogs_.MsgBox(LoadFailureText(path), Msg::Critical);
        IniWrite({}, kEinst, QStringLiteral("LastLogOpen"), 0);
        m_.CurrentLogName.clear();
        close();
        return false;
    }
    if (FileExists(m_.DataFolder + QStringLiteral("OeCallList.txt")))
        OeCallListText = FromCp1252(ReadWholeFile(m_.DataFolder + QStringLiteral("OeCallList.txt")));
    Action(QStringLiteral("MnHilfePDF"))
        ->setEnabled(FileExists(m_.DataFolder + QStringLiteral("KOLBOHilfe.pdf")));
    DatenInGrid1Neu();
    // 17: the companion windows open at the last exit.
    for (const CompanionDef& c : Companions()) {
        if (ReadInt(kEinst, QString::fromLatin1(c.openKey)) == 0 || !companionOpener) continue;
        Action(QString::fromLatin1(c.menuEntry))->setChecked(true);
        companionOpener(c.id);
    }
    // 18: focus on the call, own station shown.
    activateWindow();
    text3_->setFocus(Qt::OtherFocusReason);
    text3_->setCursorPosition(int(text3_->text().size()));
    label12_->setText(m_.Header.MYBZ);
    frame1_->setTitle(m_.Header.MYCALL);
    // 19: the log's class.
    m_.IsStaatsfunkstelle = m_.Header.MYWERTUNGSST == 4;
    // 20: the log's operator joins the list.
    const QString opCall = m_.Header.MYOPCALL;
    if (!opCall.isEmpty()) {
        if (!Operators().contains(opCall)) {
            SetOperators(Operators() << opCall);
            StoreOperators(Operators());
        }
        combo6_->setCurrentText(opCall);
    }
    // 21: grid shape, the frequency window told the band, backup soon, extra backup
    // folder, menu marks.
    SetGrid1();
    gridView_->KeepLastRowInView();
    if (m_.Open.Frequenz) Combo1Click();
    timer3_.start();
    const QString extra =
        IniReadString({}, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath")).trimmed();
    // A folder that is Logs/ or Sicherung/ however spelled (an INI edited by hand) is none.
    m_.ExtraBackupPath =
        (!extra.isEmpty() && FolderExists(extra) && !IsLogOrBackupFolder(m_, extra)) ? extra : QString();
    if (!m_.ExtraBackupPath.isEmpty() && !m_.ExtraBackupPath.endsWith(QLatin1Char('/')))
        m_.ExtraBackupPath += QLatin1Char('/');
    Action(QStringLiteral("MnAutomatischesSichern"))
        ->setChecked(ReadInt(kEinst, QStringLiteral("SichernEA")) == 1 && !m_.ExtraBackupPath.isEmpty());
    Action(QStringLiteral("MnLastLogOpen"))->setChecked(ReadInt(kEinst, QStringLiteral("LastLogOpen")) == -1);
    Action(QStringLiteral("MnDruckenPDF"))->setChecked(PrintIntoPdfChosen());
    const bool countdown = ReadCountdown();
    Action(QStringLiteral("MnCountdown"))->setChecked(countdown);
    mnZeitTimer_->setVisible(countdown);
    Timer1Tick();
    timer1_.start();
    timer4_.start();
    // 22.
    m_.MainWindowLoaded = true;
    return true;
}

void HauptForm::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    timer1_.stop();
    timer2_.stop();
    timer4_.stop();
    if (m_.CurrentLogName.isEmpty()) return;
    // A contact that did not reach the file gets one more try before the program ends.
    // Ending with them unwritten is the operator's choice alone, asked in plain words.
    while (!fileUpToDate_) {
        fileUpToDate_ = RunTrappedUi(dialogs_, [this] { return WriteLogFile(m_); });
        if (!fileUpToDate_ && dialogs_.MsgBox(kUnwrittenAtClose, Msg::YesNo | Msg::Exclamation |
                                                                     Msg::DefaultButton2) == Msg::Yes)
            break;
    }
    if (timer3_.isActive()) Timer3Tick();
    // Operators: at most the first ten.
    if (combo6_->count() > 0) StoreOperators(Operators());
    IniWrite({}, kEinst, QStringLiteral("Band"), combo1_->currentIndex());
    IniWrite({}, kEinst, QStringLiteral("Mode"), combo2_->currentIndex());
    WriteErwEingabe(entryPanel_.checked);
    // Companion windows, in closing order.
    for (const Companion id :
         {Companion::GridKarte, Companion::BZKarte, Companion::Frequenz, Companion::Statistik,
          Companion::Transceiver, Companion::LogTracker, Companion::DBLog, Companion::QsoRate,
          Companion::FehlendeMulti}) {
        const bool open = OpenFlag(m_, id);
        IniWrite({}, kEinst, QString::fromLatin1(CompanionOf(id).openKey), FlagValue(open));
        if (QWidget* w = CompanionWindow(id); open && w) {
            w->setProperty("Tag", QStringLiteral("1")); // closed by the program: no question
            w->close();
        }
    }
    IniWrite({}, kPos, QStringLiteral("HauptFormTop"), PixelsToTwips(pos().y()));
    IniWrite({}, kPos, QStringLiteral("HauptFormLeft"), PixelsToTwips(pos().x()));
    IniWrite({}, kPos, QStringLiteral("HauptFormHeight"), PixelsToTwips(height()));
    WriteDateTimeLock(lock_);
    // On the contest day the submission is offered once more.
    if (Reminders.OfferAtClosing(ContestNow(clock_, m_.ZeitOffset), grid_.DataRows())) MnLogEinsenden();
    m_.MainWindowLoaded = false;
    m_.WriteLock.reset(); // the log is free for the next program
}

} // namespace kolibrino
