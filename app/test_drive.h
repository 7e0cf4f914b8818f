// A test-only way to drive the real program from outside: with KOLIBRINO_TEST_DRIVE=1
// in its environment, kolibrino reads commands from standard input, one a line, and
// carries each out through the real window, then answers on standard output:
//
//   Q <call> <band index> <mode index> <district>   types a contact into the entry
//       fields and presses Enter in the call field; answers "A <call>" once the Enter
//       handling has returned with the contact logged, "N <call>" when it was not.
//   O <call> [<call> ...]                           saves the operator list the way
//       the operator field does (section OPCALLs); answers "S" once it is written.
//   L <file name>                                   switches to that log of Logs/ the
//       way "Log Öffnen" does once the log manager has closed; answers "L <file name>"
//       when it is the current log, "N <file name>" when not.
//   D <call>                                        deletes the contact of that call
//       through the grid's pop-up entry "Löschen", the question answered Yes; answers
//       "D <call>" once the contact is out of the log and the file written, "N <call>"
//       when not.
//   E <call> <new call> <district>                  opens "Bearbeiten" on the contact
//       of that call, types the new call and district into its fields and presses OK;
//       answers "E <new call>" once the change is in the log and the file written,
//       "N <call>" when not.
//
// It prints "R" when the main window is up, and every message box as "M <text>" (see
// DriveDialogs). The crash-injection driver (tests/crash)
// uses it to kill the program at random moments. Boxes the corrections show are
// answered without an operator (the delete question Yes, the "FEHLER" box Cancel) and
// make the answer "N".
//
// GUI thread. Unknown commands answer "?"; a closed input ends nothing.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

class QObject;

namespace kolibrino {

class HauptForm;

// Installs the reader when KOLIBRINO_TEST_DRIVE is set; returns whether it did.
bool InstallTestDrive(HauptForm& window, Model& m, Dialogs& dialogs);

// Whether KOLIBRINO_TEST_DRIVE is set.
bool TestDriveWanted();

// The program's boxes while it is driven, from its start on: each message box is
// printed as one line "M <text>" (line ends as " | ") and answered without an
// operator: Retry/Cancel with Cancel, every other box with its default button. The
// other dialogs go to the window's own.
class DriveDialogs final : public Dialogs {
public:
    explicit DriveDialogs(Dialogs& inner) : inner_(inner) {}
    int MsgBox(const QString& text, int flags, const QString& title) override;
    std::optional<QString> InputBox(const QString& p, const QString& t, const QString& d) override {
        return inner_.InputBox(p, t, d);
    }
    QString OpenDialog(const QString& f, const QString& t, const QString& s) override {
        return inner_.OpenDialog(f, t, s);
    }
    QString SaveDialog(const QString& f, const QString& t, const QString& s) override {
        return inner_.SaveDialog(f, t, s);
    }
    QString BrowseFolder(const QString& t, const QString& s) override { return inner_.BrowseFolder(t, s); }
    int SelectColor(int initial, bool fullOpen) override { return inner_.SelectColor(initial, fullOpen); }
    void SetBusy(bool busy) override { inner_.SetBusy(busy); }
    void Beep() override {}

private:
    Dialogs& inner_;
};

} // namespace kolibrino
