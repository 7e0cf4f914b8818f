// FehlendeMulti ("Fehlende Multiplikatoren"): per band, 40 m and 80 m, the districts
// of the district table not yet worked, grouped by federal state with the state's
// name, and the federal states not yet worked. The lists come from ComputeNeeded()
// (scoring/needed.h); the window only shows them.
//
// Who calls it: InstallScoring() opens and closes it from MnFehlendeMulti; every change
// of the log arms Timer1 (the main window's grid tells of each new contact, edit,
// deletion and refill). A double click on a district calls showOnMap with its code
// (the district map shows it when it is open). GUI thread only. Never fails.
#pragma once

#include "core/log_model.h"
#include "scoring/needed.h"

#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <vector>

class QAction;
class QGroupBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace kolibrino {

class FehlendeMulti : public QWidget {
    Q_OBJECT
public:
    FehlendeMulti(Model& m, QAction* menuEntry, QWidget* parent = nullptr);

    // Position, then the open flag; arms Timer1 for the first fill.
    void Load();
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();

    // The list of a band (0 40 m, 1 80 m): one top item per federal state with missing
    // districts, the districts below it.
    QTreeWidget* Tree(int band) const { return trees_[size_t(band)]; }
    // The district codes the list of a band shows, in table order.
    QStringList ShownCodes(int band) const;
    // The text of the federal states still missing on a band.
    QString StatesText(int band) const;
    // The item of a district in the list of a band (null when the code is unknown).
    QTreeWidgetItem* ItemOf(int band, const QString& code) const;

    // Double click on a district: its code.
    std::function<void(const QString& code)> showOnMap;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void Fill(int band, const NeededBand& needed);

    Model& m_;
    QAction* menuEntry_;
    QTimer timer1_;
    std::array<QGroupBox*, 2> frames_{};
    std::array<QLabel*, 2> states_{};
    std::array<QTreeWidget*, 2> trees_{};
    // Per band: the item of each district (index = element number) and of each state.
    std::array<std::vector<QTreeWidgetItem*>, 2> districtItems_;
    std::array<std::array<QTreeWidgetItem*, 9>, 2> stateItems_{};
    std::array<std::vector<bool>, 2> shown_; // last shown per element number
};

} // namespace kolibrino
