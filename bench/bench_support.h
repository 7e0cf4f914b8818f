// Helpers of the benchmarks: medians of repeated timings, a plain write plus fsync to
// compare against, and generated logs.
#pragma once

#include "core/log_file.h"
#include "core/log_model.h"
#include "core/paths.h"
#include "core/settings.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <unistd.h>
#include <vector>

namespace kolibrino::bench {

inline double Median(std::vector<double> t) {
    std::sort(t.begin(), t.end());
    return t[t.size() / 2];
}

inline double ElapsedMs(const std::function<void()>& f) {
    QElapsedTimer c;
    c.start();
    f();
    return double(c.nsecsElapsed()) / 1e6;
}

inline double MedianMs(int runs, const std::function<void()>& f) {
    std::vector<double> t;
    for (int i = 0; i < runs; ++i)
        t.push_back(ElapsedMs(f));
    return Median(std::move(t));
}

// What any program pays at the least to put the bytes on disk.
inline void PlainWriteFsync(const QString& path, const QByteArray& bytes) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return;
    if (::write(fd, bytes.constData(), size_t(bytes.size())) != bytes.size()) std::perror("write");
    ::fsync(fd);
    ::close(fd);
}

inline const char* const kBenchDistricts[] = {"WI", "MD", "GZ", "ZZ"};

// The district table the generated logs use.
inline QByteArray BenchDistrictTable() {
    return QByteArray("WI;500;200;Wien;1;\r\nMD;480;230;M\xf6"
                      "dling;3;\r\nGZ;420;420;Graz;6;\r\nZZ;10;10;Testbezirk;9;\r\n");
}

// count contacts with distinct calls, random bands, modes, districts and times in both
// periods; one in fifty a stored dupe. The text and the index are built too.
inline void FillGeneratedLog(Model& m, int count, quint32 seed = 7) {
    QRandomGenerator rng(seed);
    m.Header = DefaultHeader(m);
    m.Header.MYCALL = QStringLiteral("OE3XYZ");
    m.Header.MYBZ = QStringLiteral("MD");
    m.Header.MYOPCALL = QStringLiteral("OE3XYZ");
    m.LogRecords.clear();
    m.LogRecords.reserve(size_t(count));
    for (int i = 0; i < count; ++i) {
        QsoRecord r;
        r.Call = QStringLiteral("OE%1%2").arg(1 + rng.bounded(9)).arg(i, 5, 36, QLatin1Char('A')).toUpper();
        r.Band = rng.bounded(2) ? 40 : 80;
        r.Bezirk = QString::fromLatin1(kBenchDistricts[rng.bounded(4)]);
        r.Datum = QStringLiteral("01.05.2026");
        const int secs = (rng.bounded(2) ? 5 * 3600 : 14 * 3600) + int(rng.bounded(3 * 3600));
        r.Zeit = m.Formats.RecordTime(QTime::fromMSecsSinceStartOfDay(secs * 1000));
        r.RstGesendet = r.RstEmpfangen = QStringLiteral("59");
        r.Mode = r.ModeRx = rng.bounded(3) ? QStringLiteral("SSB") : QStringLiteral("CW");
        r.Status = rng.bounded(50) == 0 ? Status::Dupe : Status::Normal;
        r.Operator = QStringLiteral("OE3XYZ");
        r.BandRx = QStringLiteral("0");
        r.Frequenz = r.Band == 40 ? 7050.5f : 3650.0f;
        r.LaufNr = float(i);
        m.LogRecords.push_back(r);
    }
    BuildLogText(m, true, 2026);
}

// Makes `home` the DataFolder of this run (KOLIBRINO_HOME), with its folders, the small
// bench district table and the time offset at zero, and sets base up for it.
inline void PrepareBenchHome(Model& base, const QTemporaryDir& home) {
    qputenv("KOLIBRINO_HOME", home.path().toLocal8Bit());
    base.SetLocale(QLocale(QLocale::German, QLocale::Austria));
    SetupFolders(base);
    QFile f(base.DataFolder + QStringLiteral("bez_koord.txt"));
    if (f.open(QIODevice::WriteOnly)) f.write(BenchDistrictTable());
    f.close();
    IniWrite(base.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), 12);
}

} // namespace kolibrino::bench
