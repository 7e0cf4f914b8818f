// Counter steps that the edit and the delete of a contact share: taking a contact's
// district and its state station out of the tallies, putting them back in, and the
// grid cells read as a band number and a time.
//
// Called by the correction logic (edit_entry, delete_entry) on the window thread.
// Never fails: an unknown district or prefix changes nothing.
#pragma once

#include "core/log_model.h"

#include <QTime>

namespace kolibrino::corrections {

// Band number of a band text ("80m" gives 80), 0 when it has none.
int BandOfText(const QString& bandText);
// List position of a band text in "40m", "80m", "30m"; -1 when it is none of them.
int BandListIndex(const QString& bandText);
// A grid or field time as a time of day; an invalid time when unreadable.
QTime TimeOfText(const Model& m, const QString& text);
// Both earlier than MittagsGrenze, or both at or after it.
bool SameSideOfNoon(const Model& m, const QTime& a, const QTime& b);

// Subtracts one contact on band from the state station of call's first three
// characters; an entry whose counts both reach 0 is removed.
void LowerStaatsfunk(Model& m, const QString& call, int band);
// Subtracts one contact on band from a known district and its group. Returns the
// district's element number, 0 when the code is unknown.
int LowerBezirk(Model& m, const QString& code, int band);
// Adds one contact on band to a known district and its group; 0 when unknown.
int RaiseBezirk(Model& m, const QString& code, int band);
// Group of a district element number, 0 when out of range.
int GruppeOf(const Model& m, int bezirkNumber);

} // namespace kolibrino::corrections
