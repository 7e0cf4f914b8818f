// The log manager: the list of logs, the last log, open, rename, delete, copy, the
// extended panel and "Neues Log".
#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "setup/log_manager.h"
#include "setup/log_new_open.h"
#include "setup/modal.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

struct Env : SetupEnv {
    // A log file with a header for call and nothing else.
    void MakeLog(const QString& name, const QString& call = QStringLiteral("OE1XYZ")) {
        SetupEnv::MakeLog(name, {}, 0, call);
    }
    QStringList Logs() const { return ListLogs(m.LogFolder); }
};

QListWidget* List(QWidget& w) {
    return w.findChild<QListWidget*>(QStringLiteral("File1"));
}
QPushButton* Btn(QWidget& w, const char* name) {
    return w.findChild<QPushButton*>(QString::fromLatin1(name));
}

void Select(QListWidget* list, const QStringList& names) {
    list->clearSelection();
    for (int i = 0; i < list->count(); ++i)
        if (names.contains(list->item(i)->text())) list->item(i)->setSelected(true);
}

QStringList Texts(const ScriptedDialogs& d) {
    QStringList t;
    for (const ShownBox& b : d.boxes)
        t << b.text;
    return t;
}

} // namespace

class TestLogManager : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
    }
    void cleanup() { ClearModalDrivers(); }

    // With an empty folder, rename, delete and copy do nothing and show nothing.
    void emptyFolderRenameDeleteCopyShowNothing() {
        Env e;
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        QCOMPARE(List(w)->count(), 0);
        QTest::mouseClick(Btn(w, "Command1"), Qt::LeftButton);
        QTest::mouseClick(Btn(w, "Command2"), Qt::LeftButton);
        QTest::mouseClick(Btn(w, "Command3"), Qt::LeftButton);
        QVERIFY(e.d.boxes.isEmpty());
        QVERIFY(e.d.prompts.isEmpty());
        QCOMPARE(e.d.beeps, 0);
    }

    // With no selected row but a filled list, rename and delete do nothing; copy still
    // asks for a folder and reports a count of 0.
    void noSelectionRenameDeleteNothingCopyReportsZero() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        QTemporaryDir target;
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        QCOMPARE(List(w)->count(), 2);
        List(w)->clearSelection();
        w.Rename();
        w.Delete();
        QVERIFY(e.d.boxes.isEmpty());
        QVERIFY(e.d.prompts.isEmpty());
        QCOMPARE(e.Logs().size(), 2);
        e.d.AnswerPath(target.path());
        w.Copy();
        QCOMPARE(e.d.prompts, QStringList{QStringLiteral("Ordner wählen")});
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Es wurde(n) '0' Datei(en) Kopiert"));
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Information));
        QCOMPARE(BrowseStartFolder(), target.path());
    }

    // Label2 is empty when LastLogFile points to a missing file; a click only beeps.
    void missingLastLogLeavesLabelEmptyAndClickBeeps() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("gone.KOLBO"));
        e.m.CurrentLogName = QStringLiteral("before.KOLBO");
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        QVERIFY(w.LastLog().isEmpty());
        auto* label2 = w.findChild<QLabel*>(QStringLiteral("Label2"));
        QCOMPARE(label2->toolTip(), QStringLiteral("Zuletzt verwendetes Log Öffnen"));
        QTest::mouseClick(label2, Qt::LeftButton);
        QCOMPARE(e.d.beeps, 1);
        QVERIFY(w.isVisible());
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("before.KOLBO"));
        QVERIFY(e.d.boxes.isEmpty());
    }

    // A name of exactly 250 characters passes the rename test; 251 fails. The new-log
    // test allows the same length.
    void renameLengthLimit_data() {
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("passes");
        QTest::newRow("249") << 249 << true;
        QTest::newRow("250") << 250 << true;
        QTest::newRow("251") << 251 << false;
    }
    void renameLengthLimit() {
        QFETCH(int, length);
        QFETCH(bool, passes);
        const QString name(length, QLatin1Char('N'));
        QCOMPARE(CheckRenameName(name).isEmpty(), passes);
        if (!passes)
            QCOMPARE(CheckRenameName(name), QStringLiteral("Dateiname zu lang!\r\nÄndern nicht möglich."));

        // Through the window: a name too long ends the event with the box.
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO")});
        e.d.AnswerInput(name);
        w.Rename();
        const QStringList boxes = Texts(e.d);
        // The file system holds 255 bytes a name: the name with its extension must fit.
        const bool fits = passes && length + 6 <= 255;
        QCOMPARE(boxes.contains(QStringLiteral("Dateiname zu lang!\r\nÄndern nicht möglich.")), !fits);

        // The new-log name: the same length passes there too.
        StationForm f;
        f.text1 = QStringLiteral("OE1XYZ");
        ScriptedDialogs d2;
        d2.AnswerInput(name);
        ChooseFileName(e.m, d2, e.clock, f);
        if (fits)
            QCOMPARE(f.label10, name + QStringLiteral(".KOLBO"));
        else if (passes)
            QCOMPARE(d2.LastBox()->text, QStringLiteral("Dateiname zu lang!"));
        else
            QCOMPARE(d2.LastBox()->text, QStringLiteral("Dateiname ungültig"));
    }

    void renameAlwaysAppendsTheExtension() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")});
        e.d.AnswerInput(QStringLiteral("  Neu.KOLBO  "));
        e.d.AnswerInput(QStringLiteral("Zwei"));
        QTest::mouseClick(Btn(w, "Command1"), Qt::LeftButton);
        QCOMPARE(e.d.prompts, (QStringList{QStringLiteral("Namen für das Log eingeben/ändern"),
                                           QStringLiteral("Namen für das Log eingeben/ändern")}));
        QCOMPARE(e.Logs(), (QStringList{QStringLiteral("Neu.KOLBO.KOLBO"), QStringLiteral("Zwei.KOLBO")}));
        QCOMPARE(List(w)->count(), 2); // refreshed
        QVERIFY(e.d.boxes.isEmpty());
    }

    void renameRefusals_data() {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("box");
        QTest::newRow("slash") << "a/b"
                               << "Dateiname ungültig!\r\nÄndern nicht möglich.";
        QTest::newRow("star") << "a*"
                              << "Dateiname ungültig!\r\nÄndern nicht möglich.";
        QTest::newRow("tab") << "a\tb"
                             << "Dateiname ungültig!\r\nÄndern nicht möglich.";
        QTest::newRow("euro") << QStringLiteral("a\u20ac") << "Dateiname ungültig!\r\nÄndern nicht möglich.";
        QTest::newRow("exists") << "B"
                                << "Datei existiert bereits!\r\nÄndern nicht möglich.";
    }
    void renameRefusals() {
        QFETCH(QString, answer);
        QFETCH(QString, box);
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO")});
        e.d.AnswerInput(answer);
        w.Rename();
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, box);
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Critical));
        QCOMPARE(e.Logs(), (QStringList{QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")}));
    }

    void renameCancelEndsTheWholeEvent() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")});
        e.d.AnswerInput(std::nullopt);
        e.d.AnswerInput(QStringLiteral("X"));
        w.Rename();
        QCOMPARE(e.d.prompts.size(), 1);
        QCOMPARE(e.Logs(), (QStringList{QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")}));
    }

    void deleteAsksYesNoCancelForEachRow() {
        Env e;
        for (const char* n : {"A.KOLBO", "B.KOLBO", "C.KOLBO", "D.KOLBO"})
            e.MakeLog(QString::fromLatin1(n));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO"), QStringLiteral("C.KOLBO"),
                         QStringLiteral("D.KOLBO")});
        e.d.AnswerMsgBox(Msg::Yes);
        e.d.AnswerMsgBox(Msg::No);
        e.d.AnswerMsgBox(Msg::Cancel);
        QTest::mouseClick(Btn(w, "Command2"), Qt::LeftButton);
        QCOMPARE(e.d.boxes.size(), 3);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Möchtest du das Log\r\nA.KOLBO\r\nwirklich löschen?"));
        QCOMPARE(e.d.boxes[0].flags, 35);
        QCOMPARE(e.d.beeps, 1);
        QCOMPARE(e.Logs(), (QStringList{QStringLiteral("B.KOLBO"), QStringLiteral("C.KOLBO"),
                                        QStringLiteral("D.KOLBO")}));
        QCOMPARE(List(w)->count(), 3);
    }

    void copyAsksBeforeOverwritingAndCounts() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        e.MakeLog(QStringLiteral("C.KOLBO"));
        QTemporaryDir target;
        WriteBytes(target.path() + QStringLiteral("/B.KOLBO"), "old");
        WriteBytes(target.path() + QStringLiteral("/C.KOLBO"), "old");
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO"), QStringLiteral("C.KOLBO")});
        e.d.AnswerPath(target.path());
        e.d.AnswerMsgBox(Msg::No);  // B stays
        e.d.AnswerMsgBox(Msg::Yes); // C overwritten
        QTest::mouseClick(Btn(w, "Command3"), Qt::LeftButton);
        QCOMPARE(Texts(e.d), (QStringList{QStringLiteral("Datei existiert bereits. Überschreiben?"),
                                          QStringLiteral("Datei existiert bereits. Überschreiben?"),
                                          QStringLiteral("Es wurde(n) '2' Datei(en) Kopiert")}));
        QCOMPARE(e.d.boxes[0].flags, 67);
        QCOMPARE(ReadBytes(target.path() + QStringLiteral("/B.KOLBO")), QByteArray("old"));
        QCOMPARE(ReadBytes(target.path() + QStringLiteral("/C.KOLBO")),
                 ReadBytes(e.m.LogFolder + QStringLiteral("C.KOLBO")));
        QCOMPARE(ReadBytes(target.path() + QStringLiteral("/A.KOLBO")),
                 ReadBytes(e.m.LogFolder + QStringLiteral("A.KOLBO")));
    }

    void copyCancelStillReportsTheCount() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        QTemporaryDir target;
        WriteBytes(target.path() + QStringLiteral("/A.KOLBO"), "old");
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")});
        e.d.AnswerPath(target.path() + QLatin1Char('/'));
        e.d.AnswerMsgBox(Msg::Cancel);
        w.Copy();
        QCOMPARE(e.d.LastBox()->text, QStringLiteral("Es wurde(n) '0' Datei(en) Kopiert"));
        QVERIFY(!QFile::exists(target.path() + QStringLiteral("/B.KOLBO")));
    }

    void copyFailureGoesOnWithTheNextFile() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        QTemporaryDir target;
        QDir().mkpath(target.path() + QStringLiteral("/A.KOLBO/blocker")); // a folder in the way
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        Select(List(w), {QStringLiteral("A.KOLBO"), QStringLiteral("B.KOLBO")});
        e.d.AnswerPath(target.path());
        e.d.AnswerMsgBox(Msg::Yes); // overwrite A: the folder cannot be replaced
        w.Copy();
        QVERIFY(Texts(e.d).contains(QStringLiteral("Fehler beim Kopieren! Kopieren abgebrochen")));
        QCOMPARE(e.d.LastBox()->text, QStringLiteral("Es wurde(n) '1' Datei(en) Kopiert"));
        QVERIFY(QFile::exists(target.path() + QStringLiteral("/B.KOLBO")));
    }

    void doubleClickOpensTheRowAndRemembersIt() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        QListWidget* list = List(w);
        const QRect r = list->visualItemRect(list->item(1));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, r.center());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, r.center());
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("B.KOLBO"));
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QVERIFY(!w.isVisible());
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")),
                 QStringLiteral("B.KOLBO"));
    }

    // Tab into the list and Enter: the row the list marks opens, though nothing is selected.
    void enterAfterTabOpensTheMarkedRow() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QListWidget* list = List(w);
        list->setFocus(Qt::TabFocusReason);
        QVERIFY(list->currentItem());
        QVERIFY(list->selectedItems().isEmpty());
        const QString marked = list->currentItem()->text();
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(e.m.CurrentLogName, marked);
        QCOMPARE(w.result(), int(QDialog::Accepted));
    }

    void clickOnLastLogOpensIt() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("A.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        QCOMPARE(w.LastLog(), QStringLiteral("A.KOLBO"));
        QCOMPARE(ExecModal(w), int(QDialog::Rejected)); // no driver: the operator closes it
        QVERIFY(e.m.CurrentLogName.isEmpty());
        PushModalDriver([](QDialog& d) {
            QTest::mouseClick(d.findChild<QLabel*>(QStringLiteral("Label2")), Qt::LeftButton);
        });
        LogNewOpen w2(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        QCOMPARE(ExecModal(w2), int(QDialog::Accepted));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
    }

    void lastLogOpenSettingOpensAtFirstActivation() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("A.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen"), -1);
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        QCOMPARE(ExecModal(w), int(QDialog::Accepted));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
        QVERIFY(e.d.boxes.isEmpty());
        // "Log Öffnen" lets the operator choose even so.
        e.m.CurrentLogName.clear();
        LogNewOpen w2(e.m, e.d, e.clock, {}, LogNewOpen::Mode::OpenOnly);
        QCOMPARE(ExecModal(w2), int(QDialog::Rejected));
        QVERIFY(e.m.CurrentLogName.isEmpty());
    }

    void openOnlyModeHasNoNewLogAndNoPanel() {
        Env e;
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::OpenOnly);
        w.show();
        QVERIFY(!Btn(w, "Command4")->isEnabled());
        QVERIFY(!Btn(w, "Command5")->isVisible());
        QCOMPARE(w.windowTitle(), QStringLiteral("Kolibrino"));
    }

    void extendedPanelWidensAndNarrows() {
        Env e;
        e.MakeLog(QStringLiteral("ZEFT_OE1XYZ_20250501.KOLBO"));
        e.MakeLog(QStringLiteral("ZEFT_OE3ABC_20260501.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("ZEFT_OE3ABC_20260501.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        QTest::qWait(20);
        auto* label1 = w.findChild<QLabel*>(QStringLiteral("Label1"));
        QCOMPARE(label1->text(),
                 QStringLiteral("Bestehende Kontest-Logs in\n") + QDir::toNativeSeparators(e.m.LogFolder));
        QPushButton* c5 = Btn(w, "Command5");
        QCOMPARE(c5->text(), QStringLiteral(">>"));
        QCOMPARE(c5->toolTip(), QStringLiteral("Log-Erweitert"));
        auto* frame1 = w.findChild<QGroupBox*>(QStringLiteral("Frame1"));
        QVERIFY(!frame1->isVisible());
        Shot(&w, QStringLiteral("LogNewOpen_narrow"));
        const int narrow = w.width();
        QTest::mouseClick(c5, Qt::LeftButton);
        QVERIFY(frame1->isVisible());
        QCOMPARE(c5->text(), QStringLiteral("<<"));
        QVERIFY(w.width() > narrow);
        QTest::qWait(20);
        Shot(&w, QStringLiteral("LogNewOpen_wide"));
        QTest::mouseClick(c5, Qt::LeftButton);
        QVERIFY(!frame1->isVisible());
        QCOMPARE(c5->text(), QStringLiteral(">>"));
        QCOMPARE(w.width(), narrow);
    }

    void newLogOnTheContestDayCanTakeTheLastLog() {
        Env e;
        e.clock.Set(QDateTime(QDate(2026, 5, 1), QTime(14, 5)));
        Model tmp = e.m;
        tmp.Header.MYCALL = QStringLiteral("OE1XYZ");
        QsoRecord r;
        r.Call = QStringLiteral("OE3ABC");
        r.Band = 80;
        r.Bezirk = QStringLiteral("WI");
        r.Datum = QStringLiteral("01.05.2026");
        r.Zeit = QStringLiteral("05:10:00");
        r.Mode = QStringLiteral("SSB");
        tmp.LogRecords = {r};
        WriteBytes(e.m.LogFolder + QStringLiteral("A.KOLBO"), Cp(BuildLogText(tmp, false, 2026)));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("A.KOLBO"));
        ScriptedDialogs probe;
        probe.AnswerMsgBox(Msg::No);
        QCOMPARE(int(SameDayWarning(e.m, probe, e.clock)), int(SameDay::NewLog));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        // Cancel: the window stays.
        e.d.AnswerMsgBox(Msg::Cancel);
        QTest::mouseClick(Btn(w, "Command4"), Qt::LeftButton);
        QVERIFY(w.isVisible());
        QVERIFY(e.d.LastBox()->text.startsWith(QStringLiteral("Du hast heute bereits Stationen geloggt.")));
        // Yes: the last log.
        e.d.AnswerMsgBox(Msg::Yes);
        QTest::mouseClick(Btn(w, "Command4"), Qt::LeftButton);
        QVERIFY(!w.isVisible());
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
    }

    void newLogThroughStationLogClosesTheManager() {
        Env e;
        e.MakeLog(QStringLiteral("OLD.KOLBO"));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("OLD.KOLBO"));
        bool importShown = false;
        PushModalDriver([](QDialog& d) {
            QCOMPARE(d.objectName(), QStringLiteral("LogNewOpen"));
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
        });
        PushModalDriver([&](QDialog& d) {
            QCOMPARE(d.objectName(), QStringLiteral("StationLog"));
            importShown = d.findChild<QPushButton*>(QStringLiteral("Command13"))->isVisible();
            auto& s = static_cast<StationLog&>(d);
            QTest::keyClicks(d.findChild<QLineEdit*>(QStringLiteral("Text1")), QStringLiteral("oe1new"));
            QTest::keyClicks(d.findChild<QComboBox*>(QStringLiteral("Combo5")), QStringLiteral("oe1new"));
            d.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(0);
            d.findChild<QLineEdit*>(QStringLiteral("Text6"))->setText(QStringLiteral("a@b.at"));
            s.SaveClicked(); // no file name yet: asks for one
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        e.d.AnswerInput(QStringLiteral("NEU"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        QCOMPARE(ExecModal(w), int(QDialog::Accepted));
        QVERIFY(importShown);
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("NEU.KOLBO"));
        QCOMPARE(w.LastLog(), QStringLiteral("NEU.KOLBO"));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")),
                 QStringLiteral("NEU.KOLBO"));
        QVERIFY(QFile::exists(e.m.LogFolder + QStringLiteral("NEU.KOLBO")));
        QVERIFY(!e.m.LogChanged); // the manager was told instead
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Kein Name für die Logdatei angegeben!"));
    }

    void newLogCancelledLeavesTheManagerOpen() {
        Env e;
        PushModalDriver([&](QDialog& d) {
            QTest::keyClicks(d.findChild<QLineEdit*>(QStringLiteral("Text1")), QStringLiteral("OE1NEW"));
            e.d.AnswerInput(QStringLiteral("NEU"));
            static_cast<StationLog&>(d).ChooseName();
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command1")), Qt::LeftButton);
        });
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        w.NewLog();
        QVERIFY(w.isVisible());
        QVERIFY(e.m.CurrentLogName.isEmpty()); // the name chosen for the cancelled log is dropped
    }
};

QTEST_MAIN(TestLogManager)
#include "tst_log_manager.moc"
