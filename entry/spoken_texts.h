// The texts the main window gives the screen reader beyond what it shows: the
// confirmation of a logged contact, the value of a selection box, the state of the
// dupe button, and the shortcut keys that reach the grid, the date field and the
// companion windows.
//
// Any thread; pure functions that never fail.
#pragma once

#include "core/log_model.h"

#include <QString>

namespace kolibrino {

// "Geloggt OE5ABC 80m CW BR" (", Dupe" behind a dupe; no district when it is empty).
QString LoggedText(const QsoRecord& r);
// A box's value with its caption: "Band 80m"; "Band leer" when nothing is chosen.
QString ValueText(const QString& caption, const QString& value);
// The DUPE button's state in words.
QString DupeButtonText(bool lit);

} // namespace kolibrino
