// The text gate: whatever path a text takes into a contact or the log header (the
// entry, the edit window, the bulk change, the station settings, kolibrino-cli, the
// operator list of the settings), the window shows what the file holds after a reload.
// Also: kolibrino-cli judges a log by its class as the windows do, and a district is a
// whole code of the table.
#include "core/storable_text.h"
#include "core/vb_text.h"
#include "corrections/bulk_change.h"
#include "corrections_support.h"
#include "setup/station_log.h"
#include "setup/station_logic.h"
#include "setup_support.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>
#include <memory>
#include <QPushButton>
#include <QRadioButton>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QString kPilcrowText = QString(QChar(0x00B6));
const QString kOmega = QString(QChar(0x03A9));

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

// Types text that may lie outside Latin-1 (QTest::keyClicks takes Latin-1 only), one
// key press per character.
void TypeText(QWidget* w, const QString& text) {
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, w, Qt::Key_unknown, QString(c), Qt::NoModifier);
}

// Pastes text into the line edit through the entry "Einfügen" of its own context menu,
// as the operator does it.
void Paste(QLineEdit* e, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    std::unique_ptr<QMenu> menu(e->createStandardContextMenu());
    QAction* paste = nullptr;
    for (QAction* a : menu->actions())
        if (a->text().contains(QLatin1String("Paste")) || a->text().contains(QStringLiteral("Einfügen"))) paste = a;
    QVERIFY2(paste, qPrintable(menu->actions().value(0) ? menu->actions().value(0)->text() : QString()));
    QVERIFY(paste->isEnabled());
    paste->trigger();
}

// A copy of the window's log that no program holds, for kolibrino-cli: the window's own
// log is locked while it is open.
QString UnheldCopy(CorrectionsFixture& f) {
    const QString copy = QFileInfo(f.LogPath()).absolutePath() + QStringLiteral("/frei.KOLBO");
    QFile::remove(copy);
    if (!QFile::copy(f.LogPath(), copy)) return QString();
    return copy;
}

std::vector<QsoRecord> Morning() {
    return {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("07:00:00"))};
}

// The file read back: every contact still has its frequency, band and mode, and the
// grid shows for each text field what the file holds.
void GridEqualsFile(CorrectionsFixture& f) {
    const Model back = Reloaded(f.home.model, f.LogPath());
    QCOMPARE(back.LogRecords.size(), size_t(f.Grid().DataRows()));
    for (int row = 0; row < f.Grid().DataRows(); ++row) {
        const int record = int(LeadingNumber(f.Grid().Text(row, kGridColLaufNr)));
        QVERIFY(record >= 0 && size_t(record) < back.LogRecords.size());
        const QsoRecord& r = back.LogRecords[size_t(record)];
        QCOMPARE(f.Grid().Text(row, kGridColCall), r.Call);
        QCOMPARE(f.Grid().Text(row, 5), r.RstGesendet);
        QCOMPARE(f.Grid().Text(row, 6), r.RstEmpfangen);
        QCOMPARE(f.Grid().Text(row, 9), r.Bemerkung);
        QCOMPARE(f.Grid().Text(row, 10), r.Operator);
        QVERIFY2(r.Frequenz > 0, qPrintable(r.Call));
        QCOMPARE(r.BandRx, QStringLiteral("0"));
    }
    ReloadEqualsLive(f.home.model, f.LogPath());
}

} // namespace

class TestTextGate : public QObject {
    Q_OBJECT
private:
    void Edit(CorrectionsFixture& f, int row, setup::ModalDriver driver) {
        setup::PushModalDriver(std::move(driver));
        f.Popup(row, "MnVerstecktBearbeiten");
        setup::ClearModalDrivers();
    }
    void Bulk(CorrectionsFixture& f, setup::ModalDriver driver) {
        setup::PushModalDriver(std::move(driver));
        f.window->Action(QStringLiteral("MnLogExportierenDatumZeit"))->trigger();
        setup::ClearModalDrivers();
    }
    CliResult Cli(const CorrectionsFixture& f, const QStringList& args) {
        return RunCli(f.home.dir.path(), args);
    }

private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }

    // ---- The gate itself -------------------------------------------------------------

    void theGateRefusesWhatWouldDamageTheFile_data() {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("says");
        QTest::newRow("pilcrow in the note") << int(TextField::Bemerkung) << QStringLiteral("a\u00b6b")
                                             << QStringLiteral("nicht erlaubt");
        QTest::newRow("times in the operator") << int(TextField::Operator) << QStringLiteral("OE1\u00d7XY")
                                               << QStringLiteral("nicht erlaubt");
        QTest::newRow("omega in the note") << int(TextField::Bemerkung) << QStringLiteral("\u03a9")
                                           << QStringLiteral("kann nicht gespeichert werden");
        QTest::newRow("emoji in the city") << int(TextField::MyCity) << QStringLiteral("Wien \U0001F600")
                                           << QStringLiteral("kann nicht gespeichert werden");
        QTest::newRow("end of header in the note")
            << int(TextField::Bemerkung) << QStringLiteral("x[ENDHEAD:]") << QStringLiteral("nicht erlaubt");
        QTest::newRow("line end in the note") << int(TextField::Bemerkung) << QStringLiteral("a\r\nb")
                                              << QStringLiteral("Zeilenumbruch");
        QTest::newRow("19 characters of operator") << int(TextField::Operator) << QStringLiteral("OE1ABCDEFGHIJKLMNO")
                                                   << QStringLiteral("höchstens 13 Zeichen");
        QTest::newRow("five characters of report") << int(TextField::RstEmpfangen) << QStringLiteral("59999")
                                                   << QStringLiteral("höchstens 4 Zeichen");
    }
    void theGateRefusesWhatWouldDamageTheFile() {
        QFETCH(int, field);
        QFETCH(QString, text);
        QFETCH(QString, says);
        const GatedText g = GateText(TextField(field), text);
        QVERIFY(!g.Ok());
        QVERIFY2(g.problem.contains(says), qPrintable(g.problem));
    }

    void theGateStoresCallsTrimmedInCapitalsAndKeepsTheRest() {
        QCOMPARE(GateText(TextField::Call, QStringLiteral(" oe3yyy ")).text, QStringLiteral("OE3YYY"));
        QVERIFY(GateText(TextField::Call, QStringLiteral(" oe3yyy ")).Ok());
        QCOMPARE(GateText(TextField::Bemerkung, QStringLiteral(" nett ")).text, QStringLiteral(" nett "));
        // A capital the code page cannot hold is not made.
        QCOMPARE(UpperCp1252(QStringLiteral("µäß")), QStringLiteral("µÄß"));
        QVERIFY(GateText(TextField::MyKomment, QStringLiteral("zwei\r\nZeilen")).Ok());
        QCOMPARE(GatedOperatorList({QStringLiteral("oe1ab"), QStringLiteral("OE1\u00b6XY"), QString()}),
                 QStringList{QStringLiteral("OE1AB")});
    }

    // ---- Separators through the corrections ----------------------------------------

    void editWindowRefusesThePilcrowInTheNoteAtTheKey() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QLineEdit>(d, "Text8"), QStringLiteral("a\u00b6b"));
            QCOMPARE(In<QLineEdit>(d, "Text8")->text(), QStringLiteral("ab"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Bemerkung, QStringLiteral("ab"));
        QVERIFY(!f.FileBytes().contains(QByteArray("a\xb6" "b")));
        GridEqualsFile(f);
        const Model back = Reloaded(f.home.model, f.LogPath());
        QCOMPARE(back.LogRecords[0].Frequenz, 3500.0f);
        QCOMPARE(back.LogRecords[0].Mode, QStringLiteral("SSB"));
    }

    void editWindowRefusesThePilcrowInAReportAtTheKey() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            Retype(In<QLineEdit>(d, "Text5"), QStringLiteral("5\u00b69"));
            QCOMPARE(In<QLineEdit>(d, "Text5")->text(), QStringLiteral("59"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].RstEmpfangen, QStringLiteral("59"));
        GridEqualsFile(f);
    }

    void editWindowRefusesThePilcrowInTheOperatorAtTheKey() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QComboBox* op = In<QComboBox>(d, "Combo6");
            op->clearEditText();
            QTest::keyClicks(op, QStringLiteral("OE1\u00b6XY"));
            QCOMPARE(op->currentText(), QStringLiteral("OE1XY"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Operator, QStringLiteral("OE1XY"));
        GridEqualsFile(f);
    }

    void editWindowRefusesAPastedPilcrow() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QLineEdit* note = In<QLineEdit>(d, "Text8");
            Paste(note, QStringLiteral("a\u00b6b"));
            QCOMPARE(note->text(), QString());
            Paste(note, QStringLiteral("ok"));
            QCOMPARE(note->text(), QStringLiteral("ok"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Bemerkung, QStringLiteral("ok"));
        GridEqualsFile(f);
    }

    void editWindowRefusesAPilcrowThatReachesTheFieldWithABox() {
        // Whatever way a text reaches the field, OK refuses it with a German box.
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        Edit(f, 0, [](QDialog& d) {
            In<QLineEdit>(d, "Text8")->setText(QStringLiteral("a\u00b6b"));
            Ok(d);
            QVERIFY(d.isVisible());
            d.reject();
        });
        QVERIFY(f.dialogs.LastBox());
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Exclamation));
        QVERIFY2(f.dialogs.LastBox()->text.contains(QStringLiteral("\"Notiz\" ist nicht erlaubt")),
                 qPrintable(f.dialogs.LastBox()->text));
        QCOMPARE(f.FileBytes(), before);
    }

    void cliEditRefusesThePilcrow_data() {
        QTest::addColumn<QString>("change");
        QTest::newRow("note") << QStringLiteral("notiz=a\u00b6b");
        QTest::newRow("report") << QStringLiteral("rste=5\u00b69");
        QTest::newRow("operator") << QStringLiteral("opcall=OE1\u00b6XY");
        QTest::newRow("call") << QStringLiteral("rufzeichen=OE1\u00b6XY");
    }
    void cliEditRefusesThePilcrow() {
        QFETCH(QString, change);
        CorrectionsFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(file);
        const CliResult r = Cli(f, {QStringLiteral("edit"), file, QStringLiteral("1"), change});
        QCOMPARE(r.code, 1);
        QVERIFY2(QString::fromUtf8(r.err).contains(QStringLiteral("ist nicht erlaubt")), r.err.constData());
        QCOMPARE(ReadBytes(file), before);
    }

    void bulkChangeOfTheOperatorRefusesThePilcrowAndEveryRecordStaysWhole() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        // The logic refuses the value with a stop box's text, before the first record.
        std::vector<QsoRecord> copy = f.home.model.LogRecords;
        const auto failure = corrections::ApplyBulkChange(f.home.model, copy, corrections::BulkKind::OpCall,
                                                          QStringLiteral("OE1\u00b6XY"), QString(), 0, 1);
        QVERIFY(failure);
        QVERIFY2(failure->message.contains(QStringLiteral("nicht erlaubt")), qPrintable(failure->message));
        QCOMPARE(copy[0].Operator, QStringLiteral("OE1OPR"));
        // The window's value box refuses the key.
        f.dialogs.AnswerMsgBox(Msg::Yes); // übernehmen
        f.dialogs.AnswerMsgBox(Msg::Ok);  // done, not saved yet
        f.dialogs.AnswerMsgBox(Msg::Yes); // speichern
        Bulk(f, [](QDialog& d) {
            QRadioButton* op = In<QRadioButton>(d, "Option1_3");
            QTest::mouseClick(op, Qt::LeftButton, {}, QPoint(8, op->height() / 2));
            QComboBox* value = In<QComboBox>(d, "Combo1");
            value->clearEditText();
            QTest::keyClicks(value, QStringLiteral("OE1\u00b6XY"));
            QCOMPARE(value->currentText(), QStringLiteral("OE1XY"));
            QTest::mouseClick(In<QPushButton>(d, "Command2"), Qt::LeftButton);
            QTest::mouseClick(In<QPushButton>(d, "Command6"), Qt::LeftButton);
        });
        QCOMPARE(f.home.model.LogRecords.size(), size_t(2));
        for (const QsoRecord& r : f.home.model.LogRecords)
            QCOMPARE(r.Operator, QStringLiteral("OE1XY"));
        GridEqualsFile(f);
    }

    void aPastedLowerCaseCallWithATrailingBlankShowsAsTheFileHoldsItAndCanBeDeleted() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            QLineEdit* call = In<QLineEdit>(d, "Text3");
            call->selectAll();
            Paste(call, QStringLiteral("oe3yyy "));
            QCOMPARE(call->text(), QStringLiteral("OE3YYY"));
            Ok(d);
        });
        const int row = f.RowOf(0);
        QCOMPARE(f.Grid().Text(row, kGridColCall), QStringLiteral("OE3YYY"));
        QCOMPARE(f.home.model.LogRecords[0].Call, QStringLiteral("OE3YYY"));
        GridEqualsFile(f);
        // The contact can still be deleted.
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(row, "MnVerstecktLoeschen");
        QCOMPARE(f.Grid().DataRows(), 1);
        QVERIFY(!f.FileBytes().contains("OE3YYY"));
        QCOMPARE(Reloaded(f.home.model, f.LogPath()).LogRecords.size(), size_t(1));
    }

    void aPastedLowerCaseCallInTheMainWindowShowsAsTheFileHoldsIt() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        f.Combo(1)->setCurrentIndex(1);
        f.Text(3)->clear();
        Paste(f.Text(3), QStringLiteral("oe3yyy "));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3YYY"));
        f.Combo(5)->clearEditText();
        QTest::keyClicks(f.Combo(5), QStringLiteral("WI"));
        QTest::keyClick(f.Text(3), Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(3));
        QCOMPARE(f.home.model.LogRecords.back().Call, QStringLiteral("OE3YYY"));
        GridEqualsFile(f);
    }

    void aPilcrowPastedIntoTheMainWindowsNoteIsRefused() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        f.window->Action(QStringLiteral("MnEingabe"))->trigger(); // the note's panel
        Paste(f.Text(8), QStringLiteral("a\u00b6b"));
        QCOMPARE(f.Text(8)->text(), QString());
        QTest::keyClicks(f.Text(8), QStringLiteral("x\u00d7y"));
        QCOMPARE(f.Text(8)->text(), QStringLiteral("xy"));
    }

    void aCharacterTheCodePageCannotHoldIsRefusedNotStoredAsAQuestionMark() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        Edit(f, 0, [](QDialog& d) {
            TypeText(In<QLineEdit>(d, "Text8"), QStringLiteral("R") + kOmega);
            QCOMPARE(In<QLineEdit>(d, "Text8")->text(), QStringLiteral("R"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Bemerkung, QStringLiteral("R"));
        QVERIFY(!f.FileBytes().contains("R?"));
        GridEqualsFile(f);
        // The entry refuses it with a box, and logs nothing.
        EntryFields e;
        e.notiz = kOmega;
        const auto refused = GateEntry(e);
        QVERIFY(refused);
        QVERIFY(refused->message.contains(QStringLiteral("kann nicht gespeichert werden")));
        // kolibrino-cli too.
        const QString copy = UnheldCopy(f);
        QVERIFY(!copy.isEmpty());
        const CliResult r = Cli(f, {QStringLiteral("edit"), copy, QStringLiteral("1"),
                                    QStringLiteral("notiz=") + kOmega});
        QCOMPARE(r.code, 1);
        QVERIFY2(QString::fromUtf8(r.err).contains(QStringLiteral("kann nicht gespeichert werden")),
                 r.err.constData());
    }

    void anOperatorCallOf19CharactersIsAsLongInTheFieldAsInTheFile() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QString nineteen = QStringLiteral("OE1ABCDEFGHIJKLMNOP");
        Edit(f, 0, [&](QDialog& d) {
            QComboBox* op = In<QComboBox>(d, "Combo6");
            op->clearEditText();
            QTest::keyClicks(op, nineteen);
            QCOMPARE(op->currentText(), nineteen.left(13));
            Ok(d);
        });
        QCOMPARE(f.Grid().Text(f.RowOf(0), 10), nineteen.left(13));
        GridEqualsFile(f);
        // kolibrino-cli refuses rather than cuts.
        const QString copy = UnheldCopy(f);
        QVERIFY(!copy.isEmpty());
        const QByteArray before = f.FileBytes();
        const CliResult r =
            Cli(f, {QStringLiteral("edit"), copy, QStringLiteral("1"), QStringLiteral("opcall=") + nineteen});
        QCOMPARE(r.code, 1);
        QVERIFY2(QString::fromUtf8(r.err).contains(QStringLiteral("höchstens 13 Zeichen")), r.err.constData());
        QFile held(copy);
        QVERIFY(held.open(QIODevice::ReadOnly));
        QCOMPARE(held.readAll(), before);
    }

    void stationSettingsRefuseASeparator() {
        Home home;
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
        setup::StationForm f;
        f.text1 = QStringLiteral("OE1ABC");
        f.combo5Text = QStringLiteral("OE1ABC");
        f.combo1Text = QStringLiteral("WI - Wien");
        f.label10 = QStringLiteral("test.KOLBO");
        f.text6 = QStringLiteral("a@b.at");
        f.text4 = QStringLiteral("Max\u00b6Muster");
        setup::Focus focus = setup::Focus::None;
        QVERIFY(!setup::Validate(home.model, d, clock, f, &focus));
        QVERIFY(d.LastBox());
        QVERIFY2(d.LastBox()->text.contains(QStringLiteral("\"Name\" ist nicht erlaubt")),
                 qPrintable(d.LastBox()->text));
        // A hand-edited operator list in the settings brings no separator either.
        IniWriteSection(home.model.IniPath, QStringLiteral("OPCALLs"),
                        {QStringLiteral("OE1\u00b6XY"), QStringLiteral("oe3abc")});
        QCOMPARE(setup::ReadOperators(home.model), QStringList{QStringLiteral("OE3ABC")});
        QCOMPARE(LoadOperators(home.model.IniPath), QStringList{QStringLiteral("OE3ABC")});
    }

    void stationSettingsWindowRefusesAtTheKeys() {
        SetupEnv e;
        setup::StationLog s(e.m, e.d, e.clock, {}, setup::StationMode::NewLog);
        s.show();
        auto edit = [&s](const char* name) { return s.findChild<QLineEdit*>(QString::fromLatin1(name)); };
        TypeText(edit("Text4"), QStringLiteral("Max\u00b6Muster"));
        QCOMPARE(edit("Text4")->text(), QStringLiteral("MaxMuster"));
        // A capital the code page has no place for is not made: "µ" stays, never "?".
        TypeText(edit("Text3"), QStringLiteral("jn88\u00b5"));
        QCOMPARE(edit("Text3")->text(), QStringLiteral("JN88\u00b5"));
        TypeText(edit("Text9"), QStringLiteral("a-1010"));
        QCOMPARE(edit("Text9")->text(), QStringLiteral("A-1010"));
        Paste(edit("Text10"), QStringLiteral("Wien ") + kOmega);
        QCOMPARE(edit("Text10")->text(), QString());
        Paste(edit("Text10"), QStringLiteral("x[ENDHEAD:]"));
        QCOMPARE(edit("Text10")->text(), QString());
        Paste(edit("Text1"), QStringLiteral("oe1abc "));
        QCOMPARE(edit("Text1")->text(), QStringLiteral("OE1ABC"));
        s.reject();
    }

    // ---- The command line differs from the window ----------------------------------

    void loadLogSetsTheClassRulesFromTheHeader() {
        CorrectionsFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning(), 4);
        Model m;
        m.SetLocale(AustrianLocale());
        m.MittagsGrenze = QTime(0, 0);
        ScriptedDialogs d;
        QCOMPARE(LoadLog(m, d, f.home.model.LogFolder + QStringLiteral("test.KOLBO")), 1);
        QVERIFY(m.IsStaatsfunkstelle);
        QCOMPARE(m.MittagsGrenze, QTime(12, 0));
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning(), 0);
        QCOMPARE(LoadLog(m, d, f.home.model.LogFolder + QStringLiteral("test.KOLBO")), 1);
        QVERIFY(!m.IsStaatsfunkstelle);
    }

    void cliEditOnAStateStationLogAllowsTheMoveTo30m() {
        CorrectionsFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning(), 4);
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const CliResult r = Cli(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("band=30m")});
        QCOMPARE(r.code, 0);
        QCOMPARE(Reloaded(f.home.model, file).LogRecords[0].Band, 30);
    }

    void cliEditOnAStateStationLogRefusesTheMoveTo40m() {
        CorrectionsFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning(), 4);
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(file);
        const CliResult r = Cli(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("band=40m")});
        QCOMPARE(r.code, 1);
        QVERIFY2(QString::fromUtf8(r.err).contains(QStringLiteral("Staatsfunkstellen dürfen auf 40m nicht arbeiten!")),
                 r.err.constData());
        QCOMPARE(ReadBytes(file), before);
    }

    void theWindowJudgesAStateStationLogAsTheCommandLineDoes() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning(), 4));
        Edit(f, 0, [](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("3"));
            Ok(d);
        });
        QCOMPARE(f.home.model.LogRecords[0].Band, 30);
    }

    // ---- District codes ------------------------------------------------------------

    void onlyAWholeCodeOfTheTableIsADistrict() {
        WindowFixture f;
        ScriptedDialogs d;
        Model& m = f.home.model;
        QCOMPARE(LoadBezirkTable(m, d), 4);
        QCOMPARE(BezirkNumber(m, QStringLiteral("WI")), 1);
        QCOMPARE(BezirkNumber(m, QStringLiteral("MD")), 2);
        QCOMPARE(BezirkNumber(m, QStringLiteral("ZZ")), 4);
        for (const char* part : {"I;", ";M", "D;", ";G", " W", "W", "WI;"}) {
            QCOMPARE(BezirkNumber(m, QString::fromLatin1(part)), 0);
            QVERIFY(!IsBezirkCode(m, QString::fromLatin1(part)));
        }
    }

    void aFileWithAPartOfTwoCodesCountsNoDistrict() {
        WindowFixture f;
        ScriptedDialogs d;
        Model& m = f.home.model;
        LoadBezirkTable(m, d);
        m.LogRecords = {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("I;"), QStringLiteral("06:00:00"))};
        RebuildTallies(m);
        QCOMPARE(m.BezirkRecords[1].AnzGesamt, 0);
    }

    void entryRefusesAPartOfTwoCodes_data() {
        QTest::addColumn<QString>("bezirk");
        QTest::newRow("I;") << QStringLiteral("I;");
        QTest::newRow(";M") << QStringLiteral(";M");
        QTest::newRow("D;") << QStringLiteral("D;");
    }
    void entryRefusesAPartOfTwoCodes() {
        QFETCH(QString, bezirk);
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        f.Type(QStringLiteral("OE5ZZZ"), 1, bezirk);
        QCOMPARE(f.Label13()->text(), QStringLiteral("BEZIRK ungültig"));
        QCOMPARE(f.home.model.LogRecords.size(), size_t(2));
        QCOMPARE(f.FileBytes(), before);
    }

    void editWindowRefusesAPartOfTwoCodes() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        const QByteArray before = f.FileBytes();
        bool refused = false;
        f.dialogs.AnswerMsgBox(Msg::Cancel); // the error box of the hidden check
        Edit(f, 0, [&](QDialog& d) {
            QComboBox* bz = In<QComboBox>(d, "Combo5");
            bz->clearEditText();
            QTest::keyClicks(bz, QStringLiteral("I;"));
            Ok(d);
            refused = d.isVisible();
            d.reject();
        });
        QVERIFY(refused);
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(f.home.model.LogRecords[0].Bezirk, QStringLiteral("MD"));
        QCOMPARE(f.FileBytes(), before);
    }

    void cliEditRefusesAPartOfTwoCodes() {
        CorrectionsFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Morning());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(file);
        const CliResult r = Cli(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("bz=I;")});
        QCOMPARE(r.code, 1);
        QVERIFY2(QString::fromUtf8(r.err).contains(QStringLiteral("BEZIRK ungültig")), r.err.constData());
        QCOMPARE(ReadBytes(file), before);
        // A whole code passes.
        QCOMPARE(Cli(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("bz=WI")}).code, 0);
    }
};

QTEST_MAIN(TestTextGate)
#include "tst_text_gate.moc"
