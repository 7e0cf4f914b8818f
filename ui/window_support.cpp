#include "ui/window_support.h"

#include "core/error_trap.h"
#include "core/settings.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QWidget>
#include <algorithm>

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

bool HasStoredWindowPos(const QString& name) {
    const QString section = QString::fromLatin1(kSectionFensterPos);
    return !IniReadString({}, section, name + QStringLiteral("Top")).isEmpty() ||
           !IniReadString({}, section, name + QStringLiteral("Left")).isEmpty();
}

QPoint CompanionPlace(const QRect& mainFrame, const QRect& keep, const QSize& frame, const QRect& screen,
                      const std::vector<QRect>& others) {
    constexpr int kGap = 4;
    constexpr int kStep = 40;
    std::vector<QPoint> spots;
    const int top = std::max(mainFrame.top(), screen.top());
    const int left = std::max(mainFrame.left(), screen.left());
    for (int y = top; y + frame.height() <= screen.bottom() + 1; y += kStep)
        spots.push_back({mainFrame.right() + 1 + kGap, y});
    for (int y = top; y + frame.height() <= screen.bottom() + 1; y += kStep)
        spots.push_back({mainFrame.left() - kGap - frame.width(), y});
    for (int x = left; x + frame.width() <= screen.right() + 1; x += kStep)
        spots.push_back({x, mainFrame.bottom() + 1 + kGap});
    // A screen too small for that: over the main window, below the entry line.
    for (int y = keep.bottom() + 1 + kGap; y + frame.height() <= screen.bottom() + 1; y += kStep)
        for (int x = left; x + frame.width() <= screen.right() + 1; x += kStep)
            spots.push_back({x, y});
    auto onScreen = [&](const QPoint& p) {
        const QRect r(p, frame);
        return screen.contains(r) && !r.intersects(keep);
    };
    auto clear = [&](const QPoint& p) {
        const QRect r(p, frame);
        return onScreen(p) &&
               std::none_of(others.begin(), others.end(), [&r](const QRect& o) { return o.intersects(r); });
    };
    for (const QPoint& p : spots)
        if (clear(p)) return p;
    for (const QPoint& p : spots)
        if (onScreen(p)) return p;
    // Nothing fits: below the entry line all the same.
    return {left, keep.bottom() + 1 + kGap};
}

bool RunTrappedUi(Dialogs& dialogs, const std::function<QString()>& op) {
    if (RunTrapped(dialogs, op)) return true;
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    return false;
}

} // namespace kolibrino
