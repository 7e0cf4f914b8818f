// What the Cabrillo and ADIF writers share: the grid's rows as the source of the
// contacts, the save-name rule of the export menus, and the closing question.
//
// Called by the export menus (window thread) and by kolibrino-cli. Pure text work;
// nothing here fails except where a function says so.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <QDate>
#include <QString>
#include <functional>
#include <optional>

namespace kolibrino::exporting {

// The name the save dialog gave, trimmed, with the extension added unless it already
// ends in it (case ignored; a name the operator typed in lower case keeps its case).
// ext is given with its dot, in upper case (".LOG", ".ADI").
QString SaveNameWithExtension(const QString& answer, const QString& ext);

// A grid date (the locale's short date) or record date as a QDate; nullopt if unreadable.
std::optional<QDate> GridDate(const LocaleFormats& f, const QString& text);
// The date of a grid row in a QDate format ("yyyy-MM-dd"); the text as it stands when
// unreadable. The last result is remembered per thread and format.
QString GridDateText(const LocaleFormats& f, const QString& text, const QString& format);
// A grid time ("05:01") as minutes of the day; nullopt if unreadable.
std::optional<int> GridMinutes(const LocaleFormats& f, const QString& text);
// A grid time ("05:01") as hhmm ("0501"); the text without its separators if unreadable.
QString GridTimeHhmm(const LocaleFormats& f, const QString& text);

// "Datei gespeichert unter" ... "Soll die Datei im Editor geöffnet werden?"; on Yes
// the file goes to openInEditor (when set).
void AskOpenInEditor(Dialogs& dialogs, const QString& path,
                     const std::function<void(const QString&)>& openInEditor);

inline const char* const kKeineLogeintraege = "Keine Logeinträge vorhanden zu exportieren!";

} // namespace kolibrino::exporting
