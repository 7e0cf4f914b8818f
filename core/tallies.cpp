#include "core/tallies.h"

#include "core/log_file.h"

namespace kolibrino {

void ResetTallies(Model& m) {
    m.QsoCount = 0;
    m.DupeCount = 0;
    m.ModeBandCount = {};
    m.PeriodBandCount = {};
    m.GruppeBandCount = {};
    m.StaatsfunkRecords.clear();
    for (BezirkRecord& b : m.BezirkRecords)
        b.AnzGesamt = b.Anz40 = b.Anz80 = b.Anz30 = 0;
}

bool IsStaatsfunkCall(const QString& call) {
    if (call.size() < 3) return false;
    const char16_t c = call[2].unicode();
    return c >= u'A' && c <= u'Z';
}

void CountStaatsfunk(Model& m, const QString& call, int band) {
    const QString prefix = call.left(3);
    StaatsfunkRecord* row = nullptr;
    for (StaatsfunkRecord& s : m.StaatsfunkRecords) {
        if (s.Prefix == prefix) {
            row = &s;
            break;
        }
    }
    if (!row) {
        m.StaatsfunkRecords.push_back({prefix, 0, 0});
        row = &m.StaatsfunkRecords.back();
    }
    if (band == kBand80)
        ++row->Anz80;
    else if (band == kBand30)
        ++row->Anz30;
}

void RebuildTallies(Model& m) {
    ResetTallies(m);
    for (const QsoRecord& r : m.LogRecords) {
        if (r.Status == Status::Dupe) {
            ++m.DupeCount; // a stored dupe counts nowhere else
            continue;
        }
        if (r.Band != kBand30) m.QsoCount += 1;
        if (IsStaatsfunkCall(r.Call)) CountStaatsfunk(m, r.Call, r.Band);
        const int n = BezirkNumber(m, r.Bezirk);
        if (n > 0 && size_t(n) < m.BezirkRecords.size()) {
            BezirkRecord& b = m.BezirkRecords[size_t(n)];
            ++b.AnzGesamt;
            if (r.Band == kBand40)
                ++b.Anz40;
            else if (r.Band == kBand80)
                ++b.Anz80;
            else if (r.Band == kBand30)
                ++b.Anz30;
            RaiseGruppeBandCount(m, b.Gruppe, r.Band);
            // A contact without a known district is a valid QSO but stands in no
            // mode or period table after a rebuild (logging counts it there anyway).
            const auto t = m.Formats.ParseTime(r.Zeit);
            UpdateCounters(m, r.Band, r.Mode, t.value_or(QTime()), true);
        }
    }
}

} // namespace kolibrino
