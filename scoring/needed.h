// The multipliers still missing on 40 m and 80 m: the districts of the district table
// and the federal states with no contact that is not a dupe on the band. Read from the
// district tallies and GruppeBandCount of the Model, so its cost is fixed by the size
// of the district table, whatever the size of the log; a contact whose district is not
// in the table counts for nothing here.
//
// Who calls it: the window "Fehlende Multiplikatoren" (scoring/fehlende_multi.h) and
// `kolibrino-cli needed`. Window thread only. Never fails.
#pragma once

#include "core/log_model.h"

#include <QString>
#include <array>
#include <vector>

namespace kolibrino {

// The bands of the list: 40 m, then 80 m.
inline constexpr int kNeededBands[2] = {kBand40, kBand80};

// Name of a federal state by its number (the digit of its call-sign area, 1..9);
// empty for any other number.
QString BundeslandName(int gruppe);

struct NeededBand {
    int band = 0;
    std::vector<int> bezirke;     // element numbers of BezirkRecords, in table order
    std::vector<int> bundeslaender; // 1..9, ascending
};

struct NeededMultipliers {
    std::array<NeededBand, 2> bands; // 40 m, 80 m
};

NeededMultipliers ComputeNeeded(const Model& m);
// The four lines of `kolibrino-cli needed`, each with "\n".
QString NeededText(const Model& m, const NeededMultipliers& n);

} // namespace kolibrino
