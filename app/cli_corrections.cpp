// kolibrino-cli delete FILE ROW
// kolibrino-cli edit FILE ROW FIELD=VALUE...
// kolibrino-cli dupes FILE [--umwandeln]
//
// ROW counts from 1 in the grid sorted by time ascending, as the window shows the log
// after a load. Both go through the same logic as the windows. A log whose write lock a
// window or another command holds is refused with exit status 1 and left as it is.
#include "app/cli_corrections.h"

#include "app/console_dialogs.h"
#include "core/clock.h"
#include "core/log_file.h"
#include "core/log_lock.h"
#include "core/tallies.h"
#include "core/vb_text.h"
#include "corrections/delete_entry.h"
#include "corrections/edit_entry.h"
#include "corrections/stranded_dupes.h"
#include "entry/log_grid_model.h"

#include <QMap>
#include <cstdio>

namespace kolibrino {
namespace {

// The console's boxes, with the delete question answered Yes.
class CliDialogs final : public Dialogs {
public:
    int MsgBox(const QString& text, int flags, const QString& title) override {
        if (text == corrections::kMsgLoeschenFrage) return Msg::Yes;
        return console_.MsgBox(text, flags, title);
    }
    std::optional<QString> InputBox(const QString& p, const QString& t, const QString& d) override {
        return console_.InputBox(p, t, d);
    }
    QString OpenDialog(const QString&, const QString&, const QString&) override { return {}; }
    QString SaveDialog(const QString&, const QString&, const QString&) override { return {}; }
    QString BrowseFolder(const QString&, const QString&) override { return {}; }
    int SelectColor(int, bool) override { return -1; }
    void SetBusy(bool) override {}
    void Beep() override {}

private:
    ConsoleDialogs console_;
};

void Err(const QString& text) {
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    std::fprintf(stderr, "%s\n", lines.toLocal8Bit().constData());
}

int Row(const QString& text, const LogGridModel& grid) {
    bool ok = false;
    const int row = text.toInt(&ok);
    if (!ok || row < 1 || row > grid.DataRows()) return -1;
    return row - 1;
}

bool SetField(corrections::EditFields& f, const QString& name, const QString& value) {
    if (name == QLatin1String("datum"))
        f.datum = value;
    else if (name == QLatin1String("zeit"))
        f.zeit = value;
    else if (name == QLatin1String("band")) {
        f.band = value;
        f.bandIndex = -1;
        for (int i = 0; i < 3; ++i)
            if (value == QLatin1String(kBandNames[i])) f.bandIndex = i;
    } else if (name == QLatin1String("mode"))
        f.mode = value;
    else if (name == QLatin1String("rufzeichen"))
        f.call = value;
    else if (name == QLatin1String("rsts"))
        f.rstGesendet = value;
    else if (name == QLatin1String("rste"))
        f.rstEmpfangen = value;
    else if (name == QLatin1String("bz"))
        f.bezirk = value;
    else if (name == QLatin1String("qsl"))
        f.qsl = TrimBlanks(value) == QLatin1String("0") || value.isEmpty() ? 0 : 1;
    else if (name == QLatin1String("notiz"))
        f.notiz = value;
    else if (name == QLatin1String("opcall"))
        f.opCall = value;
    else if (name == QLatin1String("qrg")) {
        const QString t = TrimBlanks(value);
        f.mhz = t.left(t.size() - 3);
        f.khz = t.right(3);
    } else
        return false;
    return true;
}

} // namespace

// The stranded dupes, one line each; with --umwandeln they become normal contacts.
int StrandedDupesCli(const QStringList& args, Model& m) {
    CliDialogs dialogs;
    LoadBezirkTable(m, dialogs);
    if (!LoadLog(m, dialogs, CurrentLogPath(m))) return 1;
    LogGridModel grid(m.Formats);
    DatenInGrid1Neu(m, grid);
    const std::vector<int> found = corrections::FindStrandedDupes(m);
    QString list;
    for (int record : found)
        list += corrections::StrandedDupeLine(m.LogRecords[size_t(record)]) + QLatin1Char('\n');
    const QByteArray bytes = list.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    if (args.size() < 3 || found.empty()) return 0;
    SystemTimeSource clock;
    const corrections::StrandedResult r =
        corrections::PromoteStrandedDupes(m, dialogs, grid, found, clock.Now().date().year());
    if (r.outcome != corrections::StrandedResult::Promoted || !r.fileWritten) return 1;
    Err(corrections::StrandedDoneText(int(found.size())));
    return 0;
}

int CorrectionsCli(const QStringList& args, Model& m) {
    if (args.value(0) == QLatin1String("dupes") &&
        (args.size() == 2 || (args.size() == 3 && args[2] == QLatin1String("--umwandeln"))))
        return StrandedDupesCli(args, m);
    const bool isDelete = args.value(0) == QLatin1String("delete") && args.size() == 3;
    const bool isEdit = args.value(0) == QLatin1String("edit") && args.size() >= 4;
    if (!isDelete && !isEdit) return -1;

    CliDialogs dialogs;
    LoadBezirkTable(m, dialogs);
    // One writer per log: a log that a window or another command holds stays as it is.
    if (const QString locked = TakeWriteLock(m); !locked.isEmpty()) {
        Err(QString(locked).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        return 1;
    }
    if (!LoadLog(m, dialogs, CurrentLogPath(m))) return 1;
    LogGridModel grid(m.Formats);
    DatenInGrid1Neu(m, grid);
    grid.Sort(GridSort::ZeitAuf);
    const int row = Row(args[2], grid);
    if (row < 0) {
        Err(QStringLiteral("Zeile ungültig: %1 (1 bis %2)").arg(args[2]).arg(grid.DataRows()));
        return 2;
    }
    SystemTimeSource clock;
    const int year = clock.Now().date().year();

    if (isDelete) {
        const corrections::DeleteResult r = corrections::DeleteEntry(m, dialogs, grid, row, year);
        if (r.outcome != corrections::DeleteResult::Deleted || !r.fileWritten) return 1;
        return 0;
    }

    if (const auto refusal = corrections::EditRefusal(grid, row)) {
        Err(*refusal);
        return 1;
    }
    bool warn = false;
    corrections::EditFields f = corrections::FieldsOfRow(grid, row, &warn);
    const corrections::EditFields opened = f;
    bool qrgGiven = false;
    for (int i = 3; i < args.size(); ++i) {
        const qsizetype eq = args[i].indexOf(QLatin1Char('='));
        if (eq <= 0 || !SetField(f, args[i].left(eq).toLower(), args[i].mid(eq + 1))) {
            Err(QStringLiteral("Unbekanntes Feld: %1").arg(args[i]));
            return 2;
        }
        qrgGiven = qrgGiven || args[i].left(eq).toLower() == QLatin1String("qrg");
    }
    // A new band moves a frequency that does not lie in it, as the edit window does.
    if (!qrgGiven && f.bandIndex != opened.bandIndex) {
        const corrections::FrequencyFields q =
            corrections::FrequencyForBand(f.bandIndex, f.mhz, f.khz, opened.mhz, opened.khz);
        f.mhz = q.mhz;
        f.khz = q.khz;
    }
    if (const auto failure = corrections::CheckEdit(m, grid, row, f)) {
        Err(failure->message);
        return 1;
    }
    if (warn && f.mhz.isEmpty()) Err(corrections::kMsgFrequenzUngueltig);
    const corrections::EditResult r = corrections::ApplyEdit(m, dialogs, grid, row, f, year);
    return r.applied && r.fileWritten ? 0 : 1;
}

} // namespace kolibrino
