#include "scoring/score.h"

#include <cmath>

namespace kolibrino {

namespace {

const char* const kStateTitles[9] = {"OE1", "OE2", "OE3", "OE4", "OE5", "OE6", "OE7", "OE8", "OE9"};
const char* const kPeriodTitles[4] = {"SSB-Vm", "SSB-Nm", "CW-Vm", "CW-Nm"};

// A right-aligned field of a fixed width; a longer value is cut to the width.
QString Right(const QString& value, int width) {
    return value.left(width).rightJustified(width, QLatin1Char(' '));
}

QString Right(long long value, int width) {
    return Right(QString::number(value), width);
}

} // namespace

QString ScoreNumberText(double value) {
    if (std::isfinite(value) && value == std::floor(value) && std::fabs(value) < 1e18)
        return QString::number(static_cast<long long>(value));
    return QString::number(value, 'g', 15);
}

ScoreResult ComputeScore(const Model& m) {
    ScoreResult s;
    s.Label23 = m.Header.MYNPOWER;
    if (m.BezirkRecords.empty()) {
        s.valid = false;
        return s;
    }

    // State-station prefixes.
    s.prefixes.reserve(m.StaatsfunkRecords.size());
    for (const StaatsfunkRecord& p : m.StaatsfunkRecords) {
        s.prefixes.push_back({p.Prefix, {p.Anz80, p.Anz30}});
        if (p.Anz80 > 0) ++s.Label21;
        if (p.Anz30 > 0) ++s.Label20;
    }
    s.Label1 = s.Label21;

    // Districts.
    s.districts.reserve(m.BezirkRecords.size());
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        const BezirkRecord& b = m.BezirkRecords[i];
        s.districts.push_back({b.Code, {b.Anz40, b.Anz80, b.Anz30}});
        if (b.Anz40 > 0) ++s.Label12;
        if (b.Anz80 > 0) ++s.Label13;
        if (b.Anz30 > 0) ++s.Label14;
    }
    s.Label2 = s.Label13 + s.Label12;

    // Federal states.
    for (int g = 0; g < 9; ++g) {
        const auto& c = m.GruppeBandCount[size_t(g)];
        s.states.push_back({QString::fromLatin1(kStateTitles[g]), {c[0], c[1], c[2]}});
        if (c[0] > 0) ++s.Label10;
        if (c[1] > 0) ++s.Label4;
        if (c[2] > 0) ++s.Label3;
    }
    s.Label11 = s.Label4 + s.Label10;

    // Modes, in the order of the main window's mode list.
    for (int r = 0; r < 2; ++r) {
        const auto& c = m.ModeBandCount[size_t(r)];
        s.modes.push_back(
            {QString::fromLatin1(kModeNames[r]), {c[0], c[1], c[2], (long long)c[0] + c[1] + c[2]}});
        s.Label7 += c[0];
        s.Label8 += c[1];
        s.Label9 += c[2];
    }

    // SSB/CW share on 40 m and 80 m; ties round to the even number.
    const double a = double(m.ModeBandCount[0][0]) + m.ModeBandCount[0][1];
    const double b = double(m.ModeBandCount[1][0]) + m.ModeBandCount[1][1];
    if (a == 0 && b == 0) {
        s.Label15 = QStringLiteral("0/0");
    } else {
        const double p = std::nearbyint(a / ((a + b) / 100.0));
        s.Label15 = ScoreNumberText(p) + QLatin1Char('/') + ScoreNumberText(100 - p);
    }

    s.Label6 = m.QsoCount;
    s.Label16 = (long long)s.Label2 + 2LL * s.Label11 + 2LL * s.Label21;
    s.Label18 = s.Label6 * (double(m.Header.MYNPOWER) + double(s.Label16));

    for (int r = 0; r < 4; ++r) {
        const auto& c = m.PeriodBandCount[size_t(r)];
        s.periods.push_back(
            {QString::fromLatin1(kPeriodTitles[r]), {c[0], c[1], c[2], (long long)c[0] + c[1] + c[2]}});
    }
    return s;
}

std::vector<std::pair<QString, QString>> ScoreLabels(const ScoreResult& s) {
    auto n = [](double v) { return ScoreNumberText(v); };
    return {
        {QStringLiteral("Gültige QSOs"), n(s.Label6)},
        {QStringLiteral("QSOs auf 40m"), n(double(s.Label7))},
        {QStringLiteral("QSOs auf 80m"), n(double(s.Label8))},
        {QStringLiteral("QSOs auf 30m"), n(double(s.Label9))},
        {QStringLiteral("Bezirke auf 40m"), n(s.Label12)},
        {QStringLiteral("Bezirke auf 80m"), n(s.Label13)},
        {QStringLiteral("Bezirke auf 30m"), n(s.Label14)},
        {QStringLiteral("Gewertete Bezirke auf 40m und 80m"), n(s.Label2)},
        {QStringLiteral("Bundesländer auf 40m"), n(s.Label10)},
        {QStringLiteral("Bundesländer auf 80m"), n(s.Label4)},
        {QStringLiteral("Bundesländer auf 30m"), n(s.Label3)},
        {QStringLiteral("Gewertete Bundesländer auf 40m und 80m"), n(s.Label11)},
        {QStringLiteral("Staatsfunkstellen-Prefix auf 80m"), n(s.Label21)},
        {QStringLiteral("Staatsfunkstellen-Prefix auf 30m"), n(s.Label20)},
        {QStringLiteral("Gewertete Staatsfunkstellen-Prefix auf 80m"), n(s.Label1)},
        {QStringLiteral("Verhältnis SSB/CW in %"), s.Label15},
        {QStringLiteral("Multiplikator für netzunabhängigen Betrieb"), n(s.Label23)},
        {QStringLiteral("Bezirke + Bundesländer mal 2"), n(double(s.Label16))},
        {QStringLiteral("Punkte gesamt"), n(s.Label18)},
    };
}

std::optional<QString> ClaimedScore(const Model& m) {
    const ScoreResult s = ComputeScore(m);
    if (!s.valid) return std::nullopt;
    return ScoreNumberText(s.Label18);
}

std::optional<long> ClaimedScoreValue(const Model& m) {
    const std::optional<QString> text = ClaimedScore(m);
    if (!text) return std::nullopt;
    bool ok = false;
    const long value = text->toLong(&ok);
    if (!ok) return std::nullopt;
    return value;
}

QString OperatorList(const Model& m) {
    QString ops;
    for (const QsoRecord& r : m.LogRecords) {
        if (!ops.contains(r.Operator)) ops += r.Operator + QStringLiteral(", ");
    }
    if (ops.size() < 3) return {};
    ops.chop(2);
    return ops;
}

QString CategoryLine(int wertungsst, int pwr) {
    const bool high = pwr == 1;
    switch (wertungsst) {
    case 0:
        return high ? QStringLiteral("Category: HIGH-POWER SSB") : QStringLiteral("Category: LOW-POWER SSB");
    case 1:
        return high ? QStringLiteral("Category: HIGH-POWER MIX") : QStringLiteral("Category: LOW-POWER MIX");
    case 2:
        return high ? QStringLiteral("Category: HIGH-POWER CW") : QStringLiteral("Category: LOW-POWER CW");
    case 3:
        return high ? QStringLiteral("Category: HIGH-POWER NEWCOMER")
                    : QStringLiteral("Category: LOW-POWER NEWCOMER");
    case 4:
        return QStringLiteral("Category: STAATSFUNKSTELLEN");
    default:
        return {};
    }
}

QString ResultsText(const Model& m, const ScoreResult& s, int year) {
    const auto& p = m.PeriodBandCount;
    auto cw = [&p](int col) { return (long long)p[2][size_t(col)] + p[3][size_t(col)]; };
    auto ssb = [&p](int col) { return (long long)p[0][size_t(col)] + p[1][size_t(col)]; };
    const QString dashes(37, QLatin1Char('-'));
    const QString crlf = QStringLiteral("\r\n");

    QStringList lines;
    lines << QString();
    lines << QString(12, QLatin1Char(' ')) + QStringLiteral("ZEFT 80/40m");
    lines << QString();
    lines << QStringLiteral("Call: ") + m.Header.MYCALL;
    lines << QStringLiteral("Operator (S): ") + OperatorList(m);
    lines << QStringLiteral("Station: ") + m.Header.MYCALL;
    lines << QString();
    const QString category = CategoryLine(m.Header.MYWERTUNGSST, m.Header.MYPWR);
    if (!category.isEmpty()) lines << category;
    lines << QStringLiteral("QTH: ") + m.Header.MYCITY;
    lines << QString();
    lines << QStringLiteral("Ergebnis:");
    lines << QStringLiteral(" Band  CW-Qs  Ph-Qs  Bezirke  BLD/STF");
    lines << dashes;
    lines << QStringLiteral("   80:") + Right(cw(1), 5) + Right(ssb(1), 7) + Right(s.Label13, 7) +
                 Right(s.Label4, 8) + QLatin1Char('/') + QString::number(s.Label21);
    lines << QStringLiteral("   40:") + Right(cw(0), 5) + Right(ssb(0), 7) + Right(s.Label12, 7) +
                 Right(s.Label10, 8) + QStringLiteral("/0");
    lines << QStringLiteral("   30:") + Right(cw(2), 5) + Right(ssb(2), 7) + QString(6, QLatin1Char(' ')) +
                 QLatin1Char('-') + QString(7, QLatin1Char(' ')) + QStringLiteral("-/-");
    lines << dashes;
    lines << Right(cw(0) + cw(1) + cw(2), 11) + Right(ssb(0) + ssb(1) + ssb(2), 7) +
                 Right((long long)s.Label12 + s.Label13, 7) +
                 Right((long long)s.Label21 + s.Label10 + s.Label4, 10);
    lines << QString() << QString();
    lines << QStringLiteral("QSOs gesamt = ") + ScoreNumberText(s.Label6);
    lines << QStringLiteral("Punkte      = ") + ScoreNumberText(s.Label18);
    lines << QString();
    lines << QStringLiteral("Comments:");
    lines << QString();
    lines << QStringLiteral("CREATED-BY: %1 v%2, %3 by ZZ9QQQ")
                 .arg(ProgramTitle(), ProgramVersionText())
                 .arg(year);
    lines << QString();
    return lines.join(crlf) + crlf;
}

QString ResultsFileName(const QString& answer) {
    if (answer.right(4).toUpper() == QLatin1String(".TXT")) return answer;
    return answer + QStringLiteral(".txt");
}

} // namespace kolibrino
