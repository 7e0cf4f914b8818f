#include "upkeep/logo.h"

#include <QPainter>
#include <QPainterPath>

namespace kolibrino::upkeep {

QPixmap KolibrinoLogo(int size) {
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal s = size / 100.0;
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 150, 136));
    p.drawEllipse(QRectF(4 * s, 4 * s, 92 * s, 92 * s));
    // Body and wing.
    p.setBrush(QColor(255, 255, 255));
    QPainterPath bird;
    bird.moveTo(30 * s, 62 * s);
    bird.cubicTo(34 * s, 40 * s, 52 * s, 34 * s, 60 * s, 42 * s);
    bird.lineTo(92 * s, 36 * s); // the bill
    bird.lineTo(62 * s, 48 * s);
    bird.cubicTo(60 * s, 64 * s, 46 * s, 74 * s, 30 * s, 62 * s);
    p.drawPath(bird);
    QPainterPath wing;
    wing.moveTo(44 * s, 52 * s);
    wing.cubicTo(30 * s, 30 * s, 20 * s, 22 * s, 14 * s, 20 * s);
    wing.cubicTo(24 * s, 40 * s, 30 * s, 52 * s, 44 * s, 58 * s);
    p.drawPath(wing);
    p.setBrush(QColor(0, 150, 136));
    p.drawEllipse(QRectF(54 * s, 42 * s, 4 * s, 4 * s));
    return pm;
}

} // namespace kolibrino::upkeep
