// The web addresses the program opens in the browser, held as settings so that a
// club can point them elsewhere without a new build.
//
//   [Server] RegelnURL  the contest rules page     (default kDefaultRegelnUrl)
//   [Server] LogServer  host name of the log server (default kDefaultLogServer)
//
// Window thread only (the settings store is not synchronised). Never fails: a missing
// or empty key gives the default.
#pragma once

#include <QString>

namespace kolibrino {

inline const char* const kSectionServer = "Server";
inline const char* const kDefaultRegelnUrl = "https://www.oevsv.at/funkbetrieb/contests/";
inline const char* const kDefaultLogServer = "contest.oevsv.at";

QString RegelnUrl();
QString LogServerHost();
// "http://" host "/cgi-bin/show.cgi": the list of the logs sent in.
QString EingesendeteLogsUrl();

} // namespace kolibrino
