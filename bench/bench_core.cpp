// Figures for the log core: load, rebuild, rewrite and dupe look-up on generated logs
// of 1,000, 10,000 and 100,000 contacts. Prints medians; judges nothing.
#include "core/atomic_file.h"
#include "core/call_index.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

using namespace kolibrino;

namespace {

double MedianMs(int runs, const std::function<void()>& f) {
    std::vector<double> t;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer c;
        c.start();
        f();
        t.push_back(double(c.nsecsElapsed()) / 1e6);
    }
    std::sort(t.begin(), t.end());
    return t[t.size() / 2];
}

QString RandomCall(QRandomGenerator& rng) {
    static const char* prefixes[] = {"OE1", "OE3", "OE5", "OE6", "OE8", "OEY", "DL", "OK1", "S5"};
    QString c = QString::fromLatin1(prefixes[rng.bounded(9)]);
    const int n = 2 + int(rng.bounded(2));
    for (int i = 0; i < n; ++i) c += QChar(u'A' + char16_t(rng.bounded(26)));
    return c;
}

void Generate(Model& m, int count) {
    QRandomGenerator rng(42);
    m.Header = DefaultHeader(m);
    m.Header.MYCALL = QStringLiteral("OE3XYZ");
    m.Header.MYBZ = QStringLiteral("MD");
    const char* codes[] = {"WI", "MD", "GZ", "ZZ"};
    for (int i = 0; i < count; ++i) {
        QsoRecord r;
        r.Call = RandomCall(rng);
        r.Band = rng.bounded(2) ? 40 : 80;
        r.Bezirk = QString::fromLatin1(codes[rng.bounded(4)]);
        r.Datum = QStringLiteral("01.05.2026");
        const int secs = (rng.bounded(2) ? 5 * 3600 : 14 * 3600) + int(rng.bounded(3 * 3600));
        r.Zeit = m.Formats.RecordTime(QTime::fromMSecsSinceStartOfDay(secs * 1000));
        r.RstGesendet = r.RstEmpfangen = QStringLiteral("59");
        r.Mode = r.ModeRx = rng.bounded(3) ? QStringLiteral("SSB") : QStringLiteral("CW");
        r.Operator = QStringLiteral("OE3XYZ");
        r.BandRx = QStringLiteral("0");
        r.Frequenz = r.Band == 40 ? 7050.5f : 3650.0f;
        r.LaufNr = float(i);
        m.LogRecords.push_back(r);
    }
    BuildLogText(m, true, 2026);
}

double PlainWriteFsyncMs(const QString& path, const QByteArray& bytes) {
    return MedianMs(7, [&] {
        const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd < 0) return;
        if (::write(fd, bytes.constData(), size_t(bytes.size())) < 0) std::perror("write");
        ::fsync(fd);
        ::close(fd);
    });
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir(QDir::currentPath() + QStringLiteral("/bench-XXXXXX"));
    // KOLIBRINO_BENCH_KEEP=1 keeps the generated logs for a profiler.
    if (qEnvironmentVariableIsSet("KOLIBRINO_BENCH_KEEP")) {
        dir.setAutoRemove(false);
        std::printf("Logs in %s\n", qPrintable(dir.path()));
    }
    std::printf("%-8s %10s %10s %6s %10s %10s %10s %6s %10s %12s %12s\n", "QSOs", "read+dec", "load", "ratio", "rebuild",
                "write+fs", "atomic", "ratio", "enc+atomic", "dupe-miss", "dupe-hit");
    for (const int count : {1000, 10000, 100000}) {
        Model m;
        m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        m.LogFolder = dir.path() + QLatin1Char('/');
        m.CurrentLogName = QStringLiteral("bench%1.KOLBO").arg(count);
        Generate(m, count);
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
        std::vector<Model> targets; targets.resize(size_t(runs));
        size_t next = 0;
        const double load = MedianMs(runs, [&] {
            if (!LoadLog(targets[next++], d, path)) std::abort();
        });
        targets.clear();
        const double rebuild = MedianMs(runs, [&] { BuildLogText(m, true, 2026); });
        const double plain = PlainWriteFsyncMs(m.LogFolder + QStringLiteral("plain.bin"), bytes);
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
        const double hit = MedianMs(201, [&] {
            sink = CallExistTest(m, worked, 40, QStringLiteral("SSB"), QTime(6, 0)).found;
        });
        (void)sink;
        std::printf("%-8d %8.2fms %8.2fms %5.2fx %8.2fms %8.2fms %8.2fms %5.2fx %8.2fms %10.4fms %10.4fms\n", count,
                    readDecode, load, load / readDecode, rebuild, plain, atomic, atomic / plain, encodeWrite, miss, hit);
    }
    std::printf("Ziele: Laden (100.000) <= 3x Lesen+Dekodieren; Schreiben <= 1,5x write+fsync; Dupe-Suche < 1 ms\n");
    return 0;
}
