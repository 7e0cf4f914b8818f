#include "export/cabrillo.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/vb_text.h"
#include "export/export_common.h"

#include <QFile>

namespace kolibrino::exporting {
namespace {

const QString kCrLf = QStringLiteral("\r\n");

// Left-aligned in width: padded with blanks, a longer value cut at the right.
void PutLeft(QString& out, const QString& value, int width) {
    out += value.left(width);
    for (qsizetype i = value.size(); i < width; ++i)
        out += QLatin1Char(' ');
}

// Right-aligned in width; a longer value keeps its leftmost characters.
void PutRight(QString& out, const QString& value, int width) {
    for (qsizetype i = value.size(); i < width; ++i)
        out += QLatin1Char(' ');
    out += value.left(width);
}

QString CategoryOperator(int k) {
    switch (k) {
    case 0:
        return QStringLiteral("CATEGORY-OPERATOR: SINGLE-OP");
    case 1:
        return QStringLiteral("CATEGORY-OPERATOR: MULTI-OP");
    case 2:
        return QStringLiteral("CATEGORY-OPERATOR: CHECKLOG");
    default:
        return {};
    }
}

// No line for a class of 5 or more, nor for classes 0 to 3 with a power other than 0 or 1.
QString Category(int klasse, int pwr) {
    if (klasse == 4) return QStringLiteral("CATEGORY: STAATSFUNKSTELLEN");
    if (pwr != 0 && pwr != 1) return {};
    const char* power = pwr == 0 ? "LOW-POWER " : "HIGH-POWER ";
    switch (klasse) {
    case 0:
        return QStringLiteral("CATEGORY: ") + QLatin1String(power) + QStringLiteral("SSB");
    case 1:
        return QStringLiteral("CATEGORY: ") + QLatin1String(power) + QStringLiteral("MIX");
    case 2:
        return QStringLiteral("CATEGORY: ") + QLatin1String(power) + QStringLiteral("CW");
    case 3:
        return QStringLiteral("CATEGORY: ") + QLatin1String(power) + QStringLiteral("NEWCOMER");
    case 4:
        return QStringLiteral("CATEGORY: STAATSFUNKSTELLEN");
    default:
        return {};
    }
}

// Every piece before a CR LF, trimmed; the text behind the last CR LF is dropped.
void Soapbox(QString& out, const QString& text) {
    const QStringList pieces = text.split(kCrLf);
    for (qsizetype i = 0; i + 1 < pieces.size(); ++i)
        out += QStringLiteral("SOAPBOX: ") + TrimBlanks(pieces[i]) + kCrLf;
}

} // namespace

namespace {

void AppendQsoLine(QString& line, const CabrilloSource& src, int row) {
    const LogGridModel& g = src.grid;
    const LocaleFormats& f = src.m.Formats;
    line += QStringLiteral("QSO: ");
    PutRight(line, g.Text(row, kGridColFrequenz), 5);
    line +=
        g.Text(row, kGridColMode) == QLatin1String("CW") ? QStringLiteral(" CW ") : QStringLiteral(" PH ");
    static const QString kIso = QStringLiteral("yyyy-MM-dd");
    PutLeft(line, GridDateText(f, g.Text(row, kGridColDatum), kIso), 10);
    line += QLatin1Char(' ');
    const QString zeit = g.Text(row, kGridColZeit);
    PutLeft(line, GridTimeHhmm(f, zeit), 4);
    const auto minutes = GridMinutes(f, zeit);
    const int noon = src.m.MittagsGrenze.hour() * 60 + src.m.MittagsGrenze.minute();
    line += (minutes && *minutes >= noon) ? QStringLiteral(" 2 ") : QStringLiteral(" 1 ");
    PutLeft(line, src.m.Header.MYCALL, 13);
    line += QLatin1Char(' ');
    PutLeft(line, g.Text(row, 5), 3);
    line += QLatin1Char(' ');
    PutLeft(line, src.ownBezirk, 2);
    line += QLatin1Char(' ');
    PutLeft(line, g.Text(row, kGridColCall), 13);
    line += QLatin1Char(' ');
    PutLeft(line, g.Text(row, 6), 3);
    line += QLatin1Char(' ');
    line += g.Text(row, kGridColBezirk).left(2);
}

} // namespace

QString CabrilloQsoLine(const CabrilloSource& src, int row) {
    QString line;
    line.reserve(80);
    AppendQsoLine(line, src, row);
    return line;
}

std::optional<QString> BuildCabrillo(const CabrilloSource& src, const ScoreFunction& score) {
    const LogHeader& h = src.m.Header;
    QString out;
    auto put = [&out](const QString& line) { out += line + kCrLf; };
    put(QStringLiteral("START-OF-LOG:  3.0"));
    put(QStringLiteral("CALLSIGN: ") + h.MYCALL);
    if (QString l = CategoryOperator(h.MYOPKLASS); !l.isEmpty()) put(l);
    if (h.MYOMYL == 0) put(QStringLiteral("CATEGORY-OVERLAY: OM"));
    if (h.MYOMYL == 1) put(QStringLiteral("CATEGORY-OVERLAY: YL"));
    put(QStringLiteral("CATEGORY-STATION: ") + QString::number(h.MYNPOWER));
    if (h.MYPWR == 0) put(QStringLiteral("CATEGORY-POWER: LOW"));
    if (h.MYPWR == 1) put(QStringLiteral("CATEGORY-POWER: HIGH"));
    if (QString l = Category(h.MYWERTUNGSST, h.MYPWR); !l.isEmpty()) put(l);
    if (h.MYWERTUNGSST == 3 && (h.MYPWR == 0 || h.MYPWR == 1)) {
        const auto d = GridDate(src.m.Formats, h.MYEXAMDAT);
        put(QStringLiteral("LICENSE-DATE: ") + (d ? d->toString(QStringLiteral("yyyy-MM-dd")) : h.MYEXAMDAT));
    }
    const std::optional<long> claimed = score ? score(src.m) : std::nullopt;
    if (!claimed) return std::nullopt;
    put(QStringLiteral("CLAIMED-SCORE: ") + QString::number(*claimed));
    put(QStringLiteral("CONTEST: ZEFT 80/40m"));
    put(QStringLiteral("CREATED-BY: %1 v%2, %3 by ZZ9QQQ")
            .arg(ProgramTitle(), ProgramVersionText())
            .arg(src.year));
    put(QStringLiteral("EMAIL: ") + h.MYEMAIL);
    put(QStringLiteral("LOCATION: ") + Fixed2(h.MYBZ));
    put(QStringLiteral("NAME: ") + h.MYOPNAME);
    put(QStringLiteral("ADDRESS: ") + h.MYADRESS);
    put(QStringLiteral("ADDRESS-POSTALCODE: ") + h.MYPLZ);
    put(QStringLiteral("ADDRESS-CITY: ") + h.MYCITY);

    // One buffer of blanks with a slot of 75 characters per row; a contact line
    // overwrites the start of its slot, so a short line leaves its blanks in front
    // of the next one.
    const int rows = src.grid.Rows();
    QString buffer(qsizetype(75) * rows, QLatin1Char(' '));
    QString operators;
    QString line;
    line.reserve(80);
    int skipped = 0;
    for (int i = 1; i < rows; ++i) {
        const int row = i - 1; // data rows count from 0 in the grid model
        if (src.grid.Text(row, kGridColBand) == QLatin1String("30m")) {
            ++skipped;
            continue;
        }
        line.clear();
        AppendQsoLine(line, src, row);
        line += kCrLf;
        const qsizetype pos = qsizetype(i - skipped) * 75 - 1;
        const qsizetype n = std::min<qsizetype>({line.size(), 75, buffer.size() - pos});
        buffer.replace(pos, n, line.constData(), n);
        const QString op = src.grid.Text(row, 10);
        if (!operators.contains(op)) operators += op + QLatin1Char(' ');
    }
    put(QStringLiteral("OPERATORS: ") + TrimBlanks(operators));
    Soapbox(out, h.MYSTATION);
    Soapbox(out, h.MYKOMMENT);
    QString contacts = TrimBlanks(buffer);
    while (contacts.endsWith(kCrLf))
        contacts.chop(2);
    put(contacts);
    put(QStringLiteral("END-OF-LOG:"));
    return out;
}

std::optional<QByteArray> BuildCabrilloBytes(const CabrilloSource& src, const ScoreFunction& score) {
    std::optional<QString> text = BuildCabrillo(src, score);
    if (!text) return std::nullopt;
    return ToCp1252(*text);
}

CabrilloResult WriteCabrillo(const CabrilloSource& src, const ScoreFunction& score, const QString& path,
                             QString* error) {
    if (QFile::exists(path) && !QFile::remove(path)) {
        if (error) *error = QStringLiteral("Die Datei %1 kann nicht gelöscht werden.").arg(path);
        return CabrilloResult::WriteFailed;
    }
    if (src.grid.Rows() < 2) return CabrilloResult::Empty;
    const std::optional<QByteArray> bytes = BuildCabrilloBytes(src, score);
    if (!bytes) return CabrilloResult::ScoreFailed;
    const QString e = WriteFileAtomic(path, *bytes);
    if (!e.isEmpty()) {
        if (error) *error = e;
        return CabrilloResult::WriteFailed;
    }
    return CabrilloResult::Written;
}

void ExportCabrilloMenu(Dialogs& dialogs, const CabrilloSource& src, const ScoreFunction& score,
                        const QString& startFolder, const std::function<void(const QString&)>& openInEditor) {
    const QString answer =
        dialogs.SaveDialog(QStringLiteral("*.log|*.log"), QStringLiteral("Speichern unter..."), startFolder);
    if (answer.trimmed().isEmpty()) return;
    const QString path = SaveNameWithExtension(answer, QStringLiteral(".LOG"));
    CabrilloResult result = CabrilloResult::Written;
    const bool done = RunTrapped(dialogs, [&]() -> QString {
        BusyScope busy(dialogs);
        QString error;
        result = WriteCabrillo(src, score, path, &error);
        return result == CabrilloResult::WriteFailed ? error : QString();
    });
    if (!done) return;
    if (result == CabrilloResult::Empty) {
        dialogs.MsgBox(QString::fromUtf8(kKeineLogeintraege), Msg::Information);
        return;
    }
    if (result == CabrilloResult::ScoreFailed) {
        dialogs.MsgBox(QString::fromUtf8(kCabrilloFehler), Msg::Critical);
        return;
    }
    AskOpenInEditor(dialogs, path, openInEditor);
}

} // namespace kolibrino::exporting
