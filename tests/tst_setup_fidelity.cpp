// The log set-up as an operator meets it: the first start shows the log manager alone,
// a log created there carries the header's defaults, the operator call is filtered in
// the combo box itself, names too long for the file system are refused, the backup
// folder tree can be walked past a refused folder, a long log name does not widen the
// station settings, the district list opens at a sane height, and Enter opens a log.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/main_window.h"
#include "setup/log_manager.h"
#include "setup/log_new_open.h"
#include "setup/main_window_setup.h"
#include "setup/modal.h"
#include "setup/sichern_einstellungen.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

// What main() does before the main window, on an empty data folder.
void PrepareLikeMain(Model& m) {
    m.SetLocale(AustrianLocale());
    IniStartup(m, QStringLiteral(KOLIBRINO_BINARY_DIR));
    SetupFolders(m);
    CopyShippedData(m);
}

QString NoSlash(QString p) {
    if (p.endsWith(QLatin1Char('/'))) p.chop(1);
    return p;
}

// Types text key by key into w, as a keyboard with umlauts would.
void Type(QWidget* w, const QString& text) {
    for (const QChar c : text) {
        const int key = c.unicode() < 128 ? int(c.toUpper().unicode()) : int(Qt::Key_unknown);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &release);
    }
}

QString Text1(QWidget& w) {
    return w.findChild<QLineEdit*>(QStringLiteral("Text1"))->text();
}

// Fills the new-log window so that every check passes and names the log.
void FillNewLog(QDialog& dlg, ScriptedDialogs& d, const QString& name) {
    QTest::keyClicks(dlg.findChild<QLineEdit*>(QStringLiteral("Text1")), QStringLiteral("oe1new"));
    QTest::keyClicks(dlg.findChild<QComboBox*>(QStringLiteral("Combo5")), QStringLiteral("oe1new"));
    dlg.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(0);
    dlg.findChild<QLineEdit*>(QStringLiteral("Text6"))->setText(QStringLiteral("neu@example.at"));
    d.AnswerInput(name);
    QTest::mouseClick(dlg.findChild<QLabel*>(QStringLiteral("Label10")), Qt::LeftButton);
}

} // namespace

class TestSetupFidelity : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
        qunsetenv("KOLIBRINO_LOG");
    }
    void cleanup() { ClearModalDrivers(); }

    void firstStartShowsNoMainWindowBeforeALogIsChosen() {
        QTemporaryDir tmp;
        qputenv("KOLIBRINO_HOME", (tmp.path() + QStringLiteral("/leer")).toLocal8Bit());
        Model m;
        PrepareLikeMain(m);
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        HauptForm w(m, d, clock);
        InstallLogSetup(w, m, d, clock);
        bool managerSeen = false;
        QStringList visibleBehind;
        PushModalDriver([&](QDialog& dlg) {
            managerSeen = dlg.objectName() == QLatin1String("LogNewOpen");
            for (QWidget* top : QApplication::topLevelWidgets())
                if (top != &dlg && top->isVisible()) visibleBehind << top->objectName();
            QTest::mouseClick(dlg.findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
        });
        PushModalDriver([&](QDialog& station) {
            for (QWidget* top : QApplication::topLevelWidgets())
                if (top == &w && top->isVisible()) visibleBehind << top->objectName();
            FillNewLog(station, d, QStringLiteral("Erster"));
            QTest::mouseClick(station.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        QVERIFY(!w.isVisible());
        QVERIFY(w.Load());
        QVERIFY(managerSeen);
        QCOMPARE(visibleBehind, QStringList());
        QVERIFY(w.isVisible());
        QCOMPARE(m.CurrentLogName, QStringLiteral("Erster.KOLBO"));
        w.close();
    }

    void logCreatedAtFirstStartCarriesTheExamDateDefault() {
        QTemporaryDir tmp;
        qputenv("KOLIBRINO_HOME", (tmp.path() + QStringLiteral("/leer")).toLocal8Bit());
        Model m;
        PrepareLikeMain(m);
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        HauptForm w(m, d, clock);
        InstallLogSetup(w, m, d, clock);
        PushModalDriver([&](QDialog& dlg) {
            QTest::mouseClick(dlg.findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
        });
        PushModalDriver([&](QDialog& station) {
            FillNewLog(station, d, QStringLiteral("Pruefung"));
            QTest::mouseClick(station.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        QVERIFY(w.Load());
        const QByteArray file = ReadBytes(m.LogFolder + QStringLiteral("Pruefung.KOLBO"));
        QVERIFY2(file.contains("[MYEXAMDAT:10]00.00.2000"), file.constData());
        w.close();
    }

    void operatorCallIsFilteredInTheComboBoxItself() {
        SetupEnv e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        auto* combo5 = s.findChild<QComboBox*>(QStringLiteral("Combo5"));
        Type(combo5, QStringLiteral("oe1xyz-p \u00e4!"));
        QCOMPARE(combo5->currentText(), QStringLiteral("OE1XYZ/P"));
    }

    void renameRefusesANameTooLongForTheFileSystem_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("fits");
        QTest::newRow("249 letters") << QString(249, QLatin1Char('N')) << true;
        QTest::newRow("250 letters") << QString(250, QLatin1Char('N')) << false;
        QTest::newRow("125 umlauts") << QString(125, QChar(0xe4)) << false;
        QTest::newRow("120 umlauts") << QString(120, QChar(0xe4)) << true;
    }
    void renameRefusesANameTooLongForTheFileSystem() {
        QFETCH(QString, name);
        QFETCH(bool, fits);
        SetupEnv e;
        e.MakeLog(QStringLiteral("Alt.KOLBO"));
        e.d.AnswerInput(name);
        const int renamed = RenameLogs(e.d, e.m.LogFolder, 1, {QStringLiteral("Alt.KOLBO")});
        if (fits) {
            QCOMPARE(renamed, 1);
            QVERIFY(e.d.boxes.isEmpty());
            QVERIFY(QFileInfo::exists(e.m.LogFolder + name + QStringLiteral(".KOLBO")));
        } else {
            QCOMPARE(renamed, 0);
            QCOMPARE(e.d.boxes.size(), 1);
            QCOMPARE(e.d.boxes[0].text, QStringLiteral("Dateiname zu lang!\r\nÄndern nicht möglich."));
            QCOMPARE(e.d.boxes[0].flags, int(Msg::Critical));
            QVERIFY(QFileInfo::exists(e.m.LogFolder + QStringLiteral("Alt.KOLBO")));
        }
    }

    void newLogRefusesANameTooLongForTheFileSystem() {
        SetupEnv e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        s.findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("OE1ABC"));
        e.m.CurrentLogName.clear();
        e.d.AnswerInput(QString(125, QChar(0xf6)));
        s.ChooseName();
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Dateiname zu lang!"));
        QVERIFY(e.m.CurrentLogName.isEmpty());
        QVERIFY(s.findChild<QLabel*>(QStringLiteral("Label10"))->text().isEmpty());
        // A name the file system holds passes.
        e.d.Clear();
        e.d.AnswerInput(QString(124, QChar(0xf6)));
        s.ChooseName();
        QVERIFY(e.d.boxes.isEmpty());
        QCOMPARE(e.m.CurrentLogName, QString(124, QChar(0xf6)) + QStringLiteral(".KOLBO"));
    }

    void backupTreeIsWalkedPastLogsWithTheArrowKeys() {
        SetupEnv e;
        SichernEinstellungen w(e.m, e.d);
        w.show();
        auto* tree = w.findChild<QTreeView*>(QStringLiteral("Dir1"));
        auto* fs = qobject_cast<QFileSystemModel*>(tree->model());
        const QModelIndex data = fs->index(NoSlash(e.m.DataFolder));
        tree->setCurrentIndex(data);
        tree->expand(data);
        // Logs, Sicherung, Tmp, and the test's own desktop folder (xdg, for the trash).
        QTRY_COMPARE(fs->rowCount(data), 4);
        QTRY_COMPARE(fs->filePath(fs->index(0, 0, data)), NoSlash(e.m.LogFolder));
        tree->setFocus();
        QTest::keyClick(tree, Qt::Key_Down);
        QCOMPARE(fs->filePath(tree->currentIndex()), NoSlash(e.m.LogFolder));
        QVERIFY(e.d.boxes.isEmpty());
        QTest::keyClick(tree, Qt::Key_Down);
        QTest::keyClick(tree, Qt::Key_Down);
        QCOMPARE(fs->filePath(tree->currentIndex()), NoSlash(e.m.TmpFolder));
        QVERIFY(e.d.boxes.isEmpty());
        // Enter opens the folder: tree and field show it.
        QTest::keyClick(tree, Qt::Key_Return);
        QVERIFY(w.isVisible());
        QCOMPARE(Text1(w), NoSlash(e.m.TmpFolder));
        QCOMPARE(fs->filePath(tree->currentIndex()), Text1(w));
        // Opening Logs is refused: back to the data folder, in tree and field.
        tree->setCurrentIndex(fs->index(NoSlash(e.m.LogFolder)));
        QTest::keyClick(tree, Qt::Key_Return);
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Dieser Ordner ist nicht erlaubt!"));
        QCOMPARE(Text1(w), NoSlash(e.m.DataFolder));
        QCOMPARE(fs->filePath(tree->currentIndex()), Text1(w));
    }

    void longLogNameDoesNotWidenTheStationSettings() {
        SetupEnv e;
        const QString longName = QString(250, QLatin1Char('L')) + QStringLiteral(".KOLBO");
        StationLog shortOne(e.m, e.d, e.clock, {}, StationMode::NewLog);
        shortOne.show();
        const int usual = shortOne.width();
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        auto* label10 = s.findChild<QLabel*>(QStringLiteral("Label10"));
        StationForm f = s.ReadForm();
        f.label10 = longName;
        s.ApplyForm(f);
        s.show();
        QCOMPARE(label10->text(), longName);
        QCOMPARE(label10->toolTip(), longName);
        QCOMPARE(s.width(), usual);
        QVERIFY(s.minimumSizeHint().width() <= usual);
        auto* command2 = s.findChild<QPushButton*>(QStringLiteral("Command2"));
        QVERIFY(s.rect().contains(QRect(command2->mapTo(&s, QPoint(0, 0)), command2->size())));
    }

    void districtListOpensWithAtMostTwentyRows() {
        SetupEnv e(QDateTime(QDate(2026, 3, 10), QTime(9, 30)), false);
        e.home.InstallDistricts();
        LoadBezirkTable(e.m, e.d);
        QVERIFY(e.m.BezirkRecords.size() > 90);
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        auto* combo1 = s.findChild<QComboBox*>(QStringLiteral("Combo1"));
        QVERIFY(combo1->count() > 90);
        combo1->showPopup();
        QAbstractItemView* view = combo1->view();
        QTRY_VERIFY(view->isVisible());
        const int row = view->sizeHintForRow(0);
        QVERIFY(row > 0);
        const int rowsShown = view->viewport()->height() / row;
        combo1->hidePopup();
        QVERIFY2(rowsShown <= 21, qPrintable(QString::number(rowsShown)));
        QVERIFY2(rowsShown >= 10, qPrintable(QString::number(rowsShown)));
    }

    void enterOnASelectedRowOpensTheLog() {
        SetupEnv e;
        e.MakeLog(QStringLiteral("A.KOLBO"));
        e.MakeLog(QStringLiteral("B.KOLBO"));
        LogNewOpen w(e.m, e.d, e.clock, {}, LogNewOpen::Mode::Start);
        w.show();
        auto* list = w.findChild<QListWidget*>(QStringLiteral("File1"));
        list->setFocus();
        list->setCurrentRow(1);
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("B.KOLBO"));
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QCOMPARE(w.LastLog(), QStringLiteral("B.KOLBO"));
    }
};

QTEST_MAIN(TestSetupFidelity)
#include "tst_setup_fidelity.moc"
