#include "upkeep/info_logic.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/settings.h"

namespace kolibrino::upkeep {

QString InfoVersionText() {
    return ProgramTitle() + QStringLiteral(" v") + ProgramVersionText();
}

QString DefaultInfoText() {
    return QStringLiteral("Kolibrino ist ein Logprogramm für den ZEFT 80/40m Contest.\r\n\r\n"
                          "Es prüft jede Verbindung nach den Regeln des Contests, führt die Wertung, "
                          "schreibt Cabrillo und ADIF und sendet das Log an den Log-Server.\r\n\r\n"
                          "Die Anleitung steht unter Hilfe - Anleitung als pdf.");
}

QString InfoText(const Model& m) {
    const QString path = m.DataFolder + QStringLiteral("Info.txt");
    if (!FileExists(path)) return DefaultInfoText();
    return FromCp1252(ReadWholeFile(path));
}

QString ContestManagerAddress(const QString& iniFile) {
    return IniReadString(iniFile, QString::fromLatin1(kSectionInfo), QStringLiteral("MailAdresse")).trimmed();
}

QString MailtoLink(const QString& address, const QString& subject, const QString& body) {
    QStringList params;
    if (!subject.isEmpty()) params << QStringLiteral("subject=") + subject;
    if (!body.isEmpty()) params << QStringLiteral("body=") + body;
    QString link = QStringLiteral("mailto:") + address;
    for (int i = 0; i < params.size(); ++i)
        link += (i == 0 ? QLatin1Char('?') : QLatin1Char('&')) + params[i];
    return link;
}

} // namespace kolibrino::upkeep
