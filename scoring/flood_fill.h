// The flood fill of the district map: recolours the 4-connected region of the seed
// pixel's colour, as the map needs when a worked district takes its band colour.
//
// Any thread may call it, on one image at a time: the image must not be used by
// another thread during the call. It never fails; a seed outside the image, or a
// seed that already has the fill colour, fills nothing and gives 0.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRgb>

namespace kolibrino {

// Fills, with the colour fill, every pixel that is connected to seed through pixels
// of exactly the seed's colour, stepping only left, right, up and down (so a line of
// diagonally touching pixels closes a region). Returns the number of pixels filled.
//
// Images of format RGB32 and ARGB32 are filled in place and keep their format. Any
// other format (an indexed GIF, for one, which cannot hold an arbitrary colour) is
// first converted to ARGB32 if it has an alpha channel and to RGB32 otherwise, and
// comes back in that format. In an RGB32 image colours compare without alpha, and
// the fill is stored opaque.
int FloodFill4(QImage& image, QPoint seed, QRgb fill);

} // namespace kolibrino
