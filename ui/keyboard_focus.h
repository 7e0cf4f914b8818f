// Focus from the keyboard selects the whole text, as entry fields of the classic
// desktop do: a text field or an editable combo box reached by Tab, Shift+Tab, an
// access key or a jump key of the program (Space in the entry line) has its text
// selected, so that typing replaces it. A click keeps the caret where it lands, and a
// field focused by the program for another reason (a failed check, the next contact)
// keeps its caret too.
//
// Any window calls SelectAllOnKeyboardFocus(this) once its controls are built; a
// control added later is covered by calling it again (or by SelectAllOnKeyboardFocus
// on the control itself). Jumps of the program's own keys go through
// FocusFromKeyboard(). GUI thread only; never fails.
#pragma once

class QWidget;

namespace kolibrino {

// Covers every text field and editable combo box in root (root included).
void SelectAllOnKeyboardFocus(QWidget* root);

// Moves the focus to w as a key of the program does: its text is selected.
void FocusFromKeyboard(QWidget* w);

} // namespace kolibrino
