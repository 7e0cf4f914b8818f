#include "scoring/statistik_window.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/save_folders.h"
#include "core/settings.h"
#include "scoring/map_paint.h"
#include "ui/window_support.h"

#include <QAction>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kolibrino {

namespace {

// Labels of the window in the order of ScoreLabels().
const char* const kLabelNames[19] = {"Label6",  "Label7",  "Label8",  "Label9",  "Label12",
                                     "Label13", "Label14", "Label2",  "Label10", "Label4",
                                     "Label3",  "Label11", "Label21", "Label20", "Label1",
                                     "Label15", "Label23", "Label16", "Label18"};

QString ValueName(const QString& caption, const QString& value) {
    return caption + QStringLiteral(": ") + value;
}

QTableWidget* MakeGrid(const char* name, const QStringList& header) {
    auto* g = new QTableWidget(0, int(header.size()));
    g->setObjectName(QString::fromLatin1(name));
    g->setHorizontalHeaderLabels(header);
    g->verticalHeader()->hide();
    g->setEditTriggers(QAbstractItemView::NoEditTriggers);
    g->setSelectionMode(QAbstractItemView::NoSelection);
    // Tab goes on to the next control: the tables only show figures, and the save
    // button must stay within reach of the keyboard.
    g->setTabKeyNavigation(false);
    g->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    g->verticalHeader()->setDefaultSectionSize(18);
    return g;
}

QGroupBox* Frame(const QString& title, QWidget* inner) {
    inner->setAccessibleName(title); // the reader names the table by its frame
    auto* f = new QGroupBox(title);
    auto* l = new QVBoxLayout(f);
    l->setContentsMargins(2, 2, 2, 2);
    l->addWidget(inner);
    return f;
}

} // namespace

Statistik::Statistik(Model& m, Dialogs& dialogs, const TimeSource& clock, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Window), m_(m), dialogs_(dialogs), clock_(clock), menuEntry_(menuEntry) {
    setObjectName(QStringLiteral("Statistik"));
    setWindowTitle(QStringLiteral("Ergebnis"));
    setAttribute(Qt::WA_DeleteOnClose);
    timer1_.setSingleShot(true);
    timer1_.setInterval(0);
    connect(&timer1_, &QTimer::timeout, this, &Statistik::Timer1Tick);
    openUrl = [](const QUrl& u) { return QDesktopServices::openUrl(u); };

    auto* top = new QHBoxLayout(this);
    auto* labels = new QGridLayout;
    int row = 0;
    for (const auto& [caption, value] : ScoreLabels(ScoreResult{})) {
        auto* c = new QLabel(caption);
        auto* v = new QLabel(value);
        v->setObjectName(QString::fromLatin1(kLabelNames[row]));
        v->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        v->setMinimumWidth(60);
        v->setFrameShape(QFrame::Panel);
        v->setFrameShadow(QFrame::Sunken);
        // The keyboard reaches each figure, and the reader says it with its caption.
        c->setBuddy(v);
        v->setFocusPolicy(Qt::TabFocus);
        v->setAccessibleName(ValueName(caption, value));
        labels->addWidget(c, row, 0);
        labels->addWidget(v, row, 1);
        ++row;
    }
    command4_ = new QPushButton(QStringLiteral("Ergebnis als Text in Datei speichern"));
    command4_->setObjectName(QStringLiteral("Command4"));
    connect(command4_, &QPushButton::clicked, this, &Statistik::Command4Click);
    labels->addWidget(command4_, row, 0, 1, 2);
    labels->setRowStretch(row + 1, 1);

    const QString b40 = QStringLiteral("40m"), b80 = QStringLiteral("80m"), b30 = QStringLiteral("30m");
    grids_[0] = MakeGrid("MSFlexGrid1", {QStringLiteral("SFSt"), b80, b30});
    grids_[1] = MakeGrid("MSFlexGrid2", {QStringLiteral("Bezirk"), b40, b80, b30});
    grids_[2] = MakeGrid("MSFlexGrid3", {QStringLiteral("Bundl."), b40, b80, b30});
    grids_[3] = MakeGrid("MSFlexGrid4", {QStringLiteral("Mode"), b40, b80, b30, QStringLiteral("Ges")});
    grids_[4] = MakeGrid("MSFlexGrid5", {QStringLiteral("Mode"), b40, b80, b30, QStringLiteral("Ges")});
    auto* tables = new QGridLayout;
    tables->addWidget(Frame(QStringLiteral("Staatsfunkst."), grids_[0]), 0, 0);
    tables->addWidget(Frame(QStringLiteral("Bezirke"), grids_[1]), 0, 1, 3, 1);
    tables->addWidget(Frame(QStringLiteral("Bundesländer"), grids_[2]), 1, 0);
    tables->addWidget(Frame(QStringLiteral("Betriebsarten"), grids_[3]), 3, 0, 1, 2);
    tables->addWidget(Frame(QStringLiteral("Vormittag/Nachmittag QSOs"), grids_[4]), 4, 0, 1, 2);
    top->addLayout(labels);
    top->addLayout(tables, 1);
    // Tab: the tables, the save button, then the figures, so that the button stays a
    // few keys away from the tables.
    QWidget::setTabOrder(grids_[4], command4_);
    QWidget* previous = command4_;
    for (const char* name : kLabelNames)
        if (auto* l = findChild<QLabel*>(QString::fromLatin1(name))) {
            QWidget::setTabOrder(previous, l);
            previous = l;
        }
    // The save button has the focus when the window is first activated, as before the
    // tables were reachable: a click into the window and Space save the result.
    command4_->setFocus(Qt::OtherFocusReason);
    resize(820, 600);
}

void Statistik::Load() {
    RestoreWindowPos(this, QStringLiteral("Statistik"));
    FarbenLaden();
    timer1_.start();
    SetCompanionOpen(m_, Companion::Statistik, menuEntry_, true);
}

void Statistik::FarbenLaden() {
    const char* keys[3] = {"40mFarbe", "80mFarbe", "30mFarbe"};
    for (int i = 0; i < 3; ++i) {
        const QString v = IniReadString({}, QStringLiteral("Farben"), QString::fromLatin1(keys[i]));
        colours_[size_t(i)] = v.isEmpty() ? 0xFFFFFF : ProfileInt(v);
    }
}

QString Statistik::LabelText(const QString& objectName) const {
    const QLabel* l = findChild<QLabel*>(objectName);
    return l ? l->text() : QString();
}

QString Statistik::Grid5ToolTip(int row) {
    switch (row) {
    case 1:
        return QStringLiteral("Vormittag QSOs in SSB");
    case 2:
        return QStringLiteral("Nachmittag QSOs in SSB");
    case 3:
        return QStringLiteral("Vormittag QSOs in CW");
    case 4:
        return QStringLiteral("Nachmittag QSOs in CW");
    default:
        return {};
    }
}

void Statistik::FillGrid(QTableWidget* grid, const std::vector<ScoreGridRow>& rows,
                         const std::vector<int>& colourOfColumn) {
    grid->setUpdatesEnabled(false);
    grid->setRowCount(int(rows.size()));
    for (int r = 0; r < int(rows.size()); ++r) {
        auto set = [&](int c, const QString& text) {
            QTableWidgetItem* it = grid->item(r, c);
            if (!it) {
                it = new QTableWidgetItem;
                it->setTextAlignment(Qt::AlignCenter);
                grid->setItem(r, c, it);
            }
            it->setText(text);
            if (c >= 1 && c <= int(colourOfColumn.size()))
                it->setBackground(QColor(BgrToRgb(colourOfColumn[size_t(c - 1)])));
            return it;
        };
        set(0, rows[size_t(r)].title);
        for (int c = 0; c < int(rows[size_t(r)].cells.size()); ++c)
            set(c + 1, QString::number(rows[size_t(r)].cells[size_t(c)]));
    }
    grid->setUpdatesEnabled(true);
}

void Statistik::Timer1Tick() {
    shown_ = ComputeScore(m_);
    const auto labels = ScoreLabels(shown_);
    for (size_t i = 0; i < labels.size(); ++i)
        if (auto* l = findChild<QLabel*>(QString::fromLatin1(kLabelNames[i]))) {
            l->setText(labels[i].second);
            l->setAccessibleName(ValueName(labels[i].first, labels[i].second));
        }
    const std::vector<int> bands = {colours_[0], colours_[1], colours_[2]};
    FillGrid(grids_[0], shown_.prefixes, {colours_[1], colours_[2]});
    FillGrid(grids_[1], shown_.districts, bands);
    FillGrid(grids_[2], shown_.states, bands);
    FillGrid(grids_[3], shown_.modes, bands);
    FillGrid(grids_[4], shown_.periods, bands);
    for (int r = 0; r < grids_[4]->rowCount(); ++r)
        for (int c = 0; c < grids_[4]->columnCount(); ++c)
            if (auto* it = grids_[4]->item(r, c)) it->setToolTip(Grid5ToolTip(r + 1));
    timer1_.stop();
}

void Statistik::Command4Click() {
    const QString answer = dialogs_.SaveDialog(QStringLiteral("*.txt (Textdateien)|*.txt"),
                                               QStringLiteral("Ergebnis in Datei speichern"),
                                               SaveStartFolder(m_, SaveKind::Ergebnis));
    if (answer.isEmpty()) return;
    RememberSaveFolder(SaveKind::Ergebnis, answer);
    const QString name = ResultsFileName(answer);
    const int year = ContestNow(clock_, m_.ZeitOffset).date().year();
    const QByteArray bytes = ToCp1252(ResultsText(m_, ComputeScore(m_), year));
    if (!RunTrappedUi(dialogs_, [&] { return WriteFileAtomic(name, bytes); })) return;
    const int yes = dialogs_.MsgBox(QStringLiteral("Datei gespeichert unter\n") + name +
                                        QStringLiteral("\n\nSoll die Datei im Editor geöffnet werden?"),
                                    Msg::Question | Msg::YesNo);
    if (yes == Msg::Yes && openUrl) openUrl(QUrl::fromLocalFile(name));
}

void Statistik::closeEvent(QCloseEvent* event) {
    SaveWindowPos(this, QStringLiteral("Statistik"));
    timer1_.stop();
    SetCompanionOpen(m_, Companion::Statistik, menuEntry_, false);
    event->accept();
}

} // namespace kolibrino
