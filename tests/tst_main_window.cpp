// The main window's start and end, its menus and its own menu commands.
#include "entry/web_addresses.h"
#include "tst_main_window_support.h"
#include "ui/window_support.h"

#include <QAction>
#include <QGroupBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::test;

class TestMainWindow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    // Start.
    void noLogChosenEndsWithoutShowingTheGrid();
    void lastLogFileSettingOpensThatLog();
    void missingLogFileEndsQuietly();
    void damagedLogShowsTheStopBoxTwiceAndClearsLastLogOpen();
    void loadShowsTitleOwnStationAndSettings();
    void loadFillsDistrictsAndOperators();
    void storedTopBeyondTheScreenIsIgnored();
    void storedPlaceInsideTheScreenIsApplied();
    void missingSicherungsPathLeavesExtraBackupUnchecked();
    void existingSicherungsPathWithSichernEAChecksExtraBackup();
    void stateStationClassSetsTheFlag();
    void logOperatorJoinsTheOperatorList();
    void versionIsRecordedInBothSections();
    void firstRunChecksTheFirstTimeOffset();
    void manualIsEnabledOnlyWhenPresent();

    // End.
    void twelveOperatorsAreWrittenAsTen();
    void closingWritesBandModeAndPlace();
    void submissionAtClosing_data();
    void submissionAtClosing();
    void companionWindowsAreClosedAndRemembered();
    void minimiseHidesAndRestoreShowsOpenCompanions();

    // Menus.
    void menuTreeHasEveryEntryWithItsCaption_data();
    void menuTreeHasEveryEntryWithItsCaption();
    void separatorsStandInTheirMenus();
    void entriesOfLaterWindowsAreDisabled();
    void zpmHasTwentyFiveOffsets();
    void beendenClosesTheWindow();
    void shellCommandsOpenTheirAddresses();
    void webAddressesComeFromTheSettings();
    void lastLogOpenTogglesAndWritesTheKey();
    void fensterPosOrgWritesDesignPlaces();
    void fensterPosOrgAnsweredNoChangesNothing();
    void zpmClickSetsOffsetAndKey();
    void entryAreaHasEveryControl();
};

void TestMainWindow::noLogChosenEndsWithoutShowingTheGrid() {
    WindowFixture f;
    QVERIFY(!f.Start(QString()));
    QVERIFY(!f.window->isVisible());
    QCOMPARE(f.Grid().Rows(), 1);
    QVERIFY(f.home.model.CurrentLogName.isEmpty());
    QVERIFY(!f.home.model.MainWindowLoaded);
    QVERIFY(f.dialogs.boxes.isEmpty());
}

void TestMainWindow::lastLogFileSettingOpensThatLog() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("letztes.KOLBO"),
               {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("06:01:00"))});
    f.Ini(QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), QStringLiteral("letztes.KOLBO"));
    QVERIFY(f.Start(QString()));
    QCOMPARE(f.home.model.CurrentLogName, QStringLiteral("letztes.KOLBO"));
    QCOMPARE(f.Grid().DataRows(), 1);
}

void TestMainWindow::missingLogFileEndsQuietly() {
    WindowFixture f;
    f.Ini(QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), QStringLiteral("weg.KOLBO"));
    QVERIFY(!f.Start(QString()));
    QVERIFY(!f.window->isVisible());
    QVERIFY(f.dialogs.boxes.isEmpty());
}

void TestMainWindow::damagedLogShowsTheStopBoxTwiceAndClearsLastLogOpen() {
    WindowFixture f;
    WriteBytes(f.home.model.LogFolder + QStringLiteral("kaputt.KOLBO"),
               "[MYCALL:6]OE1XYZ\r\nno end of header\r\n");
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen"), QStringLiteral("-1"));
    QVERIFY(!f.Start(QStringLiteral("kaputt.KOLBO")));
    QCOMPARE(f.dialogs.boxes.size(), 2);
    const QString text = LoadFailureText(f.home.model.LogFolder + QStringLiteral("kaputt.KOLBO"));
    for (const ShownBox& b : f.dialogs.boxes) {
        QCOMPARE(b.text, text);
        QCOMPARE(b.flags, int(Msg::Critical));
    }
    QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen")),
             0.0);
    QVERIFY(!f.window->isVisible());
}

void TestMainWindow::loadShowsTitleOwnStationAndSettings() {
    WindowFixture f;
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("Band"), QStringLiteral("1"));
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("Mode"), QStringLiteral("1"));
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.window->windowTitle(), QStringLiteral("Kolibrino (test.KOLBO)"));
    QCOMPARE(f.Child<QGroupBox>("Frame1")->title(), QStringLiteral("OE1XYZ"));
    QCOMPARE(f.Child<QLabel>("Label12")->text(), QStringLiteral("WI"));
    QCOMPARE(f.Combo(1)->currentText(), QStringLiteral("80m"));
    QCOMPARE(f.Combo(2)->currentText(), QStringLiteral("CW"));
    QCOMPARE(f.Text(4)->text(), QStringLiteral("599"));
    QCOMPARE(f.Text(5)->text(), QStringLiteral("599"));
    QCOMPARE(f.Text(1)->text(), QStringLiteral("01.05.2026"));
    QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
    QCOMPARE(f.window->focusWidget(), f.Text(3));
    QVERIFY(f.home.model.MainWindowLoaded);
    QVERIFY(f.window->Timer3().isActive());
    QCOMPARE(f.Text(3)->font().family(), QStringLiteral("Liberation Sans"));
    QCOMPARE(f.Text(3)->font().pointSize(), 13);
    QCOMPARE(f.Label13()->font().pointSize(), 13);
}

void TestMainWindow::loadFillsDistrictsAndOperators() {
    WindowFixture f;
    IniWriteSection(f.home.model.IniPath, QStringLiteral("OPCALLs"),
                    {QStringLiteral("OE1AAA"), QStringLiteral("OE1BBB")});
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.Combo(5)->count(), 4);
    QCOMPARE(f.Combo(5)->itemText(0), QStringLiteral("WI"));
    QCOMPARE(f.Combo(5)->itemText(3), QStringLiteral("ZZ"));
    QVERIFY(f.Combo(5)->currentText().isEmpty());
    QCOMPARE(f.Combo(6)->itemText(0), QStringLiteral("OE1AAA"));
    QCOMPARE(f.Combo(6)->itemText(1), QStringLiteral("OE1BBB"));
}

void TestMainWindow::storedTopBeyondTheScreenIsIgnored() {
    WindowFixture f;
    f.Ini(QStringLiteral("FensterPos"), QStringLiteral("HauptFormTop"),
          QString::number(ScreenHeightTwips() + 150));
    f.Ini(QStringLiteral("FensterPos"), QStringLiteral("HauptFormLeft"),
          QString::number(ScreenWidthTwips() + 150));
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.window->pos(), HauptForm::DesignGeometry().topLeft());
}

void TestMainWindow::storedPlaceInsideTheScreenIsApplied() {
    WindowFixture f;
    f.Ini(QStringLiteral("FensterPos"), QStringLiteral("HauptFormTop"), QStringLiteral("300"));
    f.Ini(QStringLiteral("FensterPos"), QStringLiteral("HauptFormLeft"), QStringLiteral("450"));
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.window->pos(), QPoint(30, 20));
}

void TestMainWindow::missingSicherungsPathLeavesExtraBackupUnchecked() {
    WindowFixture f;
    f.Ini(QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"),
          f.home.Path(QStringLiteral("gibtsnicht/")));
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"), QStringLiteral("1"));
    QVERIFY(f.StartEmpty());
    QVERIFY(!f.window->Action(QStringLiteral("MnAutomatischesSichern"))->isChecked());
    QVERIFY(f.home.model.ExtraBackupPath.isEmpty());
}

void TestMainWindow::existingSicherungsPathWithSichernEAChecksExtraBackup() {
    WindowFixture f;
    QDir().mkpath(f.home.Path(QStringLiteral("stick")));
    f.Ini(QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"), f.home.Path(QStringLiteral("stick/")));
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"), QStringLiteral("1"));
    QVERIFY(f.StartEmpty());
    QVERIFY(f.window->Action(QStringLiteral("MnAutomatischesSichern"))->isChecked());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(ReadBytes(f.home.Path(QStringLiteral("stick/test.KOLBO"))), f.FileBytes());
}

void TestMainWindow::stateStationClassSetsTheFlag() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), {}, 4);
    QVERIFY(f.Start());
    QVERIFY(f.home.model.IsStaatsfunkstelle);
}

void TestMainWindow::logOperatorJoinsTheOperatorList() {
    WindowFixture f;
    IniWriteSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), {QStringLiteral("OE1AAA")});
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.Combo(6)->count(), 2);
    QCOMPARE(f.Combo(6)->itemText(1), QStringLiteral("OE1XYZ"));
    QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("OE1XYZ"));
    QStringList stored;
    IniReadSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), stored);
    QCOMPARE(stored, QStringList({QStringLiteral("OE1AAA"), QStringLiteral("OE1XYZ")}));
}

void TestMainWindow::versionIsRecordedInBothSections() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const QString v = QStringLiteral("%1").arg(ProgramVersionNumber(), 7, 10, QLatin1Char('0'));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("KOLIBRINO.EXE"), QStringLiteral("Version")),
             v);
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("KOLIBRINO.BIN"), QStringLiteral("Version")),
             v);
}

void TestMainWindow::firstRunChecksTheFirstTimeOffset() {
    WindowFixture f;
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), QStringLiteral("0"));
    QVERIFY(f.StartEmpty());
    QVERIFY(f.window->Action(QStringLiteral("zpm0"))->isChecked());
    QCOMPARE(f.home.model.ZeitOffset, -12);
    QCOMPARE(f.Text(2)->text(), QStringLiteral("18:00"));
    QCOMPARE(f.Text(1)->text(), QStringLiteral("30.04.2026"));
}

void TestMainWindow::manualIsEnabledOnlyWhenPresent() {
    {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        QVERIFY(!f.window->Action(QStringLiteral("MnHilfePDF"))->isEnabled());
    }
    WindowFixture f;
    WriteBytes(f.home.model.DataFolder + QStringLiteral("KOLBOHilfe.pdf"), "%PDF-1.4\n");
    QVERIFY(f.StartEmpty());
    QAction* pdf = f.window->Action(QStringLiteral("MnHilfePDF"));
    QVERIFY(pdf->isEnabled());
    pdf->trigger();
    QCOMPARE(f.opened.size(), 1);
    QCOMPARE(f.opened.first().toLocalFile(), f.home.model.DataFolder + QStringLiteral("KOLBOHilfe.pdf"));
}

void TestMainWindow::twelveOperatorsAreWrittenAsTen() {
    WindowFixture f;
    QStringList twelve;
    for (int i = 0; i < 12; ++i)
        twelve << QStringLiteral("OE1O%1").arg(QChar(u'A' + i));
    IniWriteSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), twelve);
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.Combo(6)->count(), 13); // the log's operator joined the list
    f.window->close();
    QStringList stored;
    IniReadSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), stored);
    QCOMPARE(stored, twelve.mid(0, 10));
}

void TestMainWindow::closingWritesBandModeAndPlace() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Combo(1)->setCurrentIndex(2);
    f.Combo(2)->setCurrentIndex(1);
    f.window->move(40, 30);
    f.window->MnEingabe();
    f.window->close();
    const QString ini = f.home.model.IniPath;
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band")), 2.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Mode")), 1.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("ErwEeingabe")), -1.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("FensterPos"), QStringLiteral("HauptFormTop")), 450.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("FensterPos"), QStringLiteral("HauptFormLeft")), 600.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("FensterPos"), QStringLiteral("HauptFormHeight")),
             double(PixelsToTwips(f.window->height())));
    QVERIFY(!f.home.model.MainWindowLoaded);
}

void TestMainWindow::submissionAtClosing_data() {
    QTest::addColumn<QDate>("day");
    QTest::addColumn<bool>("withContact");
    QTest::addColumn<bool>("alreadyOffered");
    QTest::addColumn<bool>("offered");
    QTest::newRow("1 May with a contact") << QDate(2026, 5, 1) << true << false << true;
    QTest::newRow("2 May with a contact") << QDate(2026, 5, 2) << true << false << false;
    QTest::newRow("30 April with a contact") << QDate(2026, 4, 30) << true << false << false;
    QTest::newRow("1 June with a contact") << QDate(2026, 6, 1) << true << false << false;
    QTest::newRow("1 May, empty log") << QDate(2026, 5, 1) << false << false << false;
    QTest::newRow("1 May, reminder already shown") << QDate(2026, 5, 1) << true << true << false;
}

void TestMainWindow::submissionAtClosing() {
    QFETCH(QDate, day);
    QFETCH(bool, withContact);
    QFETCH(bool, alreadyOffered);
    QFETCH(bool, offered);
    WindowFixture f;
    f.clock.Set(QDateTime(day, QTime(17, 30)));
    f.WriteLog(QStringLiteral("test.KOLBO"),
               withContact
                   ? std::vector<QsoRecord>{MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"),
                                                       QStringLiteral("06:01:00"))}
                   : std::vector<QsoRecord>{});
    QVERIFY(f.Start());
    int calls = 0;
    f.window->logEinsenden = [&] { ++calls; };
    f.window->Reminders.OfferedPeriod2 = alreadyOffered;
    f.window->close();
    QCOMPARE(calls, offered ? 1 : 0);
}

void TestMainWindow::companionWindowsAreClosedAndRemembered() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QWidget statistik;
    statistik.show();
    f.window->RegisterCompanion(Companion::Statistik, &statistik);
    SetCompanionOpen(f.home.model, Companion::Statistik, f.window->Action(QStringLiteral("MnStatistik")),
                     true);
    QVERIFY(f.window->Action(QStringLiteral("MnStatistik"))->isChecked());
    f.window->close();
    QVERIFY(!statistik.isVisible());
    const QString ini = f.home.model.IniPath;
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("StatistikForm")), -1.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("GridKarte")), 0.0);
    QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("DBLog")), 0.0);
}

void TestMainWindow::minimiseHidesAndRestoreShowsOpenCompanions() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QWidget karte;
    QWidget frequenz; // registered but not open: left alone
    karte.show();
    f.window->RegisterCompanion(Companion::BZKarte, &karte);
    f.window->RegisterCompanion(Companion::Frequenz, &frequenz);
    f.home.model.Open.BZKarte = true;
    f.window->setWindowState(Qt::WindowMinimized);
    QTRY_VERIFY(!karte.isVisible());
    f.window->setWindowState(Qt::WindowNoState);
    QTRY_VERIFY(karte.isVisible());
    QVERIFY(!frequenz.isVisible());
}

void TestMainWindow::menuTreeHasEveryEntryWithItsCaption_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    const char* const entries[][2] = {
        {"MnDatei", "&Datei"},
        {"MnNeuesLog", "&Neues Log"},
        {"MnOpenLog", "Log &Öffnen"},
        {"MnLogDrucken", "Log &Drucken"},
        {"MnSicherungenOpen", "&Ordner 'Sicherung' Öffnen"},
        {"MnBeneden", "B&eenden"},
        {"MnEinstellungen", "&Einstellungen"},
        {"MnLogoptionen", "C&ontest-Einstellungen"},
        {"MnZeitCont", "Ze&it"},
        {"MnZeitPM", "&Zeit +/-"},
        {"MnDateTimeLock", "&Datum/Zeit editierbar"},
        {"MnZeitDatumLock", "Datum/Zeit &manuell"},
        {"MnCallVorgabe", "&Callfeld 'OE' als Vorgabe"},
        {"MnEingabe", "Erweiterte &Eingabe"},
        {"MnLastLogOpen", "Zuletzt geöffnetes Log beim Start &öffnen"},
        {"MnCountdown", "Countdown Ein/Aus"},
        {"MnAutomatischesSichern", "Zusätzliches &Sichern"},
        {"MnFensterPostOrg", "Reset Fenster Pos+Größe"},
        {"MnLog", "E&xtras"},
        {"MnLogExportierenDatumZeit", "Log nachträglich &ändern"},
        {"MnLogExportierenADIF", "&ADIF-Datei erzeugen"},
        {"MnLogExportierenCabrillo", "&Cabrillo-Datei erzeugen"},
        {"MnLogHochladen", "Ca&brillo-Datei einsenden"},
        {"MnAnsicht", "&Fenster"},
        {"MnBZKarte", "Bezirke &Karte"},
        {"MnBZGrid", "Multiplikatoren &Tabelle"},
        {"MnFrequenz", "&Frequenz Einstellung"},
        {"MnStatistik", "Ergebni&s"},
        {"MnLogTracker", "Rufzeichen &Check"},
        {"MnDB", "&Teilrufzeichen"},
        {"MnBezirkeListe", "&Bezirke Liste"},
        {"MnTransceiver", "T&ransceiver Steuerung"},
        {"MnLogEinreichen", "Ein&reichen"},
        {"MnLogEinsenden", "Aktuelles Log ein&senden"},
        {"MnLogServerUploadTest", "Verbindungs&test zum Log-Server"},
        {"MnHilfe", "&Hilfe"},
        {"MnHilfePDF", "&Anleitung als pdf"},
        {"MnContestregeln", "&Contestregeln"},
        {"MnEingesendeteLogsAnzeigen", "Eingesendete Logs Anzeigen"},
        {"MnUpdatePruefung", "Auf &Updates prüfen"},
        {"MnInfo", "&Info"},
        {"MnZeitTimer", "00:00"},
        {"MnVerstecktLoeschen", "&Löschen"},
        {"MnVerstecktBearbeiten", "&Bearbeiten"},
        {"MnSortieren", "Sortieren"},
        {"MnSortierenZeit1", "nach Zeit aufsteigend"},
        {"MnSortierenZeit2", "nach Zeit absteigend"},
        {"MnSortierenRufzeichen1", "nach Rufzeichen aufsteigend"},
        {"MnSortierenRufzeichen2", "nach Rufzeichen absteigend"},
        {"MnSortierenBezirk1", "nach Bezirk aufsteigend"},
        {"MnSortierenBezirk2", "nach Bezirk absteigend"},
    };
    for (const auto& e : entries)
        QTest::newRow(e[0]) << QString::fromLatin1(e[0]) << QString::fromUtf8(e[1]);
}

void TestMainWindow::menuTreeHasEveryEntryWithItsCaption() {
    QFETCH(QString, name);
    QFETCH(QString, caption);
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QAction* a = f.window->Action(name);
    QVERIFY2(a, qPrintable(name));
    QCOMPARE(a->text(), caption);
}

void TestMainWindow::separatorsStandInTheirMenus() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const QStringList order = {
        QStringLiteral("MNSt6"),  QStringLiteral("MnSt13"), QStringLiteral("MNSt8"),  QStringLiteral("MnST3"),
        QStringLiteral("MnSt14"), QStringLiteral("MnST4"),  QStringLiteral("MnSt15"), QStringLiteral("MnSt9"),
        QStringLiteral("MnSt19"), QStringLiteral("MnSt17"), QStringLiteral("MnST2"),  QStringLiteral("MnSt1"),
        QStringLiteral("MnST5"),  QStringLiteral("MnStDupes"), QStringLiteral("MnSt18"), QStringLiteral("MnSt16"), QStringLiteral("MnSt7"),
        QStringLiteral("MnSt10"), QStringLiteral("MnSt11"), QStringLiteral("MnSt12")};
    // Walk the menus in their order and collect the separators as they stand.
    QStringList found;
    std::function<void(QMenu*)> walk = [&](QMenu* menu) {
        for (QAction* a : menu->actions()) {
            if (a->isSeparator())
                found << a->objectName();
            else if (a->menu() && a->objectName() != QLatin1String("MnZeitCont"))
                walk(a->menu());
        }
    };
    for (QAction* top : f.window->menuBar()->actions())
        if (top->menu()) walk(top->menu());
    walk(f.window->PopupMenu());
    QCOMPARE(found, order);
    // Datei: the last separator stands right above B&eenden.
    QMenu* datei = f.window->findChild<QMenu*>(QStringLiteral("MnDatei"));
    const QList<QAction*> items = datei->actions();
    QCOMPARE(items.last()->objectName(), QStringLiteral("MnBeneden"));
    QCOMPARE(items[items.size() - 2]->objectName(), QStringLiteral("MNSt8"));
}

void TestMainWindow::entriesOfLaterWindowsAreDisabled() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    for (const char* name : {"MnNeuesLog",
                             "MnOpenLog",
                             "MnLogDrucken",
                             "MnLogoptionen",
                             "MnAutomatischesSichern",
                             "MnLogExportierenDatumZeit",
                             "MnLogExportierenADIF",
                             "MnLogExportierenCabrillo",
                             "MnLogHochladen",
                             "MnBZKarte",
                             "MnBZGrid",
                             "MnFrequenz",
                             "MnStatistik",
                             "MnLogTracker",
                             "MnDB",
                             "MnBezirkeListe",
                             "MnTransceiver",
                             "MnLogEinsenden",
                             "MnLogServerUploadTest",
                             "MnUpdatePruefung",
                             "MnInfo",
                             "MnVerstecktLoeschen",
                             "MnVerstecktBearbeiten"})
        QVERIFY2(!f.window->Action(QString::fromLatin1(name))->isEnabled(), name);
    for (const char* name :
         {"MnSicherungenOpen", "MnBeneden", "MnContestregeln", "MnEingesendeteLogsAnzeigen", "MnLastLogOpen",
          "MnFensterPostOrg", "MnSortierenZeit1"})
        QVERIFY2(f.window->Action(QString::fromLatin1(name))->isEnabled(), name);
    for (const char* name :
         {"MnBZKarte", "MnBZGrid", "MnFrequenz", "MnStatistik", "MnLogTracker", "MnDB", "MnTransceiver"})
        QVERIFY2(f.window->Action(QString::fromLatin1(name))->isCheckable(), name);
}

void TestMainWindow::zpmHasTwentyFiveOffsets() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.window->Action(QStringLiteral("zpm0"))->text(), QStringLiteral("-12:00h"));
    QCOMPARE(f.window->Action(QStringLiteral("zpm11"))->text(), QStringLiteral("-01:00h"));
    QCOMPARE(f.window->Action(QStringLiteral("zpm12"))->text(), QStringLiteral("-00:00h"));
    QCOMPARE(f.window->Action(QStringLiteral("zpm13"))->text(), QStringLiteral("+01:00h"));
    QCOMPARE(f.window->Action(QStringLiteral("zpm24"))->text(), QStringLiteral("+12:00h"));
    QVERIFY(!f.window->Action(QStringLiteral("zpm25")));
}

void TestMainWindow::beendenClosesTheWindow() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QVERIFY(f.window->isVisible());
    f.window->Action(QStringLiteral("MnBeneden"))->trigger();
    QVERIFY(!f.window->isVisible());
    QVERIFY(!f.home.model.MainWindowLoaded);
}

void TestMainWindow::shellCommandsOpenTheirAddresses() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->Action(QStringLiteral("MnSicherungenOpen"))->trigger();
    f.window->Action(QStringLiteral("MnContestregeln"))->trigger();
    f.window->Action(QStringLiteral("MnEingesendeteLogsAnzeigen"))->trigger();
    // No address is set at first: the program says where to set it and opens nothing.
    QCOMPARE(f.opened.size(), 1);
    QCOMPARE(f.opened[0], QUrl::fromLocalFile(f.home.model.BackupFolder));
    QCOMPARE(f.dialogs.boxes.size(), 2);
    QCOMPARE(f.dialogs.boxes[0].text, QString::fromUtf8(kKeineRegelnUrl));
    QCOMPARE(f.dialogs.boxes[1].text, QString::fromUtf8(kKeinLogServer));
}

void TestMainWindow::webAddressesComeFromTheSettings() {
    WindowFixture f;
    f.Ini(QStringLiteral("Server"), QStringLiteral("RegelnURL"),
          QStringLiteral("https://example.org/regeln"));
    f.Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), QStringLiteral("logs.example.org"));
    QVERIFY(f.StartEmpty());
    f.window->MnContestregeln();
    f.window->MnEingesendeteLogsAnzeigen();
    QCOMPARE(f.opened[0].toString(), QStringLiteral("https://example.org/regeln"));
    QCOMPARE(f.opened[1].toString(), QStringLiteral("http://logs.example.org/cgi-bin/show.cgi"));
}

void TestMainWindow::lastLogOpenTogglesAndWritesTheKey() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QAction* a = f.window->Action(QStringLiteral("MnLastLogOpen"));
    QVERIFY(!a->isChecked());
    a->trigger();
    QVERIFY(a->isChecked());
    QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen")),
             -1.0);
    f.window->MnLastLogOpen();
    QVERIFY(!a->isChecked());
    QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen")),
             0.0);
}

void TestMainWindow::fensterPosOrgWritesDesignPlaces() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QWidget tracker;
    tracker.show();
    f.window->RegisterCompanion(Companion::LogTracker, &tracker);
    f.home.model.Open.LogTracker = true;
    f.window->move(100, 80);
    f.window->resize(700, 500);
    f.dialogs.AnswerMsgBox(Msg::Yes);
    f.window->Action(QStringLiteral("MnFensterPostOrg"))->trigger();
    QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Soll die Position und Größe aller Fenster wirklich "
                                                       "auf die Grundeinstellung zurückgesetzt werden?"));
    QCOMPARE(f.dialogs.LastBox()->flags, 36);
    QCOMPARE(f.window->geometry().size(), HauptForm::DesignGeometry().size());
    QCOMPARE(f.window->pos(), HauptForm::DesignGeometry().topLeft());
    QCOMPARE(tracker.pos(), QPoint(2301 / 15, 2639 / 15));
    const struct {
        const char* key;
        int value;
    } expected[] = {{"BZGridTop", 6409},    {"BZGridLeft", 78},      {"BZKarteTop", 0},
                    {"BZKarteLeft", 10},    {"FrequenzTop", 2561},   {"FrequenzLeft", 5200},
                    {"StatistikTop", 2327}, {"StatistikLeft", 7436}, {"TransceiverTop", 0},
                    {"TransceiverLeft", 0}, {"LogTrackerTop", 2639}, {"LogTrackerLeft", 2301},
                    {"DBLogTop", 468},      {"DBLogLeft", 4446}};
    for (const auto& e : expected)
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("FensterPos"), QString::fromLatin1(e.key)),
                 double(e.value));
}

void TestMainWindow::fensterPosOrgAnsweredNoChangesNothing() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->move(100, 80);
    f.dialogs.AnswerMsgBox(Msg::No);
    f.window->MnFensterPostOrg();
    QCOMPARE(f.window->pos(), QPoint(100, 80));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("BZGridTop")),
             QString());
}

void TestMainWindow::zpmClickSetsOffsetAndKey() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->Action(QStringLiteral("zpm14"))->trigger();
    QCOMPARE(f.home.model.ZeitOffset, 2);
    QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM")),
             14.0);
    QCOMPARE(f.Text(2)->text(), QStringLiteral("08:00"));
    int checked = 0;
    for (int i = 0; i < 25; ++i)
        checked += f.window->Action(QStringLiteral("zpm%1").arg(i))->isChecked() ? 1 : 0;
    QCOMPARE(checked, 1);
}

void TestMainWindow::entryAreaHasEveryControl() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const struct {
        const char* name;
        const char* tip;
    } controls[] = {{"Text1", "Datum"},
                    {"Text2", "Uhrzeit"},
                    {"Text3", "Rufzeichen der Gegenstation"},
                    {"Combo1", "TX Band"},
                    {"Combo2", "TX Mode"},
                    {"Text4", "RST gesendet"},
                    {"Text5", "RST empfangen"},
                    {"Combo5", "BEZIRK empfangen"},
                    {"Check1", "QSL JA/NEIN"},
                    {"Text8", "Bemerkungen"},
                    {"Combo6", "Call des aktuellen Operators"}};
    for (const auto& c : controls) {
        QWidget* w = f.Child<QWidget>(c.name);
        QVERIFY2(w, c.name);
        QCOMPARE(w->toolTip(), QString::fromUtf8(c.tip));
    }
    QCOMPARE(f.Combo(1)->count(), 3);
    QCOMPARE(f.Combo(2)->itemText(1), QStringLiteral("CW"));
    QCOMPARE(f.Child<QCheckBox>("Check1")->text(), QStringLiteral("QSL NEIN"));
    f.Child<QCheckBox>("Check1")->setChecked(true);
    QCOMPARE(f.Child<QCheckBox>("Check1")->text(), QStringLiteral("QSL JA"));
    QVERIFY(f.Child<QPushButton>("DUPCommand1"));
    QCOMPARE(f.Child<QPushButton>("DUPCommand1")->text(), QStringLiteral("DUPE"));
    QVERIFY(f.Child<QLabel>("Label10"));
    QVERIFY(f.Child<QLabel>("Label12"));
    QVERIFY(f.Child<QGroupBox>("Frame1"));
    QVERIFY(f.Child<QLabel>("Label13"));
    QVERIFY(f.Child<LogGridView>("MSFlexGrid1"));
}

QTEST_MAIN(TestMainWindow)
#include "tst_main_window.moc"
