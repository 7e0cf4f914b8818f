// The main window's frame: construction, the grid and its events, the timers, resize,
// minimise and restore, and the hand-over of companion windows.
#include "entry/main_window.h"

#include "core/backup.h"
#include "entry/log_grid_view.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

namespace kolibrino {
namespace {

// Timer periods: Timer1 and Timer4 show each second, Timer2 blinks, Timer3 copies the
// log a little after an entry, when the operator is no longer typing.
constexpr int kTimer1Ms = 250;
constexpr int kTimer2Ms = 400;
constexpr int kTimer3Ms = 3000;
constexpr int kTimer4Ms = 500;

} // namespace

HauptForm::HauptForm(Model& m, Dialogs& dialogs, const TimeSource& clock, QWidget* parent)
    : QMainWindow(parent), m_(m), dialogs_(dialogs), clock_(clock), grid_(m.Formats) {
    setObjectName(QStringLiteral("HauptForm"));
    setWindowTitle(ProgramTitle());
    auto* central = new QWidget(this);
    central->setObjectName(QStringLiteral("Central"));
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    setCentralWidget(central);

    BuildMenus();
    BuildEntryArea(central);
    BuildGrid(central);
    setGeometry(DesignGeometry());

    timer1_.setInterval(kTimer1Ms);
    timer2_.setInterval(kTimer2Ms);
    timer3_.setInterval(kTimer3Ms);
    timer3_.setSingleShot(true);
    timer4_.setInterval(kTimer4Ms);
    connect(&timer1_, &QTimer::timeout, this, &HauptForm::Timer1Tick);
    connect(&timer2_, &QTimer::timeout, this, &HauptForm::Timer2Tick);
    connect(&timer3_, &QTimer::timeout, this, &HauptForm::Timer3Tick);
}

HauptForm::~HauptForm() = default;

void HauptForm::BuildGrid(QWidget* host) {
    gridView_ = new LogGridView(host);
    gridView_->setObjectName(QStringLiteral("MSFlexGrid1"));
    gridView_->setModel(&grid_);
    host->layout()->addWidget(gridView_);
    connect(gridView_, &LogGridView::popupRequested, this, &HauptForm::GridPopup);
    connect(gridView_, &QTableView::doubleClicked, this, [this](const QModelIndex& i) {
        // The heading row is no row of the model, so a double click there never comes here.
        if (!i.isValid()) return;
        QAction* edit = Action(QStringLiteral("MnVerstecktBearbeiten"));
        if (edit && edit->isEnabled()) emit bearbeitenRequested(i.row());
    });
    connect(gridView_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { GridRowChanged(current.row()); });
}

void HauptForm::GridRowChanged(int row) {
    if (row >= 0 && row < grid_.DataRows() && m_.Open.LogTracker) emit trackerRefreshRequested();
}

void HauptForm::GridPopup(int row, const QPoint& globalPos) {
    popupRow_ = row;
    mnVersteckt_->popup(globalPos);
}

void HauptForm::SetGrid1() {
    gridView_->SetGrid1();
}

void HauptForm::DatenInGrid1Neu() {
    gridView_->setUpdatesEnabled(false);
    kolibrino::DatenInGrid1Neu(m_, grid_);
    gridView_->setUpdatesEnabled(true);
    gridView_->KeepLastRowInView();
}

void HauptForm::Timer1Tick() {
    if (Action(QStringLiteral("MnZeitDatumLock"))->isChecked()) return;
    const QDateTime now = ContestNow(clock_, m_.ZeitOffset);
    const QString time = m_.Formats.ShortTime(now.time());
    if (text2_->text() != time) text2_->setText(time);
    const QString date = m_.Formats.ShortDate(now.date());
    if (text1_->text() != date) text1_->setText(date);
}

void HauptForm::Timer2Tick() {
    const bool red = dupCommand1_->property("red").toBool();
    dupCommand1_->setProperty("red", !red);
    dupCommand1_->setStyleSheet(red ? QString() : QStringLiteral("background-color: #FF0000; color: white;"));
}

void HauptForm::Timer3Tick() {
    timer3_.stop();
    if (m_.CurrentLogName.isEmpty()) return;
    BackupFile(dialogs_, m_.LogFolder + m_.CurrentLogName, m_.BackupFolder + m_.CurrentLogName,
               m_.ExtraBackupPath);
}

void HauptForm::RegisterCompanion(Companion id, QWidget* window) {
    companions_[size_t(id)] = window;
}

QWidget* HauptForm::CompanionWindow(Companion id) const {
    return companions_[size_t(id)].data();
}

bool HauptForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            Uebernehmen();
            return true;
        }
        // A key typed into the date or time stops the clock until the next reset.
        if (watched == text1_ || watched == text2_) timer1_.stop();
    }
    return QMainWindow::eventFilter(watched, event);
}

void HauptForm::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (gridView_ && grid_.DataRows() > 0) gridView_->KeepLastRowInView();
}

void HauptForm::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange) return;
    const bool minimised = windowState() & Qt::WindowMinimized;
    for (const CompanionDef& c : Companions()) {
        QWidget* w = CompanionWindow(c.id);
        if (!w || !OpenFlag(m_, c.id)) continue;
        w->setVisible(!minimised);
    }
}

void HauptForm::closeEvent(QCloseEvent* event) {
    Unload();
    event->accept();
}

} // namespace kolibrino
