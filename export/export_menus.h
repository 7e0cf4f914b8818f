// Plugs export and submission into the main window: the menu entries "Cabrillo-Datei
// erzeugen", "ADIF-Datei erzeugen", "Cabrillo-Datei einsenden", "Log Drucken",
// "Aktuelles Log einsenden" (and the reminders through the main window's
// logEinsenden hook) and "Verbindungstest zum Log-Server".
//
// GUI thread only; call once, before HauptForm::Load(). The references must outlive the
// window. Network work runs on a worker thread while the modal busy panel (Picture10
// with its text Label22) holds the window, which keeps painting. Every failure ends in
// one of the submission's messages; nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "export/cabrillo.h"
#include "export/http_client.h"

#include <QString>
#include <functional>

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::exporting {

struct ExportOptions {
    // The claimed score for the Cabrillo file; without one every file claims 0.
    ScoreFunction score;
    net::HttpTimeouts timeouts;
    long pingMs = 3000;
};

void InstallExport(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock,
                   ExportOptions options = {});

} // namespace kolibrino::exporting
