// Every counter of the log, rebuilt from the records.
//
// RebuildTallies() is what the grid's refill does besides the rows: QsoCount,
// DupeCount, the district tallies, GruppeBandCount, StaatsfunkRecords, ModeBandCount
// and PeriodBandCount, all from zero.
//
// Window thread only. Never fails: unreadable times count in neither period.
#pragma once

#include "core/log_model.h"

namespace kolibrino {

// All counters and district tallies to zero, StaatsfunkRecords emptied.
void ResetTallies(Model& m);
void RebuildTallies(Model& m);
// Counts one worked state station (first three characters of the call) on a band.
void CountStaatsfunk(Model& m, const QString& call, int band);
// A call whose third character is "A" to "Z" belongs to a state station.
bool IsStaatsfunkCall(const QString& call);

} // namespace kolibrino
