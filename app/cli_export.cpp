// kolibrino-cli: the export commands.
//
//   kolibrino-cli cabrillo FILE                      the Cabrillo file's bytes
//   kolibrino-cli adif FILE                          the ADIF file's bytes
//   kolibrino-cli check FILE                         nothing and 0 when the Cabrillo file
//                                                    passes the check, else the message and 1
//   kolibrino-cli upload FILE [--server HOST[:PORT]] sends a Cabrillo file: ping, MD5, check,
//                                                    upload, echo judged; 0 only on a match
//
// Exit status 0 on success, 1 when the log cannot be loaded or the file not made,
// 2 on wrong use. Returns -1 for a command that is not one of these.
#include "app/console_dialogs.h"
#include "core/atomic_file.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "entry/log_grid_model.h"
#include "export/adif.h"
#include "export/cabrillo.h"
#include "export/check_cabrillo.h"
#include "export/submission.h"
#include "scoring/score.h"

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <cstdio>

using namespace kolibrino;

namespace {

// The claimed score of the command line's Cabrillo file: the result window's total
// for the log as loaded.
std::optional<long> CliClaimedScore(const Model& m) {
    return ClaimedScoreValue(m);
}

void WriteOut(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

// The model with its folders and settings, the log loaded and the grid filled as after
// a load. False when the log cannot be loaded (the box went to standard error).
bool LoadForExport(Model& m, LogGridModel& grid, const QString& path) {
    ConsoleDialogs dialogs;
    const QFileInfo file(path);
    m.LogFolder = file.absolutePath() + QLatin1Char('/');
    m.CurrentLogName = file.fileName();
    LoadBezirkTable(m, dialogs);
    if (!LoadLog(m, dialogs, file.absoluteFilePath())) return false;
    DatenInGrid1Neu(m, grid);
    return true;
}

} // namespace

int CliExport(const QStringList& args) {
    const QString command = args.value(0);
    const bool known = command == QLatin1String("cabrillo") || command == QLatin1String("adif") ||
                       command == QLatin1String("check") || command == QLatin1String("upload");
    if (!known) return -1;
    if (command == QLatin1String("upload")) {
        if (args.size() != 2 && !(args.size() == 4 && args[2] == QLatin1String("--server"))) return 2;
        Model m;
        IniStartup(m, QCoreApplication::applicationDirPath());
        SetupFolders(m);
        exporting::SendRequest r;
        r.server = args.size() == 4 ? args[3].trimmed() : exporting::LogServerSetting();
        r.file = QFileInfo(args[1]).absoluteFilePath();
        r.check = true;
        r.formats = LocaleFormats(QLocale::system());
        const exporting::SendOutcome o = exporting::SendCabrilloFile(r);
        if (o.kind == exporting::SendOutcome::Sent) return 0;
        std::fputs(qPrintable(exporting::OutcomeText(o, r.file) + QLatin1Char('\n')), stderr);
        return 1;
    }
    if (args.size() != 2) return 2;
    if (command == QLatin1String("check")) {
        bool ok = false;
        QString error;
        const QByteArray bytes = ReadWholeFile(args[1], &ok, &error);
        if (!ok) {
            std::fputs(qPrintable(error + QLatin1Char('\n')), stderr);
            return 1;
        }
        const QString message = exporting::CheckCabrillo(FromCp1252(bytes), LocaleFormats(QLocale::system()));
        if (message.isEmpty()) return 0;
        WriteOut((message + QLatin1Char('\n')).toUtf8());
        return 1;
    }

    Model m;
    m.SetLocale(QLocale::system());
    m.Header = DefaultHeader(m);
    IniStartup(m, QCoreApplication::applicationDirPath());
    SetupFolders(m);
    CopyShippedData(m);

    LogGridModel grid(m.Formats);
    if (!LoadForExport(m, grid, args[1])) return 1;
    if (command == QLatin1String("adif")) {
        WriteOut(exporting::BuildAdifBytes(m, grid, m.Header.MYBZ));
        return 0;
    }
    const exporting::CabrilloSource src{m, grid, m.Header.MYBZ, SystemTimeSource().Now().date().year()};
    const std::optional<QByteArray> bytes = exporting::BuildCabrilloBytes(src, CliClaimedScore);
    if (!bytes) {
        std::fputs(qPrintable(QString::fromUtf8(exporting::kCabrilloFehler) + QLatin1Char('\n')), stderr);
        return 1;
    }
    WriteOut(*bytes);
    return 0;
}
