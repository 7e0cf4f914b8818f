#include "corrections/correction_counters.h"

#include "core/log_file.h"
#include "core/vb_text.h"

namespace kolibrino::corrections {

int BandOfText(const QString& bandText) {
    return ToInt16(LeadingNumber(TrimBlanks(bandText)));
}

int BandListIndex(const QString& bandText) {
    for (int i = 0; i < 3; ++i)
        if (bandText == QLatin1String(kBandNames[i])) return i;
    return -1;
}

QTime TimeOfText(const Model& m, const QString& text) {
    return m.Formats.ParseTime(TrimBlanks(text)).value_or(QTime());
}

bool SameSideOfNoon(const Model& m, const QTime& a, const QTime& b) {
    return (a < m.MittagsGrenze) == (b < m.MittagsGrenze);
}

void LowerStaatsfunk(Model& m, const QString& call, int band) {
    const QString prefix = call.left(3);
    for (size_t i = 0; i < m.StaatsfunkRecords.size(); ++i) {
        StaatsfunkRecord& s = m.StaatsfunkRecords[i];
        if (s.Prefix != prefix) continue;
        if (band == kBand80)
            --s.Anz80;
        else if (band == kBand30)
            --s.Anz30;
        if (s.Anz80 == 0 && s.Anz30 == 0)
            m.StaatsfunkRecords.erase(m.StaatsfunkRecords.begin() + qsizetype(i));
        return;
    }
}

namespace {

void AddToGruppe(Model& m, int gruppe, int band, int delta) {
    const int col = BandColumn(band);
    if (col < 0 || gruppe < 1 || gruppe > 9) return;
    m.GruppeBandCount[size_t(gruppe - 1)][size_t(col)] += delta;
}

int AddToBezirk(Model& m, const QString& code, int band, int delta) {
    const int n = BezirkNumber(m, code);
    if (n < 1 || size_t(n) >= m.BezirkRecords.size()) return 0;
    BezirkRecord& b = m.BezirkRecords[size_t(n)];
    b.AnzGesamt += delta;
    if (band == kBand40)
        b.Anz40 += delta;
    else if (band == kBand80)
        b.Anz80 += delta;
    else if (band == kBand30)
        b.Anz30 += delta;
    AddToGruppe(m, b.Gruppe, band, delta);
    return n;
}

} // namespace

int LowerBezirk(Model& m, const QString& code, int band) {
    return AddToBezirk(m, code, band, -1);
}

int RaiseBezirk(Model& m, const QString& code, int band) {
    return AddToBezirk(m, code, band, +1);
}

int GruppeOf(const Model& m, int bezirkNumber) {
    if (bezirkNumber < 1 || size_t(bezirkNumber) >= m.BezirkRecords.size()) return 0;
    return m.BezirkRecords[size_t(bezirkNumber)].Gruppe;
}

} // namespace kolibrino::corrections
