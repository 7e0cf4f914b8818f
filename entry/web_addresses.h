// The web addresses the program opens in the browser, held as settings so that a
// club can point them elsewhere without a new build.
//
//   [Server] RegelnURL  the contest rules page
//   [Server] LogServer  host name of the log server
//
// Both empty by default: the operator sets them in Einstellungen → "Server und
// Adressen…". Window thread only (the settings store is not synchronised). Never fails:
// a missing key gives the empty text.
#pragma once

#include <QString>

namespace kolibrino {

inline const char* const kSectionServer = "Server";
inline const char* const kKeineRegelnUrl = "Es ist keine Web-Adresse der Contestregeln eingestellt.\n"
                                          "Bitte unter Einstellungen → Server und Adressen… eintragen.";
inline const char* const kKeinLogServer = "Es ist kein Log-Server eingestellt.\n"
                                         "Bitte unter Einstellungen → Server und Adressen… eintragen.";

QString RegelnUrl();
QString LogServerHost();
// "http://" host "/cgi-bin/show.cgi": the list of the logs sent in; empty without a host.
QString EingesendeteLogsUrl();

} // namespace kolibrino
