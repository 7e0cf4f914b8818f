// The main window's frame: construction, the grid and its events, the timers' set-up,
// the event filter of the entry fields, resize, minimise and restore, and the
// hand-over of companion windows.
#include "entry/main_window.h"

#include "entry/log_grid_view.h"
#include "ui/keyboard_focus.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFocusEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace kolibrino {

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
    // The clearing keys are keys of the window: they act whatever control has the focus.
    for (QWidget* w : central->findChildren<QWidget*>())
        if (w->focusPolicy() != Qt::NoFocus) w->installEventFilter(this);
    SelectAllOnKeyboardFocus(this);
    BuildAccess();

    timer1_.setInterval(kTimer1IntervalMs);
    timer2_.setInterval(kTimer2IntervalMs);
    timer3_.setInterval(kTimer3DelayMs);
    timer3_.setSingleShot(true);
    timer4_.setInterval(kTimer4IntervalMs);
    connect(&timer1_, &QTimer::timeout, this, &HauptForm::Timer1Tick);
    connect(&timer2_, &QTimer::timeout, this, &HauptForm::Timer2Tick);
    connect(&timer3_, &QTimer::timeout, this, &HauptForm::Timer3Tick);
    connect(&timer4_, &QTimer::timeout, this, &HauptForm::Timer4Tick);
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
    // The same from the keyboard: Enter and F2 edit, Entf deletes the selected row.
    connect(gridView_, &LogGridView::editRequested, this, [this](int row) {
        QAction* edit = Action(QStringLiteral("MnVerstecktBearbeiten"));
        if (edit && edit->isEnabled()) emit bearbeitenRequested(row);
    });
    connect(gridView_, &LogGridView::deleteRequested, this, [this](int row) {
        QAction* loeschen = Action(QStringLiteral("MnVerstecktLoeschen"));
        if (loeschen && loeschen->isEnabled()) emit loeschenRequested(row);
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

void HauptForm::RegisterCompanion(Companion id, QWidget* window) {
    companions_[size_t(id)] = window;
    // Placed on its first showing, once its Load has read what is stored.
    if (window) window->installEventFilter(this);
    if (window) AnnounceCompanion(window);
}

QRect HauptForm::EntryLineRect() {
    if (!isVisible() && layout()) layout()->activate();
    QRect keep;
    for (QWidget* w : {static_cast<QWidget*>(text3_), static_cast<QWidget*>(text4_),
                       static_cast<QWidget*>(text5_), static_cast<QWidget*>(combo5_)})
        if (w) keep |= QRect(w->mapToGlobal(QPoint(0, 0)), w->size());
    return keep;
}

void HauptForm::PlaceCompanion(Companion id, QWidget* window) {
    if (window->property("kolibrinoPlaced").toBool()) return;
    window->setProperty("kolibrinoPlaced", true);
    if (HasStoredWindowPos(QString::fromLatin1(CompanionOf(id).posName))) return; // the stored place wins
    // The frame is not known before the first showing: a title bar and borders of the usual size.
    const QSize frame = window->size() + QSize(8, 32);
    std::vector<QRect> others;
    for (const CompanionDef& c : Companions()) {
        QWidget* o = CompanionWindow(c.id);
        if (o && o != window && o->isVisible()) others.push_back(o->frameGeometry());
    }
    const QScreen* screen = this->screen();
    const QRect room = screen ? screen->availableGeometry() : QRect(0, 0, 800, 600);
    window->move(CompanionPlace(frameGeometry(), EntryLineRect(), frame, room, others));
}

QWidget* HauptForm::CompanionWindow(Companion id) const {
    return companions_[size_t(id)].data();
}

bool HauptForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        for (const CompanionDef& c : Companions())
            if (QWidget* w = CompanionWindow(c.id); w && w == watched) PlaceCompanion(c.id, w);
    }
    if (CompanionShown(watched, event)) return QMainWindow::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::KeyPress: {
        auto* key = static_cast<QKeyEvent*>(event);
        // The window sees every key first (its KeyDown), then the field its KeyPress.
        if (WindowKeyDown(key)) return true;
        const std::optional<EntryField> f = FieldOf(watched);
        if (f && FieldKeyPress(*f, key)) return true;
        break;
    }
    case QEvent::KeyRelease:
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) Shift.KeyUp();
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        // Opening a menu or switching to another program is no change of the field: the
        // field keeps its look and its LostFocus does not run.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::PopupFocusReason) break;
        if (reason == Qt::ActiveWindowFocusReason && event->type() == QEvent::FocusOut) break;
        if (const std::optional<EntryField> f = FieldOf(watched)) {
            if (event->type() == QEvent::FocusIn)
                FieldGotFocus(*f);
            else
                FieldLostFocus(*f);
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        if (watched == label13_ && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            Label13Click();
        break;
    default:
        break;
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
