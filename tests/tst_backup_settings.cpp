// The window of the additional backup: its settings, the folder tree, the forbidden
// folders, "&Neuer Ordner", and the copy after a change of the contest settings.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "setup/backup_settings.h"
#include "setup/modal.h"
#include "setup/setup_flows.h"
#include "setup/sichern_einstellungen.h"
#include "setup_support.h"
#include "test_support.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

QString NoSlash(QString p) {
    if (p.endsWith(QLatin1Char('/'))) p.chop(1);
    return p;
}

struct Env {
    Home home;
    ScriptedDialogs d;
    Model& m = home.model;
};

QString Text1(QWidget& w) {
    return w.findChild<QLineEdit*>(QStringLiteral("Text1"))->text();
}

} // namespace

class TestBackupSettings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
    }
    void cleanup() { ClearModalDrivers(); }

    // Choosing the Logs folder gives the warning and returns to DataFolder.
    void forbiddenFoldersReturnToTheDataFolder_data() {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("forbidden");
        QTest::newRow("Logs") << "Logs" << true;
        QTest::newRow("Logs/") << "Logs/" << true;
        QTest::newRow("Sicherung") << "Sicherung" << true;
        QTest::newRow("Tmp") << "Tmp" << false;
        QTest::newRow("data folder") << "" << false;
        QTest::newRow("below Logs") << "Logs/x" << false;
    }
    void forbiddenFoldersReturnToTheDataFolder() {
        QFETCH(QString, folder);
        QFETCH(bool, forbidden);
        Env e;
        QDir().mkpath(e.m.DataFolder + QStringLiteral("Logs/x"));
        const QString path = NoSlash(e.m.DataFolder + folder);
        QCOMPARE(IsForbiddenBackupFolder(e.m, path), forbidden);
        SichernEinstellungen w(e.m, e.d);
        w.show();
        w.ChooseFolder(e.m.DataFolder + folder);
        if (forbidden) {
            QCOMPARE(e.d.boxes.size(), 1);
            QCOMPARE(e.d.boxes[0].text, QStringLiteral("Dieser Ordner ist nicht erlaubt!"));
            QCOMPARE(e.d.boxes[0].flags, int(Msg::Information));
            QCOMPARE(Text1(w), NoSlash(e.m.DataFolder));
        } else {
            QVERIFY(e.d.boxes.isEmpty());
            QCOMPARE(Text1(w), e.m.DataFolder + folder);
        }
    }

    void openingLogsInTheTreeWarns() {
        Env e;
        SichernEinstellungen w(e.m, e.d);
        w.show();
        auto* tree = w.findChild<QTreeView*>(QStringLiteral("Dir1"));
        auto* fs = qobject_cast<QFileSystemModel*>(tree->model());
        tree->setCurrentIndex(fs->index(NoSlash(e.m.LogFolder)));
        QVERIFY(e.d.boxes.isEmpty()); // passing over it is no choice
        QTest::keyClick(tree, Qt::Key_Return);
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(Text1(w), NoSlash(e.m.DataFolder));
        QCOMPARE(fs->filePath(tree->currentIndex()), NoSlash(e.m.DataFolder));
    }

    void loadShowsTheStoredFolder() {
        Env e;
        QTemporaryDir target;
        IniWrite(e.m.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"),
                 target.path() + QLatin1Char('/'));
        IniWrite(e.m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"), 1);
        SichernEinstellungen w(e.m, e.d);
        w.show();
        QCOMPARE(w.windowTitle(), QStringLiteral("Zusätzliches Sichern Einstellungen"));
        QVERIFY(w.findChild<QCheckBox*>(QStringLiteral("Check1"))->isChecked());
        QCOMPARE(w.findChild<QCheckBox*>(QStringLiteral("Check1"))->text(),
                 QStringLiteral("Zusätzliches &Sichern EIN"));
        QCOMPARE(Text1(w), target.path());
        QVERIFY(w.findChild<QLineEdit*>(QStringLiteral("Text1"))->isReadOnly());
        QCOMPARE(w.findChild<QComboBox*>(QStringLiteral("Drive1"))->itemText(0), QStringLiteral("/"));
        QTest::qWait(400);
        Shot(&w, QStringLiteral("SichernEinstellungen"));
        // A folder that has gone is not shown.
        IniWrite(e.m.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"),
                 QStringLiteral("/no/such/folder/"));
        SichernEinstellungen w2(e.m, e.d);
        QVERIFY(Text1(w2).isEmpty());
    }

    void okNeedsAFolderWhenSwitchedOn() {
        Env e;
        PushModalDriver([](QDialog& d) {
            d.findChild<QCheckBox*>(QStringLiteral("Check1"))->setChecked(true);
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
            QVERIFY(d.isVisible());
        });
        QVERIFY(!MnAutomatischesSichern(nullptr, e.m, e.d).has_value());
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Bitte einen Ordner auswählen!"));
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Information));
        QVERIFY(IniReadString(e.m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"))
                    .isEmpty());
    }

    void okStoresFolderAndSwitch() {
        Env e;
        QTemporaryDir target;
        PushModalDriver([&](QDialog& d) {
            auto& w = static_cast<SichernEinstellungen&>(d);
            d.findChild<QCheckBox*>(QStringLiteral("Check1"))->setChecked(true);
            w.ChooseFolder(target.path());
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        QCOMPARE(MnAutomatischesSichern(nullptr, e.m, e.d), std::optional<bool>(true));
        QCOMPARE(e.m.ExtraBackupPath, target.path() + QLatin1Char('/'));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath")),
                 target.path() + QLatin1Char('/'));
        QCOMPARE(IniReadInt(e.m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA")), 1.0);
        const BackupSettings s = ReadBackupSettings(e.m);
        QVERIFY(s.enabled);
        // Switched off again: the folder stays, the switch goes to 0.
        PushModalDriver([](QDialog& d) {
            d.findChild<QCheckBox*>(QStringLiteral("Check1"))->setChecked(false);
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        QCOMPARE(MnAutomatischesSichern(nullptr, e.m, e.d), std::optional<bool>(false));
        QCOMPARE(IniReadInt(e.m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA")), 0.0);
    }

    void cancelStoresNothing() {
        Env e;
        QTemporaryDir target;
        PushModalDriver([&](QDialog& d) {
            static_cast<SichernEinstellungen&>(d).ChooseFolder(target.path());
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command1")), Qt::LeftButton);
        });
        QVERIFY(!MnAutomatischesSichern(nullptr, e.m, e.d).has_value());
        QVERIFY(e.m.ExtraBackupPath.isEmpty());
        QVERIFY(!QFile::exists(e.m.IniPath));
    }

    void newFolderNames_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("box"); // empty: created
        QTest::newRow("good") << "Kolibrino Sicherung"
                              << "";
        QTest::newRow("umlaut") << QStringLiteral("Grüße") << "";
        QTest::newRow("250 characters") << QString(250, QLatin1Char('o')) << "";
        QTest::newRow("251 characters") << QString(251, QLatin1Char('o')) << "Ordnername ungültig";
        QTest::newRow("slash") << "a/b"
                               << "Ordnername ungültig";
        QTest::newRow("backslash") << "a\\b"
                                   << "Ordnername ungültig";
        QTest::newRow("colon") << "a:b"
                               << "Ordnername ungültig";
        QTest::newRow("bar") << "a|b"
                             << "Ordnername ungültig";
        QTest::newRow("quote") << "a\"b"
                               << "Ordnername ungültig";
        QTest::newRow("control") << "a\x1f"
                                 << "Ordnername ungültig";
        QTest::newRow("above 255") << QStringLiteral("a\u20ac") << "Ordnername ungültig";
        QTest::newRow("exists") << "schon"
                                << "Ordner existiert bereits!";
    }
    void newFolderNames() {
        QFETCH(QString, name);
        QFETCH(QString, box);
        Env e;
        QTemporaryDir parent;
        QDir().mkpath(parent.path() + QStringLiteral("/schon"));
        SichernEinstellungen w(e.m, e.d);
        w.show();
        w.ChooseFolder(parent.path());
        e.d.AnswerInput(name);
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("Command3")), Qt::LeftButton);
        QCOMPARE(e.d.prompts, QStringList{QStringLiteral("Bitte den Namen für den neuen Ordner eingeben")});
        if (box.isEmpty()) {
            if (name.size() < 250) { // the file system may refuse a longer one
                QVERIFY(e.d.boxes.isEmpty());
                QVERIFY(QFileInfo(parent.path() + QLatin1Char('/') + name).isDir());
                QCOMPARE(Text1(w), parent.path() + QLatin1Char('/') + name);
            }
            QVERIFY(IsValidFolderName(name));
        } else {
            QCOMPARE(e.d.boxes.size(), 1);
            QCOMPARE(e.d.boxes[0].text, box);
            QCOMPARE(Text1(w), parent.path());
        }
    }

    void emptyFolderNameStops() {
        Env e;
        SichernEinstellungen w(e.m, e.d);
        e.d.AnswerInput(QString());
        w.NewFolder();
        w.NewFolder(); // cancelled
        QVERIFY(e.d.boxes.isEmpty());
    }

    void changedSettingsAreCopiedToTheBackupFolder() {
        Env e;
        QTemporaryDir target;
        e.m.ExtraBackupPath = target.path() + QLatin1Char('/');
        e.m.CurrentLogName = QStringLiteral("A.KOLBO");
        e.m.Header.MYCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYOPCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYBZ = QStringLiteral("WI");
        e.m.Header.MYEMAIL = QStringLiteral("a@b.at");
        WriteBytes(e.m.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        LoadBezirkTable(e.m, e.d);
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        MainHooks hooks;
        int timer3 = 0;
        hooks.armBackupTimer = [&] { ++timer3; };
        hooks.autoBackupChecked = [] { return true; };
        PushModalDriver([](QDialog& d) {
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
        });
        MnLogoptionen(nullptr, e.m, e.d, clock, hooks);
        QCOMPARE(timer3, 1);
        QVERIFY(e.d.boxes.isEmpty());
        QCOMPARE(ReadBytes(target.path() + QStringLiteral("/A.KOLBO")),
                 ReadBytes(e.m.LogFolder + QStringLiteral("A.KOLBO")));
        QVERIFY(!QFile::exists(target.path() + QStringLiteral("/A.KOLBO.ALT")));
    }
};

QTEST_MAIN(TestBackupSettings)
#include "tst_backup_settings.moc"
