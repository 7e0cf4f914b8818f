// Einstellungen → "Server und Adressen…": the window that sets the log server, the
// contest manager's addresses, the rules page, the info window's address and the update
// server with its check at start; its tests of both servers against loopback servers;
// its German refusals; the messages that miss a setting and now name the window; and
// KOLIBRINO_LOG, which opens the named log without the log manager.
#include "entry/web_addresses.h"
#include "export/submission.h"
#include "setup/main_window_setup.h"
#include "setup/server_window.h"
#include "tst_main_window_support.h"
#include "update_server_support.h"
#include "upkeep/info_logic.h"
#include "upkeep/update_flow.h"
#include "upload_server.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

QLineEdit* Edit(QWidget* w, const char* name) {
    return w->findChild<QLineEdit*>(QString::fromLatin1(name));
}
void Type(QWidget* w, const char* name, const QString& text) {
    QLineEdit* e = Edit(w, name);
    QVERIFY2(e, name);
    e->setFocus();
    e->selectAll();
    QTest::keyClick(e, Qt::Key_Delete);
    QTest::keyClicks(e, text);
}
void Click(QWidget* w, const char* name) {
    auto* b = w->findChild<QPushButton*>(QString::fromLatin1(name));
    QVERIFY2(b, name);
    QTest::mouseClick(b, Qt::LeftButton);
}
QString Ini(const Model& m, const char* section, const char* key) {
    return IniReadString(m.IniPath, QString::fromLatin1(section), QString::fromLatin1(key));
}

} // namespace

class TestServerSettings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    void entryStandsAtTheEndOfEinstellungenAndOpensTheWindow() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), {});
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        InstallLogSetup(*f.window, f.home.model, f.dialogs, f.clock);
        QVERIFY(f.window->Load());
        QAction* a = f.window->Action(QStringLiteral("MnServerAdressen"));
        QVERIFY(a && a->isEnabled());
        QCOMPARE(a->text(), QStringLiteral("Ser&ver und Adressen…"));
        auto* menu = f.window->findChild<QMenu*>(QStringLiteral("MnEinstellungen"));
        QVERIFY(menu);
        QCOMPARE(menu->actions().last(), a);
        int vs = 0;
        for (QAction* x : menu->actions())
            vs += x->text().contains(QStringLiteral("&v"), Qt::CaseInsensitive);
        QCOMPARE(vs, 1); // the access key is its own
        bool shown = false;
        QTimer::singleShot(0, [&] {
            auto* w = qobject_cast<ServerAdressen*>(QApplication::activeModalWidget());
            if (!w) return;
            shown = w->windowTitle() == QStringLiteral("Server und Adressen");
            Type(w, "TextLogServer", QStringLiteral("logs.example.org"));
            Click(w, "CommandOK");
        });
        a->trigger();
        QVERIFY(shown);
        QCOMPARE(Ini(f.home.model, "Server", "LogServer"), QStringLiteral("logs.example.org"));
    }

    void fieldsShowTheSettingsAndOkWritesTheKeysTyped() {
        Home home;
        ScriptedDialogs d;
        IniWrite(home.model.IniPath, QStringLiteral("Server"), QStringLiteral("LogServer"), QStringLiteral("alt.example.org"));
        IniWrite(home.model.IniPath, QStringLiteral("Update"), QStringLiteral("BeimStart"), QStringLiteral("0"));
        ServerAdressen w(home.model, d);
        w.show();
        QCOMPARE(Edit(&w, "TextLogServer")->text(), QStringLiteral("alt.example.org"));
        QVERIFY(!w.findChild<QCheckBox*>(QStringLiteral("CheckBeimStart"))->isChecked());
        for (const char* name : {"TextLogServer", "TextContestMail", "TextRegeln", "TextInfoMail", "TextUpdateServer",
                                 "TextUpdatePfad"}) {
            auto* help = w.findChild<QLabel*>(QString::fromLatin1(name) + QStringLiteral("Hilfe"));
            QVERIFY2(help && help->text().size() > 20, name); // each field says what it is for
        }
        Type(&w, "TextLogServer", QStringLiteral("127.0.0.1:8080"));
        Type(&w, "TextContestMail", QStringLiteral("a@example.org b@example.org"));
        Type(&w, "TextRegeln", QStringLiteral("https://example.org/regeln"));
        Type(&w, "TextInfoMail", QStringLiteral("info@example.org"));
        Type(&w, "TextUpdateServer", QStringLiteral("update.example.org:8081"));
        Type(&w, "TextUpdatePfad", QStringLiteral("/kolibrino/"));
        QTest::mouseClick(w.findChild<QCheckBox*>(QStringLiteral("CheckBeimStart")), Qt::LeftButton);
        Click(&w, "CommandOK");
        QVERIFY(d.boxes.isEmpty());
        QCOMPARE(w.result(), int(QDialog::Accepted));
        const Model& m = home.model;
        QCOMPARE(Ini(m, "Server", "LogServer"), QStringLiteral("127.0.0.1:8080"));
        QCOMPARE(Ini(m, "Server", "ContestMail"), QStringLiteral("a@example.org b@example.org"));
        QCOMPARE(Ini(m, "Server", "RegelnURL"), QStringLiteral("https://example.org/regeln"));
        QCOMPARE(Ini(m, "Info", "MailAdresse"), QStringLiteral("info@example.org"));
        QCOMPARE(Ini(m, "Update", "Server"), QStringLiteral("update.example.org:8081"));
        QCOMPARE(Ini(m, "Update", "Pfad"), QStringLiteral("/kolibrino/"));
        QCOMPARE(Ini(m, "Update", "BeimStart"), QStringLiteral("1"));
        // The program reads them where it always did.
        QCOMPARE(exporting::LogServerSetting(), QStringLiteral("127.0.0.1:8080"));
        QCOMPARE(RegelnUrl(), QStringLiteral("https://example.org/regeln"));
        QCOMPARE(upkeep::ContestManagerAddress(m.IniPath), QStringLiteral("info@example.org"));
        QCOMPARE(upkeep::ReadUpdateServer(m.IniPath).port, 8081);
        QVERIFY(upkeep::CheckAtStart(m.IniPath));
    }

    void entriesThatCannotBeUsedAreRefusedInGerman_data() {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("start");
        QTest::newRow("log server with http") << QByteArray("TextLogServer") << QStringLiteral("http://x.org/cgi")
                                              << QStringLiteral("Der Log-Server");
        QTest::newRow("log server with blank") << QByteArray("TextLogServer") << QStringLiteral("a b")
                                               << QStringLiteral("Der Log-Server");
        QTest::newRow("update port") << QByteArray("TextUpdateServer") << QStringLiteral("x.org:99999")
                                     << QStringLiteral("Der Update-Server");
        QTest::newRow("mail") << QByteArray("TextContestMail") << QStringLiteral("manager at example")
                              << QStringLiteral("\"manager");
        QTest::newRow("two info mails") << QByteArray("TextInfoMail") << QStringLiteral("a@x.org b@x.org")
                                        << QStringLiteral("\"a@x.org");
        QTest::newRow("rules page") << QByteArray("TextRegeln") << QStringLiteral("www.example.org")
                                    << QStringLiteral("\"www.example.org\" ist keine gültige Web-Adresse");
        QTest::newRow("path") << QByteArray("TextUpdatePfad") << QStringLiteral("/../etc/")
                              << QStringLiteral("Der Pfad");
    }
    void entriesThatCannotBeUsedAreRefusedInGerman() {
        QFETCH(QByteArray, field);
        QFETCH(QString, text);
        QFETCH(QString, start);
        Home home;
        ScriptedDialogs d;
        ServerAdressen w(home.model, d);
        w.show();
        Type(&w, field.constData(), text);
        Click(&w, "CommandOK");
        QCOMPARE(d.boxes.size(), 1);
        QVERIFY2(d.boxes[0].text.startsWith(start), qPrintable(d.boxes[0].text));
        QCOMPARE(d.boxes[0].flags, int(Msg::Exclamation));
        QVERIFY(w.isVisible()); // the window stays for the correction
        QVERIFY(!QFileInfo::exists(home.model.IniPath) || Ini(home.model, "Server", "LogServer").isEmpty());
    }

    void logServerButtonRunsTheConnectionTestOnTheTypedServer() {
        Home home;
        ScriptedDialogs d;
        UploadServer server;
        QVERIFY(server.WaitReady());
        ServerAdressen w(home.model, d);
        w.show();
        Type(&w, "TextLogServer", server.Host());
        Click(&w, "CommandLogTest");
        QCOMPARE(d.boxes.size(), 1);
        QCOMPARE(d.boxes[0].text, exporting::TestSucceededText());
        QCOMPARE(server.Requests(), 1);
        QVERIFY(Ini(home.model, "Server", "LogServer").isEmpty()); // tested, not yet stored
    }
    void logServerButtonTellsAFailure() {
        Home home;
        ScriptedDialogs d;
        ServerAdressen w(home.model, d);
        w.show();
        Type(&w, "TextLogServer", QStringLiteral("127.0.0.1:1"));
        Click(&w, "CommandLogTest");
        QCOMPARE(d.boxes.size(), 1);
        QCOMPARE(d.boxes[0].text, exporting::TestFailedText());
    }
    void updateServerButtonFetchesTheList() {
        Home home;
        ScriptedDialogs d;
        UpdateServerProcess server;
        server.WriteList(QStringLiteral("; leer\r\n"));
        ServerAdressen w(home.model, d);
        w.show();
        Type(&w, "TextUpdateServer", server.HostPort());
        Click(&w, "CommandUpdateTest");
        QCOMPARE(d.boxes.size(), 1);
        QVERIFY2(d.boxes[0].text.startsWith(QStringLiteral("Der Update-Server ist erreichbar")),
                 qPrintable(d.boxes[0].text));
        // A folder without the list fails, and says which address it tried.
        Type(&w, "TextUpdatePfad", QStringLiteral("/anderswo/"));
        Click(&w, "CommandUpdateTest");
        QCOMPARE(d.boxes.size(), 2);
        QVERIFY(d.boxes[1].text.startsWith(QStringLiteral("Der Test des Update-Servers ist fehlgeschlagen.")));
        QVERIFY(d.boxes[1].text.contains(QStringLiteral("/anderswo/KOLBOUpd.txt")));
    }

    void messagesThatMissASettingNameTheWindow() {
        for (const QString& text : {exporting::NoServerText(), QString::fromUtf8(upkeep::kTxtKeinServer),
                                    QString::fromUtf8(upkeep::kTxtKeineMailAdresse), QString::fromUtf8(kKeineRegelnUrl),
                                    QString::fromUtf8(kKeinLogServer)}) {
            QVERIFY2(text.contains(QStringLiteral("Einstellungen → Server und Adressen…")), qPrintable(text));
            QVERIFY2(!text.contains(QStringLiteral("kolibrino.INI")), qPrintable(text));
        }
    }

    void kolibrinoLogOpensTheNamedLogWithoutTheLogManager() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("erster.KOLBO"), {});
        f.WriteLog(QStringLiteral("zweiter.KOLBO"), {MakeRecord(QStringLiteral("OE3ABC"), 40, QStringLiteral("MD"),
                                                                 QStringLiteral("05:10:00"))});
        qputenv("KOLIBRINO_LOG", "zweiter");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        InstallLogSetup(*f.window, f.home.model, f.dialogs, f.clock);
        bool manager = false;
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [&] {
            if (QWidget* w = QApplication::activeModalWidget(); w && w->objectName() == QStringLiteral("LogNewOpen")) {
                manager = true;
                qobject_cast<QDialog*>(w)->reject();
            }
        });
        closer.start(0);
        const bool loaded = f.window->Load();
        closer.stop();
        QVERIFY(!manager);
        QVERIFY(loaded);
        QCOMPARE(f.home.model.CurrentLogName, QStringLiteral("zweiter.KOLBO"));
    }
};

QTEST_MAIN(TestServerSettings)
#include "tst_server_settings.moc"
