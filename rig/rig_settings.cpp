#include "rig/rig_settings.h"

#include "core/settings.h"
#include "rig/rig_engine.h"
#include "rig/rig_params.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <future>
#include <thread>

namespace kolibrino::rig {

QStringList SerialPorts() {
    QStringList ports;
    const QDir dev(QStringLiteral("/dev"));
    for (const QString& n :
         dev.entryList({QStringLiteral("ttyUSB*"), QStringLiteral("ttyACM*"), QStringLiteral("ttyS*")},
                       QDir::System | QDir::Files | QDir::NoDotAndDotDot, QDir::Name))
        ports << dev.filePath(n);
    const QDir byId(QStringLiteral("/dev/serial/by-id"));
    for (const QString& n : byId.entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot, QDir::Name))
        ports << byId.filePath(n);
    return ports;
}

RigTestResult TestRig(const RigConfig& config, int timeoutMs) {
    auto task = std::make_shared<std::packaged_task<RigTestResult()>>([config] {
        RigTestResult t;
        HamlibRig r;
        t.error = r.Open(config, 1000);
        if (!t.error.isEmpty()) return t;
        QString err;
        const std::optional<RigReading> reading = r.Read(&err);
        if (!reading || !reading->freq) {
            t.error = reading ? QStringLiteral("Ungültige Frequenz vom Transceiver") : err;
            return t;
        }
        t.online = true;
        t.freq = *reading->freq;
        t.mode = reading->mode;
        return t;
    });
    std::future<RigTestResult> result = task->get_future();
    std::thread([task] { (*task)(); }).detach();
    QElapsedTimer clock;
    clock.start();
    // The window goes on while the rig is asked.
    while (result.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        if (clock.elapsed() > timeoutMs) {
            RigTestResult t;
            t.error = QStringLiteral("Der Transceiver hat nicht innerhalb von %1 s geantwortet.")
                          .arg(timeoutMs / 1000);
            return t;
        }
        QEventLoop loop;
        loop.processEvents(QEventLoop::ExcludeUserInputEvents, 10);
    }
    return result.get();
}

namespace {
// A choice box of texts shown and values stored; the first is the model's default.
QComboBox* Choices(QWidget* parent, const char* name, const QList<QPair<QString, QVariant>>& items) {
    auto* c = new QComboBox(parent);
    c->setObjectName(QString::fromLatin1(name));
    for (const auto& [text, value] : items)
        c->addItem(text, value);
    return c;
}
void Choose(QComboBox* c, const QVariant& value) {
    const int i = c->findData(value);
    c->setCurrentIndex(i >= 0 ? i : 0);
}
const QString kStandard = QStringLiteral("Standard des Modells");
} // namespace

RigEinstellungen::RigEinstellungen(Model& m, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs) {
    setObjectName(QStringLiteral("RigEinstellungen"));
    setWindowTitle(QStringLiteral("Transceiver Einstellungen (Hamlib)"));
    auto* top = new QVBoxLayout(this);
    textSuche_ = new QLineEdit(this);
    textSuche_->setObjectName(QStringLiteral("TextSuche"));
    textSuche_->setPlaceholderText(QStringLiteral("Suche nach Hersteller oder Modell"));
    listModelle_ = new QListWidget(this);
    listModelle_->setObjectName(QStringLiteral("ListModelle"));
    auto* none = new QListWidgetItem(QStringLiteral("Kein Transceiver"), listModelle_);
    none->setData(Qt::UserRole, 0);
    for (const RigModelInfo& info : HamlibModels()) {
        auto* item = new QListWidgetItem(
            QStringLiteral("%1 %2 (%3)").arg(info.maker, info.name).arg(info.model), listModelle_);
        item->setData(Qt::UserRole, info.model);
    }
    auto* form = new QFormLayout;
    comboPort_ = new QComboBox(this);
    comboPort_->setObjectName(QStringLiteral("ComboPort"));
    comboPort_->setEditable(true);
    comboPort_->addItems(SerialPorts());
    comboSpeed_ = new QComboBox(this);
    comboSpeed_->setObjectName(QStringLiteral("ComboSpeed"));
    comboDatenbits_ =
        Choices(this, "ComboDatenbits", {{kStandard, 0}, {QStringLiteral("7"), 7}, {QStringLiteral("8"), 8}});
    comboStopbits_ =
        Choices(this, "ComboStopbits", {{kStandard, 0}, {QStringLiteral("1"), 1}, {QStringLiteral("2"), 2}});
    comboHandshake_ = Choices(this, "ComboHandshake",
                              {{kStandard, QString()},
                               {QStringLiteral("Kein"), QStringLiteral("None")},
                               {QStringLiteral("XON/XOFF"), QStringLiteral("XONXOFF")},
                               {QStringLiteral("Hardware (RTS/CTS)"), QStringLiteral("Hardware")}});
    const QList<QPair<QString, QVariant>> line = {{kStandard, QString()},
                                                  {QStringLiteral("Ein"), QStringLiteral("ON")},
                                                  {QStringLiteral("Aus"), QStringLiteral("OFF")}};
    comboDTR_ = Choices(this, "ComboDTR", line);
    comboRTS_ = Choices(this, "ComboRTS", line);
    comboPTT_ = Choices(this, "ComboPTT",
                        {{kStandard, QString()},
                         {QStringLiteral("CAT"), QStringLiteral("RIG")},
                         {QStringLiteral("DTR"), QStringLiteral("DTR")},
                         {QStringLiteral("RTS"), QStringLiteral("RTS")},
                         {QStringLiteral("Keine"), QStringLiteral("None")}});
    comboPTTPort_ = new QComboBox(this);
    comboPTTPort_->setObjectName(QStringLiteral("ComboPTTPort"));
    comboPTTPort_->setEditable(true);
    comboPTTPort_->addItem(QString());
    comboPTTPort_->addItems(SerialPorts());
    comboPTTPort_->setToolTip(QStringLiteral("Leer: dieselbe Schnittstelle wie der Transceiver"));
    textCIV_ = new QLineEdit(this);
    textCIV_->setObjectName(QStringLiteral("TextCIV"));
    textCIV_->setPlaceholderText(QStringLiteral("Standard des Modells, z. B. 0x94"));
    textWeitere_ = new QPlainTextEdit(this);
    textWeitere_->setObjectName(QStringLiteral("TextWeitere"));
    textWeitere_->setPlaceholderText(QStringLiteral("NAME=WERT, eine Einstellung je Zeile"));
    textWeitere_->setTabChangesFocus(true);
    textWeitere_->setMaximumHeight(70);
    checkNurLesen_ = new QCheckBox(QStringLiteral("Transceiver nur lesen"), this);
    checkNurLesen_->setObjectName(QStringLiteral("CheckNurLesen"));
    checkNurLesen_->setToolTip(QStringLiteral("Frequenz und Mode werden nie zum Transceiver geschrieben"));
    textNetz_ = new QLineEdit(this);
    textNetz_->setObjectName(QStringLiteral("TextNetz"));
    textNetz_->setPlaceholderText(QStringLiteral("127.0.0.1:4532"));
    form->addRow(QStringLiteral("Suche:"), textSuche_);
    top->addLayout(form);
    top->addWidget(listModelle_, 1);
    auto* form2 = new QFormLayout;
    form2->addRow(QStringLiteral("Serielle Schnittstelle:"), comboPort_);
    form2->addRow(QStringLiteral("Geschwindigkeit (Baud):"), comboSpeed_);
    form2->addRow(QStringLiteral("Datenbits:"), comboDatenbits_);
    form2->addRow(QStringLiteral("Stoppbits:"), comboStopbits_);
    form2->addRow(QStringLiteral("Handshake:"), comboHandshake_);
    form2->addRow(QStringLiteral("DTR-Leitung:"), comboDTR_);
    form2->addRow(QStringLiteral("RTS-Leitung:"), comboRTS_);
    form2->addRow(QStringLiteral("PTT über:"), comboPTT_);
    form2->addRow(QStringLiteral("PTT-Schnittstelle:"), comboPTTPort_);
    form2->addRow(QStringLiteral("CI-V-Adresse (Icom):"), textCIV_);
    form2->addRow(QStringLiteral("Weitere Hamlib-Einstellungen:"), textWeitere_);
    form2->addRow(QString(), checkNurLesen_);
    form2->addRow(QStringLiteral("Netzwerk rigctld (host:port):"), textNetz_);
    top->addLayout(form2);
    labelTest_ = new QLabel(this);
    labelTest_->setObjectName(QStringLiteral("LabelTest"));
    labelTest_->setWordWrap(true);
    top->addWidget(labelTest_);
    auto* buttons = new QHBoxLayout;
    commandTest_ = new QPushButton(QStringLiteral("Test"), this);
    commandTest_->setObjectName(QStringLiteral("CommandTest"));
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("CommandOK"));
    auto* cancel = new QPushButton(QStringLiteral("Abbrechen"), this);
    cancel->setObjectName(QStringLiteral("CommandAbbrechen"));
    buttons->addWidget(commandTest_);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    top->addLayout(buttons);
    resize(560, 760);

    connect(textSuche_, &QLineEdit::textChanged, this, &RigEinstellungen::Filter);
    connect(listModelle_, &QListWidget::currentRowChanged, this, &RigEinstellungen::ModelChanged);
    connect(commandTest_, &QPushButton::clicked, this, &RigEinstellungen::CommandTestClick);
    connect(ok, &QPushButton::clicked, this, &RigEinstellungen::CommandOkClick);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    Fill(ReadRigConfig(m_.IniPath, 1));
}

void RigEinstellungen::Fill(const RigConfig& c) {
    // "Kein Transceiver" chosen before shows again; with nothing stored the network
    // rig is proposed.
    const bool noneChosen =
        IniReadString(m_.IniPath, QStringLiteral("Rig1"), QStringLiteral("Model")).trimmed() ==
        QLatin1String("0");
    SelectModel(c.model > 0 ? c.model : noneChosen ? 0 : kModelNetRigctl);
    if (c.model == kModelNetRigctl)
        textNetz_->setText(c.port);
    else
        comboPort_->setCurrentText(c.port);
    FillSpeeds(Current().model, c.speed);
    Choose(comboDatenbits_, c.dataBits);
    Choose(comboStopbits_, c.stopBits);
    Choose(comboHandshake_, c.handshake);
    Choose(comboDTR_, c.dtr);
    Choose(comboRTS_, c.rts);
    Choose(comboPTT_, c.ptt);
    comboPTTPort_->setCurrentText(c.pttPort);
    textCIV_->setText(c.civAddr);
    textWeitere_->setPlainText(c.conf.join(QLatin1Char('\n')));
    checkNurLesen_->setChecked(c.readOnly);
    ModelChanged();
}

void RigEinstellungen::FillSpeeds(int model, int speed) {
    comboSpeed_->clear();
    comboSpeed_->addItem(kStandard, 0);
    for (const int s : ModelSpeeds(model))
        comboSpeed_->addItem(QString::number(s), s);
    // A stored speed outside the model's list stays visible.
    if (speed > 0 && comboSpeed_->findData(speed) < 0) comboSpeed_->addItem(QString::number(speed), speed);
    Choose(comboSpeed_, speed);
}

bool RigEinstellungen::SelectModel(int model) {
    for (int i = 0; i < listModelle_->count(); ++i) {
        QListWidgetItem* item = listModelle_->item(i);
        if (item->data(Qt::UserRole).toInt() != model) continue;
        item->setHidden(false);
        listModelle_->setCurrentItem(item);
        listModelle_->scrollToItem(item);
        return true;
    }
    return false;
}

void RigEinstellungen::Filter(const QString& text) {
    QListWidgetItem* first = nullptr;
    for (int i = 0; i < listModelle_->count(); ++i) {
        QListWidgetItem* item = listModelle_->item(i);
        const int model = item->data(Qt::UserRole).toInt();
        const RigModelInfo* info = FindModel(model);
        const bool match =
            info ? ModelMatches(info->maker, info->name, text) : ModelMatches(QString(), item->text(), text);
        item->setHidden(!match);
        if (match && !first) first = item;
    }
    QListWidgetItem* current = listModelle_->currentItem();
    if ((!current || current->isHidden()) && first) listModelle_->setCurrentItem(first);
}

void RigEinstellungen::ModelChanged() {
    const int model = Current().model;
    const bool net = model == kModelNetRigctl;
    const bool serial = model > 0 && !net;
    textNetz_->setEnabled(net);
    const int speed = comboSpeed_->currentData().toInt();
    FillSpeeds(model, speed);
    for (QWidget* w : std::initializer_list<QWidget*>{comboPort_, comboSpeed_, comboDatenbits_,
                                                      comboStopbits_, comboHandshake_, comboDTR_, comboRTS_})
        w->setEnabled(serial);
    for (QWidget* w : std::initializer_list<QWidget*>{comboPTT_, comboPTTPort_, textWeitere_, checkNurLesen_})
        w->setEnabled(model > 0);
    textCIV_->setEnabled(model > 0 && ModelHasSetting(model, "civaddr"));
}

QString RigEinstellungen::CheckSettings(const RigConfig& c) const {
    if (!c.Configured()) return QString();
    if (!c.civAddr.isEmpty()) {
        bool ok = false;
        const int a = c.civAddr.toInt(&ok, 0);
        if (!ok || a < 1 || a > 0xFF)
            return QStringLiteral("Die CI-V-Adresse „%1“ ist keine Zahl von 1 bis 255 (dezimal oder 0x..).")
                .arg(c.civAddr);
    }
    return CheckConfNames(c.model, c.conf);
}

RigConfig RigEinstellungen::Current() const {
    RigConfig c;
    if (const QListWidgetItem* item = listModelle_->currentItem()) c.model = item->data(Qt::UserRole).toInt();
    if (c.model == 0) return c; // "Kein Transceiver"
    if (c.model == kModelNetRigctl) {
        c.port = textNetz_->text().trimmed();
    } else {
        c.port = comboPort_->currentText().trimmed();
        c.speed = comboSpeed_->currentData().toInt();
        c.dataBits = comboDatenbits_->currentData().toInt();
        c.stopBits = comboStopbits_->currentData().toInt();
        c.handshake = comboHandshake_->currentData().toString();
        c.dtr = comboDTR_->currentData().toString();
        c.rts = comboRTS_->currentData().toString();
    }
    c.ptt = comboPTT_->currentData().toString();
    c.pttPort = comboPTTPort_->currentText().trimmed();
    if (textCIV_->isEnabled()) c.civAddr = textCIV_->text().trimmed();
    for (const QString& line : textWeitere_->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        if (!line.trimmed().isEmpty()) c.conf << line.trimmed();
    c.readOnly = checkNurLesen_->isChecked();
    return c;
}

void RigEinstellungen::CommandTestClick() {
    const RigConfig c = Current();
    if (const QString refused = CheckSettings(c); !refused.isEmpty()) {
        labelTest_->setText(refused);
        dialogs_.MsgBox(refused, Msg::Exclamation);
        return;
    }
    commandTest_->setEnabled(false);
    labelTest_->setText(QStringLiteral("Transceiver wird gefragt …"));
    RigTestResult t;
    if (std::shared_ptr<RigEngine> live = LiveEngine(); live && live->Rig1()->Config() == c) {
        // The engine already holds this rig (a serial port opens only once): its word.
        RigControl* r = live->Rig1();
        t.online = r->Status() == ST_ONLINE && r->Freq() > 0;
        t.freq = r->Freq();
        t.mode = r->Mode();
        if (!t.online) t.error = r->StatusStr();
    } else {
        t = TestRig(c);
    }
    commandTest_->setEnabled(true);
    if (t.online) {
        const QString text = QStringLiteral("Verbindung in Ordnung: %1 Hz, %2")
                                 .arg(FormatFrequency(t.freq), ModeLabel(t.mode));
        labelTest_->setText(text);
        dialogs_.MsgBox(text, Msg::Information);
    } else {
        const QString text = QStringLiteral("Keine Verbindung zum Transceiver:\r\n%1").arg(t.error);
        labelTest_->setText(text);
        dialogs_.MsgBox(text, Msg::Exclamation);
    }
}

void RigEinstellungen::CommandOkClick() {
    const RigConfig c = Current();
    if (const QString refused = CheckSettings(c); !refused.isEmpty()) {
        dialogs_.MsgBox(refused, Msg::Exclamation);
        return;
    }
    if (c.model == kModelNetRigctl && !c.port.contains(QLatin1Char(':'))) {
        dialogs_.MsgBox(QStringLiteral("Bitte die Netzwerkadresse von rigctld als host:port eingeben, zum "
                                       "Beispiel 127.0.0.1:4532."),
                        Msg::Exclamation);
        return;
    }
    WriteRigConfig(m_.IniPath, 1, c);
    if (std::shared_ptr<RigEngine> live = LiveEngine()) live->Rig1()->Reconfigure(c);
    accept();
    emit RigSettingsSaved::Instance().Saved();
}

RigSettingsSaved& RigSettingsSaved::Instance() {
    static RigSettingsSaved instance;
    return instance;
}

void ShowRigSettings(Model& m, Dialogs& dialogs, QWidget* parent) {
    RigEinstellungen w(m, dialogs, parent);
    w.exec();
}

} // namespace kolibrino::rig
