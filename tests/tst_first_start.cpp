// A newcomer's first start on an empty data folder: folders and data files appear, the
// log manager comes up, "Neues Log" leads through the station settings to a file that
// holds just the header, the main window shows the log and takes a contact. The next
// start with "Zuletzt geöffnetes Log beim Start öffnen" opens the same log unasked.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/main_window.h"
#include "setup/log_new_open.h"
#include "setup/main_window_setup.h"
#include "setup/modal.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QAction>
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

// What main() does before the main window.
void Prepare(Model& m) {
    m.SetLocale(AustrianLocale());
    m.Header = DefaultHeader(m);
    IniStartup(m, QStringLiteral(KOLIBRINO_BINARY_DIR));
    SetupFolders(m);
    CopyShippedData(m);
}

} // namespace

class TestFirstStart : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
        qunsetenv("KOLIBRINO_LOG");
    }
    void cleanup() { ClearModalDrivers(); }

    void newcomerCreatesALogAndLogsThenReopensIt() {
        QTemporaryDir tmp;
        const QString home = tmp.path() + QStringLiteral("/fresh");
        QVERIFY(!QFileInfo::exists(home));
        qputenv("KOLIBRINO_HOME", home.toLocal8Bit());
        // At 17:30 the first start's offset of -12 hours puts the contest clock at 05:30.
        FixedTimeSource clock(QDateTime(QDate(2026, 5, 1), QTime(17, 30)));
        ScriptedDialogs d;
        const QString name = QStringLiteral("ZEFT_OE1NEW_20260501.KOLBO");
        QByteArray header;
        {
            Model m;
            Prepare(m);
            for (const char* sub : {"Logs", "Sicherung", "Tmp"})
                QVERIFY(QFileInfo(home + QLatin1Char('/') + QLatin1String(sub)).isDir());
            QVERIFY(QFile::exists(home + QStringLiteral("/bez_koord.txt")));
            // Nothing is set yet: the settings hold only the record of the shipped copies.
            QList<QByteArray> sections;
            for (const QByteArray& line : ReadBytes(m.IniPath).split('\n'))
                if (line.startsWith('[')) sections << line;
            QCOMPARE(sections.size(), 1);
            QCOMPARE(sections[0].trimmed().toUpper(), QByteArray("[AUSGELIEFERT]"));

            HauptForm w(m, d, clock);
            InstallLogSetup(w, m, d, clock);
            bool managerSeen = false;
            PushModalDriver([&](QDialog& dlg) {
                QCOMPARE(dlg.objectName(), QStringLiteral("LogNewOpen"));
                managerSeen = true;
                QCOMPARE(dlg.findChild<QListWidget*>(QStringLiteral("File1"))->count(), 0);
                QVERIFY(dlg.findChild<QPushButton*>(QStringLiteral("Command4"))->isEnabled());
                Shot(&dlg, QStringLiteral("FirstStart_LogNewOpen"));
                QTest::mouseClick(dlg.findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
            });
            PushModalDriver([&](QDialog& dlg) {
                QCOMPARE(dlg.objectName(), QStringLiteral("StationLog"));
                QVERIFY(dlg.findChild<QPushButton*>(QStringLiteral("Command13"))->isVisible());
                QTest::keyClicks(dlg.findChild<QLineEdit*>(QStringLiteral("Text1")),
                                 QStringLiteral("oe1new"));
                QTest::keyClicks(dlg.findChild<QComboBox*>(QStringLiteral("Combo5")),
                                 QStringLiteral("oe1new"));
                dlg.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(0);
                dlg.findChild<QLineEdit*>(QStringLiteral("Text4"))->setText(QStringLiteral("Neu Ling"));
                dlg.findChild<QLineEdit*>(QStringLiteral("Text6"))->setText(QStringLiteral("neu@example.at"));
                d.AnswerInput(QStringLiteral("ZEFT_OE1NEW_20260501")); // the name offered
                QTest::mouseClick(dlg.findChild<QLabel*>(QStringLiteral("Label10")), Qt::LeftButton);
                Shot(&dlg, QStringLiteral("FirstStart_StationLog"));
                QTest::mouseClick(dlg.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
            });
            QVERIFY(w.Load());
            QVERIFY(managerSeen);
            QCOMPARE(PendingModalDrivers(), 0);
            QVERIFY(d.boxes.isEmpty());
            QCOMPARE(m.CurrentLogName, name);
            QCOMPARE(w.windowTitle(), QStringLiteral("Kolibrino (") + name + QLatin1Char(')'));

            // The new file holds exactly the header.
            LogHeader expected = DefaultHeader(m);
            expected.MYCALL = QStringLiteral("OE1NEW");
            expected.MYOPCALL = QStringLiteral("OE1NEW");
            expected.MYBZ = m.BezirkRecords[1].Code;
            expected.MYOPNAME = QStringLiteral("Neu Ling");
            expected.MYEMAIL = QStringLiteral("neu@example.at");
            expected.MYSTATION = QStringLiteral("\r\n");
            expected.MYKOMMENT = QStringLiteral("\r\n");
            header = ReadBytes(m.LogFolder + name);
            QCOMPARE(header, Cp(IdentificationLine(2026) + HeaderText(expected)));
            QCOMPARE(IniReadString(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")), name);
            QCOMPARE(w.findChild<QGroupBox*>(QStringLiteral("Frame1"))->title(), QStringLiteral("OE1NEW"));

            // A contact.
            auto* call = w.findChild<QLineEdit*>(QStringLiteral("Text3"));
            auto* bezirk = w.findChild<QComboBox*>(QStringLiteral("Combo5"));
            w.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(1);
            call->clear();
            QTest::keyClicks(call, QStringLiteral("OE3ABC"));
            bezirk->clearEditText();
            QTest::keyClicks(bezirk, m.BezirkRecords[2].Code);
            QTest::keyClick(call, Qt::Key_Return);
            QCOMPARE(m.LogRecords.size(), size_t(1));
            QCOMPARE(m.LogRecords[0].Call, QStringLiteral("OE3ABC"));
            const QByteArray file = ReadBytes(m.LogFolder + name);
            QVERIFY(file.startsWith(header));
            QVERIFY(file.mid(header.size())
                        .startsWith("OE3ABC\xb6"
                                    "80\xb6"));
            Shot(&w, QStringLiteral("FirstStart_Main"));

            // Reopen the last log at the next start.
            w.Action(QStringLiteral("MnLastLogOpen"))->trigger();
            QCOMPARE(IniReadInt(m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen")),
                     -1.0);
            w.close();
        }

        // Second start: the same log, no question.
        d.Clear();
        Model again;
        Prepare(again);
        HauptForm second(again, d, clock);
        InstallLogSetup(second, again, d, clock);
        QVERIFY(second.Load());
        QCOMPARE(again.CurrentLogName, name);
        QVERIFY(d.boxes.isEmpty());
        QVERIFY(d.prompts.isEmpty());
        QCOMPARE(again.LogRecords.size(), size_t(1));
        QCOMPARE(second.windowTitle(), QStringLiteral("Kolibrino (") + name + QLatin1Char(')'));
        second.close();
    }

    void noLogChosenEndsQuietly() {
        QTemporaryDir tmp;
        qputenv("KOLIBRINO_HOME", tmp.path().toLocal8Bit());
        Model m;
        Prepare(m);
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        HauptForm w(m, d, clock);
        InstallLogSetup(w, m, d, clock);
        PushModalDriver([](QDialog& dlg) { dlg.reject(); }); // the close box
        QVERIFY(!w.Load());
        QVERIFY(!w.isVisible());
        QVERIFY(m.CurrentLogName.isEmpty());
        QVERIFY(d.boxes.isEmpty());
    }

    void menuEntriesAreLive() {
        QTemporaryDir tmp;
        qputenv("KOLIBRINO_HOME", tmp.path().toLocal8Bit());
        Model m;
        Prepare(m);
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        {
            Model maker = m;
            maker.Header.MYCALL = QStringLiteral("OE1ABC");
            maker.Header.MYBZ = QStringLiteral("WI");
            maker.CurrentLogName = QStringLiteral("A.KOLBO");
            BuildLogText(maker, false, 2026);
            QVERIFY(WriteLogFile(maker).isEmpty());
            maker.Header.MYCALL = QStringLiteral("OE1DEF");
            maker.CurrentLogName = QStringLiteral("B.KOLBO");
            BuildLogText(maker, false, 2026);
            QVERIFY(WriteLogFile(maker).isEmpty());
        }
        HauptForm w(m, d, clock);
        InstallLogSetup(w, m, d, clock);
        PushModalDriver(
            [](QDialog& dlg) { static_cast<LogNewOpen&>(dlg).OpenRow(QStringLiteral("A.KOLBO")); });
        QVERIFY(w.Load());
        for (const char* entry : {"MnNeuesLog", "MnOpenLog", "MnLogoptionen", "MnAutomatischesSichern"})
            QVERIFY2(w.Action(QString::fromLatin1(entry))->isEnabled(), entry);
        // "Log Öffnen" switches to B.
        PushModalDriver(
            [](QDialog& dlg) { static_cast<LogNewOpen&>(dlg).OpenRow(QStringLiteral("B.KOLBO")); });
        w.Action(QStringLiteral("MnOpenLog"))->trigger();
        QCOMPARE(m.CurrentLogName, QStringLiteral("B.KOLBO"));
        QCOMPARE(m.Header.MYCALL, QStringLiteral("OE1DEF"));
        QCOMPARE(w.findChild<QGroupBox*>(QStringLiteral("Frame1"))->title(), QStringLiteral("OE1DEF"));
        QCOMPARE(w.windowTitle(), QStringLiteral("Kolibrino (") + m.LogFolder + QStringLiteral("B.KOLBO)"));
        // The backup window cancelled leaves the check mark as it was.
        QAction* sichern = w.Action(QStringLiteral("MnAutomatischesSichern"));
        const bool before = sichern->isChecked();
        PushModalDriver([](QDialog& dlg) { dlg.reject(); });
        sichern->trigger();
        QCOMPARE(sichern->isChecked(), before);
        w.close();
    }
};

QTEST_MAIN(TestFirstStart)
#include "tst_first_start.moc"
