// BezirkeListe ("Bezirke Liste"): a printable page of all districts with their codes
// and federal states, drawn once at load.
//
// Who calls it: InstallScoring() from MnBezirkeListe, modal. GUI thread only. Never
// fails; printing fails as RunPrintout() (ui/print_job.h) says.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QDialog>
#include <QImage>
#include <QStringList>
#include <QUrl>
#include <functional>

class QPainter;
class QPrinter;

namespace kolibrino {

// The line of one district: " BR - Braunau am Inn (OE5)".
QString BezirkeListeLine(const BezirkRecord& b);
// The two columns of the page: left holds 1..53, right 54 upwards while i + 53 is
// below the highest element number. Each pair is (left, right or empty).
std::vector<std::pair<QString, QString>> BezirkeListeRows(const Model& m);
// Draws the page on a painter whose device has dotsPerMm pixels to the millimetre.
void DrawBezirkeListe(QPainter& p, const Model& m, double dotsPerMm);

class BezirkeListe : public QDialog {
    Q_OBJECT
public:
    BezirkeListe(const Model& m, Dialogs& dialogs, QWidget* parent = nullptr);
    // MnDrucken: asks, then prints the page; true when a page went out.
    bool MnDrucken(QString* pdfPath = nullptr);
    const QImage& Page() const { return page_; }
    // Opens a printed PDF on the operator's yes; empty: the desktop's viewer.
    std::function<bool(const QUrl&)> openUrl;

private:
    const Model& m_;
    Dialogs& dialogs_;
    QImage page_;
};

} // namespace kolibrino
