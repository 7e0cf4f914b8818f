// Printing as on every desktop: each printout (log, map, district list) goes through the
// system's print dialog with the default printer chosen; a real CUPS queue started by the
// test takes the job, a queue that rejects jobs or is stopped is reported in German and
// never as printed; a printout into a PDF says where it went and offers to open it; the
// map and the list stay inside the printable area, with no grey around the map.
#include "core/print_choice.h"
#include "cups_support.h"
#include "export/export_menus.h"
#include "export/printout_text.h"
#include "scoring/bezirke_liste.h"
#include "scoring/bz_karte.h"
#include "scoring_support.h"
#include "ui/print_job.h"
#include "ui/qt_dialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::test;
using kolibrino::exporting::PrintPageMark;

namespace {

QString Run(const QString& tool, const QStringList& args) {
    QProcess p;
    p.start(tool, args);
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

std::vector<QsoRecord> Contacts(int n) {
    std::vector<QsoRecord> r;
    for (int i = 0; i < n; ++i)
        r.push_back(MakeRecord(QStringLiteral("OE3A%1").arg(i, 3, 10, QLatin1Char('0')), i % 2 ? 80 : 40,
                               QStringLiteral("MD"), QTime(5, 0).addSecs(60 * i).toString(QStringLiteral("HH:mm:ss"))));
    return r;
}

// The boxes of every word on each page of a PDF (points), with the page's size.
struct Word {
    double x0, y0, x1, y1;
    QString text;
};
struct PdfPage {
    double width = 0, height = 0;
    QList<Word> words;
};
QList<PdfPage> Words(const QString& pdf) {
    const QString xml = Run(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    QList<PdfPage> pages;
    static const QRegularExpression page(QStringLiteral("<page width=\"([0-9.]+)\" height=\"([0-9.]+)\""));
    static const QRegularExpression word(QStringLiteral(
        "<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\" xMax=\"([0-9.]+)\" yMax=\"([0-9.]+)\">([^<]*)</word>"));
    for (const QString& line : xml.split(QLatin1Char('\n'))) {
        if (auto m = page.match(line); m.hasMatch()) pages.append({m.captured(1).toDouble(), m.captured(2).toDouble(), {}});
        if (auto m = word.match(line); m.hasMatch() && !pages.isEmpty())
            pages.last().words.append({m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                                       m.captured(4).toDouble(), m.captured(5)});
    }
    return pages;
}

// Every word lies inside the smallest margin the program keeps (10 mm = 28.3 pt).
QString WordsOutsideMargins(const QString& pdf) {
    const double margin = kMinPrintMarginMm * 72 / 25.4 - 0.5;
    const QList<PdfPage> pages = Words(pdf);
    if (pages.isEmpty()) return QStringLiteral("keine Seite in ") + pdf;
    for (const PdfPage& p : pages) {
        if (p.words.isEmpty()) return QStringLiteral("kein Text");
        for (const Word& w : p.words)
            if (w.x0 < margin || w.y0 < margin || w.x1 > p.width - margin || w.y1 > p.height - margin)
                return QStringLiteral("%1 bei %2,%3-%4,%5").arg(w.text).arg(w.x0).arg(w.y0).arg(w.x1).arg(w.y1);
    }
    return {};
}

// The answer of an operator who picks a PDF file in the print dialog.
std::function<bool(QPrinter&)> IntoPdf(const QString& file) {
    return [file](QPrinter& p) {
        p.setOutputFormat(QPrinter::PdfFormat);
        p.setOutputFileName(file);
        return true;
    };
}

} // namespace

class TestPrinting : public QObject {
    Q_OBJECT
    std::unique_ptr<CupsQueue> cups;
    std::unique_ptr<ScoringFixture> f;

    bool Start(int contacts) {
        f->WriteLog(QStringLiteral("test.KOLBO"), Contacts(contacts));
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f->window = std::make_unique<HauptForm>(f->home.model, f->dialogs, f->clock);
        ScoringFixture* fx = f.get();
        f->window->openUrl = [fx](const QUrl& u) {
            fx->opened << u;
            return true;
        };
        InstallScoring(*f->window, f->home.model, f->dialogs, f->clock);
        exporting::InstallExport(*f->window, f->home.model, f->dialogs, f->clock);
        return f->window->Load();
    }
    void NeedCups() {
        if (!cups->Why().isEmpty()) QSKIP(qPrintable(QStringLiteral("Kein CUPS-Test: ") + cups->Why()));
    }
    QStringList Texts() const {
        QStringList t;
        for (const ShownBox& b : f->dialogs.boxes)
            t << b.text;
        return t;
    }

private slots:
    void initTestCase() {
        PinLocale();
        cups = std::make_unique<CupsQueue>(); // before anything asks for printers
        if (!cups->Why().isEmpty()) qInfo("CUPS-Teil wird übersprungen: %s", qPrintable(cups->Why()));
    }
    void cleanupTestCase() { cups.reset(); }
    void init() {
        qunsetenv("KOLIBRINO_PRINT_PDF");
        f = std::make_unique<ScoringFixture>();
    }
    void cleanup() {
        f.reset();
        if (cups && cups->Why().isEmpty()) {
            (void)cups->Tool(QStringLiteral("cupsaccept"), {QLatin1String(CupsQueue::kQueue)});
            (void)cups->Tool(QStringLiteral("cupsenable"), {QLatin1String(CupsQueue::kQueue)});
        }
    }

    // On a real CUPS queue.
    void logGoesToTheDefaultPrinterChosenInThePrintDialog() {
        NeedCups();
        QVERIFY(Start(5));
        const int before = int(cups->JobDocuments().size());
        QString shownPrinter;
        bool native = false;
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint([&](QPrinter& p) {
            shownPrinter = p.printerName();
            native = p.outputFormat() == QPrinter::NativeFormat;
            return true;
        });
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QCOMPARE(f->dialogs.printDialogs, 1);
        QCOMPARE(shownPrinter, QLatin1String(CupsQueue::kQueue));
        QVERIFY(native);
        QCOMPARE(f->dialogs.LastBox()->text, QStringLiteral("Das Log wurde gedruckt."));
        const QStringList docs = cups->JobDocuments();
        QCOMPARE(int(docs.size()), before + 1);
        const QString text = Run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), docs.last(), QStringLiteral("-")});
        QVERIFY2(text.contains(PrintPageMark(1)), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("OE3A004")));
        const QString outside = WordsOutsideMargins(docs.last());
        QVERIFY2(outside.isEmpty(), qPrintable(outside));
    }
    void queueThatRejectsJobsIsReportedAndNotAsPrinted() {
        NeedCups();
        QVERIFY(Start(5));
        QCOMPARE(cups->Tool(QStringLiteral("cupsreject"), {QLatin1String(CupsQueue::kQueue)}), QString());
        const int before = int(cups->JobDocuments().size());
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QCOMPARE(f->dialogs.printDialogs, 1);
        QVERIFY2(!Texts().contains(QStringLiteral("Das Log wurde gedruckt.")), qPrintable(Texts().join(QLatin1Char('|'))));
        const ShownBox* last = f->dialogs.LastBox();
        QVERIFY(last->text.startsWith(QStringLiteral("FEHLER\n\n\t")));
        QVERIFY2(last->text.contains(QStringLiteral("hat den Druckauftrag nicht angenommen")), qPrintable(last->text));
        QVERIFY(last->text.contains(QStringLiteral("Es wurde nichts gedruckt.")));
        QCOMPARE(last->flags, int(Msg::Critical));
        QCOMPARE(int(cups->JobDocuments().size()), before);
    }
    void mapOnARejectingQueueIsReportedToo() {
        NeedCups();
        QVERIFY(Start(1));
        QCOMPARE(cups->Tool(QStringLiteral("cupsreject"), {QLatin1String(CupsQueue::kQueue)}), QString());
        f->Menu("MnBZKarte")->trigger();
        ScoringFixture::Settle();
        auto* k = f->window->findChild<BZKarte*>();
        QVERIFY(k);
        f->dialogs.Clear();
        f->dialogs.AnswerMsgBox(Msg::Ok);
        QTest::mouseClick(k->findChild<QPushButton*>(QStringLiteral("Command7")), Qt::LeftButton);
        QVERIFY2(f->dialogs.LastBox()->text.contains(QStringLiteral("nicht angenommen")),
                 qPrintable(f->dialogs.LastBox()->text));
    }
    void stoppedQueueSaysTheJobWaits() {
        NeedCups();
        QVERIFY(Start(3));
        QCOMPARE(cups->Tool(QStringLiteral("cupsdisable"), {QLatin1String(CupsQueue::kQueue)}), QString());
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QVERIFY(!Texts().contains(QStringLiteral("Das Log wurde gedruckt.")));
        QVERIFY2(f->dialogs.LastBox()->text.contains(QStringLiteral("wartet in der Warteschlange")),
                 qPrintable(f->dialogs.LastBox()->text));
    }
    void systemPrintDialogShowsTheDefaultPrinterAndPrintsOnOk() {
        QtDialogs dialogs;
        QPrinter printer(QPrinter::HighResolution);
        const bool withCups = cups->Why().isEmpty();
        if (withCups) printer.setPrinterName(QLatin1String(CupsQueue::kQueue));
        QString shown;
        bool found = false;
        QTimer::singleShot(0, [&] {
            auto* dlg = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            if (!dlg) return;
            found = true;
            if (auto* combo = dlg->findChild<QComboBox*>(QStringLiteral("printers"))) shown = combo->currentText();
            auto* box = dlg->findChild<QDialogButtonBox*>();
            QVERIFY(box);
            QTest::mouseClick(box->button(QDialogButtonBox::Ok), Qt::LeftButton);
        });
        QVERIFY(dialogs.PrintDialog(printer, QStringLiteral("Drucken")));
        QVERIFY(found);
        if (withCups) QCOMPARE(shown, QLatin1String(CupsQueue::kQueue));
    }

    // Into a PDF.
    void logIntoAPdfSaysWhereItWentAndOffersToOpenIt() {
        QVERIFY(Start(150));
        const QString pdf = f->home.Path(QStringLiteral("ausdruck/log.pdf"));
        QDir().mkpath(QFileInfo(pdf).absolutePath());
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint(IntoPdf(pdf));
        f->dialogs.AnswerMsgBox(Msg::Yes);
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QVERIFY(!Texts().contains(QStringLiteral("Das Log wurde gedruckt.")));
        const ShownBox* last = f->dialogs.LastBox();
        QCOMPARE(last->text, QStringLiteral("Der Ausdruck wurde als PDF-Datei gespeichert unter\n%1\n\n"
                                            "Soll die Datei jetzt geöffnet werden?")
                                 .arg(pdf));
        QCOMPARE(last->flags, Msg::YesNo | Msg::Information | Msg::DefaultButton2);
        QCOMPARE(f->opened.last(), QUrl::fromLocalFile(pdf));
        const QString outside = WordsOutsideMargins(pdf);
        QVERIFY2(outside.isEmpty(), qPrintable(outside));
    }
    void pdfChosenInTheSettingsComesFirstInTheDialogInLogs() {
        QVERIFY(Start(3));
        f->Menu("MnDruckenPDF")->trigger();
        QString file;
        bool pdf = false;
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint([&](QPrinter& p) {
            file = p.outputFileName();
            pdf = p.outputFormat() == QPrinter::PdfFormat;
            return true;
        });
        f->dialogs.AnswerMsgBox(Msg::No);
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QVERIFY(pdf);
        QCOMPARE(file, f->home.model.LogFolder + QStringLiteral("test.pdf"));
        QVERIFY(QFileInfo(file).size() > 0);
        QVERIFY(f->opened.isEmpty());
        f->Menu("MnDruckenPDF")->trigger();
    }
    void pdfThatCannotBeWrittenIsAFailureNotAPrint() {
        QVERIFY(Start(3));
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint(IntoPdf(f->home.Path(QStringLiteral("fehlt/gibt/es/nicht.pdf"))));
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QVERIFY(!Texts().contains(QStringLiteral("Das Log wurde gedruckt.")));
        QVERIFY2(f->dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")), qPrintable(f->dialogs.LastBox()->text));
        QVERIFY(f->dialogs.LastBox()->text.contains(QStringLiteral("nicht.pdf")));
    }
    void cancelInThePrintDialogPrintsNothing() {
        QVERIFY(Start(3));
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint([](QPrinter&) { return false; });
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        QCOMPARE(f->dialogs.printDialogs, 1);
        QCOMPARE(f->dialogs.boxes.size(), 1); // only the question before
    }
    void pagesChosenInTheDialogAreThePagesPrinted() {
        QVERIFY(Start(150));
        const QString pdf = f->home.Path(QStringLiteral("seite2.pdf"));
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint([pdf](QPrinter& p) {
            p.setOutputFormat(QPrinter::PdfFormat);
            p.setOutputFileName(pdf);
            p.setPrintRange(QPrinter::PageRange);
            p.setFromTo(2, 2);
            return true;
        });
        f->dialogs.AnswerMsgBox(Msg::No);
        f->window->Action(QStringLiteral("MnLogDrucken"))->trigger();
        const QString text = Run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QCOMPARE(text.count(QLatin1Char('\f')), 1);
        QVERIFY(text.contains(PrintPageMark(2)));
        QVERIFY(!text.contains(PrintPageMark(1)));
    }
    void mapIsPrintedInsideTheMarginsWithNoGreyAround() {
        QVERIFY(Start(1));
        f->Menu("MnBZKarte")->trigger();
        ScoringFixture::Settle();
        auto* k = f->window->findChild<BZKarte*>();
        QVERIFY(k);
        const QString pdf = f->home.Path(QStringLiteral("karte.pdf"));
        f->dialogs.AnswerMsgBox(Msg::Ok);
        f->dialogs.AnswerPrint(IntoPdf(pdf));
        f->dialogs.AnswerMsgBox(Msg::No);
        QTest::mouseClick(k->findChild<QPushButton*>(QStringLiteral("Command7")), Qt::LeftButton);
        QVERIFY2(QFileInfo(pdf).size() > 0, qPrintable(f->dialogs.LastBox()->text));
        const QString outside = WordsOutsideMargins(pdf);
        QVERIFY2(outside.isEmpty(), qPrintable(outside));
        // The page as paper shows it, at 30 dots to the inch: the border of 10 mm stays
        // white, and next to nothing is the grey around the country.
        const QString base = f->home.Path(QStringLiteral("karte"));
        Run(QStringLiteral("pdftoppm"), {QStringLiteral("-r"), QStringLiteral("30"), QStringLiteral("-gray"),
                                         QStringLiteral("-singlefile"), pdf, base});
        const QImage page(base + QStringLiteral(".pgm"));
        QVERIFY(!page.isNull());
        const int edge = int(kMinPrintMarginMm / 25.4 * 30) - 1;
        int grey = 0, ink = 0;
        for (int y = 0; y < page.height(); ++y)
            for (int x = 0; x < page.width(); ++x) {
                const int g = qGray(page.pixel(x, y));
                const bool border = x < edge || y < edge || x >= page.width() - edge || y >= page.height() - edge;
                if (border && g < 250) QFAIL(qPrintable(QStringLiteral("Farbe am Rand bei %1,%2").arg(x).arg(y)));
                if (g >= 200 && g <= 216) ++grey;
                if (g < 250) ++ink;
            }
        QVERIFY(ink > 0);
        QVERIFY2(grey < page.width() * page.height() / 50, qPrintable(QString::number(grey)));
    }
    void districtListIsPrintedInsideTheMargins() {
        QVERIFY(Start(0));
        const QString pdf = f->home.Path(QStringLiteral("liste.pdf"));
        bool shown = false;
        QTimer::singleShot(0, [&] {
            auto* d = qobject_cast<BezirkeListe*>(QApplication::activeModalWidget());
            if (!d) return;
            shown = true;
            f->dialogs.AnswerMsgBox(Msg::Ok);
            f->dialogs.AnswerPrint(IntoPdf(pdf));
            f->dialogs.AnswerMsgBox(Msg::No);
            d->findChild<QAction*>(QStringLiteral("MnDrucken"))->trigger();
            d->reject();
        });
        f->Menu("MnBezirkeListe")->trigger();
        QVERIFY(shown);
        QVERIFY2(QFileInfo(pdf).size() > 0, qPrintable(f->dialogs.LastBox()->text));
        const QString text = Run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(text.contains(QStringLiteral("BR - Braunau am Inn (OE5)")));
        const QString outside = WordsOutsideMargins(pdf);
        QVERIFY2(outside.isEmpty(), qPrintable(outside));
    }
};

QTEST_MAIN(TestPrinting)
#include "tst_printing.moc"
