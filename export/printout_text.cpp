#include "export/printout_text.h"

namespace kolibrino::exporting {
namespace {

void Left(QString& out, const QString& v, int width) {
    out += v.left(width);
    for (qsizetype i = v.size(); i < width; ++i)
        out += QLatin1Char(' ');
}

void Right(QString& out, const QString& v, int width) {
    for (qsizetype i = v.size(); i < width; ++i)
        out += QLatin1Char(' ');
    out += v.left(width);
}

} // namespace

QString PrintPageMark(int page) {
    return QStringLiteral("<Seite %1>").arg(page);
}

QString PrintHeading() {
    return QStringLiteral(
        "  Datum    Zeit  Band  QRG  Mode Rufzeichen    RSTs RSTe BZ QSL Dupe MyBZ OpCall        Notiz");
}

QString PrintLine(const LogGridModel& g, int row, const QString& myBz) {
    QString s;
    s.reserve(120);
    s += g.Text(row, 0) + QLatin1Char(' ');
    s += g.Text(row, 1) + QLatin1Char(' ');
    s += g.Text(row, 2);
    Right(s, g.Text(row, 14), 7);
    s += QLatin1Char(' ');
    Right(s, g.Text(row, 3), 3);
    s += QStringLiteral("  ");
    Left(s, g.Text(row, 4), 14);
    s += QLatin1Char(' ');
    Left(s, g.Text(row, 5), 3);
    s += QStringLiteral("  ");
    Left(s, g.Text(row, 6), 3);
    s += QLatin1Char(' ');
    s += g.Text(row, 7) + QStringLiteral("  ");
    s += g.Text(row, 8) + QStringLiteral("  ");
    Left(s, g.Text(row, 11), 6);
    s += myBz + QStringLiteral("  ");
    Left(s, g.Text(row, 10), 14);
    s += g.Text(row, 9);
    return s;
}

} // namespace kolibrino::exporting
