#include "scoring/map_paint.h"

#include "core/log_file.h"
#include "core/settings.h"
#include "scoring/flood_fill.h"

namespace kolibrino {

MapColours ReadMapColours() {
    MapColours c;
    for (int i = 0; i < 5; ++i) {
        const int v = int(IniReadInt({}, QStringLiteral("Farben"), QString::fromLatin1(kFarbenKeys[i])));
        if (v != 0) MapColour(c, i) = v;
    }
    return c;
}

int& MapColour(MapColours& c, int button) {
    switch (button) {
    case 0:
        return c.c40;
    case 1:
        return c.c80;
    case 2:
        return c.c4080;
    case 3:
        return c.c30;
    default:
        return c.c3080;
    }
}

int MapColour(const MapColours& c, int button) {
    return MapColour(const_cast<MapColours&>(c), button);
}

QRgb BgrToRgb(int bgr) {
    return qRgb(bgr & 0xff, (bgr >> 8) & 0xff, (bgr >> 16) & 0xff);
}

int RgbToBgr(QRgb rgb) {
    return qRed(rgb) | (qGreen(rgb) << 8) | (qBlue(rgb) << 16);
}

std::optional<int> BandMixColour(const BezirkRecord& b, const MapColours& c) {
    if (b.Anz40 > 0 && b.Anz80 == 0) return c.c40;
    if (b.Anz80 > 0 && b.Anz40 == 0) return c.c80;
    if (b.Anz40 >= 1 && b.Anz80 >= 1) return c.c4080;
    return std::nullopt;
}

bool FilterMatches(const BezirkRecord& b, int filter) {
    switch (filter) {
    case 1:
        return b.Anz40 > 0;
    case 2:
        return b.Anz80 > 0;
    case 3:
        return b.Anz40 > 0 && b.Anz80 > 0;
    case 4:
        return b.Anz30 > 0;
    case 5:
        return b.Anz30 > 0 && b.Anz80 > 0;
    case 6:
        return b.Anz40 > 0 && b.Anz80 == 0 && b.Anz30 == 0;
    case 7:
        return b.Anz80 > 0 && b.Anz40 == 0 && b.Anz30 == 0;
    case 8:
        return b.Anz30 > 0 && b.Anz80 == 0 && b.Anz40 == 0;
    default:
        return false;
    }
}

std::optional<int> FilterColour(int filter, const MapColours& c) {
    switch (filter) {
    case 1:
    case 6:
        return c.c40;
    case 2:
    case 7:
        return c.c80;
    case 3:
        return c.c4080;
    case 4:
    case 8:
        return c.c30;
    case 5:
        return c.c3080;
    default:
        return std::nullopt;
    }
}

QImage LoadMapImage(const QString& path) {
    QImage image(path);
    if (image.isNull()) return image;
    return image.convertToFormat(QImage::Format_RGB32);
}

void FillDistrict(QImage& image, const BezirkRecord& b, int bgr) {
    FloodFill4(image, QPoint(b.X, b.Y), BgrToRgb(bgr));
}

bool FuellenImage(QImage& image, const Model& m, const QString& code, const MapColours& c) {
    const int n = BezirkNumber(m, code);
    if (n <= 0 || size_t(n) >= m.BezirkRecords.size()) return false;
    const BezirkRecord& b = m.BezirkRecords[size_t(n)];
    const auto colour = BandMixColour(b, c);
    if (!colour) return false;
    FillDistrict(image, b, *colour);
    return true;
}

bool Fuellen2Image(QImage& image, const Model& m, const QString& code, int filter, const MapColours& c) {
    const int n = BezirkNumber(m, code);
    if (n <= 0 || size_t(n) >= m.BezirkRecords.size() || filter < 1 || filter > 8) return false;
    FillDistrict(image, m.BezirkRecords[size_t(n)], *FilterColour(filter, c));
    return true;
}

void PaintStandard(QImage& image, const Model& m, const MapColours& c) {
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        const BezirkRecord& b = m.BezirkRecords[i];
        if (b.Anz40 < 1 && b.Anz80 < 1) continue;
        FuellenImage(image, m, b.Code, c);
    }
}

void PaintFilter(QImage& image, const Model& m, const MapColours& c, int filter) {
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        const BezirkRecord& b = m.BezirkRecords[i];
        if (FilterMatches(b, filter)) Fuellen2Image(image, m, b.Code, filter, c);
    }
}

} // namespace kolibrino
