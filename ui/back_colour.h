// Back colours of widgets given as the program's colour numbers: 0x00BBGGRR, or a
// desktop palette entry when the high bit is set (0x80000000 plus the entry, such as
// 0x8000000F for the button face).
//
// GUI thread only. Never fails: an unknown palette entry maps to the window colour.
#pragma once

#include <QColor>
#include <QtGlobal>

class QWidget;

namespace kolibrino {

// The colour a number stands for, palette entries taken from the application palette.
QColor ColourOf(quint32 colour);
// Paints w's background: the text area of line edits and combo boxes, the face of
// buttons, the background of check boxes. The number is kept for BackColourOf().
void SetBackColour(QWidget* w, quint32 colour);
// The number last given to SetBackColour(), or 0x00FFFFFF (white) when none was.
quint32 BackColourOf(const QWidget* w);

} // namespace kolibrino
