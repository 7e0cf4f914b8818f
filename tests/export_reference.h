// Straightforward Cabrillo and ADIF writers for the tests to hold the real ones
// against: each file is put together as one text, field by field with QString, and
// turned into code page 1252 at the end. Slow, but plain to read.
#pragma once

#include "core/cp1252.h"
#include "core/vb_text.h"
#include "entry/log_grid_model.h"
#include "export/cabrillo.h"
#include "export/export_common.h"

namespace kolibrino::test {

namespace reference {

inline const QString kCrLf = QStringLiteral("\r\n");

inline QString Left(const QString& value, int width) {
    QString s = value.left(width);
    while (s.size() < width)
        s += QLatin1Char(' ');
    return s;
}

inline QString Right(const QString& value, int width) {
    QString s = value.left(width);
    while (s.size() < width)
        s.prepend(QLatin1Char(' '));
    return s;
}

inline QString QsoLine(const exporting::CabrilloSource& src, int row) {
    using namespace exporting;
    const LogGridModel& g = src.grid;
    const LocaleFormats& f = src.m.Formats;
    const QString zeit = g.Text(row, kGridColZeit);
    const auto minutes = GridMinutes(f, zeit);
    const int noon = src.m.MittagsGrenze.hour() * 60 + src.m.MittagsGrenze.minute();
    return QStringLiteral("QSO: ") + Right(g.Text(row, kGridColFrequenz), 5) +
           (g.Text(row, kGridColMode) == QLatin1String("CW") ? QStringLiteral(" CW ")
                                                             : QStringLiteral(" PH ")) +
           Left(GridDateText(f, g.Text(row, kGridColDatum), QStringLiteral("yyyy-MM-dd")), 10) +
           QLatin1Char(' ') + Left(GridTimeHhmm(f, zeit), 4) +
           ((minutes && *minutes >= noon) ? QStringLiteral(" 2 ") : QStringLiteral(" 1 ")) +
           Left(src.m.Header.MYCALL, 13) + QLatin1Char(' ') + Left(g.Text(row, 5), 3) + QLatin1Char(' ') +
           Left(src.ownBezirk, 2) + QLatin1Char(' ') + Left(g.Text(row, kGridColCall), 13) +
           QLatin1Char(' ') + Left(g.Text(row, 6), 3) + QLatin1Char(' ') +
           g.Text(row, kGridColBezirk).left(2);
}

inline QByteArray Cabrillo(const exporting::CabrilloSource& src, long score) {
    const LogHeader& h = src.m.Header;
    QString out;
    auto put = [&out](const QString& line) { out += line + kCrLf; };
    put(QStringLiteral("START-OF-LOG:  3.0"));
    put(QStringLiteral("CALLSIGN: ") + h.MYCALL);
    const char* const opClass[] = {"SINGLE-OP", "MULTI-OP", "CHECKLOG"};
    if (h.MYOPKLASS >= 0 && h.MYOPKLASS <= 2)
        put(QStringLiteral("CATEGORY-OPERATOR: ") + QLatin1String(opClass[h.MYOPKLASS]));
    if (h.MYOMYL == 0) put(QStringLiteral("CATEGORY-OVERLAY: OM"));
    if (h.MYOMYL == 1) put(QStringLiteral("CATEGORY-OVERLAY: YL"));
    put(QStringLiteral("CATEGORY-STATION: ") + QString::number(h.MYNPOWER));
    if (h.MYPWR == 0) put(QStringLiteral("CATEGORY-POWER: LOW"));
    if (h.MYPWR == 1) put(QStringLiteral("CATEGORY-POWER: HIGH"));
    const char* const klasse[] = {"SSB", "MIX", "CW", "NEWCOMER"};
    if (h.MYWERTUNGSST == 4) {
        put(QStringLiteral("CATEGORY: STAATSFUNKSTELLEN"));
    } else if (h.MYWERTUNGSST >= 0 && h.MYWERTUNGSST <= 3 && (h.MYPWR == 0 || h.MYPWR == 1)) {
        put(QStringLiteral("CATEGORY: ") +
            (h.MYPWR == 0 ? QStringLiteral("LOW-POWER ") : QStringLiteral("HIGH-POWER ")) +
            QLatin1String(klasse[h.MYWERTUNGSST]));
    }
    if (h.MYWERTUNGSST == 3 && (h.MYPWR == 0 || h.MYPWR == 1)) {
        const auto d = exporting::GridDate(src.m.Formats, h.MYEXAMDAT);
        put(QStringLiteral("LICENSE-DATE: ") + (d ? d->toString(QStringLiteral("yyyy-MM-dd")) : h.MYEXAMDAT));
    }
    put(QStringLiteral("CLAIMED-SCORE: ") + QString::number(score));
    put(QStringLiteral("CONTEST: ZEFT 80/40m"));
    put(QStringLiteral("CREATED-BY: ") + ProgramTitle() + QStringLiteral(" v") + ProgramVersionText() +
        QStringLiteral(", ") + QString::number(src.year) + QStringLiteral(" by ZZ9QQQ"));
    put(QStringLiteral("EMAIL: ") + h.MYEMAIL);
    put(QStringLiteral("LOCATION: ") + Fixed2(h.MYBZ));
    put(QStringLiteral("NAME: ") + h.MYOPNAME);
    put(QStringLiteral("ADDRESS: ") + h.MYADRESS);
    put(QStringLiteral("ADDRESS-POSTALCODE: ") + h.MYPLZ);
    put(QStringLiteral("ADDRESS-CITY: ") + h.MYCITY);
    const int rows = src.grid.Rows();
    QString buffer(qsizetype(75) * rows, QLatin1Char(' '));
    QString operators;
    int skipped = 0;
    for (int i = 1; i < rows; ++i) {
        const int row = i - 1;
        if (src.grid.Text(row, kGridColBand) == QLatin1String("30m")) {
            ++skipped;
            continue;
        }
        const QString line = QsoLine(src, row) + kCrLf;
        const qsizetype pos = qsizetype(i - skipped) * 75 - 1;
        buffer.replace(pos, std::min<qsizetype>(line.size(), 75), line.left(75));
        const QString op = src.grid.Text(row, 10);
        if (!operators.contains(op)) operators += op + QLatin1Char(' ');
    }
    put(QStringLiteral("OPERATORS: ") + TrimBlanks(operators));
    for (const QString& text : {h.MYSTATION, h.MYKOMMENT}) {
        const QStringList pieces = text.split(kCrLf);
        for (qsizetype i = 0; i + 1 < pieces.size(); ++i)
            put(QStringLiteral("SOAPBOX: ") + TrimBlanks(pieces[i]));
    }
    QString contacts = TrimBlanks(buffer);
    while (contacts.endsWith(kCrLf))
        contacts.chop(2);
    put(contacts);
    put(QStringLiteral("END-OF-LOG:"));
    return ToCp1252(out);
}

inline QString AdifTag(const char* name, const QString& value) {
    return QLatin1Char('<') + QLatin1String(name) + QLatin1Char(':') + QString::number(value.size()) +
           QLatin1Char('>') + value;
}

inline QString AdifLine(const Model& m, const LogGridModel& g, int row, const QString& ownBezirk) {
    using namespace exporting;
    const QString datum = g.Text(row, kGridColDatum);
    QString out = QStringLiteral("<QSO_DATE:8>");
    if (GridDate(m.Formats, datum)) out += GridDateText(m.Formats, datum, QStringLiteral("yyyyMMdd"));
    out += QStringLiteral("<TIME_ON:4>") + GridTimeHhmm(m.Formats, g.Text(row, kGridColZeit));
    out += AdifTag("CALL", g.Text(row, kGridColCall)) + AdifTag("RST_SENT", g.Text(row, 5)) +
           AdifTag("RST_RCVD", g.Text(row, 6));
    out += QStringLiteral("<MY_STATE:2>") + ownBezirk + QStringLiteral("<STATE:2>") +
           g.Text(row, kGridColBezirk);
    const QString freq = g.Text(row, kGridColFrequenz);
    if (!freq.isEmpty())
        out += AdifTag(
            "FREQ", freq.size() < 4 ? freq : freq.left(freq.size() - 3) + QLatin1Char('.') + freq.right(3));
    out += AdifTag("MODE", g.Text(row, kGridColMode));
    out += QStringLiteral("<QSL_SENT:1>") +
           (g.Text(row, 8) == QLatin1String("1") ? QStringLiteral("Y") : QStringLiteral("N"));
    out += AdifTag("BAND", g.Text(row, kGridColBand));
    if (g.Text(row, 10) != m.Header.MYCALL) out += AdifTag("STATION_CALLSIGN", m.Header.MYCALL);
    out += AdifTag("OPERATOR", g.Text(row, 10));
    if (!g.Text(row, 9).isEmpty()) out += AdifTag("NOTES", g.Text(row, 9));
    return out + QStringLiteral("<EOR>\r\n");
}

inline QByteArray Adif(const Model& m, const LogGridModel& g, const QString& ownBezirk) {
    const QString version = ProgramVersionText();
    QString out = QStringLiteral("; This file was created by ") + ProgramTitle() + QStringLiteral(" v") +
                  version + QStringLiteral("  by ZZ9QQQ\r\n<PROGRAMID:9>Kolibrino\r\n<PROGRAMVERSION:") +
                  QString::number(version.size()) + QLatin1Char('>') + version +
                  QStringLiteral("\r\n<ADIF_VER:5>2.2.7\r\n<EOH>\r\n");
    for (int row = 0; row < g.DataRows(); ++row)
        if (g.Text(row, kGridColDupe) != QLatin1String("Dupe")) out += AdifLine(m, g, row, ownBezirk);
    return ToCp1252(out);
}

} // namespace reference

} // namespace kolibrino::test
