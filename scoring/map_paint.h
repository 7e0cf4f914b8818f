// The district map's painting on a QImage: which colour a worked district takes, the
// nine filter rows, and the fill of one district or of all of them from its seed
// (X, Y of the district table) with our own 4-connected flood fill.
//
// Who calls it: the map window (BZKarte) for Fuellen, Fuellen2 and its Timer1, the
// benchmarks, and kolibrino-cli map. Reads the Model, writes only the image given.
//
// Window thread (or any thread that owns the image and the Model for the call). Never
// fails: an unknown code, a district with nothing to show, or a seed outside the image
// paints nothing and gives false. LoadMapImage() gives a null image when
// BZ_Karte.gif cannot be read; painting a null image does nothing.
#pragma once

#include "core/log_model.h"

#include <QImage>
#include <QRgb>
#include <QString>
#include <optional>

namespace kolibrino {

// The five band colours of the map, 0x00BBGGRR as stored in section "Farben".
struct MapColours {
    int c40 = 0x90EE90;   // light green
    int c80 = 0xE6D8AD;   // light blue
    int c4080 = 0x78DCFF; // light amber
    int c30 = 0xC1B6FF;   // light pink
    int c3080 = 0xDDA0DD; // light plum
};

// Keys of section "Farben", in button order 40m, 80m, 40/80m, 30m, 30/80m.
inline const char* const kFarbenKeys[5] = {"40mFarbe", "80mFarbe", "4080mFarbe", "30mFarbe", "3080mFarbe"};

// The colours stored in the default settings file; a key that is absent or 0 keeps
// the built-in colour.
MapColours ReadMapColours();
int& MapColour(MapColours& c, int button); // button 0..4 in the order above
int MapColour(const MapColours& c, int button);

// A 0x00BBGGRR colour as an opaque QRgb, and back.
QRgb BgrToRgb(int bgr);
int RgbToBgr(QRgb rgb);

// The nine rows of the filter box; row i is filter number i.
inline const char* const kMapFilterRows[9] = {
    "alle gültigen Bezirke", "alle 40m Bezirke", "alle 80m Bezirke",
    "alle 40/80m Bezirke",   "alle 30m Bezirke", "alle 30/80m Bezirke",
    "nur 40m Bezirke",       "nur 80m Bezirke",  "nur 30m Bezirke!"};

// Colour of the band mix in the standard view: 40 m only, 80 m only, both; 30 m plays
// no part. nullopt: the district is not painted.
std::optional<int> BandMixColour(const BezirkRecord& b, const MapColours& c);
// Whether a filter row (1..8) paints the district, and in which colour.
bool FilterMatches(const BezirkRecord& b, int filter);
std::optional<int> FilterColour(int filter, const MapColours& c);

// The shipped map as an RGB32 image ready for filling; null when unreadable.
QImage LoadMapImage(const QString& path);

// Fills the region of the seed's present colour with a colour.
void FillDistrict(QImage& image, const BezirkRecord& b, int bgr);
// Paints one district by its band mix; false when nothing was painted.
bool FuellenImage(QImage& image, const Model& m, const QString& code, const MapColours& c);
// Paints one district in the colour of a filter row (1..8).
bool Fuellen2Image(QImage& image, const Model& m, const QString& code, int filter, const MapColours& c);

// On a freshly loaded map: every district worked on 40 m or 80 m by its band mix.
void PaintStandard(QImage& image, const Model& m, const MapColours& c);
// On a freshly loaded map: every district the filter row (1..8) selects.
void PaintFilter(QImage& image, const Model& m, const MapColours& c, int filter);

} // namespace kolibrino
