#include "ui/window_support.h"

#include "core/error_trap.h"
#include "core/settings.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QWidget>

namespace kolibrino {
namespace {

const std::array<CompanionDef, kCompanionCount> kCompanions = {{
    {Companion::BZKarte, "BZKarte", "BZKarte", "BZKarte", "MnBZKarte", 0, 10},
    {Companion::GridKarte, "GridKarte", "GridKarte", "BZGrid", "MnBZGrid", 6409, 78},
    {Companion::Frequenz, "Frequenz", "FrequenzForm", "Frequenz", "MnFrequenz", 2561, 5200},
    {Companion::Statistik, "Statistik", "StatistikForm", "Statistik", "MnStatistik", 2327, 7436},
    {Companion::Transceiver, "Transceiver", "TransceiverForm", "Transceiver", "MnTransceiver", 0, 0},
    {Companion::LogTracker, "LogTracker", "LogTracker", "LogTracker", "MnLogTracker", 2639, 2301},
    {Companion::DBLog, "DBLog", "DBLog", "DBLog", "MnDB", 468, 4446},
    {Companion::QsoRate, "QsoRate", "QsoRateForm", "QsoRate", "MnQsoRate", 5400, 7436},
    {Companion::FehlendeMulti, "FehlendeMulti", "FehlendeMultiForm", "FehlendeMulti", "MnFehlendeMulti", 600, 9600},
}};

QSize ScreenPixels() {
    const QScreen* s = QGuiApplication::primaryScreen();
    return s ? s->geometry().size() : QSize(800, 600);
}

} // namespace

const std::array<CompanionDef, kCompanionCount>& Companions() {
    return kCompanions;
}

const CompanionDef& CompanionOf(Companion id) {
    return kCompanions[size_t(id)];
}

bool& OpenFlag(Model& m, Companion id) {
    switch (id) {
    case Companion::BZKarte:
        return m.Open.BZKarte;
    case Companion::GridKarte:
        return m.Open.GridKarte;
    case Companion::Frequenz:
        return m.Open.Frequenz;
    case Companion::Statistik:
        return m.Open.Statistik;
    case Companion::Transceiver:
        return m.Open.Transceiver;
    case Companion::LogTracker:
        return m.Open.LogTracker;
    case Companion::QsoRate:
        return m.Open.QsoRate;
    case Companion::FehlendeMulti:
        return m.Open.FehlendeMulti;
    case Companion::DBLog:
        break;
    }
    return m.Open.DBLog;
}

bool OpenFlag(const Model& m, Companion id) {
    return OpenFlag(const_cast<Model&>(m), id);
}

void SetCompanionOpen(Model& m, Companion id, QAction* menuEntry, bool open) {
    OpenFlag(m, id) = open;
    if (menuEntry) menuEntry->setChecked(open);
}

QAction* AddCompanionEntry(QMenu* menu, const QString& caption, const QString& objectName) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(objectName);
    a->setCheckable(true);
    return a;
}

int ScreenWidthTwips() {
    return PixelsToTwips(ScreenPixels().width());
}

int ScreenHeightTwips() {
    return PixelsToTwips(ScreenPixels().height());
}

void RestoreWindowPos(QWidget* w, const QString& name) {
    const QString section = QString::fromLatin1(kSectionFensterPos);
    const int top = int(IniReadInt({}, section, name + QStringLiteral("Top")));
    const int left = int(IniReadInt({}, section, name + QStringLiteral("Left")));
    QPoint p = w->pos();
    if (top >= 0 && top < ScreenHeightTwips()) p.setY(TwipsToPixels(top));
    if (left >= 0 && left < ScreenWidthTwips()) p.setX(TwipsToPixels(left));
    w->move(p);
}

void WriteWindowPos(const QString& name, int topTwips, int leftTwips) {
    const QString section = QString::fromLatin1(kSectionFensterPos);
    IniWrite({}, section, name + QStringLiteral("Top"), topTwips);
    IniWrite({}, section, name + QStringLiteral("Left"), leftTwips);
}

void SaveWindowPos(const QWidget* w, const QString& name) {
    WriteWindowPos(name, PixelsToTwips(w->pos().y()), PixelsToTwips(w->pos().x()));
}

bool RunTrappedUi(Dialogs& dialogs, const std::function<QString()>& op) {
    if (RunTrapped(dialogs, op)) return true;
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    return false;
}

} // namespace kolibrino
