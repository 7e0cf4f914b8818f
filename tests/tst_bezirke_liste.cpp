// The district list: its lines, its two columns, and its print.
#include "core/log_file.h"
#include "scoring/bezirke_liste.h"

#include <QPrinter>
#include "scoring_support.h"

#include <QApplication>
#include <QDialog>
#include <QProcess>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

QString RunTool(const QString& tool, const QStringList& args) {
    QProcess p;
    p.start(tool, args);
    if (!p.waitForFinished(60000)) return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class TestBezirkeListe : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    void lineBeginsWithABlankAndEndsWithTheStateBehindOE() {
        BezirkRecord b;
        b.Code = QStringLiteral("BR");
        b.Gruppe = 3;
        b.Name = QStringLiteral("X");
        QCOMPARE(BezirkeListeLine(b), QStringLiteral(" BR - X (OE3)"));
    }

    void fewerThan54DistrictsLeaveTheRightColumnEmpty() {
        Home home;
        WriteBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        ScriptedDialogs d;
        LoadBezirkTable(home.model, d);
        const auto rows = BezirkeListeRows(home.model);
        QCOMPARE(rows.size(), size_t(4));
        for (const auto& [left, right] : rows)
            QCOMPARE(right, QString());
        QCOMPARE(rows[0].first, QStringLiteral(" WI - Wien (OE1)"));
    }

    void theLastDistrictNeverStandsInTheRightColumn() {
        Home home;
        home.InstallDistricts();
        ScriptedDialogs d;
        QCOMPARE(LoadBezirkTable(home.model, d), 94);
        const auto rows = BezirkeListeRows(home.model);
        QCOMPARE(rows.size(), size_t(53));
        QCOMPARE(rows[0].second, BezirkeListeLine(home.model.BezirkRecords[54]));
        QCOMPARE(rows[39].second, BezirkeListeLine(home.model.BezirkRecords[93]));
        QCOMPARE(rows[40].second, QString()); // 41 + 53 = 94 is not below 94
        for (const auto& [left, right] : rows)
            QVERIFY(!right.contains(QStringLiteral("Feldkirch ")));
    }

    void menuOpensTheListAndItPrintsToPdf() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        QAction* mn = f.Menu("MnBezirkeListe");
        QVERIFY(mn->isEnabled());
        bool shown = false;
        QTimer::singleShot(0, [&] {
            if (auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                shown = d->objectName() == QStringLiteral("BezirkeListe");
                d->reject();
            }
        });
        mn->trigger(); // modal: returns when the list is closed
        QVERIFY(shown);
        BezirkeListe liste(f.home.model, f.dialogs);
        QCOMPARE(liste.windowTitle(), QStringLiteral("Bezirke Liste"));
        QVERIFY(!liste.Page().isNull());
        const QString pdf = f.home.Path(QStringLiteral("liste.pdf"));
        qputenv("KOLIBRINO_PRINT_PDF", "1");
        f.dialogs.Clear();
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerPrint([pdf](QPrinter& p) {
            p.setOutputFileName(pdf);
            return true;
        });
        f.dialogs.AnswerMsgBox(Msg::No);
        QString written;
        QVERIFY(liste.MnDrucken(&written));
        qunsetenv("KOLIBRINO_PRINT_PDF");
        QCOMPARE(written, pdf);
        QCOMPARE(f.dialogs.boxes.first().text,
                 QStringLiteral("Soll die Liste auf dem Standarddrucker ausgegeben werden?"));
        QCOMPARE(f.dialogs.boxes.first().flags, 33);
        const QString info = RunTool(QStringLiteral("pdfinfo"), {pdf});
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+1\\n"))), qPrintable(info));
        const QString text =
            RunTool(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(text.contains(QStringLiteral("Bezirkeliste")));
        for (size_t i = 1; i < 94; ++i)
            QVERIFY2(text.contains(f.home.model.BezirkRecords[i].Name),
                     qPrintable(f.home.model.BezirkRecords[i].Name));
        QVERIFY(text.contains(QStringLiteral("BR - Braunau am Inn (OE5)")));
        QVERIFY(!text.contains(QStringLiteral("FK - Feldkirch (OE9)")));
    }

    void cancelledPrintWritesNothing() {
        Home home;
        home.InstallDistricts();
        ScriptedDialogs d;
        LoadBezirkTable(home.model, d);
        BezirkeListe liste(home.model, d);
        d.AnswerMsgBox(Msg::Cancel);
        QVERIFY(!liste.MnDrucken());
        QCOMPARE(d.boxes.size(), 1);
    }
};

QTEST_MAIN(TestBezirkeListe)
#include "tst_bezirke_liste.moc"
