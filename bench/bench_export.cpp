// Export benchmarks: the Cabrillo and ADIF files of 10,000 and 100,000 contacts
// (built and written atomically, as the menus do) against a plain write plus fsync of
// the same bytes, and the upload of a 10,000-contact Cabrillo file to a lighttpd on
// loopback up to the judged reply.
#include "bench/bench_support.h"
#include "core/atomic_file.h"
#include "entry/log_grid_model.h"
#include "export/adif.h"
#include "export/cabrillo.h"
#include "export/submission.h"
#include "tests/upload_server.h"

#include <QCoreApplication>
#include <QTemporaryDir>

using namespace kolibrino;
using namespace kolibrino::bench;
using namespace kolibrino::exporting;

// Medians of a and b run in turn (a b a b ...), so that a disk that is slower for a
// while on a shared machine weighs on both alike.
static std::pair<double, double> PairedMedianMs(int runs, const std::function<void()>& a,
                                                const std::function<void()>& b) {
    std::vector<double> ta, tb;
    for (int i = 0; i < runs; ++i) {
        ta.push_back(ElapsedMs(a));
        tb.push_back(ElapsedMs(b));
    }
    return {Median(std::move(ta)), Median(std::move(tb))};
}

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const ScoreFunction score = [](const Model&) { return std::optional<long>(12345); };
    QString cabrillo10k;
    for (int n : {10'000, 100'000}) {
        Model m;
        m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        FillGeneratedLog(m, n);
        LogGridModel grid(m.Formats);
        DatenInGrid1Neu(m, grid);
        const CabrilloSource src{m, grid, m.Header.MYBZ, 2026};
        const QString cab = dir.filePath(QStringLiteral("c%1.log").arg(n));
        const QString adi = dir.filePath(QStringLiteral("a%1.adi").arg(n));
        const QString plain = dir.filePath(QStringLiteral("plain"));
        const int runs = n > 10'000 ? 5 : 11;
        const QByteArray cabBytes = *BuildCabrilloBytes(src, score);
        const QByteArray adiBytes = BuildAdifBytes(m, grid, m.Header.MYBZ);
        const auto [tCab, tCabPlain] = PairedMedianMs(
            runs, [&] { WriteCabrillo(src, score, cab); }, [&] { PlainWriteFsync(plain, cabBytes); });
        const auto [tAdi, tAdiPlain] = PairedMedianMs(
            runs, [&] { if (!WriteFileAtomic(adi, BuildAdifBytes(m, grid, m.Header.MYBZ)).isEmpty()) std::abort(); },
            [&] { PlainWriteFsync(plain, adiBytes); });
        std::printf(
            "%7d Kontakte  Cabrillo %8.2f ms (%lld Bytes), reines Schreiben+fsync %7.2f ms, Faktor %.2f\n", n,
            tCab, (long long)cabBytes.size(), tCabPlain, tCab / tCabPlain);
        std::printf(
            "%7d Kontakte  ADIF     %8.2f ms (%lld Bytes), reines Schreiben+fsync %7.2f ms, Faktor %.2f\n", n,
            tAdi, (long long)adiBytes.size(), tAdiPlain, tAdi / tAdiPlain);
        if (n == 10'000) cabrillo10k = cab;
    }

    test::UploadServer server;
    if (!server.WaitReady()) {
        std::printf("Upload: lighttpd startet nicht, keine Messung\n");
        return 0;
    }
    SendRequest r;
    r.server = server.Host();
    r.file = cabrillo10k;
    r.check = true;
    int sent = 0;
    const double tUp = MedianMs(7, [&] { sent += SendCabrilloFile(r).kind == SendOutcome::Sent; });
    std::printf(
        "Upload 10000 Kontakte (%lld Bytes) an lighttpd auf 127.0.0.1 bis zur geprüften Antwort: %.2f ms "
        "(%d von 7 bestätigt)\n",
        (long long)QFileInfo(cabrillo10k).size(), tUp, sent);
    return 0;
}
