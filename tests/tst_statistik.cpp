// The result window: opened from its menu, following the contacts of the real main
// window, its deferred recomputation, tables, colours, tool tips and the results file.
#include "core/atomic_file.h"
#include "core/tallies.h"
#include "scoring/statistik_window.h"
#include "scoring_support.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>

using namespace kolibrino;
using namespace kolibrino::test;

class TestStatistik : public QObject {
    Q_OBJECT

    static QTableWidget* Grid(Statistik* s, int n) {
        return s->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid%1").arg(n));
    }
    static QMap<QString, QString> Labels(Statistik* s) {
        QMap<QString, QString> out;
        for (const char* l : {"Label6", "Label7", "Label8", "Label9", "Label12", "Label13", "Label14",
                              "Label2", "Label10", "Label4", "Label3", "Label11", "Label21", "Label20",
                              "Label1", "Label15", "Label23", "Label16", "Label18"})
            out[QString::fromLatin1(l)] = s->LabelText(QString::fromLatin1(l));
        return out;
    }

private slots:
    void initTestCase() { PinLocale(); }

    void menuOpensAndClosesTheWindowWithItsCheckMark() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        QAction* mn = f.Menu("MnStatistik");
        QVERIFY(mn->isEnabled());
        mn->trigger();
        Statistik* s = OpenStatistik(*f.window);
        QVERIFY(s);
        QVERIFY(mn->isChecked());
        QVERIFY(f.home.model.Open.Statistik);
        QCOMPARE(s->windowTitle(), QStringLiteral("Ergebnis"));
        QVERIFY(s->Timer1().isActive()); // the first tick fills the tables
        f.Settle();
        QVERIFY(!s->Timer1().isActive());
        QCOMPARE(s->LabelText(QStringLiteral("Label15")), QStringLiteral("0/0"));
        QCOMPARE(s->LabelText(QStringLiteral("Label18")), QStringLiteral("0"));
        QCOMPARE(Grid(s, 1)->rowCount(), 0);
        QCOMPARE(Grid(s, 2)->rowCount(), 94);
        QCOMPARE(Grid(s, 3)->item(8, 0)->text(), QStringLiteral("OE9"));
        QCOMPARE(Grid(s, 4)->item(1, 0)->text(), QStringLiteral("CW"));
        QCOMPARE(Grid(s, 5)->item(3, 0)->text(), QStringLiteral("CW-Nm"));
        mn->trigger();
        f.Settle();
        QVERIFY(!OpenStatistik(*f.window));
        QVERIFY(!mn->isChecked());
        QVERIFY(!f.home.model.Open.Statistik);
    }

    // From the tables the save button is reached by Tab: no table keeps the key.
    void tabReachesTheSaveButton() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        QVERIFY(s);
        f.Settle();
        s->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(s));
        Grid(s, 1)->setFocus(Qt::TabFocusReason);
        auto* save = s->findChild<QPushButton*>(QStringLiteral("Command4"));
        bool reached = false;
        for (int i = 0; i < 8 && !reached; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            reached = QApplication::focusWidget() == save;
        }
        QVERIFY(reached);
    }

    void followsEveryContactOfTheMainWindow() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        QVERIFY(s->Timer1().isActive());
        f.Settle();
        QCOMPARE(s->LabelText(QStringLiteral("Label6")), QStringLiteral("1"));
        QCOMPARE(s->LabelText(QStringLiteral("Label16")), QStringLiteral("3")); // WI on 40 m, OE1 twice
        QCOMPARE(s->LabelText(QStringLiteral("Label18")), QStringLiteral("3"));
        QCOMPARE(Grid(s, 2)->item(0, 1)->text(), QStringLiteral("1"));
    }

    void severalChangesBeforeTheTickMakeOneRecomputation() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        QSignalSpy ticks(&s->Timer1(), &QTimer::timeout);
        emit f.window->statistikRefreshRequested();
        emit f.window->statistikRefreshRequested();
        emit f.window->statistikRefreshRequested();
        f.Settle();
        QCOMPARE(ticks.count(), 1);
        QVERIFY(!s->Timer1().isActive());
    }

    // Live tallies against those of the same log closed and opened again: the counters
    // and the score agree; only the mode and period tables may show more while logging,
    // because a confirmed dupe runs through them.
    void liveTalliesAgreeWithTheReopenedLogExceptModesAndPeriodsOfDupes() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        f.At(QTime(6, 10));
        f.Type(QStringLiteral("OE3BBB"), 1, QStringLiteral("MD"), 1);
        f.Type(QStringLiteral("OEY21"), 1, QStringLiteral("GZ"));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI")); // a dupe, logged
        f.At(QTime(14, 5));
        f.Type(QStringLiteral("OE5CCC"), 1, QStringLiteral("BR"), 1);
        f.Settle();
        QCOMPARE(f.home.model.LogRecords.size(), size_t(5));
        QCOMPARE(f.home.model.LogRecords[3].Status, Status::Dupe);
        const Model live = f.home.model;
        const auto liveLabels = Labels(OpenStatistik(*f.window));

        QVERIFY(f.Restart()); // the result window was open: it opens again
        Statistik* s = OpenStatistik(*f.window);
        QVERIFY(s);
        f.Settle();
        const Model& re = f.home.model;
        QCOMPARE(re.QsoCount, live.QsoCount);
        QCOMPARE(re.DupeCount, live.DupeCount);
        QCOMPARE(re.GruppeBandCount, live.GruppeBandCount);
        for (size_t i = 1; i < re.BezirkRecords.size(); ++i) {
            QCOMPARE(re.BezirkRecords[i].AnzGesamt, live.BezirkRecords[i].AnzGesamt);
            QCOMPARE(re.BezirkRecords[i].Anz40, live.BezirkRecords[i].Anz40);
            QCOMPARE(re.BezirkRecords[i].Anz80, live.BezirkRecords[i].Anz80);
        }
        QCOMPARE(re.StaatsfunkRecords.size(), live.StaatsfunkRecords.size());
        QCOMPARE(re.StaatsfunkRecords[0].Anz80, live.StaatsfunkRecords[0].Anz80);
        // The dupe (SSB, 40 m, morning) stands in the live mode and period tables only.
        auto liveModes = live.ModeBandCount;
        auto livePeriods = live.PeriodBandCount;
        QCOMPARE(liveModes[0][0], re.ModeBandCount[0][0] + 1);
        QCOMPARE(livePeriods[0][0], re.PeriodBandCount[0][0] + 1);
        liveModes[0][0] -= 1;
        livePeriods[0][0] -= 1;
        QCOMPARE(re.ModeBandCount, liveModes);
        QCOMPARE(re.PeriodBandCount, livePeriods);

        const auto reLabels = Labels(s);
        for (const char* same : {"Label6", "Label2", "Label11", "Label1", "Label16", "Label18", "Label12",
                                 "Label13", "Label10", "Label4", "Label21", "Label8"})
            QCOMPARE(reLabels[QString::fromLatin1(same)], liveLabels[QString::fromLatin1(same)]);
        QCOMPARE(liveLabels[QStringLiteral("Label7")], QStringLiteral("2"));
        QCOMPARE(reLabels[QStringLiteral("Label7")], QStringLiteral("1"));
        // 4 QSOs x (4 districts + 2 x 4 states + 2 x 1 prefix)
        QCOMPARE(reLabels[QStringLiteral("Label18")], QStringLiteral("56"));
    }

    void grid5ToolTipFollowsTheRow() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        QCOMPARE(Grid(s, 5)->item(0, 2)->toolTip(), QStringLiteral("Vormittag QSOs in SSB"));
        QCOMPARE(Grid(s, 5)->item(1, 0)->toolTip(), QStringLiteral("Nachmittag QSOs in SSB"));
        QCOMPARE(Grid(s, 5)->item(2, 4)->toolTip(), QStringLiteral("Vormittag QSOs in CW"));
        QCOMPARE(Grid(s, 5)->item(3, 1)->toolTip(), QStringLiteral("Nachmittag QSOs in CW"));
        QCOMPARE(Statistik::Grid5ToolTip(0), QString());
        QCOMPARE(Statistik::Grid5ToolTip(5), QString());
    }

    void coloursComeFromTheSettingsAndAnEmptyKeyIsWhite() {
        ScoringFixture f;
        f.Ini(QStringLiteral("Farben"), QStringLiteral("40mFarbe"), QString::number(0x0000FF)); // red
        f.Ini(QStringLiteral("Farben"), QStringLiteral("30mFarbe"), QString::number(0xFF0000)); // blue
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        QCOMPARE(s->Colours()[0], 0x0000FF);
        QCOMPARE(s->Colours()[1], 0xFFFFFF);
        QCOMPARE(Grid(s, 2)->item(0, 1)->background().color(), QColor(255, 0, 0));
        QCOMPARE(Grid(s, 2)->item(0, 2)->background().color(), QColor(255, 255, 255));
        QCOMPARE(Grid(s, 2)->item(0, 3)->background().color(), QColor(0, 0, 255));
    }

    void savingWritesTheResultsFileAndOpensItOnYes() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        const QString path = f.home.Path(QStringLiteral("ergebnis"));
        f.dialogs.AnswerPath(path);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        QTest::mouseClick(s->findChild<QPushButton*>(QStringLiteral("Command4")), Qt::LeftButton);
        const QString file = path + QStringLiteral(".txt");
        QCOMPARE(ReadBytes(file), ToCp1252(ResultsText(f.home.model, ComputeScore(f.home.model), 2026)));
        QCOMPARE(f.dialogs.LastBox()->text,
                 QStringLiteral("Datei gespeichert unter\n") + file +
                     QStringLiteral("\n\nSoll die Datei im Editor geöffnet werden?"));
        QCOMPARE(f.dialogs.LastBox()->flags, 36);
        QCOMPARE(f.opened.size(), 1);
        QCOMPARE(f.opened.first(), QUrl::fromLocalFile(file));
    }

    void savingOverAnExistingFileReplacesItAndUpperCaseTxtKeepsItsName() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        f.Settle();
        const QString file = f.home.Path(QStringLiteral("x.TXT"));
        WriteBytes(file, QByteArray(5000, 'a'));
        f.dialogs.AnswerPath(file);
        f.dialogs.AnswerMsgBox(Msg::No);
        s->Command4Click();
        QCOMPARE(ReadBytes(file), ToCp1252(ResultsText(f.home.model, ComputeScore(f.home.model), 2026)));
        QVERIFY(!QFile::exists(file + QStringLiteral(".txt")));
        QVERIFY(f.opened.isEmpty());
    }

    void cancelledSaveWritesNothingAndAsksNothing() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        const int boxes = int(f.dialogs.boxes.size());
        s->Command4Click(); // the scripted save dialog cancels
        QCOMPARE(int(f.dialogs.boxes.size()), boxes);
    }

    void unwritableFileShowsTheFehlerBox() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        WriteBytes(f.home.Path(QStringLiteral("datei")), "x"); // a file where a folder should be
        f.dialogs.AnswerPath(f.home.Path(QStringLiteral("datei/x.txt")));
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        s->Command4Click();
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER\r\n\r\n\t")));
        QCOMPARE(f.dialogs.LastBox()->flags, 21);
    }

    void positionIsStoredAtClosingAndUsedAtLoad() {
        ScoringFixture f;
        f.Ini(QStringLiteral("FensterPos"), QStringLiteral("StatistikTop"), QStringLiteral("1500"));
        f.Ini(QStringLiteral("FensterPos"), QStringLiteral("StatistikLeft"), QStringLiteral("3000"));
        QVERIFY(f.StartScoring());
        f.Menu("MnStatistik")->trigger();
        Statistik* s = OpenStatistik(*f.window);
        QCOMPARE(s->pos(), QPoint(200, 100));
        s->move(300, 150);
        s->close();
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("StatistikTop")),
            2250.0);
    }
};

QTEST_MAIN(TestStatistik)
#include "tst_statistik.moc"
