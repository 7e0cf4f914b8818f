#include "core/error_trap.h"

namespace kolibrino {

QString FehlerText(const QString& description) {
    return QStringLiteral("FEHLER\r\n\r\n\t") + description;
}

bool RunTrapped(Dialogs& dialogs, const std::function<QString()>& op) {
    for (;;) {
        const QString err = op();
        if (err.isEmpty()) return true;
        if (dialogs.MsgBox(FehlerText(err), kFehlerFlags) != Msg::Retry) return false;
    }
}

} // namespace kolibrino
