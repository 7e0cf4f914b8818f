#include "corrections/zeit_aendern.h"

#include "core/settings.h"
#include "corrections/bulk_change.h"
#include "entry/main_window.h"
#include "setup/modal.h"
#include "ui/field_gate.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

namespace kolibrino::corrections {
namespace {

QPushButton* Button(QWidget* parent, const char* name, const QString& caption, const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(tip);
    return b;
}

constexpr int kAsk = Msg::YesNoCancel | Msg::Question; // 35

} // namespace

ZeitAendern::ZeitAendern(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock)
    : QDialog(&main), main_(main), m_(m), dialogs_(dialogs), clock_(clock), copy_(m.LogRecords),
      grid_(m.Formats) {
    setObjectName(QStringLiteral("ZeitAendern"));
    setWindowTitle(QStringLiteral("Log nachträglich ändern"));
    Build();
    Option1Click(BulkKind::Stunden);
}

void ZeitAendern::Build() {
    auto* outer = new QVBoxLayout(this);
    controls_ = new QWidget(this);
    auto* top = new QGridLayout(controls_);
    for (int i = 0; i < 6; ++i) {
        option1_[size_t(i)] = new QRadioButton(BulkOptionCaption(i), controls_);
        option1_[size_t(i)]->setObjectName(QStringLiteral("Option1_%1").arg(i));
        top->addWidget(option1_[size_t(i)], i / 3, i % 3);
        connect(option1_[size_t(i)], &QRadioButton::clicked, this, [this, i] { Option1Click(i); });
    }
    label1_ = new QLabel(controls_);
    label1_->setObjectName(QStringLiteral("Label1"));
    label5_ = new QLabel(controls_);
    label5_->setObjectName(QStringLiteral("Label5"));
    combo1_ = new QComboBox(controls_);
    combo1_->setObjectName(QStringLiteral("Combo1"));
    combo1_->setEditable(true);
    combo1_->setInsertPolicy(QComboBox::NoInsert);
    combo1_->setCompleter(nullptr);
    label2_ = new QLabel(controls_);
    label2_->setObjectName(QStringLiteral("Label2"));
    top->addWidget(label1_, 2, 0);
    top->addWidget(label5_, 2, 1);
    top->addWidget(combo1_, 3, 0, 1, 2);
    top->addWidget(label2_, 3, 2);
    connect(combo1_, &QComboBox::editTextChanged, this, [this](const QString& t) {
        if (Kind() == BulkKind::Datum) label2_->setText(DateLabelText(m_, t));
    });

    check1_ = new QCheckBox(QStringLiteral("Nur &Teilbereich ändern"), controls_);
    check1_->setObjectName(QStringLiteral("Check1"));
    check1_->setToolTip(QStringLiteral("Ändert nur einen Teil des Log's"));
    connect(check1_, &QCheckBox::clicked, this, &ZeitAendern::Check1Click);
    top->addWidget(check1_, 4, 0, 1, 3);
    picture1_ = new QWidget(controls_);
    picture1_->setObjectName(QStringLiteral("Picture1"));
    auto* range = new QHBoxLayout(picture1_);
    command3_ = Button(picture1_, "Command3", QStringLiteral("Start"), QStringLiteral("Start-QSO auswählen"));
    command4_ = Button(picture1_, "Command4", QStringLiteral("Ende"), QStringLiteral("End-QSO auswählen"));
    label3_ = new QLabel(picture1_);
    label3_->setObjectName(QStringLiteral("Label3"));
    label3_->setToolTip(QStringLiteral("QSO an dem die Änderung beginnt"));
    label4_ = new QLabel(picture1_);
    label4_->setObjectName(QStringLiteral("Label4"));
    label4_->setToolTip(QStringLiteral("QSO an dem die Änderung endet"));
    range->addWidget(command3_);
    range->addWidget(label3_);
    range->addWidget(command4_);
    range->addWidget(label4_);
    picture1_->hide();
    top->addWidget(picture1_, 5, 0, 1, 3);
    connect(command3_, &QPushButton::clicked, this, [this] { SelectEntry(true); });
    connect(command4_, &QPushButton::clicked, this, [this] { SelectEntry(false); });

    auto* buttons = new QHBoxLayout;
    command2_ = Button(controls_, "Command2", QStringLiteral("&Übernehmen"),
                       QStringLiteral("Ausgewählte Änderungen durchführen"));
    command1_ = Button(controls_, "Command1", QStringLiteral("&Abbrechen"),
                       QStringLiteral("Abbrechen ohne die Änderungen zu speichern"));
    command6_ = Button(controls_, "Command6", QStringLiteral("S&peichern"),
                       QStringLiteral("Änderungen dauerhaft speichern"));
    command6_->setEnabled(false);
    command7_ = Button(controls_, "Command7", QStringLiteral("4"),
                       QStringLiteral("Log mit Änderungen anzeigen/ausblenden"));
    command7_->setFont(QFont(QStringLiteral("Marlett")));
    buttons->addWidget(command2_);
    buttons->addWidget(command6_);
    buttons->addWidget(command1_);
    buttons->addWidget(command7_);
    top->addLayout(buttons, 6, 0, 1, 3);
    connect(command2_, &QPushButton::clicked, this, &ZeitAendern::Command2Click);
    connect(command1_, &QPushButton::clicked, this, &ZeitAendern::Command1Click);
    connect(command6_, &QPushButton::clicked, this, &ZeitAendern::Command6Click);
    connect(command7_, &QPushButton::clicked, this, &ZeitAendern::Command7Click);
    outer->addWidget(controls_);

    picture2_ = new QWidget(this);
    picture2_->setObjectName(QStringLiteral("Picture2"));
    auto* sel = new QHBoxLayout(picture2_);
    command5_ = Button(picture2_, "Command5", QStringLiteral("&Abbrechen"), QString());
    sel->addStretch(1);
    sel->addWidget(command5_);
    picture2_->hide();
    connect(command5_, &QPushButton::clicked, this, &ZeitAendern::EndSelection);
    outer->addWidget(picture2_);

    grid1_ = new QTableView(this);
    grid1_->setObjectName(QStringLiteral("MSFlexGrid1"));
    grid1_->setModel(&grid_);
    grid1_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid1_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid1_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid1_->verticalHeader()->setVisible(false);
    for (int c = kGridFirstHidden; c < kGridColumns; ++c)
        grid1_->setColumnHidden(c, true);
    grid1_->hide();
    connect(grid1_, &QTableView::clicked, this, [this](const QModelIndex& i) { GridClick(i.row()); });
    outer->addWidget(grid1_, 1);
}

int ZeitAendern::ShowModal() {
    return setup::ExecModal(*this);
}

int ZeitAendern::Kind() const {
    for (int i = 0; i < 6; ++i)
        if (option1_[size_t(i)]->isChecked()) return i;
    return -1;
}

void ZeitAendern::Option1Click(int index) {
    option1_[size_t(index)]->setChecked(true);
    // An operator call passes the text gate at the keys, as long as the file stores it.
    if (index == BulkKind::OpCall)
        InstallFieldGate(combo1_, TextField::Operator);
    else
        RemoveFieldGate(combo1_);
    combo1_->clear();
    combo1_->addItems(BulkValues(index, LoadOperators(m_.IniPath)));
    combo1_->setCurrentIndex(index == BulkKind::Datum || index == BulkKind::OpCall ? -1 : 0);
    if (index == BulkKind::Datum || index == BulkKind::OpCall) combo1_->clearEditText();
    label1_->setText(BulkLabel(index));
    label5_->setText(BulkSecondLabel(index));
    label2_->setText(index == BulkKind::Datum ? DateLabelText(m_, combo1_->currentText()) : QString());
    label2_->setVisible(index == BulkKind::Datum);
}

void ZeitAendern::Check1Click() {
    if (check1_->isChecked()) {
        picture1_->show();
        dialogs_.MsgBox(QStringLiteral("Wähle das QSO bei dem die Änderungen beginnen sollen."),
                        Msg::Information);
        SelectEntry(true);
    } else {
        picture1_->hide();
    }
}

void ZeitAendern::FillGrid() {
    std::vector<GridRow> rows;
    rows.reserve(copy_.size());
    for (size_t i = 0; i < copy_.size(); ++i) {
        if (copy_[i].Status == Status::Deleted) continue;
        GridRow row = grid_.RowOfRecord(copy_[i]);
        row.cells[kGridColLaufNr] = QString::number(i); // the record number of this copy
        rows.push_back(std::move(row));
    }
    grid_.SetRows(std::move(rows));
}

void ZeitAendern::ShowGrid(bool on) {
    gridShown_ = on;
    if (on) FillGrid();
    grid1_->setVisible(on);
    command7_->setText(on ? QStringLiteral("3") : QStringLiteral("4"));
    adjustSize();
}

void ZeitAendern::SetControlsEnabled(bool on) {
    controls_->setEnabled(on);
}

void ZeitAendern::SelectEntry(bool start) {
    selecting_ = start ? Selecting::Start : Selecting::End;
    setWindowTitle(start ? QStringLiteral("Wähle das Start-QSO") : QStringLiteral("Wähle das End-QSO"));
    if (!gridShown_) ShowGrid(true);
    SetControlsEnabled(false);
    picture2_->show();
}

void ZeitAendern::EndSelection() {
    selecting_ = Selecting::None;
    setWindowTitle(QStringLiteral("Log nachträglich ändern"));
    picture2_->hide();
    SetControlsEnabled(true);
    command6_->setEnabled(changesMade_);
}

void ZeitAendern::GridClick(int row) {
    if (selecting_ == Selecting::None || row < 0) return;
    const QString number = grid_.Text(row, kGridColLaufNr);
    if (selecting_ == Selecting::Start) {
        label3_->setText(number);
        if (check1_->isChecked() && label4_->text().isEmpty()) {
            dialogs_.MsgBox(
                QStringLiteral("Wähle jetzt das QSO bis zu dem die Änderungen durchgeführt werden sollen."),
                Msg::Information);
            SelectEntry(false);
            return;
        }
    } else {
        label4_->setText(number);
    }
    EndSelection();
}

void ZeitAendern::Command2Click() {
    const QString v = combo1_->currentText().trimmed().toUpper();
    if (v.isEmpty()) {
        dialogs_.MsgBox(QStringLiteral("Bitte einen gültigen Wert eingeben!"), Msg::Information);
        combo1_->setFocus();
        return;
    }
    int first = 0;
    int last = int(copy_.size()) - 1;
    if (check1_->isChecked()) {
        if (label3_->text().isEmpty()) {
            dialogs_.MsgBox(QStringLiteral("Start-QSO auswählen!"), Msg::Information);
            SelectEntry(true);
            return;
        }
        if (label4_->text().isEmpty()) {
            dialogs_.MsgBox(QStringLiteral("End-QSO auswählen!"), Msg::Information);
            SelectEntry(false);
            return;
        }
        first = label3_->text().toInt();
        last = label4_->text().toInt();
        if (last < first) {
            dialogs_.MsgBox(QStringLiteral("Start-QSO-Nummer muss kleiner sein als End-QSO-Nummer"),
                            Msg::Critical);
            return;
        }
    }
    if (dialogs_.MsgBox(QStringLiteral("Möchtest du die Änderungen wirklich übernehmen?"), kAsk) != Msg::Yes)
        return;
    {
        BusyScope busy(dialogs_);
        const int kind = Kind();
        if (const auto failure = ApplyBulkChange(m_, copy_, kind, v, label2_->text(), first, last)) {
            dialogs_.MsgBox(failure->message, failure->flags);
            combo1_->setFocus();
            return;
        }
        if (kind == BulkKind::Stunden || kind == BulkKind::Minuten) combo1_->setEditText(QStringLiteral("0"));
        changesMade_ = true;
        command6_->setEnabled(true);
        if (gridShown_) FillGrid();
    }
    dialogs_.MsgBox(kMsgBulkFertig, Msg::Information);
}

void ZeitAendern::Command1Click() {
    if (command6_->isEnabled() &&
        dialogs_.MsgBox(QStringLiteral("Möchtest du das Fenster wirklich schließen ohne zu speichern?"),
                        kAsk) != Msg::Yes)
        return;
    closing_ = true;
    QDialog::reject();
}

void ZeitAendern::reject() {
    if (closing_) {
        QDialog::reject();
        return;
    }
    Command1Click(); // Escape and the window's close button ask as "&Abbrechen" does
}

void ZeitAendern::Command6Click() {
    const int answer =
        dialogs_.MsgBox(QStringLiteral("Möchtest du die Änderungen wirklich speichern?\n\nDie "
                                       "Änderungen können dann nicht mehr rückgängig gemacht werden!"),
                        kAsk);
    if (answer != Msg::Yes) return;
    const BulkSave saved = SaveBulkChange(m_, dialogs_, copy_, clock_.Now().date().year());
    if (saved == BulkSave::WriteCancelled) return; // the copy stays; a later save may work
    if (saved == BulkSave::ReadBackFailed) {
        closing_ = true;
        QDialog::reject();
        main_.close();
        QCoreApplication::exit(1);
        return;
    }
    main_.DatenInGrid1Neu();
    if (m_.Open.Frequenz && main_.frequenzFreqAlt) {
        if (auto* band = main_.findChild<QComboBox*>(QStringLiteral("Combo1")))
            main_.frequenzFreqAlt(band->currentIndex());
    }
    // The file holds the whole log now; every companion window shows data derived
    // from the log read back.
    main_.SetFileUpToDate(true);
    if (m_.Open.Statistik) emit main_.statistikRefreshRequested();
    if (m_.Open.BZKarte) emit main_.bzKarteRefreshRequested();
    if (m_.Open.GridKarte) emit main_.gridKarteRefreshRequested();
    if (m_.Open.LogTracker) emit main_.trackerRefreshRequested();
    if (m_.Open.DBLog) emit main_.dbLogRefreshRequested();
    changesMade_ = false;
    command6_->setEnabled(false);
    closing_ = true;
    accept();
}

void ZeitAendern::Command7Click() {
    ShowGrid(!gridShown_);
}

void MnLogExportierenDatumZeit(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock) {
    ZeitAendern window(main, m, dialogs, clock);
    window.ShowModal();
}

} // namespace kolibrino::corrections
