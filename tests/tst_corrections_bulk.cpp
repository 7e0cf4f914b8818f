// The window "Log nachträglich ändern": kinds of change, range mode, the preview grid,
// the save that rewrites and reads back, the cancel.
#include "corrections/bulk_change.h"
#include "corrections/zeit_aendern.h"
#include "corrections_support.h"

#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTableView>

using namespace kolibrino;
using namespace kolibrino::test;
using corrections::ZeitAendern;

namespace {

template <class W> W* In(QDialog& d, const char* name) {
    return d.findChild<W*>(QString::fromLatin1(name));
}

// On the indicator of a radio button or check box, the middle of a push button.
void Click(QDialog& d, const char* name) {
    QAbstractButton* b = In<QAbstractButton>(d, name);
    const bool indicator = qobject_cast<QRadioButton*>(b) || qobject_cast<QCheckBox*>(b);
    QTest::mouseClick(b, Qt::LeftButton, {}, indicator ? QPoint(8, b->height() / 2) : b->rect().center());
}

void Value(QDialog& d, const QString& text) {
    QComboBox* c = In<QComboBox>(d, "Combo1");
    c->clearEditText();
    QTest::keyClicks(c, text);
}

void ClickRow(QDialog& d, int row) {
    auto* v = In<QTableView>(d, "MSFlexGrid1");
    v->scrollTo(v->model()->index(row, 0));
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, v->visualRect(v->model()->index(row, 4)).center());
}

std::vector<QsoRecord> Log() {
    return {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("23:30:00")),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE1CCC"), 80, QStringLiteral("WI"), QStringLiteral("06:30:00"),
                       QStringLiteral("CW")),
            MakeRecord(QStringLiteral("OE1CCC"), 80, QStringLiteral("WI"), QStringLiteral("06:40:00"),
                       QStringLiteral("CW"), Status::Dupe)};
}

} // namespace

class TestCorrectionsBulk : public QObject {
    Q_OBJECT
private:
    void Open(CorrectionsFixture& f, setup::ModalDriver driver) {
        setup::PushModalDriver(std::move(driver));
        QAction* a = f.window->Action(QStringLiteral("MnLogExportierenDatumZeit"));
        QVERIFY(a && a->isEnabled());
        a->trigger();
        setup::ClearModalDrivers();
    }

private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }

    void addingTwoHoursTo2330GivesOneThirtyOnTheSameDateAfterTheSave() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes); // übernehmen
        f.dialogs.AnswerMsgBox(Msg::Ok);  // done, not saved yet
        f.dialogs.AnswerMsgBox(Msg::Yes); // speichern
        Open(f, [&](QDialog& d) {
            QCOMPARE(d.windowTitle(), QStringLiteral("Log nachträglich ändern"));
            QCOMPARE(In<QComboBox>(d, "Combo1")->currentText(), QStringLiteral("0"));
            Value(d, QStringLiteral("2"));
            Click(d, "Command2");
            QCOMPARE(In<QComboBox>(d, "Combo1")->currentText(), QStringLiteral("0"));
            QVERIFY(In<QPushButton>(d, "Command6")->isEnabled());
            QCOMPARE(f.home.model.LogRecords[0].Zeit, QStringLiteral("23:30:00")); // only the copy so far
            Click(d, "Command6");
            QVERIFY(!d.isVisible());
        });
        QCOMPARE(f.dialogs.boxes[1].text, corrections::kMsgBulkFertig);
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[0].Zeit, QStringLiteral("01:30:00"));
        QCOMPARE(m.LogRecords[0].Datum, QStringLiteral("01.05.2026"));
        QCOMPARE(m.LogRecords[1].Zeit, QStringLiteral("08:00:00"));
        QCOMPARE(f.Grid().Text(0, kGridColZeit), QStringLiteral("01:30"));
        ReloadEqualsLive(m, f.LogPath());
    }

    void fortyMetresTypedInLowerCasePassesTheCheck() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_4");
            QCOMPARE(In<QComboBox>(d, "Combo1")->count(), 3);
            Value(d, QStringLiteral("40m"));
            Click(d, "Command2");
            Click(d, "Command6");
        });
        for (const QsoRecord& r : f.home.model.LogRecords)
            QCOMPARE(r.Band, 40);
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aBandChangeLeavesFrequency0InEachChangedEntry() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_4");
            Value(d, QStringLiteral("80m"));
            Click(d, "Command2");
            auto* w = static_cast<ZeitAendern*>(&d);
            for (const QsoRecord& r : w->WorkingCopy()) {
                QCOMPARE(r.Band, 80);
                QCOMPARE(r.Frequenz, 0.0f);
            }
            QCOMPARE(f.dialogs.boxes.size(), 2);
            f.dialogs.AnswerMsgBox(Msg::Yes);
            Click(d, "Command1");
        });
        QCOMPARE(f.home.model.LogRecords[1].Band, 40); // cancelled: the log stays
    }

    void value0ForHoursIsRejectedAsAnInvalidNumber() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        Open(f, [&](QDialog& d) {
            Click(d, "Command2");
            QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Zahl ungültig!"));
            QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Information));
            QVERIFY(!In<QPushButton>(d, "Command6")->isEnabled());
            Value(d, QStringLiteral("25"));
            f.dialogs.AnswerMsgBox(Msg::Yes);
            Click(d, "Command2");
            QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Es sind nur Zahlen von -24 bis 24 möglich!"));
            QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Critical));
            QCOMPARE(static_cast<ZeitAendern*>(&d)->WorkingCopy()[0].Zeit, QStringLiteral("23:30:00"));
        });
    }

    void rangeModeWithStartEqualToEndChangesExactlyOneEntry() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Ok); // choose the start
        f.dialogs.AnswerMsgBox(Msg::Ok); // choose the end
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_5");
            Click(d, "Check1");
            QCOMPARE(d.windowTitle(), QStringLiteral("Wähle das Start-QSO"));
            QVERIFY(!In<QPushButton>(d, "Command2")->isEnabled());
            ClickRow(d, 1);
            QCOMPARE(d.windowTitle(), QStringLiteral("Wähle das End-QSO"));
            ClickRow(d, 1);
            QCOMPARE(d.windowTitle(), QStringLiteral("Log nachträglich ändern"));
            QCOMPARE(In<QLabel>(d, "Label3")->text(), QStringLiteral("1"));
            QCOMPARE(In<QLabel>(d, "Label4")->text(), QStringLiteral("1"));
            Value(d, QStringLiteral("cw"));
            f.dialogs.AnswerMsgBox(Msg::Yes);
            f.dialogs.AnswerMsgBox(Msg::Ok);
            Click(d, "Command2");
            const auto& copy = static_cast<ZeitAendern*>(&d)->WorkingCopy();
            QCOMPARE(copy[1].Mode, QStringLiteral("CW"));
            QCOMPARE(copy[1].ModeRx, QStringLiteral("CW"));
            QCOMPARE(copy[0].Mode, QStringLiteral("SSB"));
            QCOMPARE(copy[1].RstGesendet, QStringLiteral("59")); // the reports stay
            QCOMPARE(In<QTableView>(d, "MSFlexGrid1")->model()->index(1, 3).data().toString(),
                     QStringLiteral("CW"));
            f.dialogs.AnswerMsgBox(Msg::Yes);
            Click(d, "Command6");
        });
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[1].Mode, QStringLiteral("CW"));
        QCOMPARE(m.LogRecords[0].Mode, QStringLiteral("SSB"));
        ReloadEqualsLive(m, f.LogPath());
    }

    void anEndBeforeTheStartIsRefused() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        Open(f, [&](QDialog& d) {
            Click(d, "Check1");
            ClickRow(d, 2);
            ClickRow(d, 0);
            Value(d, QStringLiteral("1"));
            Click(d, "Command2");
            QCOMPARE(f.dialogs.LastBox()->text,
                     QStringLiteral("Start-QSO-Nummer muss kleiner sein als End-QSO-Nummer"));
            QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Critical));
        });
    }

    void closingWithUnsavedChangesAndTheAnswerNoLeavesTheWindowOpen() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        const QByteArray before = f.FileBytes();
        Open(f, [&](QDialog& d) {
            Value(d, QStringLiteral("-1"));
            Click(d, "Command2");
            f.dialogs.AnswerMsgBox(Msg::No);
            Click(d, "Command1");
            QVERIFY(d.isVisible());
            QCOMPARE(f.dialogs.LastBox()->text,
                     QStringLiteral("Möchtest du das Fenster wirklich schließen ohne zu speichern?"));
            QCOMPARE(f.dialogs.LastBox()->flags, 35);
            f.dialogs.AnswerMsgBox(Msg::Yes);
            Click(d, "Command1");
            QVERIFY(!d.isVisible());
        });
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(f.home.model.LogRecords[0].Zeit, QStringLiteral("23:30:00"));
    }

    void theYearLabelFollowsTheTypingAndTheDateIsWritten() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_2");
            QCOMPARE(In<QLabel>(d, "Label1")->text(), QStringLiteral("Jahr"));
            QComboBox* c = In<QComboBox>(d, "Combo1");
            QTest::keyClicks(c, QStringLiteral("20"));
            QTest::keyClicks(c, QStringLiteral("2x"));
            QCOMPARE(In<QLabel>(d, "Label2")->text(), QStringLiteral("ungültig"));
            QTest::keyClick(c, Qt::Key_Backspace);
            QTest::keyClicks(c, QStringLiteral("5"));
            QCOMPARE(In<QLabel>(d, "Label2")->text(), QStringLiteral("01.05.2025"));
            Click(d, "Command2");
            Click(d, "Command6");
        });
        for (const QsoRecord& r : f.home.model.LogRecords)
            QCOMPARE(r.Datum, QStringLiteral("01.05.2025"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void theOperatorCallNeedsFourCharactersAndReachesEveryRecord() {
        CorrectionsFixture f;
        IniWriteSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), {QStringLiteral("OE1OPA")});
        QVERIFY(f.StartWith(Log()));
        for (int answer : {Msg::Yes, Msg::Ok, Msg::Yes, Msg::Ok, Msg::Yes})
            f.dialogs.AnswerMsgBox(answer);
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_3");
            QCOMPARE(In<QComboBox>(d, "Combo1")->itemText(0), QStringLiteral("OE1OPA"));
            Value(d, QStringLiteral("oe1"));
            Click(d, "Command2");
            QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Rufzeichen zu kurz!"));
            Value(d, QStringLiteral("oe1xy"));
            Click(d, "Command2");
            Click(d, "Command6");
        });
        for (const QsoRecord& r : f.home.model.LogRecords)
            QCOMPARE(r.Operator, QStringLiteral("OE1XY"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void minutesWrapAroundMidnightAndTheFileAgrees() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        for (int answer : {Msg::Yes, Msg::Ok, Msg::Yes})
            f.dialogs.AnswerMsgBox(answer);
        Open(f, [&](QDialog& d) {
            Click(d, "Option1_1");
            QCOMPARE(In<QLabel>(d, "Label1")->text(), QStringLiteral("Minuten"));
            QCOMPARE(In<QLabel>(d, "Label5")->text(), QStringLiteral("+/-"));
            Value(d, QStringLiteral("45"));
            Click(d, "Command2");
            Click(d, "Command6");
        });
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[0].Zeit, QStringLiteral("00:15:00"));
        QCOMPARE(m.LogRecords[0].Datum, QStringLiteral("01.05.2026"));
        QCOMPARE(m.LogRecords[3].Zeit, QStringLiteral("07:25:00"));
        QCOMPARE(m.LogRecords[3].Status, int(Status::Dupe));
        ReloadEqualsLive(m, f.LogPath());
    }

    void theSelectionCanBeLeftAndRangeModeSwitchedOff() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        f.dialogs.AnswerMsgBox(Msg::Ok);
        Open(f, [&](QDialog& d) {
            Click(d, "Check1");
            QVERIFY(In<QWidget>(d, "Picture1")->isVisible());
            QVERIFY(In<QWidget>(d, "Picture2")->isVisible());
            QCOMPARE(f.dialogs.LastBox()->text,
                     QStringLiteral("Wähle das QSO bei dem die Änderungen beginnen sollen."));
            Click(d, "Command5");
            QCOMPARE(d.windowTitle(), QStringLiteral("Log nachträglich ändern"));
            QVERIFY(!In<QWidget>(d, "Picture2")->isVisible());
            QVERIFY(In<QPushButton>(d, "Command2")->isEnabled());
            QVERIFY(!In<QPushButton>(d, "Command6")->isEnabled());
            QCOMPARE(In<QLabel>(d, "Label3")->text(), QString());
            // Übernehmen without a start asks for one.
            Value(d, QStringLiteral("1"));
            Click(d, "Command2");
            QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Start-QSO auswählen!"));
            QCOMPARE(d.windowTitle(), QStringLiteral("Wähle das Start-QSO"));
            Click(d, "Command5");
            Click(d, "Check1");
            QVERIFY(!In<QWidget>(d, "Picture1")->isVisible());
        });
    }

    void thePreviewGridShowsAndHides() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        Open(f, [&](QDialog& d) {
            auto* w = static_cast<ZeitAendern*>(&d);
            QVERIFY(!w->GridShown());
            Click(d, "Command7");
            QVERIFY(w->GridShown());
            QCOMPARE(In<QPushButton>(d, "Command7")->property("marlett").toString(), QStringLiteral("3"));
            QCOMPARE(w->Grid().DataRows(), 4);
            Click(d, "Command7");
            QCOMPARE(In<QPushButton>(d, "Command7")->property("marlett").toString(), QStringLiteral("4"));
        });
    }

    // The toggle button shows a drawn arrow, never the symbol font's digits: pointing
    // right while the grid is hidden, left while it is shown.
    void theToggleButtonShowsAnArrowNotADigit() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        Open(f, [&](QDialog& d) {
            QPushButton* b = In<QPushButton>(d, "Command7");
            auto pointsRight = [b] {
                const QImage img = b->icon().pixmap(16, 16).toImage();
                // Left upper corner of a triangle that points right; outside one that points left.
                return qAlpha(img.pixel(5, 4)) > 0;
            };
            QVERIFY(b->text().isEmpty());
            QVERIFY(!b->icon().isNull());
            QVERIFY(pointsRight());
            Click(d, "Command7");
            QVERIFY(b->text().isEmpty());
            QVERIFY(!b->icon().isNull());
            QVERIFY(!pointsRight());
        });
    }

    // Choosing the start entry grows the window so that the grid shows its columns and
    // many rows, not two; hiding the grid gives the window its small size back.
    void choosingTheStartEntryGrowsTheWindowToShowTheGrid() {
        CorrectionsFixture f;
        std::vector<QsoRecord> log;
        for (int i = 0; i < 20; ++i)
            log.push_back(MakeRecord(QStringLiteral("OE3A%1").arg(QChar(u'A' + i)), 80, QStringLiteral("MD"),
                                     QStringLiteral("05:%1:00").arg(10 + i)));
        QVERIFY(f.StartWith(log));
        Open(f, [&](QDialog& d) {
            const QSize small = d.size();
            Click(d, "Check1");
            QCOMPARE(d.windowTitle(), QStringLiteral("Wähle das Start-QSO"));
            auto* v = In<QTableView>(d, "MSFlexGrid1");
            QVERIFY(v->isVisible());
            QCoreApplication::processEvents();
            const int rowHeight = v->verticalHeader()->defaultSectionSize();
            QVERIFY2(v->viewport()->height() >= 10 * rowHeight,
                     qPrintable(QStringLiteral("%1 x %2").arg(d.width()).arg(d.height())));
            QCOMPARE(v->horizontalScrollBar()->maximum(), 0); // every column in view
            QVERIFY(d.width() > small.width());
            Click(d, "Command5");
            Click(d, "Check1");
            // The arrow hides the grid and gives the small window back, and shows it again.
            Click(d, "Command7");
            QVERIFY(!v->isVisible());
            QVERIFY(d.height() < small.height() + 10 * rowHeight);
            Click(d, "Command7");
            QVERIFY(v->isVisible());
            QVERIFY(v->viewport()->height() >= 10 * rowHeight);
        });
    }

    void aFailedSaveKeepsTheOldFileAndARetryWritesTheNewOne() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        const QByteArray before = f.FileBytes();
        QByteArray during;
        f.BlockWritesUntilFehler(&during);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Retry);
        Open(f, [&](QDialog& d) {
            Value(d, QStringLiteral("1"));
            Click(d, "Command2");
            Click(d, "Command6");
        });
        QCOMPARE(during, before);
        QCOMPARE(f.home.model.LogRecords[1].Zeit, QStringLiteral("07:00:00"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aSaveCancelledAfterAFailedWriteKeepsLogAndWindow() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Log()));
        const QByteArray before = f.FileBytes();
        f.BlockWrites();
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        Open(f, [&](QDialog& d) {
            Value(d, QStringLiteral("1"));
            Click(d, "Command2");
            Click(d, "Command6");
            QVERIFY(d.isVisible());
            QVERIFY(In<QPushButton>(d, "Command6")->isEnabled());
        });
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(f.home.model.LogRecords[1].Zeit, QStringLiteral("06:00:00"));
        f.UnblockWrites();
    }
};

QTEST_MAIN(TestCorrectionsBulk)
#include "tst_corrections_bulk.moc"
