// What the info window shows and the mail link it opens, without the window.
//
//   [Info] MailAdresse  address of the contest manager for the mail button. Empty by
//                       default: no address is known to serve this purpose, so the
//                       button says so in German until a club sets one.
//
// Window thread (settings). Never fails: missing files and keys give the defaults.
#pragma once

#include "core/log_model.h"

#include <QString>

namespace kolibrino::upkeep {

inline const char* const kSectionInfo = "Info";
inline const char* const kInfoSubject = "Kontodaten Frage Kommentar";
inline const char* const kTxtKeineMailAdresse =
    "Es ist keine eMail-Adresse des Contest-Managers eingestellt.\r\nBitte unter Einstellungen → Server und "
    "Adressen… die eMail im Info-Fenster eintragen.";

// "Kolibrino v1.0.0" from the build's version.
QString InfoVersionText();
// The free text: Info.txt from DataFolder when it exists (code page 1252), else the
// designed text.
QString InfoText(const Model& m);
QString DefaultInfoText();
// The contest manager's address from the settings (empty when none is set).
QString ContestManagerAddress(const QString& iniFile);
// "mailto:" address, then "subject=" and "body=" when not empty, the first joined with
// "?", the next with "&"; nothing encoded.
QString MailtoLink(const QString& address, const QString& subject, const QString& body);

} // namespace kolibrino::upkeep
