#include "upkeep/update_window.h"

#include "upkeep/logo.h"
#include "upkeep/replace_script.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <cstdio>
#include <unistd.h>

namespace kolibrino::upkeep {
namespace {

QString T(const char* text) {
    return QString::fromUtf8(text);
}

QPushButton* Button(QWidget* parent, const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    return b;
}

} // namespace

UpdateWindow::UpdateWindow(Model& m, Dialogs& d, UpdateTransport& t, UpdateServer server,
                           ProgramTarget program, bool splashWay, QWidget* parent)
    : QDialog(parent), m_(m), d_(d), t_(t), server_(std::move(server)), program_(std::move(program)),
      splashWay_(splashWay) {
    setObjectName(QStringLiteral("Update"));
    setWindowTitle(QStringLiteral("Kolibrino"));
    setModal(true);
    resize(460, 420);
    endProcess = [] {
        std::fflush(nullptr);
        ::_exit(0);
    };
    auto* root = new QVBoxLayout(this);

    // The splash.
    picture3_ = new QWidget(this);
    picture3_->setObjectName(QStringLiteral("Picture3"));
    auto* splash = new QHBoxLayout(picture3_);
    auto* logo = new QLabel(picture3_);
    logo->setObjectName(QStringLiteral("Logo"));
    logo->setPixmap(KolibrinoLogo(120));
    splash->addWidget(logo);
    auto* texts = new QVBoxLayout;
    auto* label2 = new QLabel(QStringLiteral("Kolibrino"), picture3_);
    label2->setObjectName(QStringLiteral("Label2"));
    label2->setFont(QFont(QStringLiteral("Serif"), 24, QFont::Bold));
    auto* label3 = new QLabel(picture3_);
    label3->setObjectName(QStringLiteral("Label3"));
    label3->setText(QStringLiteral("Contestprogramm für den ZEFT 80/40m\n\n\n© ZZ9QQQ"));
    texts->addWidget(label2);
    texts->addWidget(label3);
    texts->addStretch();
    splash->addLayout(texts);
    root->addWidget(picture3_);

    // The list.
    picture4_ = new QWidget(this);
    picture4_->setObjectName(QStringLiteral("Picture4"));
    auto* list = new QVBoxLayout(picture4_);
    auto* label1 = new QLabel(QStringLiteral("Verfügbare Updates"), picture4_);
    label1->setObjectName(QStringLiteral("Label1"));
    list->addWidget(label1);
    picture11_ = new QScrollArea(picture4_);
    picture11_->setObjectName(QStringLiteral("Picture11"));
    picture11_->setWidgetResizable(true);
    picture11_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    picture11_->verticalScrollBar()->setObjectName(QStringLiteral("VScroll1"));
    picture1_ = new QWidget;
    picture1_->setObjectName(QStringLiteral("Picture1"));
    auto* boxes = new QVBoxLayout(picture1_);
    boxes->setSpacing(8);
    boxes->addStretch();
    picture11_->setWidget(picture1_);
    list->addWidget(picture11_, 1);
    auto* buttons = new QHBoxLayout;
    command1_ = Button(picture4_, "Command1", QStringLiteral("Erneut auf Updates Prüfen"));
    command2_ = Button(picture4_, "Command2", QStringLiteral("Updates installieren"));
    command4_ = Button(picture4_, "Command4", QStringLiteral("Alle"));
    command4_->setToolTip(QStringLiteral("ALLE auswählen"));
    command5_ = Button(picture4_, "Command5", QStringLiteral("Keine"));
    command5_->setToolTip(QStringLiteral("KEINE auswählen"));
    for (QPushButton* b : {command1_, command2_, command4_, command5_})
        buttons->addWidget(b);
    list->addLayout(buttons);
    root->addWidget(picture4_, 1);
    command2_->setEnabled(false);
    connect(command1_, &QPushButton::clicked, this, &UpdateWindow::Command1Click);
    connect(command2_, &QPushButton::clicked, this, &UpdateWindow::Command2Click);
    connect(command4_, &QPushButton::clicked, this, &UpdateWindow::Command4Click);
    connect(command5_, &QPushButton::clicked, this, &UpdateWindow::Command5Click);

    // The busy panel, centred over the window.
    picture10_ = new QFrame(this);
    picture10_->setObjectName(QStringLiteral("Picture10"));
    picture10_->setFrameShape(QFrame::Box);
    picture10_->setAutoFillBackground(true);
    auto* busy = new QVBoxLayout(picture10_);
    label22_ = new QLabel(picture10_);
    label22_->setObjectName(QStringLiteral("Label22"));
    label22_->setAlignment(Qt::AlignCenter);
    busy->addWidget(label22_);
    picture10_->resize(260, 60);
    picture10_->move((width() - picture10_->width()) / 2, (height() - picture10_->height()) / 2);
    picture10_->hide();
}

void UpdateWindow::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    if (activated_) return;
    activated_ = true;
    picture3_->setVisible(splashWay_);
    picture4_->setVisible(!splashWay_);
    QMetaObject::invokeMethod(this, &UpdateWindow::Command1Click, Qt::QueuedConnection);
}

QList<QCheckBox*> UpdateWindow::Boxes() const {
    return picture1_->findChildren<QCheckBox*>(Qt::FindDirectChildrenOnly);
}

void UpdateWindow::ShowBusy(const QString& text) {
    label22_->setText(text);
    picture10_->move((width() - picture10_->width()) / 2, (height() - picture10_->height()) / 2);
    picture10_->show();
    picture10_->raise();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void UpdateWindow::HideBusy() {
    picture10_->hide();
}

void UpdateWindow::ShowList() {
    picture3_->hide();
    picture4_->show();
}

void UpdateWindow::Unload() {
    ClearBoxes();
    done(installed_ ? QDialog::Accepted : QDialog::Rejected);
}

void UpdateWindow::ClearBoxes() {
    for (QCheckBox* b : Boxes())
        delete b;
    entries_.clear();
}

void UpdateWindow::AddBox(int index) {
    auto* box = new QCheckBox(picture1_);
    box->setObjectName(QStringLiteral("CheckBox%1").arg(index));
    box->setChecked(true);
    box->setProperty("tag", index);
    box->setStyleSheet(QStringLiteral("QCheckBox { background-color: #00ffff; padding: 4px; }"));
    box->setText(EntryCaption(entries_[size_t(index)], m_.Formats.Locale(), m_.DateSeparator));
    auto* layout = static_cast<QVBoxLayout*>(picture1_->layout());
    layout->insertWidget(layout->count() - 1, box); // under the last box, above the stretch
}

void UpdateWindow::Command1Click() {
    // The menu way is any check without the splash: also a new check from the list.
    const bool menuWay = picture3_->isHidden();
    command1_->setEnabled(false);
    command2_->setEnabled(false);
    if (server_.host.isEmpty()) {
        command1_->setEnabled(true);
        if (menuWay) d_.MsgBox(T(kTxtKeinServer), Msg::Information);
        Unload();
        return;
    }
    BusyPanel busy;
    if (menuWay) busy.show = [this](const QString& s) { ShowBusy(s); };
    busy.hide = [this] { HideBusy(); };
    ClearBoxes();
    CheckResult c;
    {
        BusyScope wait(d_);
        c = CheckForUpdates(m_, t_, server_, busy, checkLimitMs);
    }
    if (!c.refused.empty()) d_.MsgBox(RefusedLinesText(c.refused), Msg::Exclamation);
    switch (c.outcome) {
    case CheckOutcome::NoServer:
    case CheckOutcome::Unreachable:
        command1_->setEnabled(true);
        HideBusy();
        if (menuWay) d_.MsgBox(T(kTxtServerNichtErreichbar), Msg::Information);
        Unload();
        return;
    case CheckOutcome::ListFailed:
        command1_->setEnabled(true);
        HideBusy();
        ShowList();
        d_.MsgBox(T(kTxtDownloadFehler), Msg::Critical);
        return;
    case CheckOutcome::NoList:
        return;
    case CheckOutcome::NoUpdates:
        command1_->setEnabled(true);
        if (menuWay) d_.MsgBox(T(kTxtKeineUpdates), Msg::Information);
        installed_ = false;
        Unload();
        return;
    case CheckOutcome::Offered:
        break;
    }
    entries_ = c.entries;
    for (int i : c.offered)
        AddBox(i);
    QCoreApplication::processEvents();
    if (!menuWay && splashPauseMs > 0) {
        QEventLoop pause;
        QTimer::singleShot(splashPauseMs, &pause, &QEventLoop::quit);
        pause.exec(QEventLoop::ExcludeUserInputEvents);
    }
    command1_->setEnabled(true);
    ShowList();
    d_.MsgBox(T(kTxtUpdatesDa), Msg::Information);
    command2_->setEnabled(true);
}

void UpdateWindow::Command2Click() {
    std::vector<UpdateBox> boxes;
    for (QCheckBox* b : Boxes())
        boxes.push_back({b->property("tag").toInt(), b->isChecked()});
    BusyPanel busy{[this](const QString& s) { ShowBusy(s); }, [this] { HideBusy(); }};
    const InstallResult r =
        InstallUpdates(m_, d_, t_, server_, entries_, boxes, program_, busy, installLimitMs);
    installed_ = installed_ || r.installed;
    switch (r.outcome) {
    case InstallOutcome::Md5Mismatch:
        command2_->setFocus();
        return;
    case InstallOutcome::Restart: {
        const QString error =
            WriteReplacementScript(r.restartSource, r.restartTarget, QCoreApplication::applicationPid());
        if (!error.isEmpty() || !StartReplacementScript(ReplacementScriptPath(r.restartSource))) {
            d_.MsgBox(QStringLiteral("Das neue Programm kann nicht eingesetzt werden.\r\n\r\n") + error,
                      Msg::Critical);
            Unload();
            return;
        }
        Unload();
        if (endProcess) endProcess();
        return;
    }
    case InstallOutcome::Done:
        Unload();
        return;
    default:
        return;
    }
}

void UpdateWindow::Command4Click() {
    for (QCheckBox* b : Boxes())
        b->setChecked(true);
}

void UpdateWindow::Command5Click() {
    for (QCheckBox* b : Boxes())
        b->setChecked(false);
}

} // namespace kolibrino::upkeep
