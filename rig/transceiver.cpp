#include "rig/transceiver.h"

#include "core/settings.h"
#include "entry/main_window.h"
#include "rig/frequenz.h"
#include "ui/window_support.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

namespace kolibrino::rig {

namespace {
const QString kSection = QStringLiteral("Transceiver");
// A key that cannot be used looks it: grey on dark grey.
const QString kDisabled = QStringLiteral(":disabled { color: #808080; background-color: #303030; }");
QString Colours(const char* widget, const QString& colours) {
    return QString::fromLatin1(widget) + QStringLiteral(" { ") + colours + QStringLiteral(" }") +
           QString::fromLatin1(widget) + kDisabled;
}
const QString kNotSelected = QStringLiteral("color: #FFFF00; background-color: #000000;");
const QString kSelected = QStringLiteral("color: #000000; background-color: #FFFF00;");

// Split and PTT: the whole bar takes the click, not just the box and its text.
class BarCheckBox : public QCheckBox {
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint& pos) const override { return rect().contains(pos); }
};

QString MemKey(int band, const char* suffix) {
    return QString::fromLatin1(PanelBands()[size_t(band)].caption) + QString::fromLatin1(suffix);
}
} // namespace

Transceiver::Transceiver(HauptForm& main, Model& m, Dialogs& dialogs, int pollMs)
    : QWidget(&main, Qt::Window), main_(main), m_(m), dialogs_(dialogs), pollMs_(pollMs) {
    setObjectName(QStringLiteral("Transceiver"));
    setWindowTitle(QStringLiteral("Transceiver Steuerung"));
    setAttribute(Qt::WA_DeleteOnClose);
    menuEntry_ = main.Action(QStringLiteral("MnTransceiver"));
    auto* top = new QVBoxLayout(this);

    auto* head = new QHBoxLayout;
    labelTX_ = new QLabel(QStringLiteral("0.000.000"), this);
    labelTX_->setObjectName(QStringLiteral("LabelTX"));
    QFont big = labelTX_->font();
    big.setPointSize(big.pointSize() * 2);
    big.setBold(true);
    labelTX_->setFont(big);
    labelTX_->installEventFilter(this);
    head->addWidget(labelTX_, 1);
    label1_ = new QLabel(QStringLiteral("Status:"), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label8_ = new QLabel(this);
    label8_->setObjectName(QStringLiteral("Label8"));
    head->addWidget(label1_);
    head->addWidget(label8_);
    command1_ = new QPushButton(QStringLiteral("OmniRig"), this);
    command1_->setObjectName(QStringLiteral("Command1"));
    head->addWidget(command1_);
    top->addLayout(head);

    frame1_ = new QGroupBox(QStringLiteral("Neue Freq. (ENTER=Übernehmen, ESC=Abbr.)"), this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    auto* f1 = new QHBoxLayout(frame1_);
    text1_ = new QLineEdit(frame1_);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->installEventFilter(this);
    command4_ = new QPushButton(QStringLiteral("X"), frame1_);
    command4_->setObjectName(QStringLiteral("Command4"));
    f1->addWidget(text1_, 1);
    f1->addWidget(command4_);
    frame1_->hide();
    top->addWidget(frame1_);

    auto* bands = new QGridLayout;
    for (int i = 0; i < kPanelBandCount; ++i) {
        auto* b = new QPushButton(QString::fromLatin1(PanelBands()[size_t(i)].caption), this);
        b->setObjectName(QStringLiteral("Command5_%1").arg(i));
        command5_[size_t(i)] = b;
        bands->addWidget(b, i / 6, i % 6);
        connect(b, &QPushButton::clicked, this, [this, i] { Command5Click(i); });
    }
    top->addLayout(bands);

    auto* modes = new QGridLayout;
    for (int i = 0; i < kPanelModeCount; ++i) {
        auto* b = new QPushButton(PanelModeCaption(i), this);
        b->setObjectName(QStringLiteral("Option1_%1").arg(i));
        option1_[size_t(i)] = b;
        modes->addWidget(b, i / 5, i % 5);
        connect(b, &QPushButton::clicked, this, [this, i] { Option1Click(i); });
    }
    top->addLayout(modes);

    picture4_ = new QWidget(this);
    picture4_->setObjectName(QStringLiteral("Picture4"));
    auto* p4 = new QGridLayout(picture4_);
    for (int i = 0; i < 9; ++i) {
        auto* b = new QPushButton(PanelStepCaption(i), picture4_);
        b->setObjectName(QStringLiteral("Option2_%1").arg(i));
        option2_[size_t(i)] = b;
        p4->addWidget(b, i / 5, i % 5);
        connect(b, &QPushButton::clicked, this, [this, i] { Option2Click(i); });
    }
    command2_ = new QPushButton(QStringLiteral("Frequenz Up"), picture4_);
    command2_->setObjectName(QStringLiteral("Command2"));
    command3_ = new QPushButton(QStringLiteral("Frequenz Down"), picture4_);
    command3_->setObjectName(QStringLiteral("Command3"));
    p4->addWidget(command2_, 2, 0, 1, 2);
    p4->addWidget(command3_, 2, 2, 1, 2);
    top->addWidget(picture4_);

    auto* checks = new QHBoxLayout;
    check1_ = new BarCheckBox(QStringLiteral("Split"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    check2_ = new BarCheckBox(QStringLiteral("PTT"), this);
    check2_->setObjectName(QStringLiteral("Check2"));
    for (QCheckBox* c : {check1_, check2_})
        c->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    checks->addWidget(check1_, 1);
    checks->addWidget(check2_, 1);
    top->addLayout(checks);
    labelPTT_ = new QLabel(this);
    labelPTT_->setObjectName(QStringLiteral("LabelPTT"));
    labelPTT_->setWordWrap(true);
    labelPTT_->setStyleSheet(QStringLiteral("color: #C00000;"));
    labelPTT_->hide();
    top->addWidget(labelPTT_);
    PaintCheck(check1_, false, "");
    PaintCheck(check2_, false, "");

    connect(command2_, &QPushButton::clicked, this, [this] { StepClick(true); });
    connect(command3_, &QPushButton::clicked, this, [this] { StepClick(false); });
    connect(check1_, &QCheckBox::clicked, this, &Transceiver::Check1Click);
    connect(check2_, &QCheckBox::clicked, this, &Transceiver::Check2Click);
    connect(command4_, &QPushButton::clicked, this, &Transceiver::Text1Escape);
    connect(command1_, &QPushButton::clicked, this, [this] {
        if (engine_) engine_->SetDialogVisible(true);
    });
    PaintModes();
    PaintSteps();
}

Transceiver::~Transceiver() {
    Unload();
}

bool Transceiver::Load() {
    RestoreWindowPos(this, kSection);
    const int step = int(IniReadInt({}, kSection, QStringLiteral("Step")));
    stepRow_ = step >= 0 && step < 9 ? step : 0;
    PaintSteps();
    SetCompanionOpen(m_, Companion::Transceiver, nullptr, true);
    for (int i = 0; i < kPanelBandCount; ++i) {
        command5_[size_t(i)]->setToolTip(PanelToolTip(i));
        const PanelBand& b = PanelBands()[size_t(i)];
        const int f = int(IniReadInt({}, kSection, MemKey(i, "BQRG")));
        BandMem[size_t(i)].freq = f >= b.low && f <= b.high ? f : b.low;
        BandMem[size_t(i)].modeRow = int(IniReadInt({}, kSection, MemKey(i, "BMode")));
    }
    labelTX_->setToolTip(QStringLiteral("Aktuelle Frequenz"));
    label8_->setToolTip(QStringLiteral("OmniRig Status"));
    check1_->setToolTip(QStringLiteral("Split Ein/Aus"));
    check2_->setToolTip(QStringLiteral("PTT Ein/Aus"));
    command1_->setToolTip(QStringLiteral("OmniRig Config"));
    command4_->setToolTip(QStringLiteral("Schließen"));
    return Connect();
}

bool Transceiver::event(QEvent* e) {
    const bool r = QWidget::event(e);
    if (e->type() == QEvent::WindowActivate && !engine_ && !unloaded_ && !closing_)
        QTimer::singleShot(0, this, [this] { Connect(); });
    return r;
}

bool Transceiver::Connect() {
    if (engine_ || connecting_ || unloaded_) return engine_ != nullptr;
    connecting_ = true;
    engine_ = ConnectEngine(m_.IniPath, pollMs_);
    if (engine_ && InterfaceVersionAccepted(engine_->InterfaceVersion())) {
        connect(engine_.get(), &RigEngine::StatusChange, this, &Transceiver::StatusChange);
        connect(engine_.get(), &RigEngine::ParamsChange, this, &Transceiver::ParamsChange);
        connect(engine_.get(), &RigEngine::PttRefused, this, &Transceiver::PttRefused);
        rig_ = engine_->Rig1();
        rigNumber_ = 1;
        shownGeneration_ = rig_->Generation();
        StatusUpdate();
        ParamsUpdate();
        DisableUnwritable();
        connecting_ = false;
        return true;
    }
    engine_.reset();
    const int answer = dialogs_.MsgBox(
        QStringLiteral("Es ist kein Transceiver eingestellt oder Hamlib kann ihn nicht ansprechen.\r\n"
                       "Du brauchst die Transceiver-Einstellungen um deinen Transceiver über die "
                       "CAT-Schnittstelle steuern zu können.\r\n\r\n"
                       "Möchtest du jetzt die Transceiver-Einstellungen öffnen?"),
        Msg::Information | Msg::YesNoCancel);
    if (answer == Msg::Yes && openSettings) openSettings();
    connecting_ = false;
    // Useless without a rig: the window goes in any case.
    closing_ = true;
    close();
    return false;
}

void Transceiver::DisableUnwritable() {
    if (!rig_) return;
    // A rig read only is never told a frequency or a mode.
    const bool writes = !rig_->ReadOnly();
    for (int row = 0; row < kPanelModeCount - 1; ++row)
        option1_[size_t(row)]->setEnabled(writes && rig_->IsParamWriteable(PanelModeOfRow(row)));
    option1_[size_t(kPanelModeCount - 1)]->setEnabled(false); // "Other" is never written
    const bool freq = writes && (rig_->IsParamWriteable(PM_FREQ) || rig_->IsParamWriteable(PM_FREQA));
    for (QPushButton* b : command5_)
        b->setEnabled(freq);
    command2_->setEnabled(freq);
    command3_->setEnabled(freq);
    check2_->setEnabled(rig_->IsParamWriteable(PM_TX));
    check1_->setEnabled(rig_->IsParamWriteable(PM_SPLITON) && rig_->IsParamWriteable(PM_SPLITOFF));
}

void Transceiver::StatusChange(int rigNumber) {
    if (rigNumber != rigNumber_) return;
    StatusUpdate();
    // What the rig can write is known once it answers.
    DisableUnwritable();
}

void Transceiver::ParamsChange(int rigNumber, int) {
    if (rigNumber != rigNumber_) return;
    ParamsUpdate();
}

void Transceiver::StatusUpdate() {
    if (!rig_) return;
    if (rig_->Generation() != shownGeneration_) {
        shownGeneration_ = rig_->Generation();
        ClearRigValues();
    }
    label8_->setText(rig_->StatusLine());
    const bool online = rig_->Status() == ST_ONLINE;
    // A frequency no longer read is greyed and says so.
    labelTX_->setStyleSheet(online ? QString() : QStringLiteral("color: #808080;"));
    labelTX_->setToolTip(
        online ? QStringLiteral("Aktuelle Frequenz")
               : QStringLiteral("Aktuelle Frequenz: nicht mehr vom Transceiver gelesen (veraltet)"));
    if (!online) ShowPtt(); // the rig no longer transmits for us
}

void Transceiver::ClearRigValues() {
    labelTX_->setText(FormatFrequency(0));
    modeRow_ = -1;
    PaintModes();
    check1_->setChecked(false);
    PaintCheck(check1_, false, "");
    ShowPtt();
}

void Transceiver::ShowPtt() {
    const bool tx = rig_ && rig_->Status() == ST_ONLINE && rig_->Tx() == PM_TX;
    check2_->setChecked(tx);
    PaintCheck(check2_, tx, "#FF0000");
}

void Transceiver::PttRefused(int rigNumber, const QString& reason) {
    if (rigNumber != rigNumber_) return;
    labelPTT_->setText(QStringLiteral("PTT abgelehnt: %1").arg(reason));
    labelPTT_->show();
    ShowPtt();
}

void Transceiver::ParamsUpdate() {
    // A rig that does not answer changes nothing on screen.
    if (!rig_ || rig_->Status() != ST_ONLINE) return;
    const int f = rig_->ShownFreq();
    const int mode = rig_->Mode();
    labelTX_->setText(FormatFrequency(f));
    const int band = PanelBandOf(f);
    if (band >= 0) BandMem[size_t(band)] = {f, PanelRowOfMode(mode)};
    if (rig_->Split() == PM_SPLITON) {
        check1_->setChecked(true);
        PaintCheck(check1_, true, "#FFFF00");
    } else if (rig_->Split() == PM_SPLITOFF) {
        check1_->setChecked(false);
        PaintCheck(check1_, false, "");
    }
    modeRow_ = PanelRowOfMode(mode);
    PaintModes();
    ShowPtt();
}

void Transceiver::PaintModes() {
    for (int i = 0; i < kPanelModeCount; ++i)
        option1_[size_t(i)]->setStyleSheet(Colours("QPushButton", i == modeRow_ ? kSelected : kNotSelected));
}

void Transceiver::PaintSteps() {
    for (int i = 0; i < 9; ++i)
        option2_[size_t(i)]->setStyleSheet(Colours("QPushButton", i == stepRow_ ? kSelected : kNotSelected));
    for (QPushButton* b : {command2_, command3_})
        if (b) b->setStyleSheet(Colours("QPushButton", QStringLiteral("")));
}

void Transceiver::PaintCheck(QCheckBox* c, bool on, const char* onBackground) {
    c->setStyleSheet(
        Colours("QCheckBox",
                on ? QStringLiteral("color: #000000; background-color: %1;").arg(QLatin1String(onBackground))
                   : kNotSelected));
}

void Transceiver::Command5Click(int band) {
    if (!rig_ || band < 0 || band >= kPanelBandCount) return;
    const BandMemory& mem = BandMem[size_t(band)];
    if (rig_->IsParamWriteable(PM_FREQ))
        rig_->SetFreq(mem.freq);
    else if (rig_->IsParamWriteable(PM_FREQA))
        rig_->SetFreqA(mem.freq);
    if (const int mode = PanelModeOfRow(mem.modeRow); mode != 0) rig_->SetMode(mode);
}

void Transceiver::Option1Click(int row) {
    modeRow_ = row;
    PaintModes();
    if (!rig_) return;
    if (const int mode = PanelModeOfRow(row); mode != 0) rig_->SetMode(mode);
}

void Transceiver::Option2Click(int row) {
    stepRow_ = row;
    PaintSteps();
    IniWrite({}, kSection, QStringLiteral("Step"), row);
}

void Transceiver::StepClick(bool up) {
    if (!rig_) return;
    const int n = stepRow_ >= 0 ? stepRow_ : 0;
    const double step = std::pow(10.0, n) * (up ? 1 : -1);
    auto next = [step](int f) {
        const double v = std::round(double(f) + step);
        return v > double(std::numeric_limits<int>::max()) ? std::numeric_limits<int>::max() : int(v);
    };
    if (rig_->IsParamReadable(PM_FREQ) && rig_->IsParamWriteable(PM_FREQ))
        rig_->SetFreq(next(rig_->Freq()));
    else if (rig_->IsParamReadable(PM_FREQA) && rig_->IsParamWriteable(PM_FREQA))
        rig_->SetFreqA(next(rig_->FreqA()));
}

void Transceiver::Check1Click() {
    const bool on = check1_->isChecked();
    PaintCheck(check1_, on, "#FFFF00");
    if (rig_) rig_->SetSplit(on ? PM_SPLITON : PM_SPLITOFF);
}

void Transceiver::Check2Click() {
    const bool on = check2_->isChecked();
    labelPTT_->clear();
    labelPTT_->hide();
    if (!rig_ || rig_->Status() != ST_ONLINE) {
        if (on) PttRefused(rigNumber_, QStringLiteral("der Transceiver ist nicht verbunden"));
        ShowPtt();
        return;
    }
    // Shown as asked until the rig's answer, read back right after the write.
    PaintCheck(check2_, on, "#FF0000");
    rig_->SetTx(on ? PM_TX : PM_RX);
}

void Transceiver::LabelTXClick() {
    picture4_->setEnabled(false);
    frame1_->show();
    int f = 0;
    if (rig_) f = rig_->IsParamReadable(PM_FREQ) ? rig_->Freq() : rig_->FreqA();
    text1_->setText(QString::number(f));
    text1_->setFocus(Qt::OtherFocusReason);
    text1_->selectAll();
}

void Transceiver::Text1Enter() {
    picture4_->setEnabled(true);
    frame1_->hide();
    bool ok = false;
    const qlonglong v = text1_->text().trimmed().toLongLong(&ok);
    if (!ok || v < 0 || v > std::numeric_limits<int>::max()) {
        dialogs_.MsgBox(QStringLiteral("Ungültige Ferquenz eingegeben!"), Msg::Critical);
        return;
    }
    if (!rig_) return;
    if (rig_->IsParamWriteable(PM_FREQ))
        rig_->SetFreq(int(v));
    else if (rig_->IsParamWriteable(PM_FREQA))
        rig_->SetFreqA(int(v));
}

void Transceiver::Text1Escape() {
    picture4_->setEnabled(true);
    frame1_->hide();
}

bool Transceiver::eventFilter(QObject* o, QEvent* e) {
    if (o == labelTX_ && e->type() == QEvent::MouseButtonRelease) {
        LabelTXClick();
        return true;
    }
    if (o == text1_ && e->type() == QEvent::KeyPress) {
        auto* k = static_cast<QKeyEvent*>(e);
        if (k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) {
            Text1Enter();
            return true;
        }
        if (k->key() == Qt::Key_Escape) {
            Text1Escape();
            return true;
        }
        if (!FrequencyKeyPasses(k->text())) return true;
    }
    return QWidget::eventFilter(o, e);
}

void Transceiver::closeEvent(QCloseEvent* e) {
    closing_ = true;
    SaveWindowPos(this, kSection);
    for (int i = 0; i < kPanelBandCount; ++i) {
        IniWrite({}, kSection, MemKey(i, "BQRG"), BandMem[size_t(i)].freq);
        IniWrite({}, kSection, MemKey(i, "BMode"), BandMem[size_t(i)].modeRow);
    }
    Unload();
    e->accept();
}

void Transceiver::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    // A PTT keyed here is never left on when the panel goes.
    if (rig_) rig_->ReleasePtt();
    if (engine_) disconnect(engine_.get(), nullptr, this, nullptr);
    rig_ = nullptr;
    engine_.reset();
    SetCompanionOpen(m_, Companion::Transceiver, menuEntry_.data(), false);
}

} // namespace kolibrino::rig
