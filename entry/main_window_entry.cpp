// The entry area of the main window and the logging of one contact: the window reads
// its fields, the logic in qso_entry decides and records, the window shows the result.
#include "core/backup.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"
#include "ui/back_colour.h"
#include "ui/combo_max_length.h"
#include "entry/spoken_texts.h"
#include "ui/spoken.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kolibrino {
namespace {

QFont EntryFont() {
    QFont f(QStringLiteral("Liberation Sans"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSize(13);
    return f;
}

QLineEdit* MakeText(QWidget* parent, const char* name, const QString& tip, const QString& initial,
                    const QFont& font, const QString& widthSample) {
    auto* e = new QLineEdit(initial, parent);
    e->setObjectName(QString::fromLatin1(name));
    e->setToolTip(tip);
    e->setFont(font);
    e->setMinimumWidth(QFontMetrics(font).horizontalAdvance(widthSample) + 16);
    return e;
}

QComboBox* MakeCombo(QWidget* parent, const char* name, const QString& tip, const QFont* font,
                     bool editable) {
    auto* c = new QComboBox(parent);
    c->setObjectName(QString::fromLatin1(name));
    c->setToolTip(tip);
    if (font) c->setFont(*font);
    c->setEditable(editable);
    if (editable) {
        // No completion: "W" and Enter must stay "W", never become a code from the list.
        c->setInsertPolicy(QComboBox::NoInsert);
        c->setCompleter(nullptr);
    }
    return c;
}

QLabel* Caption(QWidget* parent, const QString& text, QWidget* buddy) {
    auto* l = new QLabel(text, parent);
    l->setBuddy(buddy);
    QFont f = l->font();
    f.setPointSizeF(f.pointSizeF() * 0.9);
    l->setFont(f);
    l->setStyleSheet(QStringLiteral("color: #404040;"));
    return l;
}

} // namespace

void HauptForm::BuildEntryArea(QWidget* host) {
    const QFont font = EntryFont();
    auto* outer = new QVBoxLayout;
    outer->setContentsMargins(6, 4, 6, 2);
    outer->setSpacing(2);

    // The main panel: one line of fields, the station box at its right.
    picture3_ = new QWidget(host);
    picture3_->setObjectName(QStringLiteral("Picture3"));
    auto* line = new QHBoxLayout(picture3_);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(10);
    auto* fields = new QGridLayout;
    fields->setHorizontalSpacing(6);
    fields->setVerticalSpacing(1);

    text1_ = MakeText(picture3_, "Text1", QStringLiteral("Datum"), QStringLiteral("00.00.0000"), font,
                      QStringLiteral("00.00.00000"));
    text2_ = MakeText(picture3_, "Text2", QStringLiteral("Uhrzeit"), QStringLiteral("00:00"), font,
                      QStringLiteral("00:000"));
    combo1_ = MakeCombo(picture3_, "Combo1", QStringLiteral("TX Band"), &font, false);
    combo1_->addItems({QStringLiteral("40m"), QStringLiteral("80m"), QStringLiteral("30m")});
    combo2_ = MakeCombo(picture3_, "Combo2", QStringLiteral("TX Mode"), &font, false);
    combo2_->addItems({QStringLiteral("SSB"), QStringLiteral("CW")});
    text3_ = MakeText(picture3_, "Text3", QStringLiteral("Rufzeichen der Gegenstation"), QString(), font,
                      QStringLiteral("OE9WWW/PM"));
    text4_ = MakeText(picture3_, "Text4", QStringLiteral("RST gesendet"), QStringLiteral("599"), font,
                      QStringLiteral("5999"));
    text5_ = MakeText(picture3_, "Text5", QStringLiteral("RST empfangen"), QStringLiteral("599"), font,
                      QStringLiteral("5999"));
    combo5_ = MakeCombo(picture3_, "Combo5", QStringLiteral("BEZIRK empfangen"), &font, true);
    combo5_->setMinimumWidth(QFontMetrics(font).horizontalAdvance(QStringLiteral("WWW")) + 40);
    text1_->setMaxLength(10);
    text3_->setMaxLength(13);

    const QList<QPair<QString, QWidget*>> row = {
        {QStringLiteral("Datum"), text1_},      {QStringLiteral("Zeit"), text2_},
        {QStringLiteral("Band"), combo1_},      {QStringLiteral("Mode"), combo2_},
        {QStringLiteral("Rufzeichen"), text3_}, {QStringLiteral("RSTs"), text4_},
        {QStringLiteral("RSTe"), text5_},       {QStringLiteral("BZ"), combo5_},
    };
    for (int i = 0; i < row.size(); ++i) {
        fields->addWidget(Caption(picture3_, row[i].first, row[i].second), 0, i);
        fields->addWidget(row[i].second, 1, i);
    }
    fields->setColumnStretch(4, 2);

    dupCommand1_ = new QPushButton(QStringLiteral("DUPE"), picture3_);
    dupCommand1_->setObjectName(QStringLiteral("DUPCommand1"));
    dupCommand1_->setEnabled(false);
    dupCommand1_->setFocusPolicy(Qt::NoFocus);
    dupCommand1_->setMinimumHeight(text3_->sizeHint().height());
    fields->addWidget(dupCommand1_, 1, int(row.size()));

    // Station name from the call list, under the call.
    label10_ = new QLabel(picture3_);
    label10_->setObjectName(QStringLiteral("Label10"));
    label10_->setStyleSheet(QStringLiteral("color: #00008B;"));
    label10_->hide();
    fields->addWidget(label10_, 2, 4, 1, 4);
    auto* fieldsAtBottom = new QVBoxLayout;
    fieldsAtBottom->addStretch(1);
    fieldsAtBottom->addLayout(fields);
    line->addLayout(fieldsAtBottom, 1);

    // Own station: call as the frame's caption, own district inside, current operator.
    frame1_ = new QGroupBox(QStringLiteral(" "), picture3_); // room for the call from the start
    frame1_->setObjectName(QStringLiteral("Frame1"));
    auto* frameLayout = new QHBoxLayout(frame1_);
    frameLayout->setContentsMargins(8, 2, 8, 6);
    frameLayout->setSpacing(10);
    label12_ = new QLabel(frame1_);
    label12_->setObjectName(QStringLiteral("Label12"));
    QFont bz = font;
    bz.setBold(true);
    label12_->setFont(bz);
    label12_->setToolTip(QStringLiteral("Eigener Bezirk"));
    label12_->setMinimumWidth(QFontMetrics(bz).horizontalAdvance(QStringLiteral("WW")) + 8);
    combo6_ = MakeCombo(frame1_, "Combo6", QStringLiteral("Call des aktuellen Operators"), nullptr, true);
    combo6_->setMinimumWidth(QFontMetrics(combo6_->font()).horizontalAdvance(QStringLiteral("OE9WWW/PM")) +
                             40);
    auto* opColumn = new QVBoxLayout;
    opColumn->setSpacing(1);
    opColumn->addWidget(Caption(frame1_, QStringLiteral("Aktueller Operator"), combo6_));
    opColumn->addWidget(combo6_);
    frameLayout->addWidget(label12_, 0, Qt::AlignVCenter);
    frameLayout->addLayout(opColumn);
    line->addWidget(frame1_);
    picture3_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    outer->addWidget(picture3_);

    // The extended panel: QSL and note.
    picture4_ = new QWidget(host);
    picture4_->setObjectName(QStringLiteral("Picture4"));
    auto* ext = new QHBoxLayout(picture4_);
    ext->setContentsMargins(0, 2, 0, 0);
    ext->setSpacing(8);
    check1_ = new QCheckBox(kQslNein, picture4_);
    check1_->setObjectName(QStringLiteral("Check1"));
    check1_->setToolTip(QStringLiteral("QSL JA/NEIN"));
    text8_ = MakeText(picture4_, "Text8", QStringLiteral("Bemerkungen"), QString(), font,
                      QStringLiteral("Bemerkung"));
    ext->addWidget(check1_);
    auto* notiz = new QLabel(QStringLiteral("Notiz:"), picture4_);
    notiz->setBuddy(text8_);
    ext->addWidget(notiz);
    ext->addWidget(text8_, 1);
    picture4_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    picture4_->hide();
    outer->addWidget(picture4_);

    // The message line.
    label13_ = new QLabel(host);
    label13_->setObjectName(QStringLiteral("Label13"));
    label13_->setFont(font);
    label13_->setStyleSheet(QStringLiteral("color: #C00000; font-weight: bold;"));
    label13_->setFixedHeight(QFontMetrics(font).height() + 4);
    outer->addWidget(label13_);

    static_cast<QVBoxLayout*>(host->layout())->addLayout(outer);

    ConnectEntryEvents();
    QWidget* const order[] = {text1_, text2_,  combo1_, combo2_, text3_, text4_,
                              text5_, combo5_, check1_, text8_,  combo6_};
    for (size_t i = 0; i + 1 < std::size(order); ++i)
        setTabOrder(order[i], order[i + 1]);
}

EntryFields HauptForm::ReadEntryFields() const {
    EntryFields f;
    f.datum = text1_->text();
    f.zeit = text2_->text();
    f.call = text3_->text();
    f.rstGesendet = text4_->text();
    f.rstEmpfangen = text5_->text();
    f.notiz = text8_->text();
    f.band = combo1_->currentText();
    f.bandIndex = combo1_->currentIndex();
    f.mode = combo2_->currentText();
    f.modeIndex = combo2_->currentIndex();
    f.bezirk = combo5_->currentText();
    f.opCall = combo6_->currentText();
    f.qsl = check1_->isChecked() ? 1 : 0;
    return f;
}

void HauptForm::FocusField(EntryFocus field) {
    QWidget* w = nullptr;
    switch (field) {
    case EntryFocus::Text1:
        w = text1_;
        break;
    case EntryFocus::Text2:
        w = text2_;
        break;
    case EntryFocus::Text3:
        w = text3_;
        break;
    case EntryFocus::Text4:
        w = text4_;
        break;
    case EntryFocus::Text5:
        w = text5_;
        break;
    case EntryFocus::Combo1:
        w = combo1_;
        break;
    case EntryFocus::Combo2:
        w = combo2_;
        break;
    case EntryFocus::Combo5:
        w = combo5_;
        break;
    case EntryFocus::Text8:
        if (!picture4_->isVisible()) ApplyEntryPanel(EntryPanel(true)); // the note lies in the extended panel
        w = text8_;
        break;
    case EntryFocus::Combo6:
        w = combo6_;
        break;
    case EntryFocus::None:
        return;
    }
    w->setFocus(Qt::OtherFocusReason);
}

void HauptForm::SetReports(int modeIndex) {
    const QString report = ReportForMode(modeIndex);
    text4_->setText(report);
    text5_->setText(report);
}

void HauptForm::Uebernehmen() {
    CompanionCalls calls;
    if (m_.Open.BZKarte) calls.fuellen = bzKarteFuellen;
    if (m_.Open.GridKarte) calls.gridCellColor = gridKarteCellColor;
    if (m_.Open.Frequenz) calls.frequency = frequenzOf;
    const EntryFields fields = ReadEntryFields();
    const EntryResult result = TakeEntry(m_, dialogs_, grid_, fields, calls, &fileBytes_);
    if (result.bezirk) combo5_->setEditText(*result.bezirk);
    if (result.outcome != EntryResult::Logged) {
        if (result.outcome == EntryResult::CheckFailed && result.failure.boxFlags < 0)
            ShowMessage(label13_, result.failure.message);
        FocusField(result.failure.focus);
        return;
    }
    fileUpToDate_ = result.fileWritten;
    gridView_->KeepLastRowInView();
    gridView_->setCurrentIndex(grid_.index(grid_.DataRows() - 1, 0));
    if (m_.Open.Statistik) emit statistikRefreshRequested();
    timer3_.start();
    if (Action(QStringLiteral("MnAutomatischesSichern"))->isChecked() && !m_.ExtraBackupPath.isEmpty())
        BackupFile(dialogs_, m_.LogFolder + m_.CurrentLogName, m_.ExtraBackupPath + m_.CurrentLogName,
                   m_.ExtraBackupPath);
    ResetEntry();
    Speak(text3_, LoggedText(m_.LogRecords[result.recordIndex]));
    Reminders.ContactLogged();
    if (gridView_->currentIndex().row() == grid_.DataRows() - 1 && m_.Open.LogTracker)
        emit trackerRefreshRequested();
}

void HauptForm::ResetEntry() {
    text3_->setText(ResetCallText(Action(QStringLiteral("MnCallVorgabe"))->isChecked()));
    text3_->setCursorPosition(int(text3_->text().size()));
    SetReports(combo2_->currentIndex());
    text8_->clear();
    combo5_->setCurrentIndex(-1);
    combo5_->clearEditText();
    text3_->setFocus(Qt::OtherFocusReason);
    timer1_.start();
}

} // namespace kolibrino
