// The program's logo, painted (no image file to ship): a hummingbird's head and bill
// over the letter K. Used by the update splash and the info window.
//
// GUI thread only. Never fails.
#pragma once

#include <QPixmap>

namespace kolibrino::upkeep {

QPixmap KolibrinoLogo(int size);

} // namespace kolibrino::upkeep
