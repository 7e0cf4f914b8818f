// kolibrino-cli: the log tools without the windows, for scripts and checks.
//
//   kolibrino-cli rebuild FILE                       rebuilt file text, raw bytes
//   kolibrino-cli dupe FILE CALL BAND MODE TIME      "DUPE" or "OK", then the district
//   kolibrino-cli tallies FILE                       the rebuilt counters
//   kolibrino-cli score FILE                         every figure of the result window
//   kolibrino-cli results FILE                       the results text file, raw bytes
//   kolibrino-cli map FILE OUT.png [FILTER]          the filled district map
//   kolibrino-cli rate FILE                          contacts per 10 minutes of both periods
//   kolibrino-cli needed FILE                        districts and states still missing
//   kolibrino-cli cabrillo|adif|check|upload FILE    export, check, send (app/cli_export.cpp)
//   kolibrino-cli rig [--model N] [--port PORT] [--speed BAUD] [--conf NAME=WERT]...
//                                                                 rig 1 read once
//   kolibrino-cli rig --models TEXT                               Hamlib's models
//   kolibrino-cli partial FILE TEXT BAND MODE TIME   the partial-call list, one entry a line
//   kolibrino-cli update --check|--install [--server HOST[:PORT]]   see cli_upkeep.cpp
//   kolibrino-cli delete FILE ROW                    deletes a contact (row of the time sort)
//   kolibrino-cli edit FILE ROW FIELD=VALUE...       changes a contact as the edit window does
//   kolibrino-cli dupes FILE [--umwandeln]            stranded dupes; with --umwandeln made normal
//   kolibrino-cli --version                          "Kolibrino 1.0.0"
//   kolibrino-cli --help | -h                        the usage, on standard output
//
// Exit status 0 on success, 1 when the log cannot be loaded, 2 on wrong use.
#include "app/cli_corrections.h"
#include "app/cli_scoring.h"
#include "app/console_dialogs.h"
#include "core/call_index.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/tallies.h"
#include "core/vb_text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>
#include <cstring>

using namespace kolibrino;

int CliExport(const QStringList& args); // app/cli_export.cpp; -1 when not its command
namespace kolibrino {
int RunRigCommand(const Model& m, const QStringList& args);          // app/cli_rig.cpp
int CliPartial(Model& m, Dialogs& dialogs, const QStringList& args); // app/cli_assist.cpp
int RunUpdateCli(const QStringList& args);                           // app/cli_upkeep.cpp
} // namespace kolibrino

namespace {

const char* const kUsage = "Aufruf:\n"
                           "  kolibrino-cli rebuild DATEI\n"
                           "  kolibrino-cli dupe DATEI RUFZEICHEN BAND MODE ZEIT\n"
                           "  kolibrino-cli tallies DATEI\n"
                           "  kolibrino-cli score DATEI\n"
                           "  kolibrino-cli results DATEI\n"
                           "  kolibrino-cli map DATEI BILD.png [FILTER 0-8]\n"
                           "  kolibrino-cli rate DATEI\n"
                           "  kolibrino-cli needed DATEI\n"
                           "  kolibrino-cli cabrillo DATEI\n"
                           "  kolibrino-cli adif DATEI\n"
                           "  kolibrino-cli check DATEI\n"
                           "  kolibrino-cli upload DATEI [--server HOST[:PORT]]\n"
                           "  kolibrino-cli delete DATEI ZEILE\n"
                           "  kolibrino-cli edit DATEI ZEILE FELD=WERT...\n"
                           "  kolibrino-cli rig [--model N] [--port PORT] [--speed BAUD] [--conf NAME=WERT]...\n"
                           "  kolibrino-cli rig --models TEXT\n"
                           "  kolibrino-cli partial DATEI TEXT BAND MODE ZEIT\n"
                           "  kolibrino-cli update --check|--install [--server HOST[:PORT]]\n"
                           "  kolibrino-cli dupes DATEI [--umwandeln]\n"
                           "  kolibrino-cli --version\n"
                           "  kolibrino-cli --help\n";

int Usage() {
    std::fputs(kUsage, stderr);
    return 2;
}

// --help and -h: what the tools are, and how to call them.
int Help() {
    std::fputs("kolibrino-cli: die Werkzeuge von Kolibrino ohne Fenster, für Skripte und Prüfungen.\n"
               "Jeder Befehl arbeitet mit denselben Funktionen wie die Fenster.\n\n",
               stdout);
    std::fputs(kUsage, stdout);
    std::fputs("\nDATEI ist eine Logdatei (.KOLBO); ZEILE zählt ab 1 in der Liste nach Zeit aufsteigend.\n"
               "Ende mit 0 bei Erfolg, 1 wenn das Log nicht geladen oder geschrieben werden kann,\n"
               "2 bei falschem Aufruf.\n",
               stdout);
    return 0;
}

void Out(const QString& text) {
    const QByteArray b = text.toLocal8Bit();
    std::fwrite(b.constData(), 1, size_t(b.size()), stdout);
}

QString Row(const std::array<int, 3>& r) {
    return QStringLiteral("%1 %2 %3").arg(r[0]).arg(r[1]).arg(r[2]);
}

QString TalliesText(const Model& m) {
    QString s;
    s += QStringLiteral("QsoCount %1\n").arg(m.QsoCount);
    s += QStringLiteral("DupeCount %1\n").arg(m.DupeCount);
    s += QStringLiteral("# Zähler je Band: 40m 80m 30m\n");
    const char* modes[2] = {"SSB", "CW"};
    for (int i = 0; i < 2; ++i)
        s += QStringLiteral("ModeBandCount %1 %2\n").arg(QLatin1String(modes[i]), Row(m.ModeBandCount[i]));
    const char* periods[4] = {"SSB-Vormittag", "SSB-Nachmittag", "CW-Vormittag", "CW-Nachmittag"};
    for (int i = 0; i < 4; ++i)
        s += QStringLiteral("PeriodBandCount %1 %2\n")
                 .arg(QLatin1String(periods[i]), Row(m.PeriodBandCount[i]));
    for (int g = 0; g < 9; ++g)
        s += QStringLiteral("GruppeBandCount %1 %2\n").arg(g + 1).arg(Row(m.GruppeBandCount[g]));
    for (const StaatsfunkRecord& st : m.StaatsfunkRecords)
        s += QStringLiteral("Staatsfunk %1 %2 %3\n").arg(st.Prefix).arg(st.Anz80).arg(st.Anz30);
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        const BezirkRecord& b = m.BezirkRecords[i];
        if (b.AnzGesamt == 0) continue;
        s += QStringLiteral("Bezirk %1 %2 %3 %4 %5\n")
                 .arg(b.Code)
                 .arg(b.AnzGesamt)
                 .arg(b.Anz40)
                 .arg(b.Anz80)
                 .arg(b.Anz30);
    }
    return s;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) return Help();
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args == QStringList{QStringLiteral("--version")}) {
        Out(ProgramTitle() + QLatin1Char(' ') + ProgramVersionText() + QLatin1Char('\n'));
        return 0;
    }
    if (!args.isEmpty() && args[0] == QLatin1String("rig")) {
        Model rm;
        IniStartup(rm, QCoreApplication::applicationDirPath());
        SetupFolders(rm);
        const int rc = RunRigCommand(rm, args.mid(1));
        return rc < 0 ? Usage() : rc;
    }
    if (!args.isEmpty() && args[0] == QLatin1String("update")) return RunUpdateCli(args.mid(1));
    if (args.size() < 2) return Usage();
    if (const int rc = CliExport(args); rc >= 0) return rc == 2 ? Usage() : rc;
    const QString command = args[0];
    if (const auto status = ScoringCommand(args)) return *status;

    Model m;
    m.SetLocale(QLocale::system());
    m.Header = DefaultHeader(m);
    ConsoleDialogs dialogs;
    IniStartup(m, QCoreApplication::applicationDirPath());
    SetupFolders(m);
    CopyShippedData(m);

    const QFileInfo file(args[1]);
    m.LogFolder = file.absolutePath() + QLatin1Char('/');
    m.CurrentLogName = file.fileName();

    if (command == QLatin1String("rebuild") && args.size() == 2) {
        if (!LoadLog(m, dialogs, file.absoluteFilePath())) return 1;
        SystemTimeSource clock;
        const QByteArray bytes = ToCp1252(BuildLogText(m, false, clock));
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        return 0;
    }
    if (command == QLatin1String("dupe") && args.size() == 6) {
        LoadBezirkTable(m, dialogs);
        if (!LoadLog(m, dialogs, file.absoluteFilePath())) return 1;
        const QString call = args[2].trimmed().toUpper();
        const int band = ToInt16(LeadingNumber(args[3]));
        const auto time = m.Formats.ParseTime(args[5]);
        if (!time) {
            std::fputs("Zeit Ungültige\n", stderr);
            return 2;
        }
        const DupeVerdict v = CallExistTest(m, call, band, args[4].trimmed().toUpper(), *time);
        Out(QStringLiteral("%1 %2\n")
                .arg(v.isDupe ? QStringLiteral("DUPE") : QStringLiteral("OK"), v.bezirk)
                .trimmed() +
            QLatin1Char('\n'));
        if (v.isDupe) Out(DupeWarningText(m, *v.dupeTime) + QLatin1Char('\n'));
        return 0;
    }
    if (command == QLatin1String("partial") && args.size() == 6) return CliPartial(m, dialogs, args);
    if (command == QLatin1String("tallies") && args.size() == 2) {
        LoadBezirkTable(m, dialogs);
        if (!LoadLog(m, dialogs, file.absoluteFilePath())) return 1;
        RebuildTallies(m);
        Out(TalliesText(m));
        return 0;
    }
    if (const int rc = CorrectionsCli(args, m); rc >= 0) return rc;
    return Usage();
}
