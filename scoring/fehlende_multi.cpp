#include "scoring/fehlende_multi.h"

#include "ui/window_support.h"

#include <QAction>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kolibrino {

namespace {

constexpr int kCodeRole = Qt::UserRole;

QString StateCaption(int gruppe) {
    return QStringLiteral("OE%1 %2").arg(gruppe).arg(BundeslandName(gruppe));
}

} // namespace

FehlendeMulti::FehlendeMulti(Model& m, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Window), m_(m), menuEntry_(menuEntry) {
    setObjectName(QStringLiteral("FehlendeMulti"));
    setWindowTitle(QStringLiteral("Fehlende Multiplikatoren"));
    setAttribute(Qt::WA_DeleteOnClose);
    timer1_.setSingleShot(true);
    timer1_.setInterval(0);
    connect(&timer1_, &QTimer::timeout, this, &FehlendeMulti::Timer1Tick);

    auto* layout = new QHBoxLayout(this);
    QFont listFont = font();
    listFont.setPointSizeF(11);
    listFont.setBold(false); // not the bold of the frame's title
    for (int band = 0; band < 2; ++band) {
        auto* frame = new QGroupBox(QStringLiteral("%1m").arg(kNeededBands[band]));
        frame->setObjectName(QStringLiteral("Frame%1").arg(band + 1));
        QFont frameFont = frame->font();
        frameFont.setPointSizeF(12);
        frameFont.setBold(true);
        frame->setFont(frameFont);
        auto* column = new QVBoxLayout(frame);
        auto* states = new QLabel;
        states->setObjectName(QStringLiteral("Label%1").arg(band + 1));
        states->setWordWrap(true);
        states->setFont(listFont);
        auto* tree = new QTreeWidget;
        tree->setObjectName(QStringLiteral("TreeView%1").arg(band + 1));
        tree->setHeaderHidden(true);
        tree->setColumnCount(1);
        tree->setFont(listFont);
        tree->setRootIsDecorated(true);
        tree->setMinimumSize(350, 440);
        connect(tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
            const QString code = item ? item->data(0, kCodeRole).toString() : QString();
            if (!code.isEmpty() && showOnMap) showOnMap(code);
        });
        column->addWidget(states);
        column->addWidget(tree, 1);
        layout->addWidget(frame);
        frames_[size_t(band)] = frame;
        states_[size_t(band)] = states;
        trees_[size_t(band)] = tree;

        // Every district once, under its state; refreshes only hide and show them.
        auto& items = districtItems_[size_t(band)];
        items.assign(m_.BezirkRecords.size(), nullptr);
        shown_[size_t(band)].assign(m_.BezirkRecords.size(), true);
        for (size_t e = 1; e < m_.BezirkRecords.size(); ++e) {
            const BezirkRecord& b = m_.BezirkRecords[e];
            if (b.Gruppe < 1 || b.Gruppe > 9) continue;
            QTreeWidgetItem*& state = stateItems_[size_t(band)][size_t(b.Gruppe - 1)];
            if (!state) {
                state = new QTreeWidgetItem(tree, {StateCaption(b.Gruppe)});
                QFont f = listFont;
                f.setBold(true);
                state->setFont(0, f);
                state->setExpanded(true);
            }
            auto* item = new QTreeWidgetItem(state, {b.Code + QStringLiteral("  ") + b.Name});
            item->setData(0, kCodeRole, b.Code);
            item->setToolTip(0, QStringLiteral("Doppelklick zeigt den Bezirk auf der Karte"));
            items[e] = item;
        }
        tree->expandAll();
    }
}

void FehlendeMulti::Load() {
    RestoreWindowPos(this, QStringLiteral("FehlendeMulti"));
    timer1_.start();
    SetCompanionOpen(m_, Companion::FehlendeMulti, menuEntry_, true);
}

void FehlendeMulti::Fill(int band, const NeededBand& needed) {
    const size_t b = size_t(band);
    std::vector<bool> wanted(m_.BezirkRecords.size(), false);
    for (const int e : needed.bezirke)
        wanted[size_t(e)] = true;
    // Only what changed is touched: a logged district leaves its list at once.
    std::array<int, 9> left{};
    for (size_t e = 1; e < wanted.size() && e < districtItems_[b].size(); ++e) {
        QTreeWidgetItem* item = districtItems_[b][e];
        if (!item) continue;
        if (wanted[e]) ++left[size_t(m_.BezirkRecords[e].Gruppe - 1)];
        if (shown_[b][e] == wanted[e]) continue;
        item->setHidden(!wanted[e]);
        shown_[b][e] = wanted[e];
    }
    for (int g = 0; g < 9; ++g)
        if (QTreeWidgetItem* state = stateItems_[b][size_t(g)]) {
            const bool hide = left[size_t(g)] == 0;
            if (state->isHidden() != hide) state->setHidden(hide);
        }
    QStringList states;
    for (const int g : needed.bundeslaender)
        states << StateCaption(g);
    const QString text = QStringLiteral("Bundesländer: ") +
                         (states.isEmpty() ? QStringLiteral("alle gearbeitet") : states.join(QStringLiteral(", ")));
    if (states_[b]->text() != text) states_[b]->setText(text);
    const QString title = QStringLiteral("%1m: %2 Bezirke, %3 Bundesländer fehlen")
                              .arg(needed.band)
                              .arg(needed.bezirke.size())
                              .arg(needed.bundeslaender.size());
    if (frames_[b]->title() != title) frames_[b]->setTitle(title);
}

void FehlendeMulti::Timer1Tick() {
    const NeededMultipliers needed = ComputeNeeded(m_);
    for (int band = 0; band < 2; ++band)
        Fill(band, needed.bands[size_t(band)]);
    timer1_.stop();
}

QStringList FehlendeMulti::ShownCodes(int band) const {
    QStringList codes;
    for (QTreeWidgetItem* item : districtItems_[size_t(band)])
        if (item && !item->isHidden() && item->parent() && !item->parent()->isHidden())
            codes << item->data(0, kCodeRole).toString();
    return codes;
}

QString FehlendeMulti::StatesText(int band) const {
    return states_[size_t(band)]->text();
}

QTreeWidgetItem* FehlendeMulti::ItemOf(int band, const QString& code) const {
    for (QTreeWidgetItem* item : districtItems_[size_t(band)])
        if (item && item->data(0, kCodeRole).toString() == code) return item;
    return nullptr;
}

void FehlendeMulti::closeEvent(QCloseEvent* event) {
    SaveWindowPos(this, QStringLiteral("FehlendeMulti"));
    timer1_.stop();
    SetCompanionOpen(m_, Companion::FehlendeMulti, menuEntry_, false);
    event->accept();
}

} // namespace kolibrino
