#include "ui/back_colour.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPalette>
#include <QVariant>
#include <QWidget>

namespace kolibrino {
namespace {

constexpr const char* kProperty = "kolibrinoBackColour";
constexpr quint32 kPaletteBit = 0x80000000u;

QPalette::ColorRole RoleOfEntry(quint32 entry) {
    switch (entry) {
    case 2: // active caption, shown as the selection colour
    case 13:
        return QPalette::Highlight;
    case 5:
        return QPalette::Base;
    case 15:
        return QPalette::Button;
    case 8:
        return QPalette::Text;
    default:
        return QPalette::Window;
    }
}

void SetRole(QWidget* w, QPalette::ColorRole role, const QColor& c) {
    QPalette p = w->palette();
    p.setColor(role, c);
    w->setPalette(p);
}

} // namespace

QColor ColourOf(quint32 colour) {
    if (colour & kPaletteBit) return QApplication::palette().color(RoleOfEntry(colour & ~kPaletteBit));
    return QColor(int(colour & 0xFF), int((colour >> 8) & 0xFF), int((colour >> 16) & 0xFF));
}

void SetBackColour(QWidget* w, quint32 colour) {
    if (!w) return;
    w->setProperty(kProperty, QVariant::fromValue(colour));
    const QColor c = ColourOf(colour);
    if (auto* combo = qobject_cast<QComboBox*>(w)) {
        SetRole(combo, QPalette::Base, c);
        SetRole(combo, QPalette::Button, c);
        if (combo->lineEdit()) SetRole(combo->lineEdit(), QPalette::Base, c);
    } else if (qobject_cast<QLineEdit*>(w)) {
        SetRole(w, QPalette::Base, c);
    } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        SetRole(button, QPalette::Button, c);
        SetRole(button, QPalette::Window, c);
        button->setAutoFillBackground(true);
        // Text stays readable on the selection colour.
        const bool highlight =
            (colour & kPaletteBit) && RoleOfEntry(colour & ~kPaletteBit) == QPalette::Highlight;
        const QColor text =
            QApplication::palette().color(highlight ? QPalette::HighlightedText : QPalette::ButtonText);
        SetRole(button, QPalette::ButtonText, text);
        SetRole(button, QPalette::WindowText, text);
    } else {
        SetRole(w, QPalette::Window, c);
        w->setAutoFillBackground(true);
    }
}

quint32 BackColourOf(const QWidget* w) {
    const QVariant v = w ? w->property(kProperty) : QVariant();
    return v.isValid() ? v.value<quint32>() : 0x00FFFFFFu;
}

} // namespace kolibrino
