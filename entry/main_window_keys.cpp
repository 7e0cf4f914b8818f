// The keyboard and the mouse in the entry area: key filters, Space and Tab jumps,
// Enter, the clearing keys, focus colours, the call field's look-ups, the band, mode,
// QSL and operator fields, the dupe button, the message line, and the two menu entries
// of the entry (call default, extended entry). The rules come from entry/entry_keys.h;
// this file maps widgets to fields and shows the answers.
#include "core/vb_text.h"
#include "entry/main_window.h"
#include "ui/back_colour.h"
#include "ui/combo_max_length.h"
#include "ui/field_gate.h"
#include "ui/keyboard_focus.h"
#include "ui/spoken.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace kolibrino {
namespace {

// The character a key press stands for, in the classic numbering: Enter 13, Backspace
// 8, Ctrl with a letter 1 to 26, Escape 27, Delete 127, else the character it types.
// Null for keys that type nothing (arrows, function keys, Shift alone).
QChar KeyAsciiOf(const QKeyEvent* e) {
    switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QChar(KeyAscii::Enter);
    case Qt::Key_Backspace:
        return QChar(KeyAscii::Backspace);
    case Qt::Key_Delete:
        return QChar(KeyAscii::Delete);
    case Qt::Key_Escape:
        return QChar(char16_t(27));
    default:
        break;
    }
    const Qt::KeyboardModifiers mods = e->modifiers();
    if ((mods & Qt::ControlModifier) && !(mods & Qt::AltModifier) && e->key() >= Qt::Key_A &&
        e->key() <= Qt::Key_Z)
        return QChar(char16_t(e->key() - Qt::Key_A + 1));
    const QString text = e->text();
    return text.isEmpty() ? QChar() : text[0];
}

// The fields that show the focus by their colour.
bool ShowsFocus(EntryField f) {
    switch (f) {
    case EntryField::Text1:
    case EntryField::Text2:
    case EntryField::Text3:
    case EntryField::Text4:
    case EntryField::Text5:
    case EntryField::Combo1:
    case EntryField::Combo2:
    case EntryField::Combo5:
        return true;
    default:
        return false;
    }
}

} // namespace

void HauptForm::ConnectEntryEvents() {
    for (QWidget* w : std::initializer_list<QWidget*>{text1_, text2_, text3_, text4_, text5_, text8_, combo1_,
                                                      combo2_, combo5_, combo6_, check1_})
        w->installEventFilter(this);
    combo5_->lineEdit()->installEventFilter(this);
    combo6_->lineEdit()->installEventFilter(this);
    label13_->installEventFilter(this);

    connect(text3_, &QLineEdit::textChanged, this, &HauptForm::Text3Change);
    connect(combo1_, &QComboBox::activated, this, &HauptForm::Combo1Click);
    connect(combo2_, &QComboBox::activated, this, &HauptForm::Combo2Click);
    connect(combo6_, &QComboBox::activated, this, &HauptForm::Combo6Click);
    connect(check1_, &QCheckBox::toggled, this, &HauptForm::Check1Click);
    connect(dupCommand1_, &QPushButton::clicked, this, &HauptForm::DupCommand1Click);
    for (QComboBox* c : {combo1_, combo2_, combo5_, combo6_}) {
        const int limit = ComboMaxLength(*FieldOf(c));
        SetComboMaxLength(c, limit, true);
        if (c->isEditable())
            connect(c, &QComboBox::editTextChanged, this, [c, limit] { SetComboMaxLength(c, limit, true); });
    }
    // The text gate: a paste cannot bring what a key may not, and each field is as long
    // as what the file stores of it.
    InstallFieldGate(text3_, TextField::Call);
    InstallFieldGate(text4_, TextField::RstGesendet);
    InstallFieldGate(text5_, TextField::RstEmpfangen);
    InstallFieldGate(text8_, TextField::Bemerkung);
    InstallFieldGate(combo5_, TextField::Bezirk);
    InstallFieldGate(combo6_, TextField::Operator);
    for (EntryField f : {EntryField::Text1, EntryField::Text2, EntryField::Text3, EntryField::Text4,
                         EntryField::Text5, EntryField::Combo1, EntryField::Combo2, EntryField::Combo5})
        PaintField(f, false);
    Check1Click();
    PaintDupeButton();
}

std::optional<EntryField> HauptForm::FieldOf(const QObject* o) const {
    if (!o) return std::nullopt;
    if (o == text1_) return EntryField::Text1;
    if (o == text2_) return EntryField::Text2;
    if (o == text3_) return EntryField::Text3;
    if (o == text4_) return EntryField::Text4;
    if (o == text5_) return EntryField::Text5;
    if (o == text8_) return EntryField::Text8;
    if (o == combo1_) return EntryField::Combo1;
    if (o == combo2_) return EntryField::Combo2;
    if (o == combo5_ || o == combo5_->lineEdit()) return EntryField::Combo5;
    if (o == combo6_ || o == combo6_->lineEdit()) return EntryField::Combo6;
    if (o == check1_) return EntryField::Check1;
    return std::nullopt;
}

QWidget* HauptForm::FieldWidget(EntryField f) const {
    switch (f) {
    case EntryField::Text1:
        return text1_;
    case EntryField::Text2:
        return text2_;
    case EntryField::Text3:
        return text3_;
    case EntryField::Text4:
        return text4_;
    case EntryField::Text5:
        return text5_;
    case EntryField::Text8:
        return text8_;
    case EntryField::Combo1:
        return combo1_;
    case EntryField::Combo2:
        return combo2_;
    case EntryField::Combo5:
        return combo5_;
    case EntryField::Combo6:
        return combo6_;
    case EntryField::Check1:
        return check1_;
    }
    return text3_;
}

// ---- Keys ----------------------------------------------------------------------------

bool HauptForm::WindowKeyDown(QKeyEvent* e) {
    const int state = ShiftStateOf(e->modifiers());
    Shift.KeyDown(state);
    if (!ClearsEntry(KeyCodeOf(e->key()), state)) return false;
    ResetEntry();
    return true;
}

bool HauptForm::FieldKeyPress(EntryField f, QKeyEvent* e) {
    if (e->key() == Qt::Key_Tab || e->key() == Qt::Key_Backtab) return FieldTab(f, e);
    const QChar key = KeyAsciiOf(e);
    if (key.isNull()) return false;
    const KeyAction a = FilterKeyPress(f, key, Shift.ShiftDown, m_.DateSeparator, m_.TimeSeparator);
    if (a.stopsTimer1) timer1_.stop();
    switch (a.kind) {
    case KeyAction::Type: {
        if (a.ch == key) return false; // the field types it itself
        QWidget* w = FieldWidget(f);
        QLineEdit* edit = qobject_cast<QLineEdit*>(w);
        if (auto* combo = qobject_cast<QComboBox*>(w)) edit = combo->lineEdit();
        if (edit && !edit->isReadOnly()) edit->insert(QString(a.ch));
        return true;
    }
    case KeyAction::Drop:
        return true;
    case KeyAction::Jump:
        FocusFromKeyboard(FieldWidget(a.target));
        return true;
    case KeyAction::Take:
        Uebernehmen();
        return true;
    case KeyAction::OperatorEnter:
        Combo6Enter();
        return true;
    }
    return false;
}

bool HauptForm::FieldTab(EntryField f, QKeyEvent* e) {
    const bool backwards = e->key() == Qt::Key_Backtab || (e->modifiers() & Qt::ShiftModifier);
    const std::optional<EntryField> target =
        TabTarget(f, backwards, lock_.FieldsLocked(), entryPanel_.picture4Visible);
    if (!target) return false; // the usual order
    FieldWidget(*target)->setFocus(backwards ? Qt::BacktabFocusReason : Qt::TabFocusReason);
    return true;
}

// ---- Focus ---------------------------------------------------------------------------

void HauptForm::PaintField(EntryField f, bool focused) {
    if (ShowsFocus(f)) SetBackColour(FieldWidget(f), FocusColour(f, focused, lock_));
}

void HauptForm::FieldGotFocus(EntryField f) {
    PaintField(f, true);
    if (SelectsAllOnFocus(f))
        if (auto* edit = qobject_cast<QLineEdit*>(FieldWidget(f))) edit->selectAll();
}

void HauptForm::FieldLostFocus(EntryField f) {
    if (f == EntryField::Text3)
        Text3LostFocus();
    else if (f == EntryField::Text2)
        Text2LostFocus();
    else
        PaintField(f, false);
}

// ---- The call field ------------------------------------------------------------------

std::optional<QTime> HauptForm::EntryTime() const {
    return m_.Formats.ParseTime(TrimBlanks(text2_->text()));
}

void HauptForm::ApplyCallCheck(const CallCheck& check) {
    if (check.found) combo5_->setEditText(check.bezirk);
    if (!check.isDupe) return;
    label10_->hide();
    ShowMessage(label13_, check.warning);
    ShowDupeButton();
}

void HauptForm::Text3Change() {
    label10_->hide();
    ClearMessage(label13_);
    const int rows = (m_.Open.DBLog && dbLogRows) ? dbLogRows() : 0;
    const CallChangeResult r =
        CallChange(m_, text3_->text(), BandOfText(combo1_->currentText()), combo2_->currentText(),
                   EntryTime(), OeCallListText, m_.Open.DBLog, rows);
    if (r.refreshDbLog) emit dbLogRefreshRequested();
    if (r.check) ApplyCallCheck(*r.check);
    if (r.clearDbLogList) emit dbLogClearRequested();
    if (r.label10) {
        label10_->setText(*r.label10);
        label10_->show();
    } else {
        label10_->hide();
    }
}

void HauptForm::Text3LostFocus() {
    if (const std::optional<CallCheck> c = CallLostFocus(
            m_, text3_->text(), BandOfText(combo1_->currentText()), combo2_->currentText(), EntryTime()))
        ApplyCallCheck(*c);
    PaintField(EntryField::Text3, false);
}

void HauptForm::Text2LostFocus() {
    if (const std::optional<QString> t = TimeLostFocus(text2_->text(), timer1_.isActive(), m_.TimeSeparator))
        text2_->setText(*t);
    PaintField(EntryField::Text2, false);
}

// ---- Band, mode, QSL -----------------------------------------------------------------

void HauptForm::Combo1Click() {
    const BandOrModeResult r = BandOrModeClick(m_, text3_->text(), BandOfText(combo1_->currentText()),
                                               combo2_->currentText(), EntryTime(), m_.Open.DBLog);
    if (r.refreshDbLog) emit dbLogRefreshRequested();
    if (m_.Open.Frequenz && frequenzFreqAlt) frequenzFreqAlt(combo1_->currentIndex());
    if (r.check) ApplyCallCheck(*r.check);
    text3_->setFocus(Qt::OtherFocusReason);
}

void HauptForm::Combo2Click() {
    const BandOrModeResult r = BandOrModeClick(m_, text3_->text(), BandOfText(combo1_->currentText()),
                                               combo2_->currentText(), EntryTime(), m_.Open.DBLog);
    if (r.refreshDbLog) emit dbLogRefreshRequested();
    SetReports(combo2_->currentIndex());
    if (m_.Open.Frequenz && frequenzSetMode) frequenzSetMode(combo2_->currentIndex());
    if (r.check) ApplyCallCheck(*r.check);
    text3_->setFocus(Qt::OtherFocusReason);
}

void HauptForm::Check1Click() {
    const CheckLook look = Check1Look(check1_->isChecked() ? 1 : 0);
    check1_->setText(look.caption);
    SetBackColour(check1_, look.backColour);
}

// ---- Operators -----------------------------------------------------------------------

QStringList HauptForm::Operators() const {
    QStringList calls;
    for (int i = 0; i < combo6_->count(); ++i)
        calls << combo6_->itemText(i);
    return calls;
}

void HauptForm::SetOperators(const QStringList& calls) {
    combo6Busy_ = true;
    combo6_->clear();
    combo6_->addItems(calls);
    if (!calls.isEmpty()) combo6_->setCurrentIndex(0);
    combo6Busy_ = false;
}

void HauptForm::Combo6Enter() {
    const QStringList calls = OperatorEnter(Operators(), combo6_->currentText());
    SetOperators(calls);
    StoreOperators(calls);
    SpeakValue(QStringLiteral("Operator"), combo6_);
}

void HauptForm::Combo6Click(int index) {
    if (combo6Busy_) return;
    SetOperators(OperatorPick(Operators(), index));
}

// ---- Dupe warning --------------------------------------------------------------------

void HauptForm::PaintDupeButton() {
    dupCommand1_->setEnabled(dupe_.enabled);
    SetBackColour(dupCommand1_, dupe_.backColour);
    ShowDupeState();
}

void HauptForm::ShowDupeButton() {
    dupe_.Show();
    timer2_.start();
    PaintDupeButton();
}

void HauptForm::DupCommand1Click() {
    dupe_.Dismiss();
    timer2_.stop();
    PaintDupeButton();
    text3_->setFocus(Qt::OtherFocusReason);
}

void HauptForm::Label13Click() {
    if (!dupe_.enabled) return;
    const bool emptyCombo5 = kolibrino::Label13Click(dupe_, combo5_->currentText());
    timer2_.stop();
    PaintDupeButton();
    text3_->setFocus(Qt::OtherFocusReason);
    if (emptyCombo5) {
        combo5_->setCurrentIndex(-1);
        combo5_->clearEditText();
    }
}

// ---- Menu entries of the entry -------------------------------------------------------

void HauptForm::MnCallVorgabe() {
    QAction* a = Action(QStringLiteral("MnCallVorgabe"));
    const CallVorgabeResult r = CallVorgabeClick(a->isChecked(), text3_->text());
    a->setChecked(r.checked);
    if (r.text3) text3_->setText(*r.text3);
    if (r.caret >= 0) text3_->setCursorPosition(r.caret);
}

void HauptForm::ApplyEntryPanel(const EntryPanelLayout& panel) {
    entryPanel_ = panel;
    picture4_->setVisible(panel.picture4Visible);
    Action(QStringLiteral("MnEingabe"))->setChecked(panel.checked);
}

void HauptForm::MnEingabe() {
    ApplyEntryPanel(EingabeClick(entryPanel_.picture3Height));
    text3_->setFocus(Qt::OtherFocusReason);
}

} // namespace kolibrino
