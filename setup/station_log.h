// The window "StationLog" (caption "Contest-Einstellungen"): the station's and the
// contest's settings that make up a log's header. In new-log mode it names and writes
// a new log file; in options mode it rewrites the header of the open log. It also
// edits the operator list of the settings.
//
// GUI thread only; shown modally through ExecModal(). The window only reads and fills
// its controls: the checks, the save, the file name and the import are the functions
// of station_logic.h. Boxes go through Dialogs.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/log_switch.h"
#include "setup/station_logic.h"

#include <QDialog>
#include <functional>

class QButtonGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QFrame;

namespace kolibrino::setup {

class ClickLabel;

class StationLog : public QDialog {
    Q_OBJECT
public:
    StationLog(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks, StationMode mode,
               QWidget* parent = nullptr);

    // Command13, the import, is offered in new-log mode only.
    void SetImportVisible(bool visible);
    // The log manager is up: a new log's name goes to its Label2.
    void SetLogManager(std::function<void(const QString&)> tell);

    // Options mode: the controls filled from the open log's header.
    void FillFromLog();

    StationForm ReadForm() const;
    void ApplyForm(const StationForm& f);

    // Events, for the buttons and for tests.
    void SaveClicked();    // Command2 or Command4
    void ChooseName();     // Label10, Command3
    void Import();         // Command13
    void OpenListEditor(); // Command5
    void ListNew();        // Command10
    void ListEdit();       // Command9, double click in List1
    void ListDelete();     // Command8
    void ListTakeOver();   // Command11
    void ListLeaveEntry(); // Command12
    void ListOk();         // Command7
    void ListCancel();     // Command6

    void reject() override;

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    QWidget* BuildMandatory();
    QWidget* BuildOptional();
    void BuildListEditor();
    void PlaceOverlays();
    void ApplyFocus(Focus focus);
    void SetEditorOpen(bool open);

    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    MainHooks hooks_;
    StationMode mode_;
    std::function<void(const QString&)> manager_;
    QString nameBefore_;
    bool saved_ = false;
    int editIndex_ = -1;

    QGroupBox* frame1_ = nullptr;
    QGroupBox* frame2_ = nullptr;
    QLineEdit* text1_ = nullptr;
    QComboBox* combo5_ = nullptr;
    QPushButton* command5_ = nullptr;
    QLineEdit* text3_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QButtonGroup* option1_ = nullptr;
    QButtonGroup* option4_ = nullptr;
    QButtonGroup* option2_ = nullptr;
    QButtonGroup* option3_ = nullptr;
    QButtonGroup* option5_ = nullptr;
    QGroupBox* frame5_ = nullptr;
    QComboBox* combo2_ = nullptr;
    QComboBox* combo3_ = nullptr;
    QComboBox* combo4_ = nullptr;
    QLineEdit* text4_ = nullptr;
    QLineEdit* text5_ = nullptr;
    QLineEdit* text9_ = nullptr;
    QLineEdit* text10_ = nullptr;
    QLineEdit* text6_ = nullptr;
    QPlainTextEdit* text7_ = nullptr;
    QPlainTextEdit* text8_ = nullptr;
    ClickLabel* label10_ = nullptr;
    QPushButton* command3_ = nullptr;
    QPushButton* command2_ = nullptr;
    QPushButton* command4_ = nullptr;
    QPushButton* command1_ = nullptr;
    QPushButton* command13_ = nullptr;
    QGroupBox* frame7_ = nullptr;
    QListWidget* list1_ = nullptr;
    QFrame* picture7_ = nullptr;
    QLineEdit* text2_ = nullptr;
};

// The lines of a text box as it shows them, wrapped at its width.
QStringList DisplayedLines(QPlainTextEdit* edit);

} // namespace kolibrino::setup
