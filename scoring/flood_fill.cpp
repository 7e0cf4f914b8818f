#include "scoring/flood_fill.h"

#include <vector>

namespace kolibrino {

int FloodFill4(QImage& image, QPoint seed, QRgb fill) {
    if (image.isNull() || !image.rect().contains(seed)) return 0;
    if (image.format() != QImage::Format_RGB32 && image.format() != QImage::Format_ARGB32) {
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }
    const bool opaque = image.format() == QImage::Format_RGB32;
    const int width = image.width();
    const int height = image.height();
    const QRgb newColour = opaque ? (fill | 0xff000000u) : fill;

    auto row = [&image](int y) { return reinterpret_cast<QRgb*>(image.scanLine(y)); };
    const QRgb* seedRow = reinterpret_cast<const QRgb*>(image.constScanLine(seed.y()));
    const QRgb oldColour = opaque ? (seedRow[seed.x()] | 0xff000000u) : seedRow[seed.x()];
    if (oldColour == newColour) return 0;
    auto matches = [&](const QRgb* line, int x) {
        return (opaque ? (line[x] | 0xff000000u) : line[x]) == oldColour;
    };

    // Scan-line fill: take a pixel from the stack, widen it to the whole run of the old
    // colour on its row, paint the run, and push the start of every run of the old
    // colour that touches it from the row above or below.
    int filled = 0;
    std::vector<QPoint> stack;
    stack.push_back(seed);
    while (!stack.empty()) {
        const QPoint p = stack.back();
        stack.pop_back();
        QRgb* line = row(p.y());
        if (!matches(line, p.x())) continue;
        int left = p.x();
        while (left > 0 && matches(line, left - 1))
            --left;
        int right = p.x();
        while (right < width - 1 && matches(line, right + 1))
            ++right;
        for (int x = left; x <= right; ++x)
            line[x] = newColour;
        filled += right - left + 1;
        for (const int y : {p.y() - 1, p.y() + 1}) {
            if (y < 0 || y >= height) continue;
            const QRgb* next = row(y);
            bool inRun = false;
            for (int x = left; x <= right; ++x) {
                const bool m = matches(next, x);
                if (m && !inRun) stack.emplace_back(x, y);
                inRun = m;
            }
        }
    }
    return filled;
}

} // namespace kolibrino
