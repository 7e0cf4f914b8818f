#include "setup/station_log.h"

#include "setup/setup_widgets.h"
#include "ui/combo_max_length.h"
#include "ui/field_gate.h"
#include "ui/keyboard_focus.h"

#include <QAbstractTextDocumentLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBlock>
#include <QTextLayout>
#include <QVBoxLayout>

namespace kolibrino::setup {
namespace {

QLineEdit* Edit(const QString& name, int maxLength, QWidget* parent) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    e->setMaxLength(maxLength);
    return e;
}

QPlainTextEdit* Memo(const QString& name, QWidget* parent) {
    auto* e = new QPlainTextEdit(parent);
    e->setObjectName(name);
    e->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    e->setTabChangesFocus(true);
    // The width limit of the field.
    QObject::connect(e, &QPlainTextEdit::textChanged, e, [e] {
        const QString t = e->toPlainText();
        if (t.size() > kMemoMax) e->setPlainText(t.left(kMemoMax));
    });
    return e;
}

// A group of option buttons named <name>_<index>.
QButtonGroup* Options(const QString& name, const QStringList& captions, QWidget* parent, QBoxLayout* layout) {
    auto* group = new QButtonGroup(parent);
    group->setObjectName(name);
    for (int i = 0; i < captions.size(); ++i) {
        auto* b = new QRadioButton(captions[i], parent);
        b->setObjectName(QStringLiteral("%1_%2").arg(name).arg(i));
        group->addButton(b, i);
        layout->addWidget(b);
    }
    group->button(0)->setChecked(true);
    return group;
}

QLabel* Caption(const QString& text, QWidget* buddy, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setBuddy(buddy);
    return l;
}

QString ForControl(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
}

} // namespace

QStringList DisplayedLines(QPlainTextEdit* edit) {
    // A hidden box has no width to wrap at: its lines are its paragraphs.
    if (!edit->isVisible()) return edit->toPlainText().split(QLatin1Char('\n'));
    QStringList lines;
    QTextDocument* doc = edit->document();
    for (QTextBlock b = doc->begin(); b.isValid(); b = b.next()) {
        doc->documentLayout()->blockBoundingRect(b); // lays the block out
        const QString text = b.text();
        QTextLayout* layout = b.layout();
        if (!layout || layout->lineCount() == 0) {
            lines << text;
            continue;
        }
        for (int i = 0; i < layout->lineCount(); ++i) {
            const QTextLine line = layout->lineAt(i);
            lines << text.mid(line.textStart(), line.textLength());
        }
    }
    return lines;
}

StationLog::StationLog(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks,
                       StationMode mode, QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs), clock_(clock), hooks_(hooks), mode_(mode),
      nameBefore_(m.CurrentLogName) {
    setObjectName(QStringLiteral("StationLog"));
    setWindowTitle(QStringLiteral("Contest-Einstellungen"));
    setModal(true);

    QWidget* mandatory = BuildMandatory();
    QWidget* optional = BuildOptional();

    command13_ =
        Button(QStringLiteral("Daten aus letztem Log importieren"), QStringLiteral("Command13"), this);
    command2_ = Button(QStringLiteral("&Speichern"), QStringLiteral("Command2"), this);
    command4_ = Button(QStringLiteral("&Speichern"), QStringLiteral("Command4"), this);
    command1_ = Button(QStringLiteral("&Abbrechen"), QStringLiteral("Command1"), this);
    for (QPushButton* b : {command2_, command4_, command1_})
        b->setMinimumWidth(110);
    connect(command13_, &QPushButton::clicked, this, &StationLog::Import);
    connect(command2_, &QPushButton::clicked, this, &StationLog::SaveClicked);
    connect(command4_, &QPushButton::clicked, this, &StationLog::SaveClicked);
    connect(command1_, &QPushButton::clicked, this, &StationLog::reject);
    command13_->hide();

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(command13_);
    buttons->addStretch();
    buttons->addWidget(command2_);
    buttons->addWidget(command4_);
    buttons->addWidget(command1_);

    auto* columns = new QHBoxLayout;
    columns->addWidget(mandatory, 1);
    columns->addWidget(optional, 1);
    auto* main = new QVBoxLayout(this);
    main->addLayout(columns, 1);
    main->addLayout(buttons);

    BuildListEditor();

    // Load.
    combo1_->addItems(DistrictRows(m_));
    combo1_->setCurrentIndex(-1);
    combo2_->addItems(DayRows());
    combo2_->setCurrentIndex(-1);
    combo3_->addItems(MonthNames(m_.Formats.Locale()));
    combo3_->setCurrentIndex(-1);
    combo4_->addItems(YearRows(clock_));
    combo4_->setCurrentIndex(-1);
    const StationForm loaded = LoadForm(m_);
    combo5_->addItems(loaded.combo5Rows);
    combo5_->setCurrentIndex(-1);
    combo5_->setEditText(QString());
    option5_->button(loaded.option5)->setChecked(true);

    if (mode_ == StationMode::NewLog) {
        command4_->hide();
    } else {
        command2_->hide();
        command4_->show();
        command3_->setEnabled(false);
        label10_->setEnabled(false);
        label10_->setText(m_.CurrentLogName);
        label10_->setToolTip(m_.CurrentLogName);
    }
    resize(1000, 660);
    SelectAllOnKeyboardFocus(this);
}

QWidget* StationLog::BuildMandatory() {
    frame1_ = new QGroupBox(QStringLiteral("Pflichtfelder"), this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    auto* grid = new QGridLayout(frame1_);

    text1_ = Edit(QStringLiteral("Text1"), kCallMax, frame1_);
    new KeyFilter(KeyFilter::Kind::Call, text1_);
    combo5_ = new QComboBox(frame1_);
    combo5_->setObjectName(QStringLiteral("Combo5"));
    combo5_->setEditable(true);
    combo5_->setInsertPolicy(QComboBox::NoInsert);
    SetComboMaxLength(combo5_, kCallMax, true);
    connect(combo5_, &QComboBox::editTextChanged, this,
            [this] { SetComboMaxLength(combo5_, kCallMax, true); });
    new KeyFilter(KeyFilter::Kind::Call, combo5_);
    InstallFieldGate(text1_, TextField::MyCall);
    InstallFieldGate(combo5_, TextField::MyOpCall);
    command5_ = Button(QStringLiteral("\u2630"), QStringLiteral("Command5"), frame1_);
    command5_->setToolTip(QStringLiteral("Operatorrufzeichenliste bearbeiten"));
    command5_->setFixedWidth(32);
    connect(command5_, &QPushButton::clicked, this, &StationLog::OpenListEditor);

    auto* opRow = new QHBoxLayout;
    opRow->addWidget(combo5_, 1);
    opRow->addWidget(command5_);
    grid->addWidget(Caption(QStringLiteral("Stationsrufzeichen"), text1_, frame1_), 0, 0);
    grid->addWidget(Caption(QStringLiteral("Operatorrufzeichen"), combo5_, frame1_), 0, 1);
    grid->addWidget(text1_, 1, 0);
    grid->addLayout(opRow, 1, 1);

    combo1_ = new QComboBox(frame1_);
    combo1_->setObjectName(QStringLiteral("Combo1"));
    combo1_->setMaxVisibleItems(20);
    // A list popup that keeps to its twenty rows, not one at the height of the screen.
    combo1_->setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
    grid->addWidget(Caption(QStringLiteral("Eigener Bezirkskenner"), combo1_, frame1_), 2, 0, 1, 2);
    grid->addWidget(combo1_, 3, 0, 1, 2);

    auto* frame3 = new QGroupBox(frame1_);
    frame3->setObjectName(QStringLiteral("Frame3"));
    auto* f3 = new QHBoxLayout(frame3);
    option1_ = Options(QStringLiteral("Option1"), {QStringLiteral("OM"), QStringLiteral("YL")}, frame3, f3);
    f3->addStretch();
    auto* frame6 = new QGroupBox(frame1_);
    frame6->setObjectName(QStringLiteral("Frame6"));
    auto* f6 = new QHBoxLayout(frame6);
    option4_ = Options(QStringLiteral("Option4"),
                       {QStringLiteral("Single-OP"), QStringLiteral("Multi-OP"), QStringLiteral("Checklog")},
                       frame6, f6);
    grid->addWidget(frame3, 4, 0);
    grid->addWidget(frame6, 4, 1);

    auto* frameW = new QGroupBox(QStringLiteral("Wertungsklasse"), frame1_);
    frameW->setObjectName(QStringLiteral("Frame4"));
    auto* fw = new QVBoxLayout(frameW);
    option2_ = Options(QStringLiteral("Option2"),
                       {QStringLiteral("SSB"), QStringLiteral("MIX"), QStringLiteral("CW"),
                        QStringLiteral("Newcomer"), QStringLiteral("Staatsfunkstelle")},
                       frameW, fw);
    connect(option2_, &QButtonGroup::idClicked, this, [this](int id) { frame5_->setVisible(id == 3); });
    auto* frameL = new QGroupBox(QStringLiteral("Leistungsklasse"), frame1_);
    frameL->setObjectName(QStringLiteral("Frame8"));
    auto* fl = new QVBoxLayout(frameL);
    option3_ =
        Options(QStringLiteral("Option3"),
                {QStringLiteral("Low-Power (max. 100 Watt)"), QStringLiteral("High-Power (über 100 Watt)")},
                frameL, fl);
    fl->addStretch();
    grid->addWidget(frameW, 5, 0);
    grid->addWidget(frameL, 5, 1);

    frame5_ = new QGroupBox(QStringLiteral("Datum der Lizenzprüfung (max. vor 3 Jahren)"), frame1_);
    frame5_->setObjectName(QStringLiteral("Frame5"));
    auto* f5 = new QGridLayout(frame5_);
    combo2_ = new QComboBox(frame5_);
    combo2_->setObjectName(QStringLiteral("Combo2"));
    combo3_ = new QComboBox(frame5_);
    combo3_->setObjectName(QStringLiteral("Combo3"));
    combo4_ = new QComboBox(frame5_);
    combo4_->setObjectName(QStringLiteral("Combo4"));
    f5->addWidget(Caption(QStringLiteral("Tag"), combo2_, frame5_), 0, 0);
    f5->addWidget(Caption(QStringLiteral("Monat"), combo3_, frame5_), 0, 1);
    f5->addWidget(Caption(QStringLiteral("Jahr"), combo4_, frame5_), 0, 2);
    f5->addWidget(combo2_, 1, 0);
    f5->addWidget(combo3_, 1, 1);
    f5->addWidget(combo4_, 1, 2);
    f5->setColumnStretch(1, 1);
    frame5_->hide();
    grid->addWidget(frame5_, 6, 0, 1, 2);

    auto* frameN = new QGroupBox(frame1_);
    frameN->setObjectName(QStringLiteral("Frame9"));
    auto* fn = new QHBoxLayout(frameN);
    auto* npower = new QVBoxLayout;
    option5_ =
        Options(QStringLiteral("Option5"), {QStringLiteral("Nein"), QStringLiteral("Ja")}, frameN, npower);
    npower->addStretch();
    connect(option5_, &QButtonGroup::idClicked, this, [this](int id) {
        StationForm f;
        ClickOption5(m_, f, id);
    });
    auto* label14 = new QLabel(EmergencyPowerText(), frameN);
    label14->setObjectName(QStringLiteral("Label14"));
    label14->setWordWrap(true);
    fn->addLayout(npower);
    fn->addWidget(label14, 1);
    grid->addWidget(frameN, 7, 0, 1, 2);

    label10_ = new ClickLabel(frame1_);
    label10_->setObjectName(QStringLiteral("Label10"));
    label10_->SetElided(true); // a long name never widens the window
    connect(label10_, &ClickLabel::clicked, this, &StationLog::ChooseName);
    command3_ = Button(QStringLiteral("..."), QStringLiteral("Command3"), frame1_);
    command3_->setFixedWidth(32);
    connect(command3_, &QPushButton::clicked, this, &StationLog::ChooseName);
    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(label10_, 1);
    nameRow->addWidget(command3_);
    grid->addWidget(new QLabel(QStringLiteral("Name der Logdatei"), frame1_), 8, 0, 1, 2);
    grid->addLayout(nameRow, 9, 0, 1, 2);
    grid->setRowStretch(10, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return frame1_;
}

QWidget* StationLog::BuildOptional() {
    frame2_ = new QGroupBox(QStringLiteral("Optionale Angaben"), this);
    frame2_->setObjectName(QStringLiteral("Frame2"));
    auto* grid = new QGridLayout(frame2_);
    text3_ = Edit(QStringLiteral("Text3"), kLocatorMax, frame2_);
    new KeyFilter(KeyFilter::Kind::Locator, text3_);
    text3_->setMaximumWidth(110);
    text4_ = Edit(QStringLiteral("Text4"), kNameMax, frame2_);
    text5_ = Edit(QStringLiteral("Text5"), kNameMax, frame2_);
    text9_ = Edit(QStringLiteral("Text9"), kPlzMax, frame2_);
    text9_->setMaximumWidth(110);
    text10_ = Edit(QStringLiteral("Text10"), kNameMax, frame2_);
    text6_ = Edit(QStringLiteral("Text6"), kEmailMax, frame2_);
    // The text gate at the keys: a paste cannot bring what the file cannot hold.
    InstallFieldGate(text3_, TextField::MyLocator);
    InstallFieldGate(text4_, TextField::MyOpName);
    InstallFieldGate(text5_, TextField::MyAdress);
    InstallFieldGate(text9_, TextField::MyPlz);
    InstallFieldGate(text10_, TextField::MyCity);
    InstallFieldGate(text6_, TextField::MyEmail);
    text7_ = Memo(QStringLiteral("Text7"), frame2_);
    text8_ = Memo(QStringLiteral("Text8"), frame2_);

    grid->addWidget(Caption(QStringLiteral("eigener Locator"), text3_, frame2_), 0, 0);
    grid->addWidget(Caption(QStringLiteral("Name"), text4_, frame2_), 0, 1);
    grid->addWidget(text3_, 1, 0);
    grid->addWidget(text4_, 1, 1);
    grid->addWidget(Caption(QStringLiteral("Adresse"), text5_, frame2_), 2, 0, 1, 2);
    grid->addWidget(text5_, 3, 0, 1, 2);
    grid->addWidget(Caption(QStringLiteral("PLZ"), text9_, frame2_), 4, 0);
    grid->addWidget(Caption(QStringLiteral("Ort"), text10_, frame2_), 4, 1);
    grid->addWidget(text9_, 5, 0);
    grid->addWidget(text10_, 5, 1);
    grid->addWidget(
        Caption(QStringLiteral("Email Adresse (Bitte angeben zwecks Rückfragen)"), text6_, frame2_), 6, 0, 1,
        2);
    grid->addWidget(text6_, 7, 0, 1, 2);
    grid->addWidget(Caption(QStringLiteral("Stationsbeschreibung"), text7_, frame2_), 8, 0, 1, 2);
    grid->addWidget(text7_, 9, 0, 1, 2);
    grid->addWidget(Caption(QStringLiteral("Kommentar"), text8_, frame2_), 10, 0, 1, 2);
    grid->addWidget(text8_, 11, 0, 1, 2);
    grid->setRowStretch(9, 1);
    grid->setRowStretch(11, 1);
    grid->setColumnStretch(1, 1);
    return frame2_;
}

void StationLog::BuildListEditor() {
    frame7_ = new QGroupBox(QStringLiteral("Operatorrufzeichenliste bearbeiten..."), this);
    frame7_->setObjectName(QStringLiteral("Frame7"));
    frame7_->setAutoFillBackground(true);
    // It lies over the form: a clear edge and a title bar set it apart.
    frame7_->setStyleSheet(QStringLiteral(
        "QGroupBox#Frame7 { border: 2px solid palette(dark); border-radius: 3px; margin-top: 22px;"
        " background: palette(window); padding-top: 6px; }"
        "QGroupBox#Frame7::title { subcontrol-origin: margin; subcontrol-position: top left; left: 0px;"
        " padding: 3px 8px; background: palette(highlight); color: palette(highlighted-text); }"));
    list1_ = new QListWidget(frame7_);
    list1_->setObjectName(QStringLiteral("List1"));
    list1_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    connect(list1_, &QListWidget::itemDoubleClicked, this, [this] { ListEdit(); });
    auto* command10 = Button(QStringLiteral("&Neu"), QStringLiteral("Command10"), frame7_);
    auto* command9 = Button(QStringLiteral("&Bearbeiten"), QStringLiteral("Command9"), frame7_);
    auto* command8 = Button(QStringLiteral("&Löschen"), QStringLiteral("Command8"), frame7_);
    auto* command7 = Button(QStringLiteral("&OK"), QStringLiteral("Command7"), frame7_);
    auto* command6 = Button(QStringLiteral("&Abbrechen"), QStringLiteral("Command6"), frame7_);
    connect(command10, &QPushButton::clicked, this, &StationLog::ListNew);
    connect(command9, &QPushButton::clicked, this, &StationLog::ListEdit);
    connect(command8, &QPushButton::clicked, this, &StationLog::ListDelete);
    connect(command7, &QPushButton::clicked, this, &StationLog::ListOk);
    connect(command6, &QPushButton::clicked, this, &StationLog::ListCancel);
    auto* side = new QVBoxLayout;
    side->addWidget(command10);
    side->addWidget(command9);
    side->addWidget(command8);
    side->addStretch();
    side->addWidget(command7);
    side->addWidget(command6);
    auto* layout = new QHBoxLayout(frame7_);
    layout->addWidget(list1_, 1);
    layout->addLayout(side);
    frame7_->hide();

    picture7_ = new QFrame(this);
    picture7_->setObjectName(QStringLiteral("Picture7"));
    picture7_->setFrameShape(QFrame::Box);
    picture7_->setLineWidth(2);
    picture7_->setAutoFillBackground(true);
    text2_ = Edit(QStringLiteral("Text2"), kCallMax, picture7_);
    new KeyFilter(KeyFilter::Kind::Call, text2_, [this] { ListTakeOver(); });
    InstallFieldGate(text2_, TextField::Operator);
    auto* command11 = Button(QStringLiteral("Übernehmen"), QStringLiteral("Command11"), picture7_);
    auto* command12 = Button(QStringLiteral("Abbrechen"), QStringLiteral("Command12"), picture7_);
    connect(command11, &QPushButton::clicked, this, &StationLog::ListTakeOver);
    connect(command12, &QPushButton::clicked, this, &StationLog::ListLeaveEntry);
    auto* p7 = new QGridLayout(picture7_);
    p7->addWidget(new QLabel(QStringLiteral("Operatorrufzeichen"), picture7_), 0, 0, 1, 2);
    p7->addWidget(text2_, 1, 0, 1, 2);
    p7->addWidget(command11, 2, 0);
    p7->addWidget(command12, 2, 1);
    picture7_->hide();
}

void StationLog::PlaceOverlays() {
    const QSize f7(380, 300);
    frame7_->setGeometry((width() - f7.width()) / 2, (height() - f7.height()) / 2, f7.width(), f7.height());
    const QSize p7(300, 110);
    picture7_->setGeometry((width() - p7.width()) / 2, (height() - p7.height()) / 2 + 20, p7.width(),
                           p7.height());
}

void StationLog::resizeEvent(QResizeEvent* e) {
    QDialog::resizeEvent(e);
    PlaceOverlays();
}

void StationLog::SetImportVisible(bool visible) {
    command13_->setVisible(visible && mode_ == StationMode::NewLog);
}

void StationLog::SetLogManager(std::function<void(const QString&)> tell) {
    manager_ = std::move(tell);
}

void StationLog::FillFromLog() {
    StationForm f = ReadForm();
    FillFromHeader(m_, clock_, f);
    ApplyForm(f);
}

StationForm StationLog::ReadForm() const {
    StationForm f;
    f.text1 = text1_->text();
    f.combo5Text = combo5_->currentText();
    for (int i = 0; i < combo5_->count(); ++i)
        f.combo5Rows << combo5_->itemText(i);
    f.text3 = text3_->text();
    f.combo1Text = combo1_->currentIndex() < 0 ? QString() : combo1_->currentText();
    f.option1 = option1_->checkedId();
    f.option4 = option4_->checkedId();
    f.option2 = option2_->checkedId();
    f.option3 = option3_->checkedId();
    f.option5 = option5_->checkedId();
    f.frame5Visible = !frame5_->isHidden();
    f.combo2Text = combo2_->currentIndex() < 0 ? QString() : combo2_->currentText();
    f.combo3Index = combo3_->currentIndex();
    f.combo4Text = combo4_->currentIndex() < 0 ? QString() : combo4_->currentText();
    f.text4 = text4_->text();
    f.text5 = text5_->text();
    f.text9 = text9_->text();
    f.text10 = text10_->text();
    f.text6 = text6_->text();
    f.text7Lines = DisplayedLines(text7_);
    f.text8Lines = DisplayedLines(text8_);
    f.text7 = text7_->toPlainText();
    f.text8 = text8_->toPlainText();
    f.label10 = label10_->text();
    return f;
}

void StationLog::ApplyForm(const StationForm& f) {
    text1_->setText(f.text1);
    combo5_->clear();
    combo5_->addItems(f.combo5Rows);
    combo5_->setCurrentIndex(-1);
    combo5_->setEditText(f.combo5Text);
    text3_->setText(f.text3);
    combo1_->setCurrentIndex(f.combo1Text.isEmpty() ? -1 : combo1_->findText(f.combo1Text));
    auto check = [](QButtonGroup* g, int id) {
        if (QAbstractButton* b = g->button(id)) b->setChecked(true);
    };
    check(option1_, f.option1);
    check(option4_, f.option4);
    check(option2_, f.option2);
    check(option3_, f.option3);
    check(option5_, f.option5);
    frame5_->setVisible(f.frame5Visible);
    combo2_->setCurrentIndex(f.combo2Text.isEmpty() ? -1 : combo2_->findText(f.combo2Text));
    combo3_->setCurrentIndex(f.combo3Index);
    combo4_->setCurrentIndex(f.combo4Text.isEmpty() ? -1 : combo4_->findText(f.combo4Text));
    text4_->setText(f.text4);
    text5_->setText(f.text5);
    text9_->setText(f.text9);
    text10_->setText(f.text10);
    text6_->setText(f.text6);
    if (text7_->toPlainText() != ForControl(f.text7)) text7_->setPlainText(ForControl(f.text7));
    if (text8_->toPlainText() != ForControl(f.text8)) text8_->setPlainText(ForControl(f.text8));
    label10_->setText(f.label10);
    label10_->setToolTip(f.label10);
}

void StationLog::ApplyFocus(Focus focus) {
    switch (focus) {
    case Focus::Text1:
        text1_->setFocus();
        break;
    case Focus::Option2State:
        option2_->button(4)->setFocus();
        break;
    case Focus::Combo5:
        combo5_->setFocus();
        break;
    case Focus::Combo1:
        combo1_->setFocus();
        break;
    case Focus::Text6:
        text6_->setFocus();
        break;
    case Focus::None:
        break;
    }
}

void StationLog::SaveClicked() {
    StationForm f = ReadForm();
    Focus focus = Focus::None;
    if (!Validate(m_, dialogs_, clock_, f, &focus)) {
        label10_->setText(f.label10);
        label10_->setToolTip(f.label10);
        ApplyFocus(focus);
        return;
    }
    if (!Save(m_, dialogs_, clock_, hooks_, f, mode_, bool(manager_))) {
        ApplyForm(f);
        return;
    }
    ApplyForm(f);
    if (mode_ == StationMode::NewLog && manager_) manager_(m_.CurrentLogName);
    saved_ = true;
    accept();
}

void StationLog::ChooseName() {
    StationForm f = ReadForm();
    const Focus focus = ChooseFileName(m_, dialogs_, clock_, f);
    label10_->setText(f.label10);
    label10_->setToolTip(f.label10);
    ApplyFocus(focus);
}

void StationLog::Import() {
    StationForm f = ReadForm();
    ImportLastLog(m_, dialogs_, f);
    ApplyForm(f);
}

void StationLog::SetEditorOpen(bool open) {
    frame1_->setEnabled(!open);
    frame2_->setEnabled(!open);
    command2_->setEnabled(!open);
    command4_->setEnabled(!open);
    if (open) {
        command3_->setEnabled(false);
        label10_->setEnabled(false);
    } else if (manager_) {
        command3_->setEnabled(true);
        label10_->setEnabled(true);
    }
    PlaceOverlays();
    frame7_->setVisible(open);
    if (open) frame7_->raise();
}

void StationLog::OpenListEditor() {
    list1_->clear();
    for (int i = 0; i < combo5_->count(); ++i)
        list1_->addItem(combo5_->itemText(i));
    SetEditorOpen(true);
}

void StationLog::ListNew() {
    QStringList rows;
    for (int i = 0; i < list1_->count(); ++i)
        rows << list1_->item(i)->text();
    if (!OperatorListMayAdd(dialogs_, rows)) return;
    editIndex_ = -1;
    text2_->clear();
    frame7_->setEnabled(false);
    picture7_->show();
    picture7_->raise();
    text2_->setFocus();
}

void StationLog::ListEdit() {
    int row = list1_->currentRow();
    if (row < 0 || !list1_->item(row)->isSelected()) {
        row = -1;
        for (int i = 0; i < list1_->count(); ++i)
            if (list1_->item(i)->isSelected()) {
                row = i;
                break;
            }
    }
    if (row < 0) {
        dialogs_.MsgBox(QStringLiteral("Kein Rufzeichen ausgewählt!"), Msg::Information);
        list1_->setFocus();
        return;
    }
    text2_->setText(list1_->item(row)->text());
    editIndex_ = row;
    frame7_->setEnabled(false);
    picture7_->show();
    picture7_->raise();
    text2_->selectAll();
    text2_->setFocus();
}

void StationLog::ListDelete() {
    QStringList rows;
    QList<int> selected;
    for (int i = 0; i < list1_->count(); ++i) {
        rows << list1_->item(i)->text();
        if (list1_->item(i)->isSelected()) selected << i;
    }
    const QStringList left = OperatorListDelete(dialogs_, rows, selected);
    if (left == rows) return;
    list1_->clear();
    list1_->addItems(left);
}

void StationLog::ListTakeOver() {
    QStringList rows;
    for (int i = 0; i < list1_->count(); ++i)
        rows << list1_->item(i)->text();
    if (!OperatorListTakeOver(dialogs_, rows, editIndex_, text2_->text())) {
        text2_->setFocus();
        return;
    }
    list1_->clear();
    list1_->addItems(rows);
    ListLeaveEntry();
}

void StationLog::ListLeaveEntry() {
    picture7_->hide();
    frame7_->setEnabled(true);
}

void StationLog::ListOk() {
    combo5_->clear(); // the typed text goes with the list
    for (int i = 0; i < list1_->count(); ++i)
        combo5_->addItem(list1_->item(i)->text());
    combo5_->setCurrentIndex(-1);
    combo5_->setEditText(QString());
    ListCancel();
}

void StationLog::ListCancel() {
    picture7_->hide();
    SetEditorOpen(false);
}

void StationLog::reject() {
    // A name chosen for a new log that was then not saved is dropped again.
    if (mode_ == StationMode::NewLog && !saved_) m_.CurrentLogName = nameBefore_;
    QDialog::reject();
}

} // namespace kolibrino::setup
