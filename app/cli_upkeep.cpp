// kolibrino-cli update: the update without the window, for club stations set up by
// script.
//
//   kolibrino-cli update --check   [--server HOST[:PORT]]   offered entries: file version size
//   kolibrino-cli update --install [--server HOST[:PORT]]   installs the offered data files
//
// --install never installs the program itself. Exit status 0 on success, 1 when the
// server cannot be reached, the list cannot be fetched, a line of the list is refused
// (each one named with its reason), any download or copy fails (named with its cause)
// or any MD5 differs (the files checked before stay installed), 2 on wrong use.
// Messages go to standard error.
#include "app/console_dialogs.h"
#include "core/paths.h"
#include "upkeep/http_update_transport.h"
#include "upkeep/update_flow.h"

#include <QCoreApplication>
#include <cstdio>

namespace kolibrino {

int RunUpdateCli(const QStringList& args) {
    using namespace upkeep;
    auto usage = [] {
        std::fputs("Aufruf:\n  kolibrino-cli update --check [--server HOST[:PORT]]\n"
                   "  kolibrino-cli update --install [--server HOST[:PORT]]\n",
                   stderr);
        return 2;
    };
    if (args.isEmpty() || (args[0] != QLatin1String("--check") && args[0] != QLatin1String("--install")))
        return usage();
    const bool install = args[0] == QLatin1String("--install");
    Model m;
    m.SetLocale(QLocale::system());
    IniStartup(m, QCoreApplication::applicationDirPath());
    SetupFolders(m);
    UpdateServer server = ReadUpdateServer(m.IniPath);
    if (args.size() == 3 && args[1] == QLatin1String("--server")) {
        const auto given = ServerWithArgument(server, args[2]);
        if (!given) {
            std::fprintf(stderr, "Kein gültiger Server: %s\n", args[2].toLocal8Bit().constData());
            return 2;
        }
        server = *given;
    } else if (args.size() != 1) {
        return usage();
    }

    ConsoleDialogs dialogs;
    HttpUpdateTransport transport;
    const CheckResult check = CheckForUpdates(m, transport, server);
    auto fail = [](const QString& text, const QString& detail) {
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
        if (!detail.isEmpty()) std::fprintf(stderr, "%s\n", detail.toLocal8Bit().constData());
        return 1;
    };
    const bool refused = !check.refused.empty();
    if (refused) {
        QString text = RefusedLinesText(check.refused);
        std::fprintf(stderr, "%s\n",
                     text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).toLocal8Bit().constData());
    }
    switch (check.outcome) {
    case CheckOutcome::NoServer:
        return fail(QString::fromUtf8(kTxtKeinServer).replace(QStringLiteral("\r\n"), QStringLiteral("\n")),
                    {});
    case CheckOutcome::Unreachable:
        return fail(QString::fromUtf8(kTxtServerNichtErreichbar), check.detail);
    case CheckOutcome::ListFailed:
    case CheckOutcome::NoList:
        return fail(QString::fromUtf8(kTxtDownloadFehler), check.detail);
    case CheckOutcome::NoUpdates:
        if (install) std::fprintf(stderr, "%s\n", kTxtKeineUpdates);
        return refused ? 1 : 0;
    case CheckOutcome::Offered:
        break;
    }
    if (!install) {
        for (int i : check.offered) {
            const QByteArray line = (EntryLine(check.entries[size_t(i)]) + QLatin1Char('\n')).toLocal8Bit();
            std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
        }
        return refused ? 1 : 0;
    }
    std::vector<UpdateBox> boxes;
    for (int i : check.offered)
        boxes.push_back({i, true});
    ProgramTarget program = RunningProgram();
    program.executableName = QStringLiteral("kolibrino");
    program.allowProgram = false;
    const InstallResult r = InstallUpdates(m, dialogs, transport, server, check.entries, boxes, program);
    for (const QString& name : r.installedNames)
        std::printf("%s\n", name.toLocal8Bit().constData());
    for (const QString& name : r.skipped)
        std::fprintf(stderr, "%s: Das Programm selbst wird nicht über die Kommandozeile aktualisiert.\n",
                     name.toLocal8Bit().constData());
    for (const QString& failure : r.failures)
        std::fprintf(stderr, "%s\n", failure.toLocal8Bit().constData());
    const bool complete = r.outcome == InstallOutcome::Done && r.failedDownloads == 0 &&
                          r.failedCopies == 0 && r.refused.isEmpty();
    return complete && !refused ? 0 : 1;
}

} // namespace kolibrino
