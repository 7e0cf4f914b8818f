#include "scoring/needed.h"

namespace kolibrino {

QString BundeslandName(int gruppe) {
    static const char* const names[9] = {"Wien",         "Salzburg", "Niederösterreich",
                                         "Burgenland",   "Oberösterreich", "Steiermark",
                                         "Tirol",        "Kärnten",  "Vorarlberg"};
    if (gruppe < 1 || gruppe > 9) return {};
    return QString::fromUtf8(names[gruppe - 1]);
}

NeededMultipliers ComputeNeeded(const Model& m) {
    NeededMultipliers n;
    for (int i = 0; i < 2; ++i) {
        NeededBand& nb = n.bands[size_t(i)];
        nb.band = kNeededBands[i];
        for (size_t e = 1; e < m.BezirkRecords.size(); ++e) {
            const BezirkRecord& b = m.BezirkRecords[e];
            if ((i == 0 ? b.Anz40 : b.Anz80) <= 0) nb.bezirke.push_back(int(e));
        }
        for (int g = 1; g <= 9; ++g)
            if (m.GruppeBandCount[size_t(g - 1)][size_t(i)] <= 0) nb.bundeslaender.push_back(g);
    }
    return n;
}

QString NeededText(const Model& m, const NeededMultipliers& n) {
    QString s;
    for (const NeededBand& nb : n.bands) {
        QStringList codes;
        for (const int e : nb.bezirke)
            codes << m.BezirkRecords[size_t(e)].Code;
        s += QStringLiteral("Bezirke %1m: ").arg(nb.band) + codes.join(QLatin1Char(' ')) + QLatin1Char('\n');
    }
    for (const NeededBand& nb : n.bands) {
        QStringList numbers;
        for (const int g : nb.bundeslaender)
            numbers << QString::number(g);
        s += QStringLiteral("Bundesländer %1m: ").arg(nb.band) + numbers.join(QLatin1Char(' ')) +
             QLatin1Char('\n');
    }
    return s;
}

} // namespace kolibrino
