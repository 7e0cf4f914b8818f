#include "export/adif.h"

#include "core/atomic_file.h"
#include "core/save_folders.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "export/export_bytes.h"
#include "export/export_common.h"

#include <QFile>

namespace kolibrino::exporting {
namespace {

// "<NAME:" (given with its "<" and ":"), the value's length in characters, ">" and the
// value. Needs room for the name, 22 bytes and the value.
template <std::size_t N> char* Tag(char* p, const char (&name)[N], QStringView value) {
    p = PutLiteral(p, name);
    p = PutNumber(p, value.size());
    *p++ = '>';
    return WriteCp1252(p, value);
}

// The contact lines of one log, with what is the same on every line worked out once.
class QsoLines {
public:
    QsoLines(const Model& m, const LogGridModel& grid, const QString& ownBezirk)
        : grid_(grid), formats_(m.Formats), myCall_(m.Header.MYCALL),
          date_([&f = m.Formats](const QString& cell) {
              return GridDate(f, cell) ? ToCp1252(GridDateText(f, cell, QStringLiteral("yyyyMMdd")))
                                       : QByteArray();
          }) {
        const QString call = QStringLiteral("<STATION_CALLSIGN:") + QString::number(myCall_.size()) +
                             QLatin1Char('>') + myCall_;
        stationCall_ = ToCp1252(call);
        myState_ = ToCp1252(QStringLiteral("<MY_STATE:2>") + ownBezirk);
    }

    // The line of a row with its CR LF.
    void Write(ByteOut& out, int row) {
        const LogGridModel& g = grid_;
        const QString& datum = g.Cell(row, kGridColDatum);
        const QString& zeit = g.Cell(row, kGridColZeit);
        const QString& band = g.Cell(row, kGridColBand);
        const QString& mode = g.Cell(row, kGridColMode);
        const QString& call = g.Cell(row, kGridColCall);
        const QString& rstSent = g.Cell(row, 5);
        const QString& rstRcvd = g.Cell(row, 6);
        const QString& bezirk = g.Cell(row, kGridColBezirk);
        const QString& qsl = g.Cell(row, 8);
        const QString& notes = g.Cell(row, 9);
        const QString& op = g.Cell(row, 10);
        const QString& freq = g.Cell(row, kGridColFrequenz);
        const QByteArray& date = date_(datum);
        out.Room(400 + date.size() + zeit.size() + band.size() + mode.size() + call.size() + rstSent.size() +
                 rstRcvd.size() + bezirk.size() + notes.size() + op.size() + freq.size() +
                 stationCall_.size() + myState_.size());
        char* p = out.p;
        p = PutLiteral(p, "<QSO_DATE:8>");
        p = PutBytes(p, date);
        p = PutLiteral(p, "<TIME_ON:4>");
        const std::optional<int> minutes = RowMinutes(formats_, zeit);
        p = minutes ? PutHhmm(p, *minutes) : WriteCp1252(p, GridTimeHhmm(formats_, zeit));
        p = Tag(p, "<CALL:", call);
        p = Tag(p, "<RST_SENT:", rstSent);
        p = Tag(p, "<RST_RCVD:", rstRcvd);
        p = PutBytes(p, myState_);
        p = PutLiteral(p, "<STATE:2>");
        p = WriteCp1252(p, bezirk);
        if (!freq.isEmpty()) {
            // kHz to MHz: a point before the last three digits.
            p = PutLiteral(p, "<FREQ:");
            if (freq.size() < 4) {
                p = PutNumber(p, freq.size());
                *p++ = '>';
                p = WriteCp1252(p, freq);
            } else {
                p = PutNumber(p, freq.size() + 1);
                *p++ = '>';
                const QStringView f(freq);
                p = WriteCp1252(p, f.first(f.size() - 3));
                *p++ = '.';
                p = WriteCp1252(p, f.last(3));
            }
        }
        p = Tag(p, "<MODE:", mode);
        p = PutLiteral(p, "<QSL_SENT:1>");
        *p++ = Is(qsl, "1") ? 'Y' : 'N';
        p = Tag(p, "<BAND:", band);
        if (op != myCall_) p = PutBytes(p, stationCall_);
        p = Tag(p, "<OPERATOR:", op);
        if (!notes.isEmpty()) p = Tag(p, "<NOTES:", notes);
        out.p = PutLiteral(p, "<EOR>\r\n");
    }

private:
    const LogGridModel& grid_;
    const LocaleFormats& formats_;
    const QString myCall_;
    QByteArray stationCall_; // the whole STATION_CALLSIGN tag
    QByteArray myState_;     // the whole MY_STATE tag
    LastText date_;
};

} // namespace

QString AdifFrequency(const QString& kHz) {
    if (kHz.size() < 4) return kHz;
    return kHz.left(kHz.size() - 3) + QLatin1Char('.') + kHz.right(3);
}

QString AdifQsoLine(const Model& m, const LogGridModel& g, int row, const QString& ownBezirk) {
    ByteOut out(256);
    QsoLines(m, g, ownBezirk).Write(out, row);
    return FromCp1252(out.Take());
}

QByteArray BuildAdifBytes(const Model& m, const LogGridModel& grid, const QString& ownBezirk) {
    const QString version = ProgramVersionText();
    QString out;
    out += QStringLiteral("; This file was created by ") + ProgramTitle() + QStringLiteral(" v") + version +
           QStringLiteral("  by ZZ9QQQ\r\n");
    out += QStringLiteral("<PROGRAMID:9>Kolibrino\r\n");
    out += QStringLiteral("<PROGRAMVERSION:%1>%2\r\n").arg(version.size()).arg(version);
    out += QStringLiteral("<ADIF_VER:5>2.2.7\r\n");
    out += QStringLiteral("<EOH>\r\n");
    ByteOut bytes(out.size() + qsizetype(grid.DataRows()) * 180);
    bytes.p = WriteCp1252(bytes.p, out);
    QsoLines lines(m, grid, ownBezirk);
    for (int row = 0; row < grid.DataRows(); ++row) {
        if (Is(grid.Cell(row, kGridColDupe), "Dupe")) continue;
        lines.Write(bytes, row);
    }
    return bytes.Take();
}

QString BuildAdif(const Model& m, const LogGridModel& grid, const QString& ownBezirk) {
    return FromCp1252(BuildAdifBytes(m, grid, ownBezirk));
}

void ExportAdifMenu(Dialogs& dialogs, const Model& m, const LogGridModel& grid, const QString& ownBezirk,
                    const std::function<void(const QString&)>& openInEditor) {
    const QString answer =
        dialogs.SaveDialog(QStringLiteral("*.adi|*.adi"), QStringLiteral("Speichern unter..."),
                           SaveStartFolder(m, SaveKind::Adif));
    if (answer.trimmed().isEmpty()) return;
    RememberSaveFolder(SaveKind::Adif, answer.trimmed());
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
