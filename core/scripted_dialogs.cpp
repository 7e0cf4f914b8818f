#include "core/scripted_dialogs.h"

namespace kolibrino {

QStringList ParseDialogFilter(const QString& filter) {
    QString f = filter;
    if (!f.endsWith(QLatin1Char('|'))) f.append(QLatin1Char('|'));
    QStringList parts = f.split(QLatin1Char('|'));
    parts.removeLast(); // behind the closing "|"
    return parts;
}

int DefaultAnswer(int flags) {
    static const int table[6][3] = {
        {Msg::Ok, Msg::Ok, Msg::Ok},           {Msg::Ok, Msg::Cancel, Msg::Cancel},
        {Msg::Abort, Msg::Retry, Msg::Ignore}, {Msg::Yes, Msg::No, Msg::Cancel},
        {Msg::Yes, Msg::No, Msg::No},          {Msg::Retry, Msg::Cancel, Msg::Cancel},
    };
    const int b = Msg::Buttons(flags);
    if (b > 5) return Msg::Ok;
    return table[b][Msg::DefaultButton(flags)];
}

int ScriptedDialogs::MsgBox(const QString& text, int flags, const QString& title) {
    ShownBox box{text, flags, title};
    boxes.append(box);
    if (onMsgBox) onMsgBox(box);
    if (!msgAnswers_.isEmpty()) return msgAnswers_.dequeue();
    // An unscripted error trap gives up rather than retrying for ever.
    if (Msg::Buttons(flags) == Msg::RetryCancel) return Msg::Cancel;
    return DefaultAnswer(flags);
}

std::optional<QString> ScriptedDialogs::InputBox(const QString& prompt, const QString&, const QString&) {
    prompts.append(prompt);
    if (!inputAnswers_.isEmpty()) return inputAnswers_.dequeue();
    return std::nullopt;
}

QString ScriptedDialogs::OpenDialog(const QString&, const QString& title, const QString& startFolder) {
    prompts.append(title);
    startFolders.append(startFolder);
    return pathAnswers_.isEmpty() ? QString() : pathAnswers_.dequeue();
}

QString ScriptedDialogs::SaveDialog(const QString&, const QString& title, const QString& startFolder) {
    prompts.append(title);
    startFolders.append(startFolder);
    return pathAnswers_.isEmpty() ? QString() : pathAnswers_.dequeue();
}

QString ScriptedDialogs::BrowseFolder(const QString& title, const QString& startFolder) {
    prompts.append(title);
    startFolders.append(startFolder);
    return pathAnswers_.isEmpty() ? QString() : pathAnswers_.dequeue();
}

bool ScriptedDialogs::PrintDialog(QPrinter& printer, const QString& title) {
    prompts.append(title);
    ++printDialogs;
    if (printAnswers_.isEmpty()) return true;
    return printAnswers_.dequeue()(printer);
}

int ScriptedDialogs::SelectColor(int, bool) {
    return colorAnswers_.isEmpty() ? -1 : colorAnswers_.dequeue();
}

void ScriptedDialogs::SetBusy(bool busy) {
    busyDepth += busy ? 1 : -1;
    if (busyDepth > maxBusyDepth) maxBusyDepth = busyDepth;
}

} // namespace kolibrino
