#include "setup/server_settings.h"

#include "core/settings.h"
#include "upkeep/http_update_transport.h"
#include "upkeep/update_flow.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QUrl>

namespace kolibrino {
namespace {

const QString kServer = QStringLiteral("Server");
const QString kInfo = QStringLiteral("Info");
const QString kUpdate = QStringLiteral("Update");

QString Read(const QString& section, const QString& key) {
    return IniReadString({}, section, key).trimmed();
}

bool ValidHost(const QString& hostPort) {
    if (hostPort.contains(QLatin1Char(' ')) || hostPort.contains(QLatin1Char('/'))) return false;
    const QUrl u(QStringLiteral("http://") + hostPort);
    return u.isValid() && !u.host().isEmpty() && u.path().isEmpty() && u.userInfo().isEmpty() &&
           (u.port() == -1 || (u.port() > 0 && u.port() < 65536)) &&
           (hostPort.count(QLatin1Char(':')) <= 1 || hostPort.startsWith(QLatin1Char('[')));
}

bool ValidMails(const QString& text) {
    static const QRegularExpression one(QStringLiteral("^[^@\\s,;<>\"]+@[^@\\s,;<>\"]+\\.[^@\\s,;<>\"]+$"));
    static const QRegularExpression sep(QStringLiteral("[\\s,;]+"));
    const QStringList parts = text.split(sep, Qt::SkipEmptyParts);
    for (const QString& p : parts)
        if (!one.match(p).hasMatch()) return false;
    return true;
}

} // namespace

ServerSettings ReadServerSettings() {
    ServerSettings s;
    s.logServer = Read(kServer, QStringLiteral("LogServer"));
    s.contestMail = Read(kServer, QStringLiteral("ContestMail"));
    s.regelnUrl = Read(kServer, QStringLiteral("RegelnURL"));
    s.infoMail = Read(kInfo, QStringLiteral("MailAdresse"));
    s.updateServer = Read(kUpdate, QStringLiteral("Server"));
    s.updatePath = Read(kUpdate, QStringLiteral("Pfad"));
    const QString start = Read(kUpdate, QStringLiteral("BeimStart"));
    s.checkAtStart = start.isEmpty() || ProfileInt(start) != 0;
    return s;
}

void WriteServerSettings(const ServerSettings& s) {
    IniWrite({}, kServer, QStringLiteral("LogServer"), s.logServer.trimmed());
    IniWrite({}, kServer, QStringLiteral("ContestMail"), s.contestMail.trimmed());
    IniWrite({}, kServer, QStringLiteral("RegelnURL"), s.regelnUrl.trimmed());
    IniWrite({}, kInfo, QStringLiteral("MailAdresse"), s.infoMail.trimmed());
    IniWrite({}, kUpdate, QStringLiteral("Server"), s.updateServer.trimmed());
    IniWrite({}, kUpdate, QStringLiteral("Pfad"), s.updatePath.trimmed());
    IniWrite({}, kUpdate, QStringLiteral("BeimStart"), s.checkAtStart ? 1 : 0);
}

QString ValidateServerSettings(const ServerSettings& s) {
    const QString log = s.logServer.trimmed();
    if (!log.isEmpty() && !ValidHost(log))
        return QStringLiteral("Der Log-Server \"%1\" ist kein gültiger Rechnername.\n"
                              "Einzutragen ist nur der Name oder die Adresse des Servers, auf Wunsch mit "
                              ":Port, ohne \"http://\" und ohne Pfad.")
            .arg(log);
    const QString upd = s.updateServer.trimmed();
    if (!upd.isEmpty() && (!ValidHost(upd) || !upkeep::ServerWithArgument({}, upd)))
        return QStringLiteral("Der Update-Server \"%1\" ist kein gültiger Rechnername.\n"
                              "Einzutragen ist nur der Name oder die Adresse des Servers, auf Wunsch mit "
                              ":Port, ohne \"http://\" und ohne Pfad.")
            .arg(upd);
    const QString path = s.updatePath.trimmed();
    if (!path.isEmpty() && (path.contains(QLatin1Char(' ')) || path.contains(QStringLiteral("..")) ||
                            path.contains(QLatin1Char('?')) || path.contains(QLatin1Char('#'))))
        return QStringLiteral("Der Pfad \"%1\" auf dem Update-Server ist ungültig.\n"
                              "Er darf keine Leerzeichen, kein \"..\", \"?\" oder \"#\" enthalten.")
            .arg(path);
    if (!ValidMails(s.contestMail))
        return QStringLiteral("\"%1\" ist keine gültige eMail-Adresse des Contest-Managers.\n"
                              "Mehrere Adressen werden durch Leerzeichen oder Beistrich getrennt.")
            .arg(s.contestMail.trimmed());
    if (!ValidMails(s.infoMail) || s.infoMail.trimmed().contains(QRegularExpression(QStringLiteral("[\\s,;]"))))
        return QStringLiteral("\"%1\" ist keine gültige eMail-Adresse für den Knopf im Info-Fenster.\n"
                              "Hier ist genau eine Adresse einzutragen.")
            .arg(s.infoMail.trimmed());
    const QString rules = s.regelnUrl.trimmed();
    if (!rules.isEmpty()) {
        const QUrl u(rules, QUrl::StrictMode);
        if (!u.isValid() || u.host().isEmpty() ||
            (u.scheme() != QLatin1String("http") && u.scheme() != QLatin1String("https")))
            return QStringLiteral("\"%1\" ist keine gültige Web-Adresse der Contestregeln.\n"
                                  "Sie beginnt mit \"http://\" oder \"https://\".")
                .arg(rules);
    }
    return {};
}

QString TestUpdateServer(const QString& server, const QString& path, const QString& tmpFolder) {
    upkeep::UpdateServer base;
    if (!path.trimmed().isEmpty()) {
        base.path = path.trimmed();
        if (!base.path.startsWith(QLatin1Char('/'))) base.path.prepend(QLatin1Char('/'));
        if (!base.path.endsWith(QLatin1Char('/'))) base.path += QLatin1Char('/');
    }
    const auto s = upkeep::ServerWithArgument(base, server.trimmed());
    if (!s) return QStringLiteral("Es ist kein gültiger Update-Server eingetragen.");
    upkeep::HttpUpdateTransport t;
    const QString ping = t.Ping(s->host, s->port, 3000);
    if (!ping.isEmpty()) return QString::fromUtf8(upkeep::kTxtServerNichtErreichbar) + QLatin1Char('\n') + ping;
    const QString file = QDir(tmpFolder).filePath(QStringLiteral("KOLBOUpd.test"));
    const QUrl list = s->FileUrl(QStringLiteral("KOLBOUpd.txt"));
    const QString got = t.Download(list, file, upkeep::TransportTimeouts{3000, 10000});
    QFile::remove(file); // the test copy in Tmp/ only; a leftover is replaced by the next test
    if (!got.isEmpty())
        return QStringLiteral("Die Update-Liste %1 kann nicht geladen werden.\n%2").arg(list.toString(), got);
    return {};
}

} // namespace kolibrino
