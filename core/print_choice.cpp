#include "core/print_choice.h"

#include "core/settings.h"

#include <QString>
#include <QtGlobal>

namespace kolibrino {

namespace {
const QString kSection = QStringLiteral("Einstellungen");
const QString kKey = QStringLiteral("DruckenPDF");
} // namespace

bool PrintIntoPdfChosen() {
    if (!qEnvironmentVariableIsEmpty("KOLIBRINO_PRINT_PDF")) return true;
    return IniReadInt({}, kSection, kKey) == 1;
}

void SetPrintIntoPdfChosen(bool on) {
    IniWrite({}, kSection, kKey, on ? 1 : 0);
}

} // namespace kolibrino
