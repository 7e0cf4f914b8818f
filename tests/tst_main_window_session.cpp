// A contest session at the keyboard: an empty log, thirty contacts typed and entered
// with the odd ones a contest brings, the file checked after every Enter, then the
// program closed and started again.
#include "core/tallies.h"
#include "tst_main_window_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

struct Attempt {
    QTime time;
    QString call;
    int band; // list index
    QString bezirk;
    int mode;    // list index
    int answer;  // dupe box answer, 0 when no box is expected
    bool logged; // the contact ends up in the log
    QString box; // an information box expected instead
};

QList<Attempt> Session() {
    const QString districts[] = {QStringLiteral("WI"), QStringLiteral("MD"), QStringLiteral("GZ"),
                                 QStringLiteral("ZZ")};
    QList<Attempt> list;
    QTime t(5, 0);
    for (int i = 0; i < 25; ++i) {
        const QString call =
            QStringLiteral("OE%1%2%3").arg(1 + i % 9).arg(QChar(u'A' + i)).arg(QStringLiteral("XY"));
        list << Attempt{t, call, i % 2, districts[i % 4], (i / 2) % 2, 0, true, {}};
        t = t.addSecs(i == 12 ? 7 * 3600 : 6 * 60); // the second half in the afternoon
    }
    // The odd ones, among the ordinary contacts.
    const Attempt dupeYes{QTime(5, 40), list[1].call, list[1].band, list[1].bezirk,
                          list[1].mode, Msg::Yes,     true,         {}};
    const Attempt dupeNo{QTime(5, 42), list[2].call, list[2].band, list[2].bezirk,
                         list[2].mode, Msg::No,      false,        {}};
    const Attempt state80{QTime(6, 10), QStringLiteral("OEK1"), 1, QStringLiteral("WI"), 0, 0, true, {}};
    const Attempt state40{QTime(6, 12),
                          QStringLiteral("OEB2"),
                          0,
                          QStringLiteral("MD"),
                          0,
                          0,
                          false,
                          QStringLiteral("Staatsfunkstellen dürfen nur auf 80/30m gearbeitet werden!")};
    const Attempt amateur30{QTime(6, 14),
                            QStringLiteral("OE5ZZZ"),
                            2,
                            QStringLiteral("GZ"),
                            1,
                            0,
                            false,
                            QStringLiteral("Amateurfunk-Stationen dürfen nur auf 80/40m gearbeitet werden!")};
    const Attempt noon{QTime(12, 0), QStringLiteral("OE7NOON"), 1, QStringLiteral("ZZ"), 1, 0, true, {}};
    const Attempt state30{QTime(14, 50), QStringLiteral("OEB9"), 2, QStringLiteral("GZ"), 1, 0, true, {}};
    const Attempt afternoonAgain{
        QTime(15, 30), list[1].call, list[1].band, list[1].bezirk, list[1].mode, 0, true, {}};
    list.insert(8, dupeYes);
    list.insert(10, dupeNo);
    list.insert(12, state80);
    list.insert(13, state40);
    list.insert(14, amateur30);
    list.insert(17, noon);
    list << state30 << afternoonAgain;
    return list;
}

QList<QStringList> GridTexts(const LogGridModel& g) {
    QList<QStringList> rows;
    for (int r = 0; r < g.DataRows(); ++r) {
        QStringList row;
        for (int c = 0; c < kGridColumns; ++c)
            row << g.Text(r, c);
        row << QString::number(g.BackColor(r, kGridColDupe));
        rows << row;
    }
    return rows;
}

} // namespace

class TestMainWindowSession : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void thirtyContactsAtTheKeyboardThenCloseAndStartAgain();
};

void TestMainWindowSession::thirtyContactsAtTheKeyboardThenCloseAndStartAgain() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    Model& m = f.home.model;
    const QList<Attempt> session = Session();
    int logged = 0;
    int dupeBand = -1;
    int dupeMode = -1;
    for (const Attempt& a : session) {
        const qsizetype boxesBefore = f.dialogs.boxes.size();
        if (a.answer) f.dialogs.AnswerMsgBox(a.answer);
        f.At(a.time);
        f.Type(a.call, a.band, a.bezirk, a.mode);
        const QString what = a.call + QLatin1Char(' ') + a.time.toString();
        if (a.logged) ++logged;
        QVERIFY2(m.LogRecords.size() == size_t(logged), qPrintable(what));
        QCOMPARE(f.Grid().DataRows(), logged);
        if (a.answer) {
            QCOMPARE(f.dialogs.boxes.size(), boxesBefore + 1);
            QCOMPARE(f.dialogs.LastBox()->flags, 292);
        } else if (!a.box.isEmpty()) {
            QCOMPARE(f.dialogs.boxes.size(), boxesBefore + 1);
            QCOMPARE(f.dialogs.LastBox()->text, a.box);
        } else {
            QVERIFY2(f.dialogs.boxes.size() == boxesBefore, qPrintable(what));
            QVERIFY2(f.Label13()->text().isEmpty(), qPrintable(f.Label13()->text()));
        }
        if (a.answer == Msg::Yes) {
            QCOMPARE(m.LogRecords.back().Status, 1);
            dupeBand = BandColumn(m.LogRecords.back().Band);
            dupeMode = a.mode;
        }
        // The file on disk is the log in memory, byte for byte, after every Enter.
        QCOMPARE(f.FileBytes(), ToCp1252(m.LogText));
        Model copy = m;
        QCOMPARE(f.FileBytes(), ToCp1252(BuildLogText(copy, false, 2026)));
    }
    QCOMPARE(logged, 30);
    const auto noon = std::find_if(m.LogRecords.begin(), m.LogRecords.end(),
                                   [](const QsoRecord& r) { return r.Call == QLatin1String("OE7NOON"); });
    QVERIFY(noon != m.LogRecords.end());
    QCOMPARE(noon->Zeit, QStringLiteral("12:00:00"));
    QCOMPARE(m.DupeCount, 1);
    QCOMPARE(m.QsoCount, 28.0); // thirty, less the dupe and the 30 m contact
    QCOMPARE(m.StaatsfunkRecords.size(), size_t(2));

    // Close and start again.
    const QByteArray file = f.FileBytes();
    const QList<QStringList> grid = GridTexts(f.Grid());
    const Model before = m;
    f.window->close();
    QCOMPARE(f.FileBytes(), file);

    Model again;
    again.SetLocale(AustrianLocale());
    HauptForm second(again, f.dialogs, f.clock);
    QVERIFY(second.Load());
    QCOMPARE(GridTexts(second.Grid()), grid);
    QCOMPARE(again.LogText, before.LogText);
    QCOMPARE(again.CallIndex, before.CallIndex);
    QCOMPARE(again.QsoCount, before.QsoCount);
    QCOMPARE(again.DupeCount, before.DupeCount);
    CompareMultiplierTallies(again, before);
    if (QTest::currentTestFailed()) return;
    // An entered dupe ran the band and mode counters, which a fresh count leaves out:
    // the one difference a restart shows.
    auto modeBand = before.ModeBandCount;
    auto periodBand = before.PeriodBandCount;
    modeBand[size_t(dupeMode)][size_t(dupeBand)] -= 1;
    periodBand[size_t(dupeMode * 2)][size_t(dupeBand)] -= 1; // the dupe was a morning contact
    QCOMPARE(again.ModeBandCount, modeBand);
    QCOMPARE(again.PeriodBandCount, periodBand);
    second.close();
    QCOMPARE(f.FileBytes(), file);
}

QTEST_MAIN(TestMainWindowSession)
#include "tst_main_window_session.moc"
