// Export and submission from the main window's menus: the entries switched on, the
// Cabrillo and ADIF files, sending the open log and a foreign file to a real loopback
// server with the busy panel up while the transfer runs, the connection test, and the
// printout into a PDF read back with pdftotext.
#include "export/export_menus.h"
#include "export/printout_text.h"
#include "export/submission.h"
#include "tst_main_window_support.h"
#include "update_server_support.h"
#include "upload_server.h"

#include <QAction>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::exporting;
using namespace kolibrino::test;

namespace {

std::vector<QsoRecord> SomeContacts(int n) {
    std::vector<QsoRecord> r;
    for (int i = 0; i < n; ++i) {
        const int band = i % 7 == 6 ? 30 : i % 2 ? 80 : 40;
        QsoRecord q =
            MakeRecord(QStringLiteral("OE3A%1").arg(i, 3, 10, QLatin1Char('0')), band, QStringLiteral("MD"),
                       QTime(5, 0).addSecs(60 * (i % 170)).toString(QStringLiteral("HH:mm:ss")));
        if (i % 10 == 9) q.Status = Status::Dupe;
        r.push_back(q);
    }
    return r;
}

// The busy panel as it stands now, or null.
QDialog* Panel() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("Picture10") && w->isVisible()) return qobject_cast<QDialog*>(w);
    return nullptr;
}
QString PanelText(QDialog* p) {
    return p->findChild<QLabel*>(QStringLiteral("Label22"))->text();
}

} // namespace

class TstExportWindows : public QObject {
    Q_OBJECT

    std::unique_ptr<WindowFixture> f;
    std::unique_ptr<UploadServer> server;
    ExportOptions options;

    bool Start(const std::vector<QsoRecord>& records) {
        f->WriteLog(QStringLiteral("test.KOLBO"), records);
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f->window = std::make_unique<HauptForm>(f->home.model, f->dialogs, f->clock);
        WindowFixture* fx = f.get();
        f->window->openUrl = [fx](const QUrl& u) {
            fx->opened << u;
            return true;
        };
        InstallExport(*f->window, f->home.model, f->dialogs, f->clock, options);
        return f->window->Load();
    }
    void Trigger(const char* name) { f->window->Action(QString::fromLatin1(name))->trigger(); }
    QString SentFile() const { return f->home.model.LogFolder + QStringLiteral("test.log"); }
    void UseServer() { f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), server->Host()); }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        f = std::make_unique<WindowFixture>();
        server = std::make_unique<UploadServer>();
        QVERIFY(server->WaitReady());
        options = ExportOptions{};
        options.score = [](const Model&) { return std::optional<long>(321); };
        options.timeouts = net::HttpTimeouts{2000, 3000};
        options.pingMs = 1000;
        f->dialogs.Clear();
    }
    void cleanup() {
        // The offer to send the log at closing is not part of these cases.
        if (f->window) f->window->logEinsenden = nullptr;
        f.reset();
        server.reset();
    }

    void menuEntriesAreSwitchedOn() {
        QVERIFY(Start(SomeContacts(3)));
        for (const char* name :
             {"MnLogExportierenCabrillo", "MnLogExportierenADIF", "MnLogHochladen", "MnLogEinsenden",
              "MnLogServerUploadTest", "MnLogDrucken", "MnEingesendeteLogsAnzeigen"})
            QVERIFY2(f->window->Action(QString::fromLatin1(name))->isEnabled(), name);
    }
    void cabrilloMenuWritesTheGridAsItStands() {
        QVERIFY(Start(SomeContacts(5)));
        f->window->Sortieren(GridSort::RufzeichenAb);
        f->dialogs.AnswerPath(f->home.Path(QStringLiteral("export")));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogExportierenCabrillo");
        const QByteArray bytes = ReadBytes(f->home.Path(QStringLiteral("export.LOG")));
        QVERIFY(bytes.contains("CLAIMED-SCORE: 321\r\n"));
        QVERIFY(bytes.indexOf("OE3A004") < bytes.indexOf("OE3A000"));
        QCOMPARE(f->opened.value(0), QUrl::fromLocalFile(f->home.Path(QStringLiteral("export.LOG"))));
    }
    void adifMenuWritesTheFile() {
        QVERIFY(Start(SomeContacts(3)));
        f->dialogs.AnswerPath(f->home.Path(QStringLiteral("export")));
        f->dialogs.AnswerMsgBox(Msg::No);
        Trigger("MnLogExportierenADIF");
        QVERIFY(ReadBytes(f->home.Path(QStringLiteral("export.ADI"))).contains("<CALL:7>OE3A000"));
    }

    void sendingTheOpenLogSucceedsAndOffersTheList() {
        UseServer();
        QVERIFY(Start(SomeContacts(4)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.boxes.size(), 2);
        QCOMPARE(f->dialogs.boxes[1].text, SentText());
        QCOMPARE(f->dialogs.boxes[1].flags, int(Msg::YesNo | Msg::Information));
        QCOMPARE(f->opened.value(0), QUrl(QStringLiteral("http://%1/cgi-bin/show.cgi").arg(server->Host())));
        QVERIFY(QFile::exists(SentFile())); // stays for mailing
        QCOMPARE(server->Stored("logfile"), ReadBytes(SentFile()));
        QCOMPARE(server->Stored("call_sign"), QByteArray("OE1XYZ"));
    }
    void busyPanelHoldsTheWindowWhileTheTransferRuns() {
        SilentServer silent;
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), silent.Host());
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->dialogs.AnswerMsgBox(Msg::No);
        QStringList seen;
        QTimer probe;
        connect(&probe, &QTimer::timeout, [&] {
            for (QWidget* w : QApplication::topLevelWidgets())
                if (w->objectName() == QLatin1String("Picture10") && w->isVisible())
                    seen << w->findChild<QLabel*>(QStringLiteral("Label22"))->text();
        });
        probe.start(100);
        Trigger("MnLogEinsenden");
        probe.stop();
        QVERIFY(seen.contains(QStringLiteral("LOG-Hochladen...")));
        QCOMPARE(f->dialogs.LastBox()->text, UploadFailedText(SentFile(), QString()));
        QVERIFY(f->opened.isEmpty());
    }
    // The panel says "Cabrillo erzeugen..." from the making of the file through the ping,
    // and "LOG-Hochladen..." while the file goes to the server.
    void busyPanelTextsComeInTheOrderOfTheSubmission() {
        SilentServer silent;
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), silent.Host());
        QStringList seen;
        auto note = [&seen](const QString& text) {
            if (seen.isEmpty() || seen.last() != text) seen << text;
        };
        options.score = [&](const Model&) { // runs while the file is made
            QDialog* p = Panel();
            note(p ? PanelText(p) : QStringLiteral("(kein Panel)"));
            return std::optional<long>(321);
        };
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->dialogs.AnswerMsgBox(Msg::No);
        QTimer probe;
        connect(&probe, &QTimer::timeout, [&] {
            if (QDialog* p = Panel()) note(PanelText(p));
        });
        probe.start(20);
        Trigger("MnLogEinsenden");
        probe.stop();
        QCOMPARE(seen,
                 (QStringList{QStringLiteral("Cabrillo erzeugen..."), QStringLiteral("LOG-Hochladen...")}));
    }
    void pingRunsUnderTheCabrilloTextAfterTheFileIsWritten() {
        test::SilentHost host; // connections never complete: the ping waits its full time
        host.Fill();
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"),
               QStringLiteral("127.0.0.1:%1").arg(host.port));
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        QStringList duringPing;
        QTimer probe;
        connect(&probe, &QTimer::timeout, [&] {
            if (QDialog* p = Panel(); p && QFile::exists(SentFile())) duringPing << PanelText(p);
        });
        probe.start(20);
        Trigger("MnLogEinsenden");
        probe.stop();
        QVERIFY(!duringPing.isEmpty());
        QCOMPARE(duringPing.first(), QStringLiteral("Cabrillo erzeugen..."));
        QCOMPARE(duringPing.last(), QStringLiteral("Cabrillo erzeugen..."));
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Einsenden abgebrochen!\nServer nicht erreichbar!"));
    }
    // "Abbrechen" on the panel of a stalled upload ends it at once: nothing is reported
    // as sent, the log keeps its bytes; the panel counts down the time it still waits.
    void cancelEndsAStalledUploadAtOnceAndReportsNothingAsSent() {
        SilentServer silent;
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), silent.Host());
        options.timeouts = net::HttpTimeouts{2000, 120000};
        QVERIFY(Start(SomeContacts(3)));
        const QString log = f->home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(log);
        f->dialogs.AnswerMsgBox(Msg::Yes);
        QString countdown;
        bool clicked = false;
        QTimer probe;
        connect(&probe, &QTimer::timeout, [&] {
            QDialog* p = Panel();
            if (!p || PanelText(p) != QLatin1String("LOG-Hochladen...") || clicked) return;
            auto* left = p->findChild<QLabel*>(QStringLiteral("Label23"));
            auto* cancel = p->findChild<QPushButton*>(QStringLiteral("Command1"));
            if (!left || !left->isVisible() || !cancel || !cancel->isVisible()) return;
            countdown = left->text();
            QCOMPARE(cancel->text(), QStringLiteral("Abbrechen"));
            clicked = true;
            QTest::mouseClick(cancel, Qt::LeftButton);
        });
        probe.start(50);
        QElapsedTimer clock;
        clock.start();
        Trigger("MnLogEinsenden");
        const qint64 took = clock.elapsed();
        probe.stop();
        QVERIFY(clicked);
        QVERIFY2(QRegularExpression(QStringLiteral("^Wartet noch höchstens 1[0-2]\\d s$"))
                     .match(countdown)
                     .hasMatch(),
                 qPrintable(countdown));
        QVERIFY2(took < 60000, qPrintable(QString::number(took))); // far below the 120 s of the transfer
        QCOMPARE(f->dialogs.LastBox()->text, CancelledText());
        QCOMPARE(f->dialogs.LastBox()->flags, int(Msg::Information));
        for (const ShownBox& b : f->dialogs.boxes)
            QVERIFY(b.text != SentText() && !b.text.startsWith(QStringLiteral("Das Hochladen des Logs ist")));
        QVERIFY(f->opened.isEmpty());
        QCOMPARE(ReadBytes(log), before);
        QVERIFY(!Panel());
    }
    // The end-of-period reminder that comes while an upload runs waits until the upload
    // has ended, and only then asks.
    void reminderDuringARunningUploadWaitsUntilItEnds() {
        SilentServer silent;
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"), silent.Host());
        QVERIFY(Start(SomeContacts(3)));
        f->dialogs.AnswerMsgBox(Msg::Yes); // the submission from the menu
        f->dialogs.AnswerMsgBox(Msg::No);  // its failure: no folder
        f->dialogs.AnswerMsgBox(Msg::No);  // the reminder's question, afterwards
        bool fired = false;
        int boxesWhenFired = -1;
        QTimer probe;
        connect(&probe, &QTimer::timeout, [&] {
            QDialog* p = Panel();
            if (fired || !p || PanelText(p) != QLatin1String("LOG-Hochladen...")) return;
            fired = true;
            boxesWhenFired = int(f->dialogs.boxes.size());
            f->clock.Set(QDateTime(QDate(2026, 5, 1), QTime(17, 1, 30))); // Timer4 reminds now
        });
        probe.start(20);
        Trigger("MnLogEinsenden");
        QVERIFY(fired);
        // While the upload ran no second submission started.
        QCOMPARE(boxesWhenFired, 1);
        QCOMPARE(f->dialogs.boxes.size(), 2);
        QCOMPARE(f->dialogs.boxes[1].text, UploadFailedText(SentFile(), QString()));
        // Then the reminder shows.
        QTRY_COMPARE_WITH_TIMEOUT(f->dialogs.boxes.size(), 3, 5000);
        probe.stop();
        QVERIFY(f->dialogs.boxes[2].text.endsWith(
            QStringLiteral("Soll das aktuelle Log jetzt eingesendet werden?")));
        QTest::qWait(300);
        QCOMPARE(f->dialogs.boxes.size(), 3);
    }
    void wrongEchoOffersTheFolder() {
        UseServer();
        server->SetMode("wrongmd5");
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QVERIFY(f->dialogs.LastBox()->text.startsWith(
            QStringLiteral("Das Hochladen des Logs ist fehlgeschlagen.")));
        QCOMPARE(f->opened.value(0), QUrl::fromLocalFile(f->home.model.LogFolder));
    }
    void unreachableServerStopsTheSubmission() {
        f->Ini(QStringLiteral("Server"), QStringLiteral("LogServer"),
               QStringLiteral("127.0.0.1:%1").arg(FreePort()));
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Einsenden abgebrochen!\nServer nicht erreichbar!"));
        QCOMPARE(f->dialogs.LastBox()->flags, int(Msg::Critical));
    }
    void emptyLogIsNotSent() {
        UseServer();
        QVERIFY(Start({}));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Einsenden abgebrochen!\nKeine Logeinträge vorhanden zu exportieren!"));
        QCOMPARE(server->Requests(), 0);
    }
    void scoreFailureStopsTheSubmissionWithNoFile() {
        UseServer();
        options.score = [](const Model&) { return std::optional<long>(); };
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Fehler im LOG, Cabrillo kann nicht erzeugt werden!"));
        QVERIFY(!QFile::exists(SentFile()));
        QCOMPARE(server->Requests(), 0);
    }
    void answeringNoSendsNothing() {
        UseServer();
        QVERIFY(Start(SomeContacts(2)));
        f->dialogs.AnswerMsgBox(Msg::No);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.boxes.size(), 1);
        QVERIFY(!QFile::exists(SentFile()));
    }
    void foreignFileIsCheckedAndSent() {
        UseServer();
        QVERIFY(Start(SomeContacts(2)));
        const QString foreign = f->home.Path(QStringLiteral("fremd/anders.log"));
        WriteBytes(foreign, "START-OF-LOG: 3.0\r\nCALLSIGN: OE5FRM\r\nCATEGORY-OVERLAY: YL\r\n"
                            "CATEGORY: HIGH-POWER CW\r\nLOCATION: LI\r\n"
                            "QSO: 3520 CW 2026-05-01 0600 1 OE5FRM 599 LI OE3XYZ 599 MD\r\nEND-OF-LOG:\r\n");
        f->dialogs.AnswerPath(foreign);
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->dialogs.AnswerMsgBox(Msg::No);
        Trigger("MnLogHochladen");
        QCOMPARE(f->dialogs.LastBox()->text, SentText());
        QCOMPARE(server->Stored("logfile"), ReadBytes(foreign));
        QCOMPARE(server->Stored("call_sign"), QByteArray("OE5FRM"));
    }
    void foreignFileFailingTheCheckShowsWhy() {
        UseServer();
        QVERIFY(Start(SomeContacts(2)));
        const QString foreign = f->home.Path(QStringLiteral("anders.log"));
        WriteBytes(foreign, "START-OF-LOG: 3.0\r\nCALLSIGN: OE5FRM\r\nEND-OF-LOG:\r\n");
        f->dialogs.AnswerPath(foreign);
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogHochladen");
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Die Datei ist kein gültiges Cabrillo-Log!\n"
                                "Eintrag 'CATEGORY-OVERLAY:' fehlt.\nHochladen abgebrochen!"));
        QCOMPARE(f->dialogs.LastBox()->flags, int(Msg::Information));
        QCOMPARE(server->Requests(), 0);
    }
    void connectionTestSucceedsAndFails() {
        UseServer();
        QVERIFY(Start(SomeContacts(1)));
        Trigger("MnLogServerUploadTest");
        QCOMPARE(f->dialogs.LastBox()->text, TestSucceededText());
        QCOMPARE(server->Stored("call_sign"), QByteArray("TESTCALL"));
        server->SetMode("nomarker");
        Trigger("MnLogServerUploadTest");
        QCOMPARE(f->dialogs.LastBox()->text, TestFailedText());
        QCOMPARE(f->dialogs.LastBox()->flags, int(Msg::Critical));
    }
    void noServerSetSendsNothing() {
        QVERIFY(Start(SomeContacts(1)));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        Trigger("MnLogEinsenden");
        QCOMPARE(f->dialogs.LastBox()->text, NoServerText());
        QCOMPARE(server->Requests(), 0);
    }

    // The save dialogs start in Logs/, then where the last file of that kind went.
    void saveDialogsStartInLogsThenInTheLastFolderOfTheirKind() {
        QVERIFY(Start(SomeContacts(3)));
        const QString logs = f->home.model.LogFolder;
        const QString elsewhere = f->home.Path(QStringLiteral("woanders"));
        QDir().mkpath(elsewhere);
        f->dialogs.AnswerPath(elsewhere + QStringLiteral("/x.adi"));
        f->dialogs.AnswerMsgBox(Msg::No);
        Trigger("MnLogExportierenADIF");
        QVERIFY(QFile::exists(elsewhere + QStringLiteral("/x.ADI")) || QFile::exists(elsewhere + QStringLiteral("/x.adi")));
        f->dialogs.AnswerPath({});
        Trigger("MnLogExportierenADIF");
        f->dialogs.AnswerPath({});
        Trigger("MnLogExportierenCabrillo");
        QCOMPARE(f->dialogs.startFolders.size(), 3);
        QCOMPARE(f->dialogs.startFolders[0], logs);
        QCOMPARE(f->dialogs.startFolders[1], elsewhere + QLatin1Char('/'));
        QCOMPARE(f->dialogs.startFolders[2], logs); // another kind keeps its own folder
        QVERIFY(!f->dialogs.startFolders.contains(f->home.model.AppFolder));
        // The folder is remembered in the settings, across a restart.
        QCOMPARE(IniReadString(f->home.model.IniPath, QStringLiteral("Ordner"), QStringLiteral("ADIF")), elsewhere);
    }

    // The printout.
    void emptyLogPrintsNothingAndSaysSo() {
        QVERIFY(Start({}));
        Trigger("MnLogDrucken");
        QCOMPARE(f->dialogs.LastBox()->text,
                 QStringLiteral("Es sind keine Logeinträge zum Drucken vorhanden!"));
        QCOMPARE(f->dialogs.printDialogs, 0);
    }
    void cancelPrintsNothing() {
        QVERIFY(Start(SomeContacts(3)));
        f->dialogs.AnswerMsgBox(Msg::Cancel);
        Trigger("MnLogDrucken");
        QCOMPARE(f->dialogs.boxes.size(), 1);
        QVERIFY(f->dialogs.boxes[0].text.startsWith(
            QStringLiteral("Soll das aktuelle Log auf dem Standarddrucker")));
        QCOMPARE(f->dialogs.printDialogs, 0);
    }
    void printoutToPdfHasPageMarksHeadingsAndEveryRow() {
        const QString pdf = f->home.Path(QStringLiteral("druck.pdf"));
        const int n = 150;
        QVERIFY(Start(SomeContacts(n)));
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint([pdf](QPrinter& printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            return true;
        });
        f->dialogs.AnswerMsgBox(Msg::No);
        Trigger("MnLogDrucken");
        QVERIFY(f->dialogs.LastBox()->text.startsWith(QStringLiteral("Der Ausdruck wurde als PDF-Datei gespeichert")));
        QProcess p;
        p.start(QStringLiteral("pdftotext"),
                {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(p.waitForFinished(60000));
        const QStringList pages =
            QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\f'), Qt::SkipEmptyParts);
        QVERIFY(pages.size() >= 2);
        QList<int> perPage;
        int dupes = 0, thirty = 0;
        for (int i = 0; i < pages.size(); ++i) {
            const QStringList lines = pages[i].split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            QCOMPARE(lines.value(0).trimmed(), PrintPageMark(i + 1));
            // pdftotext keeps the words of a line, not every blank between them.
            QCOMPARE(lines.value(1).simplified(), PrintHeading().simplified());
            QVERIFY(lines.value(2).trimmed().startsWith(QStringLiteral("-----")));
            int rows = 0;
            for (int l = 3; l < lines.size(); ++l) {
                if (!lines[l].contains(QStringLiteral("OE3A"))) continue;
                ++rows;
                dupes += lines[l].contains(QStringLiteral("Dupe"));
                thirty += lines[l].contains(QStringLiteral("30m"));
            }
            perPage << rows;
        }
        for (int i = 0; i + 1 < perPage.size(); ++i)
            QCOMPARE(perPage[i], perPage[0]);
        int total = 0;
        for (int r : perPage)
            total += r;
        QCOMPARE(total, n);
        QCOMPARE(dupes, n / 10);
        QVERIFY(thirty > 0);
        QVERIFY(pages.last().contains(QStringLiteral("OE3A149")));
    }
};

QTEST_MAIN(TstExportWindows)
#include "tst_export_windows.moc"
