#include "rig/frequenz.h"

#include "core/settings.h"
#include "entry/main_window.h"
#include "rig/rig_settings.h"
#include "ui/window_support.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kolibrino::rig {

namespace {
const QColor kGreen(0, 255, 0);
const QColor kRed(255, 0, 0);
const QString kSection = QStringLiteral("Frequenz");

QComboBox* MainCombo(const HauptForm& main, const char* name) {
    return main.findChild<QComboBox*>(QString::fromLatin1(name));
}
} // namespace

bool FrequencyKeyPasses(const QString& keyText) {
    if (keyText.isEmpty()) return true; // no character: arrows, Delete, Tab
    const QChar c = keyText.at(0);
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c.unicode() == 8 || c.unicode() == 24 ||
           c.unicode() == 3;
}

Frequenz::Frequenz(HauptForm& main, Model& m, Dialogs& dialogs, int pollMs)
    : QWidget(&main, Qt::Window), main_(main), m_(m), dialogs_(dialogs), pollMs_(pollMs) {
    setObjectName(QStringLiteral("Frequenz"));
    setWindowTitle(QStringLiteral("Frequenzen/Bänder"));
    setAttribute(Qt::WA_DeleteOnClose);
    menuEntry_ = main.Action(QStringLiteral("MnFrequenz"));
    auto* top = new QVBoxLayout(this);

    picture2_ = new QWidget(this);
    picture2_->setObjectName(QStringLiteral("Picture2"));
    auto* p2 = picture2Layout_ = new QGridLayout(picture2_);
    label1_ = new QLabel(QStringLiteral("0.000.000"), picture2_);
    label1_->setObjectName(QStringLiteral("Label1"));
    label1_->setToolTip(QStringLiteral("Aktuelle Frequenz"));
    QFont big = label1_->font();
    big.setPointSize(big.pointSize() * 2);
    big.setBold(true);
    label1_->setFont(big);
    label2_ = new QLabel(QStringLiteral("RTTY"), picture2_);
    label2_->setObjectName(QStringLiteral("Label2"));
    label3_ = new QLabel(QStringLiteral("OFFLINE"), picture2_);
    label3_->setObjectName(QStringLiteral("Label3"));
    label3_->setAutoFillBackground(true);
    labelGrund_ = new QLabel(picture2_);
    labelGrund_->setObjectName(QStringLiteral("LabelGrund"));
    labelGrund_->setWordWrap(true);
    labelGrund_->hide();
    command1_ = new QPushButton(QStringLiteral("Omnirig Konfigurieren"), picture2_);
    command1_->setObjectName(QStringLiteral("Command1"));
    p2->addWidget(label1_, 0, 0, 1, 2);
    p2->addWidget(label2_, 1, 0);
    p2->addWidget(label3_, 1, 1);
    p2->addWidget(command1_, 2, 0, 1, 2);
    p2->addWidget(labelGrund_, 3, 0, 1, 2);
    top->addWidget(picture2_);

    frame2_ = new QGroupBox(QStringLiteral("Band/Freq. Wahl"), this);
    frame2_->setObjectName(QStringLiteral("Frame2"));
    auto* f2 = new QGridLayout(frame2_);
    const char* captions[3] = {"40 m", "80 m", "30 m"};
    for (int i = 0; i < 3; ++i) {
        option1_[size_t(i)] = new QRadioButton(QString::fromLatin1(captions[i]), frame2_);
        option1_[size_t(i)]->setObjectName(QStringLiteral("Option1_%1").arg(i));
        connect(option1_[size_t(i)], &QRadioButton::clicked, this, [this, i] { Option1Click(i); });
    }
    auto field = [this](const char* name, const QString& text, bool locked) {
        auto* e = new QLineEdit(text, frame2_);
        e->setObjectName(QString::fromLatin1(name));
        e->setReadOnly(locked);
        if (!locked) {
            e->setMaxLength(3);
            e->installEventFilter(this);
        }
        e->setMaximumWidth(60);
        return e;
    };
    text6_ = field("Text6", QStringLiteral("7"), true);
    text10_ = field("Text10", QStringLiteral("000"), false);
    text7_ = field("Text7", QStringLiteral("3"), true);
    text11_ = field("Text11", QStringLiteral("500"), false);
    text12_ = field("Text12", QStringLiteral("10"), true);
    text9_ = field("Text9", QStringLiteral("100"), false);
    // On screen 30, 40, 80 from the top.
    const struct {
        int option;
        QLineEdit* mhz;
        QLineEdit* khz;
    } rows[3] = {{2, text12_, text9_}, {0, text6_, text10_}, {1, text7_, text11_}};
    for (int r = 0; r < 3; ++r) {
        f2->addWidget(option1_[size_t(rows[r].option)], r, 0);
        f2->addWidget(rows[r].mhz, r, 1);
        f2->addWidget(rows[r].khz, r, 2);
    }
    top->addWidget(frame2_);

    timer1_.setInterval(500);
    connect(&timer1_, &QTimer::timeout, this, &Frequenz::Timer1Tick);
    connect(command1_, &QPushButton::clicked, this, [this] {
        if (engine_)
            engine_->SetDialogVisible(true);
        else if (RigEngine::DialogOpener()) // the plain form: set a rig up
            RigEngine::DialogOpener()();
    });
}

Frequenz::~Frequenz() {
    Unload();
}

void Frequenz::Load() {
    RestoreWindowPos(this, kSection);
    opening_ = true;
    Connect();
    auto stored = [](const char* key, int def) {
        const int v = int(IniReadInt({}, kSection, QString::fromLatin1(key)));
        return v == 0 ? def : v;
    };
    BQRG40 = stored("BQRG40", 7000000);
    BQRG80 = stored("BQRG80", 3500000);
    BQRG30 = stored("BQRG30", 10100000);
    text10_->setText(KilohertzText(0, BQRG40));
    text11_->setText(KilohertzText(1, BQRG80));
    text9_->setText(KilohertzText(2, BQRG30));
    SetCompanionOpen(m_, Companion::Frequenz, nullptr, true);
}

bool Frequenz::Picture2Visible() const {
    return picture2_->isVisibleTo(this);
}

void Frequenz::PlaceCommand1(bool inPicture2) {
    auto* top = static_cast<QVBoxLayout*>(layout());
    if (inPicture2) {
        top->removeWidget(command1_);
        command1_->setParent(picture2_);
        picture2Layout_->addWidget(command1_, 2, 0, 1, 2);
    } else {
        picture2Layout_->removeWidget(command1_);
        command1_->setParent(this);
        top->addWidget(command1_);
    }
    command1_->show();
}

void Frequenz::RigConfiguredLater() {
    if (engine_ || unloaded_) return;
    Connect();
}

void Frequenz::Connect() {
    engine_ = ConnectEngine(m_.IniPath, pollMs_);
    if (engine_ && InterfaceVersionAccepted(engine_->InterfaceVersion())) {
        disconnect(&RigSettingsSaved::Instance(), nullptr, this, nullptr);
        if (!picture2_->isVisibleTo(this)) {
            PlaceCommand1(true);
            picture2_->show();
            adjustSize();
        }
        connect(engine_.get(), &RigEngine::StatusChange, this, &Frequenz::StatusChange);
        connect(engine_.get(), &RigEngine::ParamsChange, this, &Frequenz::ParamsChange);
        rigNumber_ = 1;
        rig_ = engine_->Rig1();
        shownGeneration_ = rig_->Generation();
        StatusUpdate();
        ParamsUpdate();
        return;
    }
    // Without a rig: a plain form of three fields, with the way to set a rig up; once
    // one is saved, the form connects in place.
    engine_.reset();
    rig_ = nullptr;
    if (picture2_->isVisibleTo(this)) {
        picture2_->hide();
        PlaceCommand1(false);
        connect(&RigSettingsSaved::Instance(), &RigSettingsSaved::Saved, this, &Frequenz::RigConfiguredLater);
    }
    adjustSize();
}

void Frequenz::StatusChange(int rigNumber) {
    if (rigNumber != rigNumber_) return;
    StatusUpdate();
}

void Frequenz::ParamsChange(int rigNumber, int) {
    if (rigNumber != rigNumber_) return;
    ParamsUpdate();
}

void Frequenz::SetLabel3Colour(const QColor& c) {
    QPalette p = label3_->palette();
    p.setColor(QPalette::WindowText, c);
    label3_->setPalette(p);
}

void Frequenz::StatusUpdate() {
    if (!rig_) return;
    if (rig_->Generation() != shownGeneration_) {
        // Another rig now: nothing of the old one stays on screen.
        shownGeneration_ = rig_->Generation();
        ClearRigValues();
    }
    if (rig_->Status() != ST_ONLINE) {
        timer1_.start();
        dialogs_.Beep();
        label3_->setText(QStringLiteral("OFFLINE"));
        SetLabel3Colour(kRed);
        blinkRed_ = true;
        label3_->setToolTip(QStringLiteral("Verbindung zu Transceiver unterbrochen!"));
        labelGrund_->setText(rig_->StatusLine());
        labelGrund_->show();
        ShowStale(true);
    } else {
        blink_ = 0;
        timer1_.stop();
        label3_->setText(QStringLiteral("ONLINE"));
        SetLabel3Colour(kGreen);
        label3_->setToolTip(QStringLiteral("Verbindung zu Transceiver hergestellt!"));
        labelGrund_->clear();
        labelGrund_->hide();
        ShowStale(false);
        if (pendingBand_ >= 0) {
            // The band the operator chose while the rig was away goes to the rig first.
            const int band = pendingBand_;
            pendingBand_ = -1;
            FreqALT(band, pendingModeRow_);
        }
        ParamsUpdate();
    }
}

void Frequenz::ShowStale(bool stale) {
    // A frequency no longer read is greyed and says so.
    for (QLabel* l : {label1_, label2_}) {
        QPalette p = l->palette();
        p.setColor(QPalette::WindowText,
                   stale ? QColor(128, 128, 128) : palette().color(QPalette::WindowText));
        l->setPalette(p);
        l->setProperty("veraltet", stale);
    }
    label1_->setToolTip(
        stale ? QStringLiteral("Aktuelle Frequenz: nicht mehr vom Transceiver gelesen (veraltet)")
              : QStringLiteral("Aktuelle Frequenz"));
}

void Frequenz::ClearRigValues() {
    label1_->setText(FormatFrequency(0));
    label2_->clear();
    awaitFreq_ = 0;
}

void Frequenz::Timer1Tick() {
    if (blink_ == 40) {
        timer1_.stop();
        return;
    }
    ++blink_;
    blinkRed_ = !blinkRed_;
    SetLabel3Colour(blinkRed_ ? kRed : label3_->palette().color(QPalette::Window));
}

bool Frequenz::AwaitingWrite() {
    if (awaitFreq_ == 0) return false;
    if (rig_ && rig_->ShownFreq() == awaitFreq_) {
        awaitFreq_ = 0;
        return false;
    }
    if (awaitClock_.isValid() && awaitClock_.elapsed() > 2000) {
        awaitFreq_ = 0; // the rig did not take it: its own band counts again
        return false;
    }
    return true;
}

void Frequenz::ParamsUpdate() {
    // A rig that does not answer changes nothing on screen: a failed read is dropped.
    if (!rig_ || rig_->Status() != ST_ONLINE) return;
    const int f = rig_->ShownFreq();
    const int mode = rig_->Mode();
    label1_->setText(FormatFrequency(f));
    const int band = ContestBandOf(f);
    if (band >= 0 && !opening_ && !AwaitingWrite()) {
        KhzField(band)->setText(KilohertzText(band, f));
        (band == 0 ? BQRG40 : band == 1 ? BQRG80 : BQRG30) = f;
        SelectOption1(band);
    }
    label2_->setText(ModeLabel(mode));
    const int row = ModeBoxRow(mode);
    if (QComboBox* combo2 = MainCombo(main_, "Combo2"); combo2 && row >= 0 && combo2->currentIndex() != row) {
        // The log takes the rig's mode (CWR as CW, USB on 40 m as phone); the rig is
        // not written back.
        modeFromRig_ = true;
        combo2->setCurrentIndex(row);
        emit combo2->activated(row); // the box's own click: reports follow the mode
        modeFromRig_ = false;
    }
}

QLineEdit* Frequenz::KhzField(int band) const {
    return band == 0 ? text10_ : band == 1 ? text11_ : text9_;
}

void Frequenz::SelectOption1(int index) {
    if (index < 0 || index > 2 || option1_[size_t(index)]->isChecked()) return;
    option1_[size_t(index)]->setChecked(true);
    Option1Click(index);
}

void Frequenz::Option1Click(int index) {
    if (bandSetByMain_) return;
    QComboBox* combo1 = MainCombo(main_, "Combo1");
    if (!combo1 || index >= combo1->count() || combo1->currentIndex() == index) return;
    combo1->setCurrentIndex(index);
    emit combo1->activated(index); // the box's own click calls FreqALT
}

void Frequenz::MainBandClick(int band) {
    opening_ = false;
    bandSetByMain_ = true;
    SelectOption1(band);
    const QComboBox* combo2 = MainCombo(main_, "Combo2");
    FreqALT(band, combo2 ? combo2->currentIndex() : 0);
    bandSetByMain_ = false;
}

void Frequenz::FreqALT(int band, int modeRow) {
    if (!engine_ || !rig_) return;
    if (rig_->Status() != ST_ONLINE) {
        // Not connected yet: the rig gets this band as soon as it answers.
        if (band >= 0 && band <= 2 && !rig_->ReadOnly()) {
            pendingBand_ = band;
            pendingModeRow_ = modeRow;
        }
        return;
    }
    int f = 0;
    switch (band) {
    case 0:
        f = BQRG40;
        break;
    case 1:
        f = BQRG80;
        break;
    case 2:
        f = BQRG30;
        break;
    default:
        return;
    }
    if (!rig_->ReadOnly() && (rig_->IsParamWriteable(PM_FREQ) || rig_->IsParamWriteable(PM_FREQA))) {
        awaitFreq_ = f;
        awaitClock_.start();
    }
    if (rig_->IsParamWriteable(PM_FREQ))
        rig_->SetFreq(f);
    else if (rig_->IsParamWriteable(PM_FREQA))
        rig_->SetFreqA(f);
    const int mode = rig_->Mode();
    if (modeRow == 0) {
        if ((band == 0 || band == 1) && mode == PM_SSB_U) rig_->SetMode(PM_SSB_L);
        if (band == 2 && mode == PM_SSB_L) rig_->SetMode(PM_SSB_U);
    }
}

void Frequenz::SetMode(int modeRow) {
    if (!engine_ || !rig_ || modeFromRig_) return;
    if (modeRow == 0)
        rig_->SetMode(option1_[2]->isChecked() ? PM_SSB_U : PM_SSB_L);
    else if (modeRow == 1)
        rig_->SetMode(PM_CW_U);
}

std::optional<float> Frequenz::LoggedFrequency(int band) const {
    switch (band) {
    case 0:
        return LoggedKilohertz(text6_->text(), text10_->text());
    case 1:
        return LoggedKilohertz(text7_->text(), text11_->text());
    case 2:
        return LoggedKilohertz(text12_->text(), text9_->text());
    default:
        return std::nullopt;
    }
}

bool Frequenz::eventFilter(QObject* o, QEvent* e) {
    const int band = o == text10_ ? 0 : o == text11_ ? 1 : o == text9_ ? 2 : -1;
    if (band >= 0) {
        if (e->type() == QEvent::FocusIn) SelectOption1(band);
        if (e->type() == QEvent::KeyPress && !FrequencyKeyPasses(static_cast<QKeyEvent*>(e)->text()))
            return true;
    }
    return QWidget::eventFilter(o, e);
}

void Frequenz::closeEvent(QCloseEvent* e) {
    if (picture2_->isVisibleTo(this) && property("Tag").toString() != QLatin1String("1")) {
        const int answer = dialogs_.MsgBox(
            QStringLiteral("Wenn dieses Fenster geschlossen wird, kann die aktuelle QRG nicht mehr aus dem "
                           "Transceiver ausgelesen werden.Es wird somit nur die Default-QRG ins Log "
                           "geschrieben!\r\n\r\nSoll das Fenster trotzdem geschlossen werden?"),
            Msg::Information | Msg::YesNoCancel);
        if (answer != Msg::Yes) {
            if (menuEntry_) menuEntry_->setChecked(true);
            e->ignore();
            return;
        }
    }
    SaveWindowPos(this, kSection);
    IniWrite({}, kSection, QStringLiteral("BQRG40"), BQRG40);
    IniWrite({}, kSection, QStringLiteral("BQRG80"), BQRG80);
    IniWrite({}, kSection, QStringLiteral("BQRG30"), BQRG30);
    Unload();
    e->accept();
}

void Frequenz::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    timer1_.stop();
    if (engine_) disconnect(engine_.get(), nullptr, this, nullptr);
    rig_ = nullptr;
    engine_.reset();
    SetCompanionOpen(m_, Companion::Frequenz, menuEntry_.data(), false);
}

} // namespace kolibrino::rig
