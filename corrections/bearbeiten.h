// Bearbeiten ("Logeintrag Bearbeiten..."): the modal window that changes one contact
// of the main window's grid.
//
// Made by the corrections' flow on the GUI thread for one grid row, after the dupe
// refusal. Open() fills the fields from the row (with the frequency warning);
// ShowModal() runs the window. OK reads the fields, runs the checks of edit_entry in
// their order and, when all pass, applies the change and closes; a refused check
// shows its box and keeps the window open. Nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "corrections/edit_entry.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::corrections {

class Bearbeiten : public QDialog {
    Q_OBJECT
public:
    Bearbeiten(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock, int row);

    // Fills the fields from the grid row; false for a row outside the grid.
    bool Open();
    int ShowModal();
    // The click of "&OK".
    void Command4Click();

    bool Applied() const { return result_.applied; }
    const EditResult& Result() const { return result_; }
    EditFields ReadFields() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Build();
    void FocusOn(EditFocus f);
    // A new band moves a frequency that does not lie in it, and says so.
    void Combo1Change(int index);

    HauptForm& main_;
    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    int row_;
    EditResult result_;

    QLineEdit* text1_ = nullptr;
    QLineEdit* text2_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QComboBox* combo2_ = nullptr;
    QLineEdit* text3_ = nullptr;
    QLineEdit* text4_ = nullptr;
    QLineEdit* text5_ = nullptr;
    QComboBox* combo5_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QLineEdit* text8_ = nullptr;
    QComboBox* combo6_ = nullptr;
    QLineEdit* text12_ = nullptr;
    QLineEdit* text9_ = nullptr;
    QLabel* labelQrg_ = nullptr; // "QRG an das Band angepasst" after such a move
    QString openedMhz_;
    QString openedKhz_;
    QPushButton* command4_ = nullptr;
    QPushButton* command1_ = nullptr;
};

} // namespace kolibrino::corrections
