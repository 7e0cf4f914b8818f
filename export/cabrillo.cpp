#include "export/cabrillo.h"

#include "core/atomic_file.h"
#include "core/save_folders.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/vb_text.h"
#include "export/export_bytes.h"
#include "export/export_common.h"

#include <QFile>
#include <QSet>
#include <cstring>

namespace kolibrino::exporting {
namespace {

const QString kCrLf = QStringLiteral("\r\n");

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

// The contact lines of one log. What is the same on every line (own call and district,
// the border between the periods) is worked out once, and each date once.
class QsoLines {
public:
    explicit QsoLines(const CabrilloSource& src)
        : grid_(src.grid), formats_(src.m.Formats),
          noon_(src.m.MittagsGrenze.hour() * 60 + src.m.MittagsGrenze.minute()),
          date_([&f = src.m.Formats](const QString& cell) {
              QByteArray b(10, Qt::Uninitialized);
              b.truncate(PutLeft(b.data(), GridDateText(f, cell, QStringLiteral("yyyy-MM-dd")), 10) -
                         b.constData());
              return b;
          }) {
        myCall_.resize(14);
        myCall_.truncate(PutLiteral(PutLeft(myCall_.data(), src.m.Header.MYCALL, 13), " ") -
                         myCall_.constData());
        ownBezirk_.resize(3);
        ownBezirk_.truncate(PutLiteral(PutLeft(ownBezirk_.data(), src.ownBezirk, 2), " ") -
                            ownBezirk_.constData());
    }

    // The line of a row and its CR LF, at p with room for 75 bytes; returns the end.
    // *slack gets the blanks the line leaves of its slot of 75 characters.
    char* Write(char* p, int row, qsizetype* slack) {
        const LogGridModel& g = grid_;
        p = PutLiteral(p, "QSO: ");
        p = PutRight(p, g.Cell(row, kGridColFrequenz), 5);
        p = Is(g.Cell(row, kGridColMode), "CW") ? PutLiteral(p, " CW ") : PutLiteral(p, " PH ");
        p = PutBytes(p, date_(g.Cell(row, kGridColDatum)));
        *p++ = ' ';
        const QString& zeit = g.Cell(row, kGridColZeit);
        const std::optional<int> minutes = RowMinutes(formats_, zeit);
        p = minutes ? PutHhmm(p, *minutes) : PutLeft<4>(p, GridTimeHhmm(formats_, zeit));
        p = (minutes && *minutes >= noon_) ? PutLiteral(p, " 2 ") : PutLiteral(p, " 1 ");
        p = PutBytes(p, myCall_);
        p = PutLeft<3>(p, g.Cell(row, 5));
        *p++ = ' ';
        p = PutBytes(p, ownBezirk_);
        p = PutLeft<13>(p, g.Cell(row, kGridColCall));
        *p++ = ' ';
        p = PutLeft<3>(p, g.Cell(row, 6));
        *p++ = ' ';
        const QString& bezirk = g.Cell(row, kGridColBezirk);
        const qsizetype n = std::min<qsizetype>(bezirk.size(), 2);
        p = WriteCp1252(p, QStringView(bezirk).first(n));
        *slack = 2 - n;
        return PutLiteral(p, "\r\n");
    }

private:
    const LogGridModel& grid_;
    const LocaleFormats& formats_;
    const int noon_;
    QByteArray myCall_;    // MYCALL in 13 characters and a blank
    QByteArray ownBezirk_; // own district in 2 characters and a blank
    LastText date_;
};

// The operators of the rows written, in the order met, each followed by a blank; an
// operator that already stands in the text (as a part of a longer call, too) is left out.
class OperatorList {
public:
    void Add(const QString& op) {
        if (last_ && op.size() == last_->size() && (op.constData() == last_->constData() || op == *last_))
            return;
        last_ = &op;
        if (seen_.contains(op)) return; // once in the text, always in the text
        if (!text_.contains(op)) text_ += op + QLatin1Char(' ');
        seen_.insert(op);
    }
    const QString& Text() const { return text_; }

private:
    QString text_;
    QSet<QString> seen_;
    const QString* last_ = nullptr;
};

} // namespace

QString CabrilloQsoLine(const CabrilloSource& src, int row) {
    char line[75];
    qsizetype slack = 0;
    const char* end = QsoLines(src).Write(line, row, &slack);
    return FromCp1252(QByteArray(line, end - line - 2));
}

std::optional<QByteArray> BuildCabrilloBytes(const CabrilloSource& src, const ScoreFunction& score) {
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

    QString soapbox;
    Soapbox(soapbox, h.MYSTATION);
    Soapbox(soapbox, h.MYKOMMENT);

    // The operators line stands above the contacts but is known only after them: the
    // contacts go behind a gap that then takes the header, so the rows are read once.
    const qsizetype gap = out.size() + soapbox.size() + 300;
    // Each contact line stands in a slot of 75 characters: a shorter line (a district
    // of fewer than two characters) leaves its blanks in front of the next line.
    // Blanks at the end of the last line's slot and its line end are not written.
    const int rows = src.grid.DataRows();
    ByteOut bytes(gap + qsizetype(75) * rows + 16);
    bytes.p += gap;
    QsoLines lines(src);
    OperatorList operators;
    qsizetype slack = 0;
    for (int row = 0; row < rows; ++row) {
        if (Is(src.grid.Cell(row, kGridColBand), "30m")) continue;
        bytes.p = PutBlanks(bytes.p, slack);
        bytes.p = lines.Write(bytes.p, row, &slack);
        operators.Add(src.grid.Cell(row, 10));
    }
    while (bytes.Size() - gap >= 2 && std::memcmp(bytes.p - 2, "\r\n", 2) == 0)
        bytes.Chop(2);
    bytes.p = PutLiteral(bytes.p, "\r\nEND-OF-LOG:\r\n");

    put(QStringLiteral("OPERATORS: ") + TrimBlanks(operators.Text()));
    out += soapbox;
    const QByteArray head = ToCp1252(out);
    QByteArray file = bytes.Take();
    if (head.size() <= gap) {
        std::memcpy(file.data() + gap - head.size(), head.constData(), size_t(head.size()));
        file.remove(0, gap - head.size()); // moves the start only, no copy
    } else {
        file.replace(0, gap, head);
    }
    return file;
}

std::optional<QString> BuildCabrillo(const CabrilloSource& src, const ScoreFunction& score) {
    std::optional<QByteArray> bytes = BuildCabrilloBytes(src, score);
    if (!bytes) return std::nullopt;
    return FromCp1252(*bytes);
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
    RememberSaveFolder(SaveKind::Cabrillo, answer.trimmed());
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
