// Figures for the log core: load, rebuild, rewrite and dupe look-up on generated logs
// of 1,000, 10,000 and 100,000 contacts. Prints medians; judges nothing.
#include "bench_support.h"
#include "core/atomic_file.h"
#include "core/call_index.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

using namespace kolibrino;

using namespace kolibrino::bench;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir(QDir::currentPath() + QStringLiteral("/bench-XXXXXX"));
    // KOLIBRINO_BENCH_KEEP=1 keeps the generated logs for a profiler.
    if (qEnvironmentVariableIsSet("KOLIBRINO_BENCH_KEEP")) {
        dir.setAutoRemove(false);
        std::printf("Logs in %s\n", qPrintable(dir.path()));
    }
    std::printf("%-8s %10s %10s %6s %10s %10s %10s %6s %10s %12s %12s\n", "QSOs", "read+dec", "load", "ratio",
                "rebuild", "write+fs", "atomic", "ratio", "enc+atomic", "dupe-miss", "dupe-hit");
    for (const int count : {1000, 10000, 100000}) {
        Model m;
        m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        m.LogFolder = dir.path() + QLatin1Char('/');
        m.CurrentLogName = QStringLiteral("bench%1.KOLBO").arg(count);
        FillGeneratedLog(m, count, 42);
        const QByteArray bytes = ToCp1252(m.LogText);
        const QString path = m.LogFolder + m.CurrentLogName;
        WriteFileAtomic(path, bytes);

        const int runs = count >= 100000 ? 7 : 21;
        const double readDecode = MedianMs(runs, [&] {
            bool ok = false;
            const QString t = FromCp1252(ReadWholeFile(path, &ok));
            if (t.isEmpty()) std::abort();
        });
        ScriptedDialogs d;
        // The models are made and destroyed outside the timing: only the load counts.
        std::vector<Model> targets;
        targets.resize(size_t(runs));
        size_t next = 0;
        const double load = MedianMs(runs, [&] {
            if (!LoadLog(targets[next++], d, path)) std::abort();
        });
        targets.clear();
        const double rebuild = MedianMs(runs, [&] { BuildLogText(m, true, 2026); });
        const QString plainPath = m.LogFolder + QStringLiteral("plain.bin");
        const double plain = MedianMs(7, [&] { PlainWriteFsync(plainPath, bytes); });
        // The rewrite proper (the bytes as the entry path keeps them), and with the
        // encoding of the whole text on top, as after a correction.
        const double atomic = MedianMs(7, [&] {
            if (!WriteFileAtomic(path, bytes).isEmpty()) std::abort();
        });
        const double encodeWrite = MedianMs(7, [&] {
            if (!WriteLogFile(m).isEmpty()) std::abort();
        });
        // Look-ups: a call not in the log (the whole index is searched) and a worked one.
        const QString worked = m.LogRecords[size_t(count / 2)].Call;
        volatile bool sink = false;
        const double miss = MedianMs(201, [&] {
            sink = CallExistTest(m, QStringLiteral("OE9ZZZZ"), 40, QStringLiteral("SSB"), QTime(6, 0)).isDupe;
        });
        const double hit = MedianMs(
            201, [&] { sink = CallExistTest(m, worked, 40, QStringLiteral("SSB"), QTime(6, 0)).found; });
        (void)sink;
        std::printf("%-8d %8.2fms %8.2fms %5.2fx %8.2fms %8.2fms %8.2fms %5.2fx %8.2fms %10.4fms %10.4fms\n",
                    count, readDecode, load, load / readDecode, rebuild, plain, atomic, atomic / plain,
                    encodeWrite, miss, hit);
    }
    std::printf(
        "Ziele: Laden (100.000) <= 3x Lesen+Dekodieren; Schreiben <= 1,5x write+fsync; Dupe-Suche < 1 ms\n");
    return 0;
}
