// A rig that vanishes during a session of logged contacts: rigctld is killed, the
// frequency window turns OFFLINE, logging goes on from the fields, the window thread
// never waits for the rig, and after a restart the frequency flows again.
#include "rig_window_support.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QtTest>

using namespace kolibrino;
using namespace kolibrino::rig;
using namespace kolibrino::test;

namespace {
// Longest gap between ticks of a 5 ms timer on the window thread.
class StallMeter : public QObject {
public:
    StallMeter() {
        timer_.setInterval(5);
        QObject::connect(&timer_, &QTimer::timeout, this, [this] {
            const qint64 now = clock_.nsecsElapsed();
            if (last_ >= 0) longest_ = std::max(longest_, now - last_);
            last_ = now;
        });
        clock_.start();
        timer_.start();
    }
    double LongestMs() const { return double(longest_) / 1e6; }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    qint64 last_ = -1;
    qint64 longest_ = 0;
};
} // namespace

class TestRigFault : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void rigctldKilledMidSessionLoggingGoesOn();
    void statusTextNeverReachesLoggedFields();
};

void TestRigFault::rigctldKilledMidSessionLoggingGoesOn() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("LSB"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    QTRY_COMPARE(f.FText(10)->text(), QStringLiteral("050"));
    f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
    f.Type(QStringLiteral("OE1AAB"), 0, QStringLiteral("WI"));
    QCOMPARE(int(f.home.model.LogRecords.size()), 2);
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 7050.0f);

    StallMeter stalls;
    QElapsedTimer gone;
    f.daemon.Kill();
    gone.start();
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("OFFLINE"), 2000);
    qInfo("OFFLINE after %lld ms", gone.elapsed());

    // Logging goes on: the fields as they stand, a typed one, and the band default of a
    // closed window.
    f.Type(QStringLiteral("OE1AAC"), 0, QStringLiteral("WI"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 7050.0f);
    f.FText(11)->clear();
    QTest::keyClicks(f.FText(11), QStringLiteral("612"));
    f.Type(QStringLiteral("OE3AAD"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3612.0f);
    QCOMPARE(int(f.home.model.LogRecords.size()), 4);
    QVERIFY(f.window->FileUpToDate());
    QTest::qWait(1500); // reconnect attempts against a dead port

    Rigctld again(f.daemon.Port());
    QVERIFY(again.Start());
    QVERIFY(again.Set({QStringLiteral("F"), QStringLiteral("7020000")}));
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("ONLINE"), 3000);
    QTRY_COMPARE(f.FText(10)->text(), QStringLiteral("020"));
    QVERIFY(again.Set({QStringLiteral("F"), QStringLiteral("3555000")}));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
    QTRY_COMPARE(f.FText(11)->text(), QStringLiteral("555"));
    f.Type(QStringLiteral("OE3AAE"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3555.0f);
    QVERIFY(f.FileBytes().contains("3555"));

    // The window thread never waited for the rig. Figures against the 100 ms target
    // come from bench_rig; here only a wait on the rig (hundreds of ms) would fail.
    qInfo("longest stall of the window thread: %.1f ms", stalls.LongestMs());
    QVERIFY2(stalls.LongestMs() < 400, qPrintable(QString::number(stalls.LongestMs())));
}

void TestRigFault::statusTextNeverReachesLoggedFields() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("3650000")));
    QTRY_COMPARE(f.FText(11)->text(), QStringLiteral("650"));
    f.daemon.Kill();
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("OFFLINE"), 2000);
    QTest::qWait(600);
    for (const int n : {10, 11, 9}) {
        bool digits = true;
        for (const QChar c : f.FText(n)->text())
            digits = digits && c.isDigit();
        QVERIFY2(digits, qPrintable(f.FText(n)->text()));
    }
    QCOMPARE(f.FText(11)->text(), QStringLiteral("650"));
    QVERIFY(f.FLabel(1)->text().contains(QRegularExpression(QStringLiteral("^\\d+\\.\\d{3}\\.\\d{3}$"))));
    f.Type(QStringLiteral("OE3XYZ"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3650.0f);
    QVERIFY(!f.FileBytes().contains("antwortet"));
}

QTEST_MAIN(TestRigFault)
#include "tst_rig_fault.moc"
