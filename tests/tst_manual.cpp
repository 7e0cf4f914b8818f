// The operator's manual: the build turns it into KOLBOHilfe.pdf with every chapter and
// its pictures, the program ships it, and "Anleitung als pdf" opens it.
#include "tst_main_window_support.h"
#include "upkeep/upkeep_install.h"

#include <QAction>
#include <QProcess>

using namespace kolibrino;

namespace {

const QString kPdf = QStringLiteral(KOLIBRINO_BINARY_DIR "/data/KOLBOHilfe.pdf");

QString Run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class TstManual : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { test::PinLocale(); }

    void theBuildMakesThePdfFromTheCurrentSource() {
        QVERIFY2(QFile::exists(kPdf), qPrintable(kPdf));
        QVERIFY(test::ReadBytes(kPdf).startsWith("%PDF"));
        const QFileInfo md(QStringLiteral(KOLIBRINO_SOURCE_DIR "/docs/manual/KOLBOHilfe.md"));
        QVERIFY(QFileInfo(kPdf).lastModified() >= md.lastModified());
    }

    void thePdfHasEveryChapterInItsText() {
        const QString text = Run(QStringLiteral("pdftotext"), {kPdf, QStringLiteral("-")});
        const QStringList chapters = {
            QStringLiteral("Kolibrino – Anleitung"),
            QStringLiteral("1 Installation"),
            QStringLiteral("2 Erster Start und der Log-Manager"),
            QStringLiteral("3 Contest-Einstellungen"),
            QStringLiteral("4 Loggen an der Tastatur"),
            QStringLiteral("5 Contest-Uhr und Zeitversatz"),
            QStringLiteral("6 Dupe-Regel und Wertung"),
            QStringLiteral("7 Korrekturen"),
            QStringLiteral("8 Karte und Tabellen"),
            QStringLiteral("9 Transceiver mit Hamlib und rigctld"),
            QStringLiteral("10 Export"),
            QStringLiteral("11 Log einsenden und Verbindungstest"),
            QStringLiteral("12 Update"),
            QStringLiteral("13 Dateien und Ordner"),
            QStringLiteral("14 Wenn etwas nicht klappt"),
            QStringLiteral("15 Teilrufzeichen"),
            QStringLiteral("16 Rufzeichen-Check"),
            QStringLiteral("17 Server und Adressen"),
            QStringLiteral("18 Drucken"),
            QStringLiteral("19 QSO-Rate und fehlende Multiplikatoren"),
            QStringLiteral("20 Mit Bildschirmleser (Orca)"),
        };
        for (const QString& c : chapters)
            QVERIFY2(text.contains(c), qPrintable(c));
        QVERIFY(text.contains(QStringLiteral("Strg+W")));
    }

    void windowsAreCalledByTheCaptionTheyShow() {
        const QString text = Run(QStringLiteral("pdftotext"), {kPdf, QStringLiteral("-")}).simplified();
        for (const char* caption : {"„Ergebnis“", "„Contest-Einstellungen“", "„Teilrufzeichen“", "„Check“",
                                    "„Bezirke Karte“", "„Bezirke Liste“", "„Multiplikatoren-Tabelle“",
                                    "„Server und Adressen“"})
            QVERIFY2(text.contains(QString::fromUtf8(caption)), caption);
        for (const char* old : {"Statistik", "Stations-Einstellungen", "Log-Verwaltung"})
            QVERIFY2(!text.contains(QLatin1String(old)), old);
    }

    void settingsAnOperatorMakesByHandAreExplained() {
        const QString text = Run(QStringLiteral("pdftotext"), {kPdf, QStringLiteral("-")}).simplified();
        // The package first, the source second.
        const qsizetype deb = text.indexOf(QStringLiteral("sudo apt install ./kolibrino_"));
        const qsizetype source = text.indexOf(QStringLiteral("tools/dev.sh run"));
        QVERIFY(deb > 0 && source > deb);
        // The first start's offset and the one for UTC.
        QVERIFY(text.contains(QStringLiteral("„-12:00h“")));
        QVERIFY(text.contains(QStringLiteral("„-02:00h“")));
        QVERIFY(text.contains(QStringLiteral("„-00:00h“")));
        // Servers and addresses through their window, and where the INI file lives.
        for (const char* s : {"Log-Server testen", "Update-Server testen", "eMail des Contest-Managers",
                              "Contestregeln"})
            QVERIFY2(text.contains(QString::fromUtf8(s)), s);
        // A path may break at a "/" in the PDF's lines.
        QVERIFY(QString(text).remove(QLatin1Char(' ')).contains(QStringLiteral("~/.local/share/kolibrino/kolibrino.INI")));
        QVERIFY(!text.contains(QStringLiteral("/tmp/")));
    }

    void thePdfHoldsTheScreenshots() {
        const QString list = Run(QStringLiteral("pdfimages"), {QStringLiteral("-list"), kPdf});
        QVERIFY2(list.count(QStringLiteral("image")) >= 5, qPrintable(list));
    }

    void helpMenuOpensTheShippedManual() {
        test::WindowFixture f;
        f.Ini(QStringLiteral("Update"), QStringLiteral("BeimStart"), QStringLiteral("0"));
        QVERIFY(CopyShippedData(f.home.model).contains(QStringLiteral("KOLBOHilfe.pdf")));
        f.WriteLog(QStringLiteral("test.KOLBO"), {});
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        f.window->openUrl = [&f](const QUrl& u) {
            f.opened << u;
            return true;
        };
        upkeep::InstallUpkeep(*f.window, f.home.model, f.dialogs, f.clock);
        QVERIFY(f.window->Load());
        QAction* help = f.window->Action(QStringLiteral("MnHilfePDF"));
        QVERIFY(help->isEnabled());
        help->trigger();
        QCOMPARE(f.opened.size(), 1);
        QCOMPARE(f.opened[0],
                 QUrl::fromLocalFile(f.home.model.DataFolder + QStringLiteral("KOLBOHilfe.pdf")));
        QCOMPARE(test::ReadBytes(f.opened[0].toLocalFile()), test::ReadBytes(kPdf));
    }
};

QTEST_MAIN(TstManual)
#include "tst_manual.moc"
