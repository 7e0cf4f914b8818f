#include "export/adif.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "export/export_common.h"

#include <QFile>

namespace kolibrino::exporting {
namespace {

void Tag(QString& out, const char* name, const QString& value) {
    out += QLatin1Char('<');
    out += QLatin1String(name);
    out += QLatin1Char(':');
    qsizetype n = value.size();
    char digits[24];
    int k = 0;
    do {
        digits[k++] = char('0' + n % 10);
        n /= 10;
    } while (n > 0);
    while (k > 0)
        out += QLatin1Char(digits[--k]);
    out += QLatin1Char('>');
    out += value;
}

void AppendQsoLine(QString& out, const Model& m, const LogGridModel& g, int row, const QString& ownBezirk);

} // namespace

QString AdifFrequency(const QString& kHz) {
    if (kHz.size() < 4) return kHz;
    return kHz.left(kHz.size() - 3) + QLatin1Char('.') + kHz.right(3);
}

QString AdifQsoLine(const Model& m, const LogGridModel& g, int row, const QString& ownBezirk) {
    QString out;
    out.reserve(200);
    AppendQsoLine(out, m, g, row, ownBezirk);
    return out;
}

namespace {

void AppendQsoLine(QString& out, const Model& m, const LogGridModel& g, int row, const QString& ownBezirk) {
    static const QString kCompact = QStringLiteral("yyyyMMdd");
    const auto date = GridDate(m.Formats, g.Text(row, kGridColDatum));
    out += QStringLiteral("<QSO_DATE:8>");
    if (date) out += GridDateText(m.Formats, g.Text(row, kGridColDatum), kCompact);
    out += QStringLiteral("<TIME_ON:4>") + GridTimeHhmm(m.Formats, g.Text(row, kGridColZeit));
    Tag(out, "CALL", g.Text(row, kGridColCall));
    Tag(out, "RST_SENT", g.Text(row, 5));
    Tag(out, "RST_RCVD", g.Text(row, 6));
    out += QStringLiteral("<MY_STATE:2>") + ownBezirk;
    out += QStringLiteral("<STATE:2>") + g.Text(row, kGridColBezirk);
    const QString freq = g.Text(row, kGridColFrequenz);
    if (!freq.isEmpty()) Tag(out, "FREQ", AdifFrequency(freq));
    Tag(out, "MODE", g.Text(row, kGridColMode));
    out += QStringLiteral("<QSL_SENT:1>") +
           (g.Text(row, 8) == QLatin1String("1") ? QLatin1Char('Y') : QLatin1Char('N'));
    Tag(out, "BAND", g.Text(row, kGridColBand));
    const QString op = g.Text(row, 10);
    if (op != m.Header.MYCALL) Tag(out, "STATION_CALLSIGN", m.Header.MYCALL);
    Tag(out, "OPERATOR", op);
    const QString notes = g.Text(row, 9);
    if (!notes.isEmpty()) Tag(out, "NOTES", notes);
    out += QStringLiteral("<EOR>\r\n");
}

} // namespace

QString BuildAdif(const Model& m, const LogGridModel& grid, const QString& ownBezirk) {
    const QString version = ProgramVersionText();
    QString out;
    out.reserve(qsizetype(grid.DataRows()) * 180 + 200);
    out += QStringLiteral("; This file was created by ") + ProgramTitle() + QStringLiteral(" v") + version +
           QStringLiteral("  by ZZ9QQQ\r\n");
    out += QStringLiteral("<PROGRAMID:9>Kolibrino\r\n");
    out += QStringLiteral("<PROGRAMVERSION:%1>%2\r\n").arg(version.size()).arg(version);
    out += QStringLiteral("<ADIF_VER:5>2.2.7\r\n");
    out += QStringLiteral("<EOH>\r\n");
    for (int row = 0; row < grid.DataRows(); ++row) {
        if (grid.Text(row, kGridColDupe) == QLatin1String("Dupe")) continue;
        AppendQsoLine(out, m, grid, row, ownBezirk);
    }
    return out;
}

QByteArray BuildAdifBytes(const Model& m, const LogGridModel& grid, const QString& ownBezirk) {
    return ToCp1252(BuildAdif(m, grid, ownBezirk));
}

void ExportAdifMenu(Dialogs& dialogs, const Model& m, const LogGridModel& grid, const QString& ownBezirk,
                    const std::function<void(const QString&)>& openInEditor) {
    const QString answer =
        dialogs.SaveDialog(QStringLiteral("*.adi|*.adi"), QStringLiteral("Speichern unter..."), m.AppFolder);
    if (answer.trimmed().isEmpty()) return;
    const QString path = SaveNameWithExtension(answer, QStringLiteral(".ADI"));
    if (QFile::exists(path)) QFile::remove(path);
    if (grid.Rows() < 2) {
        dialogs.MsgBox(QString::fromUtf8(kKeineLogeintraege), Msg::Information);
        return;
    }
    const bool done = RunTrapped(dialogs, [&]() -> QString {
        BusyScope busy(dialogs);
        return WriteFileAtomic(path, BuildAdifBytes(m, grid, ownBezirk));
    });
    if (done) AskOpenInEditor(dialogs, path, openInEditor);
}

} // namespace kolibrino::exporting
