#include "corrections/bearbeiten.h"

#include "core/log_file.h"
#include "entry/main_window.h"
#include "setup/modal.h"
#include "ui/field_gate.h"
#include "ui/window_support.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kolibrino::corrections {
namespace {

QLineEdit* MakeText(QWidget* parent, const char* name) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(QString::fromLatin1(name));
    return e;
}

QComboBox* MakeCombo(QWidget* parent, const char* name, bool editable) {
    auto* c = new QComboBox(parent);
    c->setObjectName(QString::fromLatin1(name));
    c->setEditable(editable);
    if (editable) {
        c->setInsertPolicy(QComboBox::NoInsert);
        c->setCompleter(nullptr);
    }
    return c;
}

bool IsDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

Bearbeiten::Bearbeiten(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock, int row)
    : QDialog(&main), main_(main), m_(m), dialogs_(dialogs), clock_(clock), row_(row) {
    setObjectName(QStringLiteral("Bearbeiten"));
    setWindowTitle(QStringLiteral("Logeintrag Bearbeiten..."));
    Build();
}

void Bearbeiten::Build() {
    auto* outer = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    text1_ = MakeText(this, "Text1");
    text2_ = MakeText(this, "Text2");
    combo1_ = MakeCombo(this, "Combo1", false);
    combo1_->addItems({QStringLiteral("40m"), QStringLiteral("80m"), QStringLiteral("30m")});
    combo2_ = MakeCombo(this, "Combo2", false);
    combo2_->addItems({QStringLiteral("SSB"), QStringLiteral("CW")});
    text3_ = MakeText(this, "Text3");
    text3_->setMaxLength(13);
    text4_ = MakeText(this, "Text4");
    text5_ = MakeText(this, "Text5");
    combo5_ = MakeCombo(this, "Combo5", true);
    for (size_t i = 1; i < m_.BezirkRecords.size(); ++i)
        combo5_->addItem(m_.BezirkRecords[i].Code);
    const QList<QPair<QString, QWidget*>> row = {
        {QStringLiteral("Datum"), text1_},      {QStringLiteral("Zeit"), text2_},
        {QStringLiteral("Band"), combo1_},      {QStringLiteral("Mode"), combo2_},
        {QStringLiteral("Rufzeichen"), text3_}, {QStringLiteral("RSTs"), text4_},
        {QStringLiteral("RSTe"), text5_},       {QStringLiteral("BZ"), combo5_},
    };
    for (int i = 0; i < row.size(); ++i) {
        auto* l = new QLabel(row[i].first, this);
        l->setBuddy(row[i].second);
        grid->addWidget(l, 0, i);
        grid->addWidget(row[i].second, 1, i);
    }
    outer->addLayout(grid);

    auto* line2 = new QHBoxLayout;
    check1_ = new QCheckBox(QStringLiteral("QSL NEIN"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    text8_ = MakeText(this, "Text8");
    combo6_ = MakeCombo(this, "Combo6", true);
    text12_ = MakeText(this, "Text12");
    text9_ = MakeText(this, "Text9");
    text12_->setMaximumWidth(60);
    text9_->setMaximumWidth(50);
    line2->addWidget(check1_);
    line2->addWidget(new QLabel(QStringLiteral("Notiz"), this));
    line2->addWidget(text8_, 1);
    line2->addWidget(new QLabel(QStringLiteral("OpCall"), this));
    line2->addWidget(combo6_);
    line2->addWidget(new QLabel(QStringLiteral("QRG"), this));
    line2->addWidget(text12_);
    line2->addWidget(new QLabel(QStringLiteral("."), this));
    line2->addWidget(text9_);
    line2->addWidget(new QLabel(QStringLiteral("kHz"), this));
    outer->addLayout(line2);
    labelQrg_ = new QLabel(QStringLiteral("QRG an das Band angepasst"), this);
    labelQrg_->setObjectName(QStringLiteral("LabelQrg"));
    labelQrg_->setAlignment(Qt::AlignRight);
    labelQrg_->hide();
    outer->addWidget(labelQrg_);

    auto* buttons = new QHBoxLayout;
    command4_ = new QPushButton(QStringLiteral("&OK"), this);
    command4_->setObjectName(QStringLiteral("Command4"));
    command4_->setDefault(true);
    command1_ = new QPushButton(QStringLiteral("&Abbrechen"), this);
    command1_->setObjectName(QStringLiteral("Command1"));
    buttons->addStretch(1);
    buttons->addWidget(command4_);
    buttons->addWidget(command1_);
    outer->addLayout(buttons);
    connect(command4_, &QPushButton::clicked, this, &Bearbeiten::Command4Click);
    connect(command1_, &QPushButton::clicked, this, &QDialog::reject);

    // The text gate at the keys: each field takes only what the file can hold of it, as
    // long as the file stores it.
    InstallFieldGate(text3_, TextField::Call);
    InstallFieldGate(text4_, TextField::RstGesendet);
    InstallFieldGate(text5_, TextField::RstEmpfangen);
    InstallFieldGate(combo5_, TextField::Bezirk);
    InstallFieldGate(text8_, TextField::Bemerkung);
    InstallFieldGate(combo6_, TextField::Operator);

    for (QWidget* wdg : {static_cast<QWidget*>(text1_), static_cast<QWidget*>(text3_),
                         static_cast<QWidget*>(text4_), static_cast<QWidget*>(combo5_)})
        wdg->installEventFilter(this);
    combo5_->lineEdit()->installEventFilter(this);
}

bool Bearbeiten::Open() {
    if (row_ < 0 || row_ >= main_.Grid().DataRows()) return false;
    if (auto* mainOps = main_.findChild<QComboBox*>(QStringLiteral("Combo6")))
        for (int i = 0; i < mainOps->count(); ++i)
            combo6_->addItem(mainOps->itemText(i));
    bool warn = false;
    const EditFields f = FieldsOfRow(main_.Grid(), row_, &warn);
    text2_->setText(f.zeit);
    text1_->setText(f.datum);
    combo1_->setCurrentIndex(f.bandIndex);
    combo2_->setCurrentIndex(combo2_->findText(f.mode));
    text3_->setText(f.call);
    text4_->setText(f.rstGesendet);
    text5_->setText(f.rstEmpfangen);
    combo5_->setEditText(f.bezirk);
    check1_->setChecked(f.qsl != 0);
    text8_->setText(f.notiz);
    combo6_->setEditText(f.opCall);
    if (warn) dialogs_.MsgBox(kMsgFrequenzUngueltig, Msg::Critical);
    text12_->setText(f.mhz);
    text9_->setText(f.khz);
    openedMhz_ = f.mhz;
    openedKhz_ = f.khz;
    connect(combo1_, &QComboBox::currentIndexChanged, this, &Bearbeiten::Combo1Change);
    return true;
}

void Bearbeiten::Combo1Change(int index) {
    const FrequencyFields f =
        FrequencyForBand(index, text12_->text(), text9_->text(), openedMhz_, openedKhz_);
    if (!f.changed) return;
    text12_->setText(f.mhz);
    text9_->setText(f.khz);
    const bool moved = f.mhz != openedMhz_ || f.khz != openedKhz_;
    labelQrg_->setVisible(moved);
    // The moved fields stand out until the window closes or they hold the old frequency again.
    for (QLineEdit* e : {text12_, text9_})
        e->setStyleSheet(moved ? QStringLiteral("QLineEdit { background: #ffff80; }") : QString());
}

int Bearbeiten::ShowModal() {
    return setup::ExecModal(*this);
}

EditFields Bearbeiten::ReadFields() const {
    EditFields f;
    f.datum = text1_->text();
    f.zeit = text2_->text();
    f.band = combo1_->currentText();
    f.bandIndex = combo1_->currentIndex();
    f.mode = combo2_->currentText();
    f.call = text3_->text();
    f.rstGesendet = text4_->text();
    f.rstEmpfangen = text5_->text();
    f.bezirk = combo5_->currentText();
    f.qsl = check1_->isChecked() ? 1 : 0;
    f.notiz = text8_->text();
    f.opCall = combo6_->currentText();
    f.mhz = text12_->text();
    f.khz = text9_->text();
    return f;
}

void Bearbeiten::FocusOn(EditFocus f) {
    QWidget* w = nullptr;
    switch (f) {
    case EditFocus::Text1:
        w = text1_;
        break;
    case EditFocus::Text2:
        w = text2_;
        break;
    case EditFocus::Text3:
        w = text3_;
        break;
    case EditFocus::Text4:
        w = text4_;
        break;
    case EditFocus::Text5:
        w = text5_;
        break;
    case EditFocus::Text9:
        w = text9_;
        break;
    case EditFocus::Combo1:
        w = combo1_;
        break;
    case EditFocus::Combo2:
        w = combo2_;
        break;
    case EditFocus::Combo5:
        w = combo5_;
        break;
    case EditFocus::Text8:
        w = text8_;
        break;
    case EditFocus::Combo6:
        w = combo6_;
        break;
    case EditFocus::None:
        return;
    }
    w->setFocus(Qt::OtherFocusReason);
}

void Bearbeiten::Command4Click() {
    EditFields f = ReadFields();
    if (const auto failure = CheckEdit(m_, main_.Grid(), row_, f)) {
        if (failure->textHidden)
            static_cast<void>(RunTrappedUi(dialogs_, [] { return kMsgObjektErforderlich; })); // the box only
        else
            dialogs_.MsgBox(failure->message, failure->boxFlags);
        FocusOn(failure->focus);
        return;
    }
    text9_->setText(f.khz);
    result_ = ApplyEdit(m_, dialogs_, main_.Grid(), row_, f, clock_.Now().date().year());
    accept();
}

bool Bearbeiten::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    // Tab and Shift+Tab move between the fields; no field's filter takes them.
    if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)
        return QDialog::eventFilter(watched, event);
    const QString t = key->text();
    if (t.size() != 1) return QDialog::eventFilter(watched, event);
    const QChar c = t[0];
    const ushort code = c.unicode();
    // A blank moves on to the next field.
    if (c == QLatin1Char(' ')) {
        focusNextChild();
        return true;
    }
    if (code == 8 || code == 24 || code == 3 || code == 22) return QDialog::eventFilter(watched, event);
    if (watched == text3_) {
        if (c == QLatin1Char('-')) {
            text3_->insert(QStringLiteral("/"));
            return true;
        }
        if (c == QLatin1Char('/') || IsDigit(c)) return false;
        if (c.isLetter() && code < 128) {
            text3_->insert(QString(c.toUpper()));
            return true;
        }
        return true;
    }
    if (watched == text1_) {
        if (IsDigit(c) || c == m_.DateSeparator || code == 13) return false;
        return true;
    }
    if (watched == text4_) return !IsDigit(c);
    return QDialog::eventFilter(watched, event);
}

} // namespace kolibrino::corrections
