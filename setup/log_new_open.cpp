#include "setup/log_new_open.h"

#include "core/settings.h"
#include "setup/log_manager.h"
#include "setup/modal.h"
#include "setup/setup_widgets.h"
#include "setup/station_log.h"
#include "ui/keyboard_focus.h"

#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace kolibrino::setup {
namespace {

constexpr int kNarrowWidth = 440;
constexpr int kWideWidth = 620;

} // namespace

LogNewOpen::LogNewOpen(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks, Mode mode,
                       QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs), clock_(clock), hooks_(hooks), mode_(mode) {
    setObjectName(QStringLiteral("LogNewOpen"));
    setWindowTitle(QStringLiteral("Kolibrino"));
    setModal(true);

    label1_ = new QLabel(this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label1_->setWordWrap(true);

    auto* fileFrame = new QGroupBox(QStringLiteral("Log Öffnen (DOPPELKLICK)"), this);
    file1_ = new QListWidget(fileFrame);
    file1_->setObjectName(QStringLiteral("File1"));
    file1_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto* fileLayout = new QVBoxLayout(fileFrame);
    fileLayout->addWidget(file1_);
    connect(file1_, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* item) { OpenRow(item->text()); });
    // Enter on the selected row opens it, as a double click does. Reached by Tab, the
    // list marks its current row without selecting it: with nothing selected, Enter
    // opens that row.
    OnEnterKey(file1_, [this] {
        QListWidgetItem* item = file1_->currentItem();
        if (item && (item->isSelected() || file1_->selectedItems().isEmpty())) OpenRow(item->text());
    });

    auto* label3 = new QLabel(QStringLiteral("Zuletzt verwendetes Log"), this);
    label3->setObjectName(QStringLiteral("Label3"));
    label2_ = new ClickLabel(this);
    label2_->setObjectName(QStringLiteral("Label2"));
    label2_->setToolTip(QStringLiteral("Zuletzt verwendetes Log Öffnen"));
    QFont bold = label2_->font();
    bold.setBold(true);
    label2_->setFont(bold);
    connect(label2_, &ClickLabel::clicked, this, &LogNewOpen::OpenLastLog);

    command4_ = Button(QStringLiteral("&Neues Log"), QStringLiteral("Command4"), this);
    command5_ = Button(QStringLiteral(">>"), QStringLiteral("Command5"), this);
    command5_->setToolTip(QStringLiteral("Log-Erweitert"));
    command5_->setFixedWidth(40);
    connect(command4_, &QPushButton::clicked, this, &LogNewOpen::NewLog);
    connect(command5_, &QPushButton::clicked, this, &LogNewOpen::ToggleExtended);

    frame1_ = new QGroupBox(QStringLiteral("Log-Erweitert"), this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    auto* command1 = Button(QStringLiteral("&Umbenennen"), QStringLiteral("Command1"), frame1_);
    auto* command2 = Button(QStringLiteral("&Löschen"), QStringLiteral("Command2"), frame1_);
    auto* command3 = Button(QStringLiteral("&Kopieren nach..."), QStringLiteral("Command3"), frame1_);
    connect(command1, &QPushButton::clicked, this, &LogNewOpen::Rename);
    connect(command2, &QPushButton::clicked, this, &LogNewOpen::Delete);
    connect(command3, &QPushButton::clicked, this, &LogNewOpen::Copy);
    auto* extLayout = new QVBoxLayout(frame1_);
    extLayout->addWidget(command1);
    extLayout->addWidget(command2);
    extLayout->addWidget(command3);
    extLayout->addStretch();
    frame1_->setFixedWidth(kWideWidth - kNarrowWidth - 12);
    frame1_->hide();

    auto* left = new QVBoxLayout;
    left->addWidget(label1_);
    left->addWidget(fileFrame, 1);
    left->addWidget(label3);
    left->addWidget(label2_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(command4_, 1);
    buttons->addWidget(command5_);
    left->addLayout(buttons);

    auto* main = new QHBoxLayout(this);
    main->addLayout(left, 1);
    main->addWidget(frame1_);

    if (mode_ == Mode::OpenOnly) {
        command4_->setEnabled(false);
        command5_->hide();
    }

    // Load.
    label1_->setText(
        QStringLiteral("Bestehende Kontest-Logs in\n%1").arg(QDir::toNativeSeparators(m_.LogFolder)));
    RefreshList();
    const QString last = ExistingLastLog(m_);
    if (!last.isEmpty()) label2_->setText(last);
    resize(kNarrowWidth, 460);
    SelectAllOnKeyboardFocus(this);
}

void LogNewOpen::SetLastLog(const QString& name) {
    label2_->setText(name);
    WriteLastLogFile(m_, name);
}

QString LogNewOpen::LastLog() const {
    return label2_->text();
}

void LogNewOpen::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    if (!activated_) {
        activated_ = true;
        QTimer::singleShot(0, this, &LogNewOpen::FirstActivation);
    }
}

void LogNewOpen::FirstActivation() {
    // Only at start: from "Log Öffnen" the operator wants to choose.
    if (mode_ == Mode::Start &&
        IniReadInt(m_.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen")) == -1)
        OpenLastLog();
}

void LogNewOpen::OpenLastLog() {
    if (label2_->text().isEmpty()) {
        dialogs_.Beep();
        return;
    }
    m_.CurrentLogName = label2_->text();
    SetLastLog(m_.CurrentLogName);
    accept();
}

void LogNewOpen::OpenRow(const QString& name) {
    m_.CurrentLogName = name;
    SetLastLog(name);
    accept();
}

QStringList LogNewOpen::SelectedNames() const {
    QStringList names;
    for (int i = 0; i < file1_->count(); ++i)
        if (file1_->item(i)->isSelected()) names << file1_->item(i)->text();
    return names;
}

void LogNewOpen::RefreshList() {
    file1_->clear();
    file1_->addItems(ListLogs(m_.LogFolder));
}

void LogNewOpen::Rename() {
    if (file1_->count() == 0) return;
    RenameLogs(dialogs_, m_.LogFolder, file1_->count(), SelectedNames(), m_.WriteLock.operator->());
    RefreshList();
}

void LogNewOpen::Delete() {
    if (file1_->count() == 0) return;
    DeleteLogs(dialogs_, m_.LogFolder, file1_->count(), SelectedNames(), m_.WriteLock.operator->());
    RefreshList();
}

void LogNewOpen::Copy() {
    CopyLogs(dialogs_, m_.LogFolder, file1_->count(), SelectedNames());
}

void LogNewOpen::ToggleExtended() {
    const bool show = frame1_->isHidden();
    frame1_->setVisible(show);
    command5_->setText(show ? QStringLiteral("<<") : QStringLiteral(">>"));
    resize(show ? kWideWidth : kNarrowWidth, height());
}

void LogNewOpen::NewLog() {
    QString last;
    const SameDay warning = SameDayWarning(m_, dialogs_, clock_, &last);
    if (warning == SameDay::Cancel) return;
    if (warning == SameDay::TakeLastLog) {
        m_.CurrentLogName = last;
        SetLastLog(last);
        accept();
        return;
    }
    {
        StationLog station(m_, dialogs_, clock_, hooks_, StationMode::NewLog, this);
        station.SetImportVisible(true);
        station.SetLogManager([this](const QString& name) { SetLastLog(name); });
        ExecModal(station);
    }
    if (!m_.CurrentLogName.isEmpty() && QFileInfo(m_.LogFolder + m_.CurrentLogName).isFile()) accept();
}

} // namespace kolibrino::setup
