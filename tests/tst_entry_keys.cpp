// The entry fields at the keyboard, without the window: key filters, Space and Tab,
// colours, the call look-up, the operator list and the entry's menu items.
#include "core/call_index.h"
#include "core/settings.h"
#include "entry/entry_keys.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

Q_DECLARE_METATYPE(kolibrino::EntryField)
Q_DECLARE_METATYPE(kolibrino::KeyAction::Kind)

namespace {

using F = EntryField;

QsoRecord Rec(const QString& call, int band, const QString& mode, const QString& zeit, const QString& bezirk,
              int status = Status::Normal) {
    QsoRecord r;
    r.Call = call;
    r.Band = band;
    r.Mode = mode;
    r.Zeit = zeit;
    r.Datum = QStringLiteral("01.05.2026");
    r.Bezirk = bezirk;
    r.Status = status;
    return r;
}

void Add(Model& m, const QsoRecord& r) {
    AppendIndexEntry(m.CallIndex, r.Call, qsizetype(m.LogRecords.size()));
    m.LogRecords.push_back(r);
}

Model WorkedModel() {
    Model m;
    m.SetLocale(AustrianLocale());
    Add(m, Rec(QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"), QStringLiteral("05:15:00"),
               QStringLiteral("WI")));
    Add(m, Rec(QStringLiteral("OE5XYZ"), 40, QStringLiteral("CW"), QStringLiteral("06:20:00"),
               QStringLiteral("LL")));
    Add(m, Rec(QStringLiteral("OE5XYZ"), 80, QStringLiteral("CW"), QStringLiteral("14:20:00"),
               QStringLiteral("LI")));
    return m;
}

const QString kCallList = QStringLiteral("OE1ABC;Anna Berger\r\nOE5XYZ;Max Muster\r\nOE3DEF;Franz Huber\r\n"
                                         "OE/DL1AA;Gast\r\nOE9ZZZ;Zita Zangerl");

KeyAction Key(F field, QChar key, bool shift = false) {
    return FilterKeyPress(field, key, shift, QLatin1Char('.'), QLatin1Char(':'));
}

} // namespace

class TestEntryKeys : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    // ---- key filters ----

    void keyFilters_data() {
        QTest::addColumn<F>("field");
        QTest::addColumn<QChar>("key");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<KeyAction::Kind>("kind");
        QTest::addColumn<QChar>("typed");
        QTest::addColumn<bool>("stopsTimer1");
        const auto T = KeyAction::Type;
        const auto D = KeyAction::Drop;
        const QChar bs(8), cx(24), cc(3), cv(22);
        // Date and time: digits, their own separator, Backspace, Ctrl+X, Ctrl+C.
        QTest::newRow("Text1 digit") << F::Text1 << QChar(u'7') << false << T << QChar(u'7') << true;
        QTest::newRow("Text1 date separator") << F::Text1 << QChar(u'.') << false << T << QChar(u'.') << true;
        QTest::newRow("Text1 time separator") << F::Text1 << QChar(u':') << false << D << QChar() << true;
        QTest::newRow("Text1 letter") << F::Text1 << QChar(u'a') << false << D << QChar() << true;
        QTest::newRow("Text1 backspace") << F::Text1 << bs << false << T << bs << true;
        QTest::newRow("Text1 ctrl+x") << F::Text1 << cx << false << T << cx << true;
        QTest::newRow("Text1 ctrl+c") << F::Text1 << cc << false << T << cc << true;
        QTest::newRow("Text1 ctrl+v") << F::Text1 << cv << false << D << QChar() << true;
        QTest::newRow("Text2 digit") << F::Text2 << QChar(u'0') << false << T << QChar(u'0') << true;
        QTest::newRow("Text2 time separator") << F::Text2 << QChar(u':') << false << T << QChar(u':') << true;
        QTest::newRow("Text2 date separator") << F::Text2 << QChar(u'.') << false << D << QChar() << true;
        QTest::newRow("Text2 minus") << F::Text2 << QChar(u'-') << false << D << QChar() << true;
        // Call: "-" types "/", letters upper case, digits, "/", editing keys; the rest dropped.
        QTest::newRow("Text3 minus types slash")
            << F::Text3 << QChar(u'-') << false << T << QChar(u'/') << false;
        QTest::newRow("Text3 slash") << F::Text3 << QChar(u'/') << false << T << QChar(u'/') << false;
        QTest::newRow("Text3 lower letter") << F::Text3 << QChar(u'w') << false << T << QChar(u'W') << false;
        QTest::newRow("Text3 upper letter") << F::Text3 << QChar(u'W') << false << T << QChar(u'W') << false;
        QTest::newRow("Text3 digit") << F::Text3 << QChar(u'5') << false << T << QChar(u'5') << false;
        QTest::newRow("Text3 backspace") << F::Text3 << bs << false << T << bs << false;
        QTest::newRow("Text3 ctrl+x") << F::Text3 << cx << false << T << cx << false;
        QTest::newRow("Text3 ctrl+c") << F::Text3 << cc << false << T << cc << false;
        QTest::newRow("Text3 ctrl+v") << F::Text3 << cv << false << D << QChar() << false;
        QTest::newRow("Text3 dot") << F::Text3 << QChar(u'.') << false << D << QChar() << false;
        QTest::newRow("Text3 umlaut") << F::Text3 << QChar(u'\u00e4') << false << D << QChar() << false;
        QTest::newRow("Text3 semicolon") << F::Text3 << QChar(u';') << false << D << QChar() << false;
        // District: upper case, nothing dropped.
        QTest::newRow("Combo5 lower letter")
            << F::Combo5 << QChar(u'w') << false << T << QChar(u'W') << false;
        QTest::newRow("Combo5 digit") << F::Combo5 << QChar(u'1') << false << T << QChar(u'1') << false;
        // Reports, note, band: as typed.
        QTest::newRow("Text4 letter") << F::Text4 << QChar(u'n') << false << T << QChar(u'n') << false;
        QTest::newRow("Text8 letter") << F::Text8 << QChar(u'x') << false << T << QChar(u'x') << false;
        QTest::newRow("Text8 space types") << F::Text8 << QChar(u' ') << false << T << QChar(u' ') << false;
        QTest::newRow("Text8 shift space types")
            << F::Text8 << QChar(u' ') << true << T << QChar(u' ') << false;
        // Operator: upper case, Space types.
        QTest::newRow("Combo6 lower letter")
            << F::Combo6 << QChar(u'o') << false << T << QChar(u'O') << false;
        QTest::newRow("Combo6 space types") << F::Combo6 << QChar(u' ') << false << T << QChar(u' ') << false;
        // Tab and Delete belong to the focus chain and the editor.
        QTest::newRow("Text3 tab") << F::Text3 << QChar(9) << false << T << QChar(9) << false;
        QTest::newRow("Text3 delete") << F::Text3 << QChar(127) << false << T << QChar(127) << false;
        QTest::newRow("Text2 delete") << F::Text2 << QChar(127) << false << T << QChar(127) << true;
    }
    void keyFilters() {
        QFETCH(F, field);
        QFETCH(QChar, key);
        QFETCH(bool, shift);
        QFETCH(KeyAction::Kind, kind);
        QFETCH(QChar, typed);
        QFETCH(bool, stopsTimer1);
        const KeyAction a = Key(field, key, shift);
        QCOMPARE(a.kind, kind);
        if (kind == KeyAction::Type) QCOMPARE(a.ch, typed);
        QCOMPARE(a.stopsTimer1, stopsTimer1);
    }

    void enterInEveryFieldButTheOperatorLogs_data() {
        QTest::addColumn<F>("field");
        for (F f : {F::Text1, F::Text2, F::Text3, F::Combo1, F::Combo2, F::Text4, F::Text5, F::Combo5,
                    F::Check1, F::Text8})
            QTest::newRow(qPrintable(QString::number(int(f)))) << f;
    }
    void enterInEveryFieldButTheOperatorLogs() {
        QFETCH(F, field);
        QCOMPARE(Key(field, QChar(13)).kind, KeyAction::Take);
    }

    void enterInTheOperatorIsItsOwnAction() {
        QCOMPARE(Key(F::Combo6, QChar(13)).kind, KeyAction::OperatorEnter);
    }

    void anyKeyInDateOrTimeStopsTheRunningTime() {
        for (F f : {F::Text1, F::Text2})
            for (QChar c : {QChar(u'1'), QChar(u'x'), QChar(13), QChar(u' '), QChar(8)})
                QVERIFY(Key(f, c).stopsTimer1);
        QVERIFY(!Key(F::Text3, QChar(u'1')).stopsTimer1);
    }

    // ---- Space ----

    void spaceJumps_data() {
        QTest::addColumn<F>("field");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<F>("target");
        QTest::newRow("Text1") << F::Text1 << false << F::Text3;
        QTest::newRow("Text1 shift") << F::Text1 << true << F::Combo5;
        QTest::newRow("Text2") << F::Text2 << false << F::Text3;
        QTest::newRow("Text2 shift") << F::Text2 << true << F::Combo5;
        QTest::newRow("Text3") << F::Text3 << false << F::Combo5;
        QTest::newRow("Text3 shift") << F::Text3 << true << F::Combo5;
        QTest::newRow("Combo1") << F::Combo1 << false << F::Text3;
        QTest::newRow("Combo1 shift") << F::Combo1 << true << F::Combo5;
        QTest::newRow("Combo2") << F::Combo2 << false << F::Text3;
        QTest::newRow("Combo2 shift") << F::Combo2 << true << F::Combo5;
        QTest::newRow("Check1") << F::Check1 << false << F::Text3;
        QTest::newRow("Check1 shift") << F::Check1 << true << F::Combo5;
        QTest::newRow("Text4") << F::Text4 << false << F::Combo5;
        QTest::newRow("Text4 shift") << F::Text4 << true << F::Text3;
        QTest::newRow("Text5") << F::Text5 << false << F::Combo5;
        QTest::newRow("Text5 shift") << F::Text5 << true << F::Text3;
        QTest::newRow("Combo5") << F::Combo5 << false << F::Text3;
        QTest::newRow("Combo5 shift") << F::Combo5 << true << F::Text3;
    }
    void spaceJumps() {
        QFETCH(F, field);
        QFETCH(bool, shift);
        QFETCH(F, target);
        const KeyAction a = Key(field, QChar(u' '), shift);
        QCOMPARE(a.kind, KeyAction::Jump);
        QCOMPARE(a.target, target);
        QCOMPARE(*SpaceTarget(field, shift), target);
    }

    void spaceInTheCallWithACallMovesToTheDistrictAndTypesNoBlank() {
        QString text3 = QStringLiteral("OE1ABC");
        const KeyAction a = Key(F::Text3, QChar(u' '));
        QCOMPARE(a.kind, KeyAction::Jump);
        QCOMPARE(a.target, F::Combo5);
        if (a.kind == KeyAction::Type) text3 += a.ch;
        QCOMPARE(text3, QStringLiteral("OE1ABC"));
    }

    void shiftDownFollowsKeyDownAndKeyUp() {
        ShiftTracker t;
        t.KeyDown(ShiftStateOf(Qt::ShiftModifier));
        QVERIFY(t.ShiftDown);
        t.KeyDown(ShiftStateOf(Qt::ShiftModifier)); // Space with Shift held
        QCOMPARE(*SpaceTarget(F::Text4, t.ShiftDown), F::Text3);
        t.KeyUp();
        QVERIFY(!t.ShiftDown);
        t.KeyDown(ShiftStateOf(Qt::ShiftModifier | Qt::ControlModifier)); // not Shift alone
        QVERIFY(!t.ShiftDown);
    }

    // ---- clearing the entry ----

    void ctrlWEmptiesTheEntryPlainWInTheCallTypes() {
        const int w = KeyCodeOf(Qt::Key_W);
        QCOMPARE(w, kKeyCodeW);
        QVERIFY(ClearsEntry(w, ShiftStateOf(Qt::ControlModifier)));
        QVERIFY(!ClearsEntry(w, ShiftStateOf(Qt::NoModifier)));
        QVERIFY(!ClearsEntry(w, ShiftStateOf(Qt::ShiftModifier)));
        const KeyAction a = Key(F::Text3, QChar(u'W'));
        QCOMPARE(a.kind, KeyAction::Type);
        QCOMPARE(a.ch, QChar(u'W'));
    }

    void ctrlOrAltWithF10OrWClearsTheEntry_data() {
        QTest::addColumn<int>("qtKey");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("clears");
        QTest::newRow("ctrl F10") << int(Qt::Key_F10) << int(Qt::ControlModifier) << true;
        QTest::newRow("alt F10") << int(Qt::Key_F10) << int(Qt::AltModifier) << true;
        QTest::newRow("alt W") << int(Qt::Key_W) << int(Qt::AltModifier) << true;
        QTest::newRow("ctrl shift W")
            << int(Qt::Key_W) << int(Qt::ControlModifier | Qt::ShiftModifier) << true;
        QTest::newRow("F10") << int(Qt::Key_F10) << int(Qt::NoModifier) << false;
        QTest::newRow("shift F10") << int(Qt::Key_F10) << int(Qt::ShiftModifier) << false;
        QTest::newRow("ctrl F9") << int(Qt::Key_F9) << int(Qt::ControlModifier) << false;
        QTest::newRow("ctrl Q") << int(Qt::Key_Q) << int(Qt::ControlModifier) << false;
    }
    void ctrlOrAltWithF10OrWClearsTheEntry() {
        QFETCH(int, qtKey);
        QFETCH(int, modifiers);
        QFETCH(bool, clears);
        QCOMPARE(ClearsEntry(KeyCodeOf(qtKey), ShiftStateOf(Qt::KeyboardModifiers(modifiers))), clears);
    }

    void keyCodesAreTheClassicNumbers() {
        QCOMPARE(KeyCodeOf(Qt::Key_F10), 121);
        QCOMPARE(KeyCodeOf(Qt::Key_F1), 112);
        QCOMPARE(KeyCodeOf(Qt::Key_A), 65);
        QCOMPARE(KeyCodeOf(Qt::Key_5), 53);
        QCOMPARE(KeyCodeOf(Qt::Key_Escape), 0);
        QCOMPARE(ShiftStateOf(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier), 7);
    }

    // ---- Tab ----

    void tabOrder_data() {
        QTest::addColumn<F>("leaving");
        QTest::addColumn<bool>("backwards");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<bool>("extended");
        QTest::addColumn<int>("target"); // -1: usual order
        QTest::newRow("Combo5 free") << F::Combo5 << false << false << false << int(F::Text2);
        QTest::newRow("Combo5 locked") << F::Combo5 << false << true << false << int(F::Combo1);
        QTest::newRow("Text8 free") << F::Text8 << false << false << true << int(F::Text2);
        QTest::newRow("Text8 locked") << F::Text8 << false << true << true << int(F::Combo1);
        QTest::newRow("Combo5 extended free") << F::Combo5 << false << false << true << int(F::Text1);
        QTest::newRow("Combo5 extended locked") << F::Combo5 << false << true << true << int(F::Check1);
        QTest::newRow("Combo5 shift tab") << F::Combo5 << true << false << false << -1;
        QTest::newRow("Text8 shift tab") << F::Text8 << true << false << true << -1;
        QTest::newRow("Text2 shift tab extended") << F::Text2 << true << false << true << int(F::Text8);
        QTest::newRow("Text2 shift tab normal") << F::Text2 << true << false << false << -1;
        QTest::newRow("Text2 tab") << F::Text2 << false << false << true << -1;
        QTest::newRow("Text3 tab") << F::Text3 << false << false << false << -1;
    }
    void tabOrder() {
        QFETCH(F, leaving);
        QFETCH(bool, backwards);
        QFETCH(bool, locked);
        QFETCH(bool, extended);
        QFETCH(int, target);
        const std::optional<F> t = TabTarget(leaving, backwards, locked, extended);
        QCOMPARE(t.has_value(), target >= 0);
        if (t) QCOMPARE(int(*t), target);
    }

    // ---- look ----

    void focusColours() {
        const DateTimeLockState free;
        const DateTimeLockState locked = DateTimeLockState::FromSetting(-1);
        DateTimeLockState manual;
        manual.ClickZeitDatumLock();
        QCOMPARE(FocusColour(F::Text3, true, free), EntryColour::Cyan);
        QCOMPARE(FocusColour(F::Text3, false, free), EntryColour::White);
        QCOMPARE(FocusColour(F::Text3, true, locked), EntryColour::Cyan);
        QCOMPARE(FocusColour(F::Combo5, true, manual), EntryColour::Cyan);
        QCOMPARE(FocusColour(F::Text2, true, free), EntryColour::Cyan);
        QCOMPARE(FocusColour(F::Text2, false, free), EntryColour::White);
        QCOMPARE(FocusColour(F::Text1, true, locked), EntryColour::Grey);
        QCOMPARE(FocusColour(F::Text2, false, locked), EntryColour::Grey);
        QCOMPARE(FocusColour(F::Text1, true, manual), EntryColour::Green);
        QCOMPARE(FocusColour(F::Text2, false, manual), EntryColour::Green);
        QCOMPARE(EntryColour::Cyan, 0xFFFF00u);
        QCOMPARE(EntryColour::Green, 0x80FF80u);
        QCOMPARE(EntryColour::Grey, 0xC0C0C0u);
    }

    void reportsSelectTheirTextOnFocus() {
        QVERIFY(SelectsAllOnFocus(F::Text4));
        QVERIFY(SelectsAllOnFocus(F::Text5));
        QVERIFY(!SelectsAllOnFocus(F::Text3));
    }

    void comboLengthLimits() {
        QCOMPARE(ComboMaxLength(F::Combo1), 5);
        QCOMPARE(ComboMaxLength(F::Combo2), 5);
        QCOMPARE(ComboMaxLength(F::Combo5), 2);
        QCOMPARE(ComboMaxLength(F::Combo6), 13);
        QCOMPARE(ComboMaxLength(F::Text3), 0);
    }

    void qslCheckCaptionsAndColours() {
        QCOMPARE(Check1Look(1).caption, QStringLiteral("QSL JA"));
        QCOMPARE(Check1Look(1).backColour, 0x80000002u);
        QCOMPARE(Check1Look(0).caption, QStringLiteral("QSL NEIN"));
        QCOMPARE(Check1Look(0).backColour, 0x8000000Fu);
        QVERIFY(EntryColour::IsPaletteColour(Check1Look(0).backColour));
    }

    // ---- the call field ----

    void portableSuffixLooksUpTheHomeCall_data() {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("listCall");
        QTest::newRow("portable") << QStringLiteral("OE5XYZ/P") << QStringLiteral("OE5XYZ");
        QTest::newRow("mobile") << QStringLiteral("OE5XYZ/M") << QStringLiteral("OE5XYZ");
        QTest::newRow("slash in third place stays")
            << QStringLiteral("OE/DL1AA") << QStringLiteral("OE/DL1AA");
        QTest::newRow("slash in second place stays")
            << QStringLiteral("9/OE5XYZ") << QStringLiteral("9/OE5XYZ");
        QTest::newRow("prefix and suffix") << QStringLiteral("OE/DL1AA/P") << QStringLiteral("OE/DL1AA");
        QTest::newRow("slash in fourth place ends") << QStringLiteral("OE5/XY") << QStringLiteral("OE5");
        QTest::newRow("no slash") << QStringLiteral("OE5XYZ") << QStringLiteral("OE5XYZ");
    }
    void portableSuffixLooksUpTheHomeCall() {
        QFETCH(QString, call);
        QFETCH(QString, listCall);
        QCOMPARE(ListCall(call), listCall);
    }

    void portableCallShowsTheNameOfTheHomeCall() {
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral("OE5XYZ/P"), 80, QStringLiteral("SSB"),
                                              QTime(9, 0), kCallList, false, 0);
        QCOMPARE(*r.label10, QStringLiteral("OE5XYZ Max Muster"));
        const CallChangeResult early = CallChange(m, QStringLiteral("OE/DL1AA"), 80, QStringLiteral("SSB"),
                                                  QTime(9, 0), kCallList, false, 0);
        QCOMPARE(*early.label10, QStringLiteral("OE/DL1AA Gast"));
    }

    void nameComesFromTheCallListLine() {
        QCOMPARE(*StationName(kCallList, QStringLiteral("OE1ABC")), QStringLiteral("OE1ABC Anna Berger"));
        QCOMPARE(*StationName(kCallList, QStringLiteral("OE3DEF")), QStringLiteral("OE3DEF Franz Huber"));
        // The last line has no line end.
        QCOMPARE(*StationName(kCallList, QStringLiteral("OE9ZZZ")), QStringLiteral("OE9ZZZ Zita Zangerl"));
        // Only a call followed by ";" is a hit.
        QVERIFY(!StationName(kCallList, QStringLiteral("OE1AB")));
        QVERIFY(!StationName(kCallList, QStringLiteral("OE7QQQ")));
        QVERIFY(!StationName(QString(), QStringLiteral("OE1ABC")));
        QCOMPARE(*StationName(QStringLiteral("OE2LF;Lena\nOE2XX;Xaver\n"), QStringLiteral("OE2XX")),
                 QStringLiteral("OE2XX Xaver"));
    }

    void nameMatchesOnlyAtTheStartOfALine() {
        // "E1ABC" stands inside "OE1ABC;" but starts no line.
        QVERIFY(!StationName(kCallList, QStringLiteral("E1ABC")));
        QVERIFY(!StationName(kCallList, QStringLiteral("1ABC")));
        QVERIFY(!StationName(kCallList, QStringLiteral("DL1AA")));
        // A later line that starts with the call is still found behind an inner hit.
        const QString list = QStringLiteral("OE1ABC;Anna\r\nE1ABC;Egon\r\n");
        QCOMPARE(*StationName(list, QStringLiteral("E1ABC")), QStringLiteral("E1ABC Egon"));
        QCOMPARE(*StationName(list, QStringLiteral("OE1ABC")), QStringLiteral("OE1ABC Anna"));
        // Through the call field's change as well.
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral("E1ABC"), 80, QStringLiteral("SSB"),
                                              QTime(9, 0), kCallList, false, 0);
        QVERIFY(!r.label10);
    }

    void fewerThanFourCharactersRunNoLookUp() {
        const Model m = WorkedModel();
        const CallChangeResult r =
            CallChange(m, QStringLiteral("OE5"), 40, QStringLiteral("CW"), QTime(6, 30), kCallList, true, 3);
        QVERIFY(!r.check);
        QVERIFY(!r.label10);
        QVERIFY(r.refreshDbLog);
        QVERIFY(r.clearDbLogList);
        const CallChangeResult one =
            CallChange(m, QStringLiteral("O"), 40, QStringLiteral("CW"), QTime(6, 30), kCallList, true, 0);
        QVERIFY(!one.refreshDbLog);
        QVERIFY(!one.clearDbLogList);
        const CallChangeResult closed =
            CallChange(m, QStringLiteral("OE5"), 40, QStringLiteral("CW"), QTime(6, 30), kCallList, false, 3);
        QVERIFY(!closed.refreshDbLog);
        QVERIFY(!closed.clearDbLogList);
    }

    void dupeWarningAppearsAtTheFourthCharacterOfAWorkedCall() {
        const Model m = WorkedModel();
        const QString call = QStringLiteral("OE1ABC");
        for (int n = 1; n <= call.size(); ++n) {
            const CallChangeResult r =
                CallChange(m, call.left(n), 80, QStringLiteral("SSB"), QTime(7, 0), kCallList, true, 1);
            QCOMPARE(r.check.has_value(), n >= 4);
            QCOMPARE(r.refreshDbLog, n >= 2);
            if (n < call.size() && r.check) QVERIFY(!r.check->isDupe);
        }
        const CallChangeResult full =
            CallChange(m, call, 80, QStringLiteral("SSB"), QTime(7, 0), kCallList, true, 1);
        QVERIFY(full.check->found);
        QVERIFY(full.check->isDupe);
        QCOMPARE(full.check->bezirk, QStringLiteral("WI"));
        QCOMPARE(full.check->warning, QStringLiteral("Station bereits um 05:15 Uhr gearbeitet!"));
        QCOMPARE(*full.label10, QStringLiteral("OE1ABC Anna Berger"));
    }

    void aWorkedCallOnAnotherSlotFillsTheDistrictWithoutWarning() {
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"),
                                              QTime(7, 0), kCallList, false, 0);
        QVERIFY(r.check->found);
        QVERIFY(!r.check->isDupe);
        QVERIFY(r.check->warning.isEmpty());
        QCOMPARE(r.check->bezirk, QStringLiteral("WI"));
        const CallChangeResult pm = CallChange(m, QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"),
                                               QTime(14, 5), kCallList, false, 0);
        QVERIFY(!pm.check->isDupe);
    }

    void aNewCallFindsNothing() {
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral("OE7QQQ"), 80, QStringLiteral("SSB"),
                                              QTime(7, 0), kCallList, false, 0);
        QVERIFY(r.check);
        QVERIFY(!r.check->found);
        QVERIFY(r.check->bezirk.isEmpty());
        QVERIFY(!r.label10);
    }

    void blanksAroundTheCallAreTrimmedForTheLookUp() {
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral(" OE1ABC "), 80, QStringLiteral("SSB"),
                                              QTime(7, 0), kCallList, false, 0);
        QVERIFY(r.check->isDupe);
        QCOMPARE(*r.label10, QStringLiteral("OE1ABC Anna Berger"));
    }

    void unreadableTimeStillFillsTheDistrictButDecidesNoDupe() {
        const Model m = WorkedModel();
        const CallChangeResult r = CallChange(m, QStringLiteral("OE5XYZ"), 40, QStringLiteral("CW"),
                                              std::nullopt, kCallList, false, 0);
        QVERIFY(r.check->found);
        QVERIFY(!r.check->isDupe);
        QCOMPARE(r.check->bezirk, QStringLiteral("LI")); // the last contact with the call
    }

    void callLostFocusTestsFromTwoCharacters() {
        const Model m = WorkedModel();
        QVERIFY(!CallLostFocus(m, QStringLiteral("O"), 80, QStringLiteral("SSB"), QTime(7, 0)));
        QVERIFY(!CallLostFocus(m, QStringLiteral(" O "), 80, QStringLiteral("SSB"), QTime(7, 0)));
        const std::optional<CallCheck> c =
            CallLostFocus(m, QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"), QTime(7, 0));
        QVERIFY(c);
        QVERIFY(c->isDupe);
        QCOMPARE(c->bezirk, QStringLiteral("WI"));
    }

    void clickOnTheMessageLineAfterADupeWarningClearsTheDistrict() {
        const Model m = WorkedModel();
        DupeButton button;
        const CallChangeResult r = CallChange(m, QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"),
                                              QTime(7, 0), kCallList, false, 0);
        QVERIFY(r.check->isDupe);
        button.Show();
        QString combo5 = r.check->bezirk;
        QVERIFY(Label13Click(button, combo5));
        combo5.clear();
        QVERIFY(!button.enabled);
        QVERIFY(!button.blinking);
        // A second click, with the button dark, does nothing.
        QVERIFY(!Label13Click(button, QStringLiteral("WI")));
    }

    void clickOnTheMessageLineWithoutAWarningKeepsTheDistrict() {
        DupeButton button;
        QVERIFY(!Label13Click(button, QStringLiteral("WI")));
        button.Show();
        QVERIFY(!Label13Click(button, QString())); // nothing to empty
        QVERIFY(!button.enabled);
    }

    void typingAPortableCallThenSpaceThenDistrictThenEnter() {
        const Model m = WorkedModel();
        QString text3;
        std::optional<QString> label10;
        for (QChar c : QStringLiteral("oe5xyz-p")) {
            const KeyAction a = Key(F::Text3, c);
            QCOMPARE(a.kind, KeyAction::Type);
            text3 += a.ch;
            label10 =
                CallChange(m, text3, 80, QStringLiteral("SSB"), QTime(9, 0), kCallList, false, 0).label10;
        }
        QCOMPARE(text3, QStringLiteral("OE5XYZ/P"));
        QCOMPARE(*label10, QStringLiteral("OE5XYZ Max Muster"));
        const KeyAction space = Key(F::Text3, QChar(u' '));
        QCOMPARE(space.kind, KeyAction::Jump);
        QCOMPARE(space.target, F::Combo5);
        QString combo5;
        for (QChar c : QStringLiteral("li"))
            combo5 += Key(F::Combo5, c).ch;
        QCOMPARE(combo5, QStringLiteral("LI"));
        QCOMPARE(Key(F::Combo5, QChar(13)).kind, KeyAction::Take);
    }

    // ---- time field ----

    void enteringNineThirtyInTheTimeGivesNineThirtyOnLeaving() {
        QString text2;
        bool timer1Running = true;
        for (QChar c : {QChar(u'9'), QChar(u'3'), QChar(u'0')}) {
            const KeyAction a = Key(F::Text2, c);
            if (a.stopsTimer1) timer1Running = false;
            if (a.kind == KeyAction::Type) text2 += a.ch;
        }
        QCOMPARE(text2, QStringLiteral("930"));
        QVERIFY(!timer1Running);
        QCOMPARE(*TimeLostFocus(text2, timer1Running, QLatin1Char(':')), QStringLiteral("09:30"));
    }

    void timeLostFocus_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("running");
        QTest::addColumn<QString>("result"); // empty: left alone
        QTest::newRow("930") << QStringLiteral("930") << false << QStringLiteral("09:30");
        QTest::newRow("1415") << QStringLiteral("1415") << false << QStringLiteral("14:15");
        QTest::newRow("5") << QStringLiteral("5") << false << QStringLiteral("00:05");
        QTest::newRow("with separator") << QStringLiteral("14:15") << false << QStringLiteral("14:15");
        QTest::newRow("empty") << QString() << false << QString();
        QTest::newRow("timer running") << QStringLiteral("930") << true << QString();
    }
    void timeLostFocus() {
        QFETCH(QString, text);
        QFETCH(bool, running);
        QFETCH(QString, result);
        const std::optional<QString> r = TimeLostFocus(text, running, QLatin1Char(':'));
        QCOMPARE(r.has_value(), !result.isEmpty());
        if (r) QCOMPARE(*r, result);
    }

    // ---- band and mode ----

    void modeSetsTheReports() {
        QCOMPARE(ReportForMode(0), QStringLiteral("59"));
        QCOMPARE(ReportForMode(1), QStringLiteral("599"));
        QCOMPARE(ReportForMode(-1), QStringLiteral("599"));
        QCOMPARE(BandOfText(QStringLiteral("80m")), 80);
        QCOMPARE(BandOfText(QStringLiteral("30m")), 30);
        QCOMPARE(BandOfText(QString()), 0);
    }

    void bandOrModeClickTestsTheCallAgain() {
        const Model m = WorkedModel();
        const BandOrModeResult r =
            BandOrModeClick(m, QStringLiteral("OE5XYZ"), 40, QStringLiteral("CW"), QTime(6, 30), true);
        QVERIFY(r.refreshDbLog);
        QVERIFY(r.check->isDupe);
        QCOMPARE(r.check->warning, QStringLiteral("Station bereits um 06:20 Uhr gearbeitet!"));
        const BandOrModeResult other =
            BandOrModeClick(m, QStringLiteral("OE5XYZ"), 80, QStringLiteral("SSB"), QTime(6, 30), false);
        QVERIFY(!other.refreshDbLog);
        QVERIFY(!other.check->isDupe);
        QVERIFY(
            !BandOrModeClick(m, QStringLiteral("O"), 80, QStringLiteral("SSB"), QTime(6, 30), true).check);
    }

    // ---- operators ----

    void operatorEnterPutsTheCallOnTop() {
        const QStringList list = {QStringLiteral("OE1AA"), QStringLiteral("OE2BB"), QStringLiteral("OE3CC")};
        QCOMPARE(OperatorEnter(list, QStringLiteral("OE3CC")),
                 QStringList({QStringLiteral("OE3CC"), QStringLiteral("OE1AA"), QStringLiteral("OE2BB")}));
        QCOMPARE(OperatorEnter(list, QStringLiteral(" oe4dd ")),
                 QStringList({QStringLiteral("OE4DD"), QStringLiteral("OE1AA"), QStringLiteral("OE2BB"),
                              QStringLiteral("OE3CC")}));
        QCOMPARE(OperatorEnter(list, QStringLiteral("OE1AA")), list);
        QCOMPARE(OperatorEnter(list, QStringLiteral("   ")), list);
        QCOMPARE(OperatorEnter({}, QStringLiteral("OE1AA")), QStringList({QStringLiteral("OE1AA")}));
    }

    void operatorClickMovesTheChoiceToTheTop() {
        const QStringList list = {QStringLiteral("OE1AA"), QStringLiteral("OE2BB"), QStringLiteral("OE3CC")};
        QCOMPARE(OperatorPick(list, 2),
                 QStringList({QStringLiteral("OE3CC"), QStringLiteral("OE1AA"), QStringLiteral("OE2BB")}));
        QCOMPARE(OperatorPick(list, 0), list);
        QCOMPARE(OperatorPick(list, 5), list);
    }

    void twelveOperatorsStoreOnlyTheFirstTen() {
        Home h;
        QStringList list;
        for (int i = 1; i <= 12; ++i)
            list = OperatorEnter(list, QStringLiteral("OE%1OP").arg(i % 10));
        // Ten different calls at most: OE0OP..OE9OP; make two more distinct ones.
        list = OperatorEnter(list, QStringLiteral("OE1XA"));
        list = OperatorEnter(list, QStringLiteral("OE1XB"));
        QCOMPARE(list.size(), 12);
        QCOMPARE(list.first(), QStringLiteral("OE1XB"));
        StoreOperators(list, h.model.IniPath);
        const QStringList stored = LoadOperators(h.model.IniPath);
        QCOMPARE(stored, list.mid(0, 10));
        // A shorter list replaces the section whole.
        StoreOperators({QStringLiteral("OE5ZZ")}, h.model.IniPath);
        QCOMPARE(LoadOperators(h.model.IniPath), QStringList({QStringLiteral("OE5ZZ")}));
    }

    void operatorListIsMostRecentFirst() {
        Home h;
        QStringList list;
        for (const QString& c : {QStringLiteral("OE1AA"), QStringLiteral("OE2BB"), QStringLiteral("OE1AA"),
                                 QStringLiteral("OE3CC")}) {
            list = OperatorEnter(list, c);
            StoreOperators(list, h.model.IniPath);
        }
        QCOMPARE(LoadOperators(h.model.IniPath),
                 QStringList({QStringLiteral("OE3CC"), QStringLiteral("OE1AA"), QStringLiteral("OE2BB")}));
    }

    // ---- menu items ----

    void callDefaultOnFillsAnEmptyCall() {
        Home h;
        const CallVorgabeResult on = CallVorgabeClick(false, QString(), h.model.IniPath);
        QVERIFY(on.checked);
        QCOMPARE(*on.text3, QStringLiteral("OE"));
        QCOMPARE(on.caret, 2);
        QCOMPARE(IniReadInt(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("CallVorgabe")),
                 -1.0);
        QVERIFY(ReadCallVorgabe(h.model.IniPath));
        const CallVorgabeResult busy = CallVorgabeClick(false, QStringLiteral("OE1"), h.model.IniPath);
        QVERIFY(!busy.text3);
        QCOMPARE(busy.caret, -1);
    }

    void callDefaultOffEmptiesABareOE() {
        Home h;
        const CallVorgabeResult off = CallVorgabeClick(true, QStringLiteral("OE"), h.model.IniPath);
        QVERIFY(!off.checked);
        QCOMPARE(*off.text3, QString());
        QCOMPARE(IniReadInt(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("CallVorgabe")),
                 0.0);
        QVERIFY(!ReadCallVorgabe(h.model.IniPath));
        QVERIFY(!CallVorgabeClick(true, QStringLiteral("OE5XYZ"), h.model.IniPath).text3);
        QCOMPARE(ResetCallText(true), QStringLiteral("OE"));
        QCOMPARE(ResetCallText(false), QString());
    }

    void extendedEntryTogglesByThePanelHeight() {
        const EntryPanelLayout ext = EingabeClick(540);
        QCOMPARE(ext.picture3Height, 1080);
        QVERIFY(ext.picture4Visible);
        QCOMPARE(ext.picture5Top, 1400);
        QVERIFY(ext.checked);
        const EntryPanelLayout back = EingabeClick(ext.picture3Height);
        QCOMPARE(back.picture3Height, 540);
        QVERIFY(!back.picture4Visible);
        QCOMPARE(back.picture5Top, 810);
        QVERIFY(!back.checked);
    }

    void extendedEntryIsStored() {
        Home h;
        QVERIFY(!ReadErwEingabe(h.model.IniPath));
        WriteErwEingabe(true, h.model.IniPath);
        QCOMPARE(IniReadInt(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ErwEeingabe")),
                 -1.0);
        QVERIFY(ReadErwEingabe(h.model.IniPath));
        WriteErwEingabe(false, h.model.IniPath);
        QVERIFY(!ReadErwEingabe(h.model.IniPath));
    }
};

QTEST_GUILESS_MAIN(TestEntryKeys)
#include "tst_entry_keys.moc"
