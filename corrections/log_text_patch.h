// The log text after a change of one contact, without writing every other line anew.
//
// The result is always what BuildLogText() gives for the records as they are now. When
// LogText is exactly the text of the records before the change (the header of this
// year, one line per live record in array order, the changed record's old line where
// it belongs), only that line is replaced or taken out; in every other case the whole
// text is rebuilt. Called by the edit and delete logic on the window thread; never
// fails.
#pragma once

#include "core/log_model.h"

namespace kolibrino::corrections {

// record: index of the changed record; oldLine: its contact line before the change;
// liveBefore: live records before the change (the changed one counted). The record is
// now deleted (its line goes) or changed (its line is replaced). With rebuildIndex the
// call index follows as BuildLogText(m, true, ...) would make it.
QString PatchLogText(Model& m, int year, size_t record, const QString& oldLine, qsizetype liveBefore,
                     bool rebuildIndex);

} // namespace kolibrino::corrections
