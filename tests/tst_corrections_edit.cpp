// Editing a contact in the window "Logeintrag Bearbeiten...", opened by the pop-up
// entry or a double click: the opening rules, every check, the counters and the file.
#include "core/error_trap.h"
#include "corrections/edit_entry.h"
#include "corrections_support.h"

#include <QLabel>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

template <class W> W* In(QDialog& d, const char* name) {
    return d.findChild<W*>(QString::fromLatin1(name));
}

void Retype(QLineEdit* e, const QString& text) {
    e->selectAll();
    QTest::keyClick(e, Qt::Key_Backspace);
    QTest::keyClicks(e, text);
}

void Ok(QDialog& d) {
    QTest::mouseClick(In<QPushButton>(d, "Command4"), Qt::LeftButton);
}

std::vector<QsoRecord> Morning() {
    return {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:30:00"),
                       QStringLiteral("SSB"), Status::Dupe),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("07:00:00")),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("14:00:00"))};
}

} // namespace

class TestCorrectionsEdit : public QObject {
    Q_OBJECT
private:
    // Opens the window on a row by the pop-up entry and lets the driver work it.
    void Edit(CorrectionsFixture& f, int row, setup::ModalDriver driver) {
        setup::PushModalDriver(std::move(driver));
        f.Popup(row, "MnVerstecktBearbeiten");
        setup::ClearModalDrivers();
    }

private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }

    void theWindowShowsTheRowAndItsFrequencySplit() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        bool seen = false;
        Edit(f, 0, [&](QDialog& d) {
            seen = true;
            QCOMPARE(d.windowTitle(), QStringLiteral("Logeintrag Bearbeiten..."));
            QCOMPARE(In<QLineEdit>(d, "Text3")->text(), QStringLiteral("OE3AAA"));
            QCOMPARE(In<QLineEdit>(d, "Text2")->text(), QStringLiteral("06:00"));
            QCOMPARE(In<QComboBox>(d, "Combo1")->currentText(), QStringLiteral("80m"));
            QCOMPARE(In<QComboBox>(d, "Combo5")->currentText(), QStringLiteral("MD"));
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("3"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("500"));
        });
        QVERIFY(seen);
        QVERIFY(f.dialogs.boxes.isEmpty());
    }

    void changingOnlyTheNoteRunsAllStepsAndLeavesEveryCountAsItWas() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const Model& m = f.home.model;
        const Model before = m;
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QLineEdit>(d, "Text8"), QStringLiteral("Portabel"));
            Ok(d);
        });
        QCOMPARE(m.LogRecords[0].Bemerkung, QStringLiteral("Portabel"));
        QCOMPARE(f.Grid().Text(0, 9), QStringLiteral("Portabel"));
        QCOMPARE(m.QsoCount, before.QsoCount);
        QCOMPARE(m.ModeBandCount, before.ModeBandCount);
        QCOMPARE(m.PeriodBandCount, before.PeriodBandCount);
        QCOMPARE(m.GruppeBandCount, before.GruppeBandCount);
        QCOMPARE(m.BezirkRecords[2].AnzGesamt, before.BezirkRecords[2].AnzGesamt);
        QCOMPARE(m.CallIndex, before.CallIndex);
        QVERIFY(f.FileBytes().contains("Portabel"));
        ReloadEqualsLive(m, f.LogPath());
        QVERIFY(f.window->Timer3().isActive());
    }

    void movingAcrossNoonIsRefusedOnlyWhenBandAndModeMatchThere() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        // OE6BBB 07:00 on 40 m to 15:00: the afternoon contact is on 40 m SSB too.
        Edit(f, 2, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text2"), QStringLiteral("15:00"));
            Ok(d);
            QVERIFY(d.isVisible());
        });
        QCOMPARE(f.dialogs.LastBox()->text,
                 QStringLiteral("Speichern nicht möglich. Station bereits geloggt!"));
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Information));
        QCOMPARE(f.home.model.LogRecords[2].Zeit, QStringLiteral("07:00:00"));
        // In CW there is no clash.
        Edit(f, 2, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text2"), QStringLiteral("15:00"));
            QTest::keyClicks(In<QComboBox>(d, "Combo2"), QStringLiteral("C"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[2].Zeit, QStringLiteral("15:00:00"));
        QCOMPARE(f.home.model.LogRecords[2].Mode, QStringLiteral("CW"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aContactWithADupeChangedToAnotherBandStaysNormalAndItsDupeStaysADupe() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("4"));
            Ok(d);
        });
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[0].Band, 40);
        QCOMPARE(m.LogRecords[0].Status, int(Status::Normal));
        QCOMPARE(m.LogRecords[1].Status, int(Status::Dupe));
        QVERIFY(f.IsDupeRow(1));
        QCOMPARE(f.Grid().BackColor(1, kGridColDupe), kDupeBackColor);
        QCOMPARE(m.BezirkRecords[2].Anz40, 1);
        QCOMPARE(m.BezirkRecords[2].Anz80, 0);
        ReloadEqualsLive(m, f.LogPath());
    }

    void aDupeRowCannotBeEdited() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        bool opened = false;
        Edit(f, 1, [&](QDialog&) { opened = true; });
        QVERIFY(!opened);
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Als 'Dupe' geloggte QSO können nicht bearbeitet "
                                                           "werden!\n\nEs ist nur Löschen möglich."));
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Critical));
    }

    void aStateStationLogCannotEditTo40m() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning(), 4));
        QVERIFY(f.home.model.IsStaatsfunkstelle);
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("4"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.LastBox()->text,
                 QStringLiteral("Staatsfunkstellen dürfen auf 40m nicht arbeiten!"));
        QCOMPARE(f.home.model.LogRecords[0].Band, 80);
    }

    void anAmateurStationLogCannotEditTo30m() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("3"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.LastBox()->text,
                 QStringLiteral("Amateurfunk-Stationen dürfen nur auf 80/40m gearbeitet werden!"));
        QCOMPARE(f.home.model.LogRecords[0].Band, 80);
    }

    void aWorkedStateStationCannotBeOn40mInEitherLog() {
        for (int wertung : {0, 4}) {
            CorrectionsFixture f;
            QVERIFY(f.StartWith(Morning(), wertung));
            Edit(f, 0, [](QDialog& d) {
                Retype(In<QLineEdit>(d, "Text3"), QStringLiteral("OEXABC"));
                QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("4"));
                Ok(d);
            });
            const QString expected = wertung == 4
                                         ? QStringLiteral("Staatsfunkstellen dürfen auf 40m nicht arbeiten!")
                                         : QStringLiteral("Staatsfunkstellen dürfen nur auf 80/30m "
                                                          "gearbeitet werden!");
            QCOMPARE(f.dialogs.LastBox()->text, expected);
            QCOMPARE(f.home.model.LogRecords[0].Call, QStringLiteral("OE3AAA"));
        }
    }

    void aContactOn30mChangedTo80mLeavesQsoCountAsItWas() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OEXABC"), 30, QStringLiteral("WI"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:10:00"))},
            4));
        const Model& m = f.home.model;
        QCOMPARE(m.QsoCount, 1.0);
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("8"));
            Ok(d);
        });
        QCOMPARE(m.LogRecords[0].Band, 80);
        QCOMPARE(m.QsoCount, 1.0); // a load would count 2: the one counter that drifts here
        QCOMPARE(m.StaatsfunkRecords.size(), size_t(1));
        QCOMPARE(m.StaatsfunkRecords[0].Anz80, 1);
        QCOMPARE(m.StaatsfunkRecords[0].Anz30, 0);
        ReloadEqualsLive(m, f.LogPath(), Drift{.qsoCount = true});
        QCOMPARE(Reloaded(m, f.LogPath()).QsoCount, 2.0);
    }

    void aFrequencyColumnOf0ShowsTheWarningAndTheBandDefault() {
        CorrectionsFixture f;
        std::vector<QsoRecord> recs = Morning();
        recs[2].Frequenz = 0;
        QVERIFY(f.StartWith(recs));
        Edit(f, 2, [](QDialog& d) {
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("7"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("000"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.boxes.first().text,
                 QStringLiteral("ACHTUNG\nFrequenz ist ungültig!\nFrequenz wir auf default gesetzt!"));
        QCOMPARE(f.dialogs.boxes.first().flags, int(Msg::Critical));
        QCOMPARE(f.home.model.LogRecords[2].Frequenz, 7000.0f);
    }

    void theSevenHiddenChecksReachTheErrorBox() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        f.dialogs.AnswerMsgBox(Msg::Retry);
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text3"), QStringLiteral("OE"));
            Ok(d);
            QVERIFY(d.isVisible());
            QVERIFY(In<QLineEdit>(d, "Text3")->hasFocus());
        });
        QCOMPARE(f.dialogs.boxes.size(), 2); // Retry fails again, Cancel ends
        QCOMPARE(f.dialogs.boxes[0].text, FehlerText(QStringLiteral("Objekt erforderlich")));
        QCOMPARE(f.dialogs.boxes[0].flags, 21);
        QCOMPARE(f.FileBytes(), before);
        // An unknown district the same way.
        f.dialogs.Clear();
        Edit(f, 0, [](QDialog& d) {
            QComboBox* bz = In<QComboBox>(d, "Combo5");
            bz->clearEditText();
            QTest::keyClicks(bz, QStringLiteral("QQ"));
            Ok(d);
        });
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(f.home.model.LogRecords[0].Bezirk, QStringLiteral("MD"));
    }

    void timeDateAndFrequencyChecksShowTheirText() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text2"), QStringLiteral("99:99"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Zeit Ungültige"));
        QCOMPARE(f.dialogs.LastBox()->flags, 0);
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text1"), QStringLiteral("32.05.2026"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Datum Ungültige"));
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text9"), QStringLiteral("x5"));
            Ok(d);
        });
        QCOMPARE(f.dialogs.LastBox()->text,
                 QStringLiteral("Bei FREQUENZ dürfen nur Zahlen eingegeben werden!"));
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Information));
        QCOMPARE(f.home.model.LogRecords[0].Zeit, QStringLiteral("06:00:00"));
    }

    void kilohertzDigitsAreLaidOverThreeZeros() {
        QCOMPARE(corrections::NormalizeKhz(QStringLiteral("5")), QStringLiteral("500"));
        QCOMPARE(corrections::NormalizeKhz(QStringLiteral("12")), QStringLiteral("120"));
        QCOMPARE(corrections::NormalizeKhz(QStringLiteral(" 1234")), QStringLiteral("123"));
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text9"), QStringLiteral("62"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Frequenz, 3620.0f);
        QCOMPARE(f.Grid().Text(0, kGridColFrequenz), QStringLiteral("3620"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aNewCallAndDistrictMoveTheCountersAndTheIndex() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        f.DoubleClick(2);
        setup::PushModalDriver([](QDialog& d) {
            QLineEdit* call = In<QLineEdit>(d, "Text3");
            call->selectAll();
            QTest::keyClick(call, Qt::Key_Backspace);
            QTest::keyClicks(call, QStringLiteral("oe1-p")); // the key filter: capitals, "-" is "/"
            QComboBox* bz = In<QComboBox>(d, "Combo5");
            bz->clearEditText();
            QTest::keyClicks(bz, QStringLiteral("WI"));
            Ok(d);
        });
        f.DoubleClick(2);
        setup::ClearModalDrivers();
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[2].Call, QStringLiteral("OE1/P"));
        QVERIFY(m.CallIndex.contains(QStringLiteral("\u00B6OE1/P\u00D72\u00B6")));
        QCOMPARE(m.BezirkRecords[1].Anz40, 1);
        QCOMPARE(m.BezirkRecords[3].Anz40, 1); // the afternoon OE6BBB stays in Graz
        ReloadEqualsLive(m, f.LogPath());
    }

    void theKeyFiltersOfTheFields() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QLineEdit* call = In<QLineEdit>(d, "Text3");
            call->setFocus();
            call->clear();
            QTest::keyClicks(call, QStringLiteral("oe3-x.y!"));
            QCOMPARE(call->text(), QStringLiteral("OE3/XY"));
            QLineEdit* rst = In<QLineEdit>(d, "Text4");
            rst->clear();
            QTest::keyClicks(rst, QStringLiteral("5a9"));
            QCOMPARE(rst->text(), QStringLiteral("59"));
            QLineEdit* datum = In<QLineEdit>(d, "Text1");
            datum->clear();
            QTest::keyClicks(datum, QStringLiteral("01.x05/2026"));
            QCOMPARE(datum->text(), QStringLiteral("01.052026"));
            // A blank moves on from the call to the next field.
            call->setFocus();
            QApplication::processEvents();
            QTest::keyClick(call, Qt::Key_Space);
            QVERIFY(!call->hasFocus());
            QCOMPARE(call->text(), QStringLiteral("OE3/XY"));
        });
    }

    // Tab leaves every filtered field: from the date through to the district by keys alone.
    void tabMovesOnFromTheFilteredFields() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            d.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&d));
            QLineEdit* datum = In<QLineEdit>(d, "Text1");
            datum->setFocus(Qt::TabFocusReason);
            for (const char* next : {"Text2", "Combo1", "Combo2", "Text3", "Text4", "Text5", "Combo5"}) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                QWidget* want = d.findChild<QWidget*>(QString::fromLatin1(next));
                QVERIFY2(want->isAncestorOf(QApplication::focusWidget()) ||
                             QApplication::focusWidget() == want,
                         next);
            }
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
            QCOMPARE(QApplication::focusWidget(), In<QLineEdit>(d, "Text5"));
            QCOMPARE(datum->text(), QStringLiteral("01.05.2026"));
        });
    }

    void editingToAStateStationCountsItAndTheFileAgrees() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text3"), QStringLiteral("OEXABC"));
            Ok(d);
        });
        const Model& m = f.home.model;
        QCOMPARE(m.StaatsfunkRecords.size(), size_t(1));
        QCOMPARE(m.StaatsfunkRecords[0].Prefix, QStringLiteral("OEX"));
        QCOMPARE(m.StaatsfunkRecords[0].Anz80, 1);
        ReloadEqualsLive(m, f.LogPath());
        // And back: the state station goes again.
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text3"), QStringLiteral("OE3AAA"));
            Ok(d);
        });
        QVERIFY(m.StaatsfunkRecords.empty());
        ReloadEqualsLive(m, f.LogPath());
    }

    // A contact moved from 40 m to 80 m does not keep 7020 kHz: the frequency fields take
    // the band's default, the window says so, and the file holds 3500.
    void aBandChangeMovesAFrequencyThatNoLongerFits() {
        CorrectionsFixture f;
        std::vector<QsoRecord> log = Morning();
        log[2].Frequenz = 7020.0f;
        QVERIFY(f.StartWith(log));
        Edit(f, f.RowOf(2), [](QDialog& d) {
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("7"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("020"));
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("8"));
            QCOMPARE(In<QComboBox>(d, "Combo1")->currentText(), QStringLiteral("80m"));
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("3"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("500"));
            QVERIFY(In<QLabel>(d, "LabelQrg"));
            QVERIFY(In<QLabel>(d, "LabelQrg")->isVisible());
            QCOMPARE(In<QLabel>(d, "LabelQrg")->text(), QStringLiteral("QRG an das Band angepasst"));
            // Back on 40 m the contact's own frequency returns, and the note goes.
            QTest::keyClick(In<QComboBox>(d, "Combo1"), Qt::Key_Up);
            QCOMPARE(In<QComboBox>(d, "Combo1")->currentText(), QStringLiteral("40m"));
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("7"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("020"));
            QVERIFY(!In<QLabel>(d, "LabelQrg")->isVisible());
            QTest::keyClick(In<QComboBox>(d, "Combo1"), Qt::Key_Down);
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("500"));
            Ok(d);
        });
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[2].Band, 80);
        QCOMPARE(m.LogRecords[2].Frequenz, 3500.0f);
        QCOMPARE(Reloaded(m, f.LogPath()).LogRecords[2].Frequenz, 3500.0f);
        ReloadEqualsLive(m, f.LogPath());
    }

    // A frequency the operator typed that lies in the new band stays as typed.
    void aFrequencyInTheNewBandStays() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, f.RowOf(2), [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text12"), QStringLiteral("3"));
            Retype(In<QLineEdit>(d, "Text9"), QStringLiteral("650"));
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("8"));
            QCOMPARE(In<QLineEdit>(d, "Text12")->text(), QStringLiteral("3"));
            QCOMPARE(In<QLineEdit>(d, "Text9")->text(), QStringLiteral("650"));
            QVERIFY(In<QLabel>(d, "LabelQrg") && !In<QLabel>(d, "LabelQrg")->isVisible());
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[2].Frequenz, 3650.0f);
    }

    void cancelChangesNothing() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QLineEdit>(d, "Text8"), QStringLiteral("weg"));
            QTest::mouseClick(In<QPushButton>(d, "Command1"), Qt::LeftButton);
        });
        QCOMPARE(f.home.model.LogRecords[0].Bemerkung, QString());
        QCOMPARE(f.FileBytes(), before);
    }

    void aFailedWriteKeepsTheOldFileAndARetryWritesTheNewOne() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        QByteArray during;
        f.BlockWritesUntilFehler(&during);
        f.dialogs.AnswerMsgBox(Msg::Retry);
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QLineEdit>(d, "Text8"), QStringLiteral("neu"));
            Ok(d);
        });
        QCOMPARE(during, before);
        QVERIFY(f.FileBytes().contains("\xB6neu\xB6"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }
};

QTEST_MAIN(TestCorrectionsEdit)
#include "tst_corrections_edit.moc"
