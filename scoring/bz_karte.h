// BZKarte ("Bezirke Karte"): the map of the districts, each worked district flooded
// with the colour of its band mix, with filter views, half size and printing.
//
// Who calls it: InstallScoring() opens and closes it from MnBZKarte; the main window
// calls Fuellen with the district of each new contact (hook bzKarteFuellen); a
// deletion or a colour change in the multiplier table arms Timer1 (signal
// bzKarteRefreshRequested). GUI thread only. Unknown codes are ignored; a missing
// BZ_Karte.gif leaves an empty map (there is no recovery for it).
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "scoring/map_paint.h"

#include <QImage>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <array>
#include <functional>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QPainter;
class QPrinter;
class QPushButton;
class QScrollArea;
class QWidget;

namespace kolibrino {

class BZKarte : public QWidget {
    Q_OBJECT
public:
    BZKarte(Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent = nullptr);

    void Load();
    // Paints one district by its band mix, or asks for a full repaint in a filter view.
    void Fuellen(const QString& code);
    // Paints one district in the colour of a filter row (1..8).
    void Fuellen2(const QString& code, int filter);
    // The standard repaint: armed by the window's opening and from outside.
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();
    // Shows a district to the operator: rings its seed on the shown map (not on the
    // map that is painted and printed), scrolls it into view and raises the window.
    // The ring stays until the next full repaint or filter view; an unknown code does
    // nothing.
    void BezirkZeigen(const QString& code);
    // Element number of the ringed district, 0 for none; the picture as shown.
    int Marked() const { return marked_; }
    QImage ShownImage() const;
    // Click on a row of the filter box.
    void Combo1Click(int row);
    // Band buttons Command1..Command5 (index 0..4).
    QPushButton* Button(int i) const { return buttons_[size_t(i)]; }
    int ButtonColour(int i) const;
    void SetButtonColour(int i, int bgr);
    void CommandClick(int i);
    void Check1Click();
    void Command6Click();
    // "Karte drucken"; true when a page went out.
    bool Command7Click(QString* pdfPath = nullptr);
    void Command8Click();

    // The full-size map as it stands, and the half-size view (null when hidden).
    const QImage& Map() const { return map_; }
    QImage HalfView() const;
    bool HalfSize() const;
    // The heading of the printed map.
    QString PrintHeading() const;
    // The printed page: heading and map inside the printable area, no grey around.
    void DrawPrint(QPainter& p, QPrinter& printer) const;
    QImage PrintImage() const;
    // Opens a printed PDF on the operator's yes; empty: the desktop's viewer.
    std::function<bool(const QUrl&)> openUrl;

    // The other windows follow a colour chosen here (band buttons 0..3).
    std::function<void(int button, int bgr)> colourChanged;
    // "Karte in den Hintergrund": the open windows in front of the map, then the main window.
    std::function<void()> bringOthersToFront;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void LoadMap();
    void ShowMap();
    MapColours Colours() const;
    void FitWindow();

    Model& m_;
    Dialogs& dialogs_;
    QAction* menuEntry_;
    QTimer timer1_;
    QImage map_;
    QScrollArea* picture2_ = nullptr;
    QLabel* picture1_ = nullptr;
    QLabel* image1_ = nullptr;
    QWidget* picture3_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QPushButton* command6_ = nullptr;
    std::array<QPushButton*, 5> buttons_{};
    int marked_ = 0;
};

} // namespace kolibrino
