// Damaged input never crashes, hangs or loses the model's consistency: thousands of
// truncated, mutated and random log files, district tables and settings files.
#include "core/call_index.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "core/tallies.h"
#include "test_support.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

QByteArray Mutate(QByteArray b, QRandomGenerator& rng) {
    static const char interesting[] = {'\xb6', '\xd7', '[', ']', ':', '\r', '\n',
                                       '0',    '9',    '-', ';', ' ', '\0', '.'};
    const int edits = 1 + int(rng.bounded(8));
    for (int i = 0; i < edits; ++i) {
        const int kind = int(rng.bounded(5));
        const qsizetype at = b.isEmpty() ? 0 : qsizetype(rng.bounded(quint32(b.size())));
        const char c =
            rng.bounded(2) ? interesting[rng.bounded(quint32(sizeof interesting))] : char(rng.bounded(256));
        switch (kind) {
        case 0:
            if (!b.isEmpty()) b[at] = c;
            break;
        case 1:
            b.insert(at, c);
            break;
        case 2:
            b.remove(at, qsizetype(rng.bounded(16)));
            break;
        case 3:
            b.truncate(at);
            break;
        default:
            b.insert(at, b.mid(at / 2, qsizetype(rng.bounded(64))));
            break;
        }
    }
    return b;
}

QByteArray RandomBytes(QRandomGenerator& rng, int max) {
    QByteArray b(qsizetype(rng.bounded(max)), Qt::Uninitialized);
    for (char& c : b)
        c = char(rng.bounded(256));
    return b;
}

void CheckConsistent(const Model& m) {
    // One index entry per record (a call never holds the pilcrow: it splits the line).
    const qsizetype entries = m.CallIndex.count(kPilcrow) - 1;
    QCOMPARE(size_t(entries), m.LogRecords.size());
    QVERIFY(m.CallIndex.startsWith(kPilcrow));
}

} // namespace

class TestRobustness : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;

private slots:
    void initTestCase() {
        PinLocale();
        home = std::make_unique<Home>();
        WriteBytes(home->model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        ScriptedDialogs d;
        LoadBezirkTable(home->model, d);
    }

    void damagedLogsLoadOrFailCleanly() {
        QRandomGenerator rng(20260501);
        const QByteArray seed = ReadBytes(FixturePath(QStringLiteral("basic.KOLBO")));
        QVERIFY(!seed.isEmpty());
        const QString path = home->model.LogFolder + QStringLiteral("fuzz.KOLBO");
        int failures = 0, loads = 0;
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 4000; ++i) {
            QByteArray bytes;
            switch (i % 4) {
            case 0:
                bytes = seed.left(qsizetype(rng.bounded(quint32(seed.size() + 1))));
                break;
            case 1:
            case 2:
                bytes = Mutate(seed, rng);
                break;
            default:
                bytes = RandomBytes(rng, 2000);
                break;
            }
            WriteBytes(path, bytes);
            ScriptedDialogs d;
            Model& m = home->model;
            if (LoadLog(m, d, path) == 1) {
                ++loads;
                QVERIFY(d.boxes.isEmpty());
                CheckConsistent(m);
                RebuildTallies(m);
                BuildLogText(m, true, 2026);
                CheckConsistent(m);
                for (const QsoRecord& r : m.LogRecords)
                    CallExistTest(m, r.Call, r.Band, r.Mode, QTime(5, 0));
            } else {
                ++failures;
                QCOMPARE(d.boxes.size(), 1);
                QCOMPARE(d.boxes[0].text, LoadFailureText(path));
                QVERIFY(m.LogRecords.empty());
                QCOMPARE(m.CallIndex, QString(kPilcrow));
                QCOMPARE(m.Header.MYCALL, QString());
            }
        }
        qInfo("%d loads, %d failures in %lld ms", loads, failures, clock.elapsed());
        QVERIFY(loads > 0);
        QVERIFY(failures > 0);
    }

    void damagedDistrictTablesNeverHang() {
        QRandomGenerator rng(4711);
        const QByteArray seed = SmallDistrictTable().repeated(3);
        for (int i = 0; i < 3000; ++i) {
            const QByteArray bytes = (i % 3 == 2) ? RandomBytes(rng, 400) : Mutate(seed, rng);
            WriteBytes(home->model.DataFolder + QStringLiteral("bez_koord.txt"), bytes);
            ScriptedDialogs d; // every error trap is cancelled
            Model m;
            m.DataFolder = home->model.DataFolder;
            const int n = LoadBezirkTable(m, d);
            QCOMPARE(size_t(n), m.BezirkRecords.empty() ? size_t(0) : m.BezirkRecords.size() - 1);
            if (!m.BezirkRecords.empty()) QCOMPARE(m.BezirkRecords[0].Code, QString());
            QVERIFY(m.BezirkIndex.size() <= 600);
            for (const BezirkRecord& b : m.BezirkRecords)
                BezirkNumber(m, b.Code);
        }
    }

    void damagedSettingsFilesReadAsWellAsTheyCan() {
        QRandomGenerator rng(1234);
        const QByteArray seed("[EINSTELLUNGEN]\r\nBand=1\r\nMode=0\r\n[OPCALLS]\r\nOE1ABC\r\nOE3XYZ\r\n["
                              "Pathe]\r\nLastLogFile=a.KOLBO\r\n");
        const QString ini = home->Path(QStringLiteral("fuzz.INI"));
        for (int i = 0; i < 3000; ++i) {
            WriteBytes(ini, (i % 3 == 2) ? RandomBytes(rng, 300) : Mutate(seed, rng));
            // What is read back is what the damaged file says, or 0: never a value from elsewhere.
            const double band = IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band"));
            QCOMPARE(band, double(ProfileInt(
                               IniReadString(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band")))));
            QStringList list;
            IniReadSection(ini, QStringLiteral("OPCALLs"), list);
            IniWrite(ini, QStringLiteral("Einstellungen"), QStringLiteral("Mode"), 1);
            QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Mode")), 1.0);
            IniWriteSection(ini, QStringLiteral("OPCALLs"), {QStringLiteral("OE1A")});
            list.clear();
            IniReadSection(ini, QStringLiteral("OPCALLs"), list);
            QCOMPARE(list, QStringList{QStringLiteral("OE1A")});
        }
    }
};

QTEST_GUILESS_MAIN(TestRobustness)
#include "tst_robustness.moc"
