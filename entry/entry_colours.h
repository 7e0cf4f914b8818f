// The colours of the entry area, as 0x00BBGGRR numbers the way the settings keep
// colours. Numbers with the high bit set stand for a colour of the desktop's palette
// (0x80000000 plus the palette entry); the window maps them to its palette roles.
//
// Constants only; any thread.
#pragma once

#include <QtGlobal>

namespace kolibrino::EntryColour {

inline constexpr quint32 Cyan = 0x00FFFF00;       // field with the focus
inline constexpr quint32 White = 0x00FFFFFF;      // field without the focus
inline constexpr quint32 Grey = 0x00C0C0C0;       // date and time locked
inline constexpr quint32 Green = 0x0080FF80;      // date and time typed by hand
inline constexpr quint32 Red = 0x000000FF;        // lit dupe button
inline constexpr quint32 Highlight = 0x80000002;  // palette: highlight (QSL JA)
inline constexpr quint32 ButtonFace = 0x8000000F; // palette: button face

// Whether a colour names a palette entry rather than red, green and blue.
inline constexpr bool IsPaletteColour(quint32 colour) {
    return (colour & 0x80000000u) != 0;
}

} // namespace kolibrino::EntryColour
