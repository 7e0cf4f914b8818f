// Length limit of an editable combo box's text.
//
// GUI thread only. A negative length counts as 0 (no limit). Never fails.
#pragma once

class QComboBox;

namespace kolibrino {

// Limits what can be typed; with truncate and a positive length, a longer text already
// in the box is cut and the caret put at its end.
void SetComboMaxLength(QComboBox* combo, int maxLength, bool truncate);

} // namespace kolibrino
