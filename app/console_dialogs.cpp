#include "app/console_dialogs.h"

#include "core/scripted_dialogs.h"

#include <cstdio>

namespace kolibrino {

int ConsoleDialogs::MsgBox(const QString& text, int flags, const QString&) {
    QString t = text;
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    std::fprintf(stderr, "%s\n", t.toLocal8Bit().constData());
    if (Msg::Buttons(flags) == Msg::RetryCancel) return Msg::Cancel;
    return DefaultAnswer(flags);
}

} // namespace kolibrino
