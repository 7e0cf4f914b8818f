// The one door through which the logic talks to the operator.
//
// Message boxes keep the classic flag numbers (16 stop, 32 question, 48 exclamation,
// 64 information; 0 OK, 1 OK/Cancel, 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel;
// 256 second button default) and answer with the classic result numbers. The program
// uses the Qt implementation in ui/; tests use ScriptedDialogs, which answers from a
// script and records what was shown.
//
// Window thread only. Implementations block until the operator answers; they never
// throw. A cancelled dialog answers with the empty text, or -1 for a colour.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QPrinter;

namespace kolibrino {

namespace Msg {
enum Flags : int {
    OkOnly = 0,
    OkCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5,
    Critical = 16,
    Question = 32,
    Exclamation = 48,
    Information = 64,
    DefaultButton2 = 256,
    DefaultButton3 = 512,
};
enum Result : int { Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };
inline int Buttons(int flags) {
    return flags & 7;
}
inline int Icon(int flags) {
    return flags & 0x70;
}
inline int DefaultButton(int flags) {
    return (flags >> 8) & 3;
} // 0 first, 1 second, 2 third
} // namespace Msg

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // The caption is the program's title unless one is given.
    virtual int MsgBox(const QString& text, int flags = Msg::OkOnly, const QString& title = {}) = 0;
    // nullopt when cancelled; the empty text when OK was pressed on an empty field.
    virtual std::optional<QString> InputBox(const QString& prompt, const QString& title = {},
                                            const QString& defaultText = {}) = 0;
    // filter: "name|pattern|name|pattern"; result: the chosen path, empty on cancel.
    virtual QString OpenDialog(const QString& filter, const QString& title, const QString& startFolder) = 0;
    virtual QString SaveDialog(const QString& filter, const QString& title, const QString& startFolder) = 0;
    virtual QString BrowseFolder(const QString& title, const QString& startFolder = {}) = 0;
    // 0x00BBGGRR colour, -1 on cancel.
    virtual int SelectColor(int initial, bool fullOpen) = 0;
    // The system's print dialog on printer, which comes in with the default printer (or a
    // PDF file) chosen; the operator's printer, pages, copies or PDF file are set on it.
    // false: cancelled. Without a print dialog (the command line) nothing is printed.
    virtual bool PrintDialog(QPrinter& printer, const QString& title) {
        (void)printer;
        (void)title;
        return false;
    }
    // Hourglass on or off; calls nest.
    virtual void SetBusy(bool busy) = 0;
    virtual void Beep() = 0;
};

// "name|pattern|..." split into its strings; a missing last "|" is supplied.
QStringList ParseDialogFilter(const QString& filter);

// Hourglass for the life of a scope.
class BusyScope {
public:
    explicit BusyScope(Dialogs& d) : d_(d) { d_.SetBusy(true); }
    ~BusyScope() { d_.SetBusy(false); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    Dialogs& d_;
};

} // namespace kolibrino
