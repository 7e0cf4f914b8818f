// kolibrino-cli: the scoring commands.
//
//   kolibrino-cli score FILE                  every figure of the result window
//   kolibrino-cli results FILE                the bytes of the results text file
//   kolibrino-cli map FILE OUT.png [FILTER]   the filled district map as a PNG
//   kolibrino-cli rate FILE                   contacts per 10-minute slot of both periods
//   kolibrino-cli needed FILE                 districts and federal states still missing
//
// Called by cli.cpp's main only, on the main thread. Each reads the log as a reopened
// log (load, then the counters rebuilt from the records). A damaged log: the load
// failure text on standard error, status 1; a map that cannot be read or written:
// a German message on standard error, status 1.
#include "app/cli_scoring.h"

#include "app/console_dialogs.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/settings.h"
#include "core/tallies.h"
#include "scoring/map_paint.h"
#include "scoring/needed.h"
#include "scoring/rate.h"
#include "scoring/score.h"

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <cstdio>

namespace kolibrino {

namespace {

void Write(const QByteArray& b) {
    std::fwrite(b.constData(), 1, size_t(b.size()), stdout);
}

bool LoadForScore(Model& m, Dialogs& dialogs, const QString& path) {
    m.SetLocale(QLocale::system());
    m.Header = DefaultHeader(m);
    IniStartup(m, QCoreApplication::applicationDirPath());
    SetupFolders(m);
    CopyShippedData(m);
    const QFileInfo file(path);
    m.LogFolder = file.absolutePath() + QLatin1Char('/');
    m.CurrentLogName = file.fileName();
    LoadBezirkTable(m, dialogs);
    if (!LoadLog(m, dialogs, file.absoluteFilePath())) return false;
    RebuildTallies(m);
    return true;
}

} // namespace

std::optional<int> ScoringCommand(const QStringList& args) {
    if (args.isEmpty()) return std::nullopt;
    const QString& command = args[0];
    const bool score = command == QLatin1String("score") && args.size() == 2;
    const bool results = command == QLatin1String("results") && args.size() == 2;
    const bool map = command == QLatin1String("map") && (args.size() == 3 || args.size() == 4);
    const bool rate = command == QLatin1String("rate") && args.size() == 2;
    const bool needed = command == QLatin1String("needed") && args.size() == 2;
    if (!score && !results && !map && !rate && !needed) return std::nullopt;

    Model m;
    ConsoleDialogs dialogs;
    if (!LoadForScore(m, dialogs, args[1])) return 1;
    if (score) {
        QString text;
        for (const auto& [caption, value] : ScoreLabels(ComputeScore(m)))
            text += caption + QStringLiteral(": ") + value + QLatin1Char('\n');
        Write(text.toLocal8Bit());
        return 0;
    }
    if (rate) {
        SystemTimeSource clock;
        Write(RateText(CountRate(m, ContestNow(clock, m.ZeitOffset))).toLocal8Bit());
        return 0;
    }
    if (needed) {
        Write(NeededText(m, ComputeNeeded(m)).toLocal8Bit());
        return 0;
    }
    if (results) {
        SystemTimeSource clock;
        Write(ToCp1252(ResultsText(m, ComputeScore(m), ContestNow(clock, m.ZeitOffset).date().year())));
        return 0;
    }
    int filter = 0;
    if (args.size() == 4) {
        bool ok = false;
        filter = args[3].toInt(&ok);
        if (!ok || filter < 0 || filter > 8) {
            std::fputs("Filter muss eine Zahl von 0 bis 8 sein\n", stderr);
            return 2;
        }
    }
    QImage image = LoadMapImage(m.DataFolder + QStringLiteral("BZ_Karte.gif"));
    if (image.isNull()) {
        std::fputs("Karte BZ_Karte.gif kann nicht gelesen werden\n", stderr);
        return 1;
    }
    const MapColours colours = ReadMapColours();
    if (filter == 0)
        PaintStandard(image, m, colours);
    else
        PaintFilter(image, m, colours, filter);
    if (!image.save(args[2], "PNG")) {
        std::fputs("Bild kann nicht geschrieben werden\n", stderr);
        return 1;
    }
    return 0;
}

} // namespace kolibrino
