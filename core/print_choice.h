// The operator's choice to print into a PDF file instead of on the default printer:
// Einstellungen → "In PDF-Datei drucken" (section "Einstellungen", key "DruckenPDF" = 1),
// or KOLIBRINO_PRINT_PDF set in the environment. With no printer on the machine every
// printout goes into a PDF anyway.
//
// Any thread that may read the default settings file. Never fails: a missing or
// unreadable key reads as off; a refused write leaves the choice as it was.
#pragma once

namespace kolibrino {

bool PrintIntoPdfChosen();
void SetPrintIntoPdfChosen(bool on);

} // namespace kolibrino
