// Dialogs for tests and for the command-line companion: answers come from a script,
// and everything shown is recorded.
//
// Window thread (or the test's thread) only. With the script empty, a message box
// answers with its default button (a Retry/Cancel box with Cancel), an input box and the file dialogs cancel,
// and the colour dialog answers -1; nothing blocks.
#pragma once

#include "core/dialogs.h"

#include <QList>
#include <QQueue>
#include <functional>

namespace kolibrino {

struct ShownBox {
    QString text;
    int flags = 0;
    QString title;
};

class ScriptedDialogs : public Dialogs {
public:
    // Scripting, first in first out.
    void AnswerMsgBox(int result) { msgAnswers_.enqueue(result); }
    void AnswerInput(std::optional<QString> text) { inputAnswers_.enqueue(std::move(text)); }
    void AnswerPath(QString path) { pathAnswers_.enqueue(std::move(path)); }
    void AnswerColor(int color) { colorAnswers_.enqueue(color); }
    // The print dialog: the answer sets the printer as the operator would (a PDF file,
    // another printer, pages, copies) and says whether OK (true) or Cancel was pressed.
    // Unscripted, the dialog is confirmed as it comes up.
    void AnswerPrint(std::function<bool(QPrinter&)> answer) { printAnswers_.enqueue(std::move(answer)); }
    // Called for each box before it answers; may change what is queued.
    std::function<void(const ShownBox&)> onMsgBox;

    // What happened.
    QList<ShownBox> boxes;
    QStringList prompts;
    QStringList startFolders; // of the file and folder dialogs, in order
    int printDialogs = 0;
    int beeps = 0;
    int busyDepth = 0;
    int maxBusyDepth = 0;

    const ShownBox* LastBox() const { return boxes.isEmpty() ? nullptr : &boxes.last(); }
    void Clear() {
        boxes.clear();
        prompts.clear();
        beeps = 0;
    }

    int MsgBox(const QString& text, int flags, const QString& title) override;
    std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                    const QString& defaultText) override;
    QString OpenDialog(const QString& filter, const QString& title, const QString& startFolder) override;
    QString SaveDialog(const QString& filter, const QString& title, const QString& startFolder) override;
    QString BrowseFolder(const QString& title, const QString& startFolder) override;
    int SelectColor(int initial, bool fullOpen) override;
    bool PrintDialog(QPrinter& printer, const QString& title) override;
    void SetBusy(bool busy) override;
    void Beep() override { ++beeps; }

private:
    QQueue<int> msgAnswers_;
    QQueue<std::optional<QString>> inputAnswers_;
    QQueue<QString> pathAnswers_;
    QQueue<int> colorAnswers_;
    QQueue<std::function<bool(QPrinter&)>> printAnswers_;
};

// The answer a box gives when the operator just presses Enter.
int DefaultAnswer(int flags);

} // namespace kolibrino
