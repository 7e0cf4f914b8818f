#include "rig/rig_settings.h"

#include "rig/rig_engine.h"
#include "rig/rig_params.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
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
const int kSpeeds[] = {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
}

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
    comboSpeed_->addItem(QStringLiteral("Standard des Modells"), 0);
    for (const int s : kSpeeds)
        comboSpeed_->addItem(QString::number(s), s);
    textNetz_ = new QLineEdit(this);
    textNetz_->setObjectName(QStringLiteral("TextNetz"));
    textNetz_->setPlaceholderText(QStringLiteral("127.0.0.1:4532"));
    form->addRow(QStringLiteral("Suche:"), textSuche_);
    top->addLayout(form);
    top->addWidget(listModelle_, 1);
    auto* form2 = new QFormLayout;
    form2->addRow(QStringLiteral("Serielle Schnittstelle:"), comboPort_);
    form2->addRow(QStringLiteral("Geschwindigkeit (Baud):"), comboSpeed_);
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
    resize(520, 560);

    connect(textSuche_, &QLineEdit::textChanged, this, &RigEinstellungen::Filter);
    connect(listModelle_, &QListWidget::currentRowChanged, this, &RigEinstellungen::ModelChanged);
    connect(commandTest_, &QPushButton::clicked, this, &RigEinstellungen::CommandTestClick);
    connect(ok, &QPushButton::clicked, this, &RigEinstellungen::CommandOkClick);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    Fill(ReadRigConfig(m_.IniPath, 1));
}

void RigEinstellungen::Fill(const RigConfig& c) {
    SelectModel(c.model > 0 ? c.model : kModelNetRigctl);
    if (c.model == kModelNetRigctl)
        textNetz_->setText(c.port);
    else
        comboPort_->setCurrentText(c.port);
    const int speedIndex = comboSpeed_->findData(c.speed);
    comboSpeed_->setCurrentIndex(speedIndex >= 0 ? speedIndex : 0);
    ModelChanged();
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
    const QStringList words = text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QListWidgetItem* first = nullptr;
    for (int i = 0; i < listModelle_->count(); ++i) {
        QListWidgetItem* item = listModelle_->item(i);
        bool match = true;
        for (const QString& w : words)
            match = match && item->text().contains(w, Qt::CaseInsensitive);
        item->setHidden(!match);
        if (match && !first) first = item;
    }
    QListWidgetItem* current = listModelle_->currentItem();
    if ((!current || current->isHidden()) && first) listModelle_->setCurrentItem(first);
}

void RigEinstellungen::ModelChanged() {
    const bool net = Current().model == kModelNetRigctl;
    textNetz_->setEnabled(net);
    comboPort_->setEnabled(!net);
    comboSpeed_->setEnabled(!net);
}

RigConfig RigEinstellungen::Current() const {
    RigConfig c;
    if (const QListWidgetItem* item = listModelle_->currentItem()) c.model = item->data(Qt::UserRole).toInt();
    if (c.model == kModelNetRigctl) {
        c.port = textNetz_->text().trimmed();
    } else {
        c.port = comboPort_->currentText().trimmed();
        c.speed = comboSpeed_->currentData().toInt();
    }
    return c;
}

void RigEinstellungen::CommandTestClick() {
    const RigConfig c = Current();
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
