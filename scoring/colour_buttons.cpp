#include "scoring/colour_buttons.h"

#include "scoring/map_paint.h"
#include "ui/back_colour.h"

namespace kolibrino {

void AddColourButtons(std::span<QPushButton*> buttons, QBoxLayout* into, QObject* context,
                      const std::function<void(int)>& click) {
    static const char* const captions[5] = {"40m", "80m", "40/80m", "30m", "30/80m"};
    static const char* const tips[5] = {
        "Farbe für gearbeitete 40m Felder", "Farbe für gearbeitete 80m Felder",
        "Farbe für gearbeitete 40/80m Felder", "Farbe für gearbeitete 30m Felder",
        "Farbe für gearbeitete 30/80m Felder"};
    const MapColours design;
    for (size_t i = 0; i < buttons.size() && i < 5; ++i) {
        auto* b = new QPushButton(QString::fromLatin1(captions[i]));
        b->setObjectName(QStringLiteral("Command%1").arg(i + 1));
        b->setToolTip(QString::fromUtf8(tips[i]));
        SetBackColour(b, quint32(MapColour(design, int(i))));
        QObject::connect(b, &QPushButton::clicked, context, [click, i] { click(int(i)); });
        buttons[i] = b;
        into->addWidget(b);
    }
}

std::optional<int> AskBandColour(Dialogs& dialogs, int current) {
    const int colour = dialogs.SelectColor(current, false);
    if (colour == -1) return std::nullopt;
    if (colour == 0) {
        dialogs.MsgBox(QStringLiteral("Die Farbe schwarz ist nicht möglich!"), Msg::Information);
        return std::nullopt;
    }
    return colour;
}

} // namespace kolibrino
