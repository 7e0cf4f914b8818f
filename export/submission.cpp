#include "export/submission.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/settings.h"
#include "export/check_cabrillo.h"

#include <QFile>
#include <QFileInfo>

namespace kolibrino::exporting {

QString LogServerSetting() {
    return IniReadString({}, QStringLiteral("Server"), QStringLiteral("LogServer")).trimmed();
}

QString ContestMailSetting() {
    return IniReadString({}, QStringLiteral("Server"), QStringLiteral("ContestMail")).trimmed();
}

bool JudgeReply(const QString& reply, const QString& localMd5, bool needLogfile, QString* storedName) {
    const QString md5Marker = QStringLiteral("\"md5\">");
    const qsizetype at = reply.indexOf(md5Marker);
    if (at < 0) return false;
    const qsizetype start = at + md5Marker.size();
    const qsizetype end = reply.indexOf(QStringLiteral("</span></p>"), start);
    if (end < 0) return false;
    if (reply.mid(start, end - start).trimmed().toUpper() != localMd5.toUpper()) return false;
    if (!needLogfile) return true;
    const QString fileMarker = QStringLiteral("\"logfile\">");
    const qsizetype f = reply.indexOf(fileMarker);
    if (f < 0) return false;
    const qsizetype fs = f + fileMarker.size();
    const qsizetype fe = reply.indexOf(QStringLiteral("</span>"), fs);
    if (storedName) *storedName = reply.mid(fs, fe < 0 ? -1 : fe - fs).trimmed().toUpper();
    return true;
}

namespace {

SendOutcome Md5Outcome(const QString& md5) {
    SendOutcome o;
    o.md5 = md5;
    if (md5.size() >= 33) {
        o.kind = SendOutcome::Md5Message;
        o.message = md5;
    } else if (md5.size() < 32) {
        o.kind = SendOutcome::Md5Failed;
    }
    return o;
}

} // namespace

SendOutcome SendCabrilloFile(const SendRequest& r) {
    SendOutcome o;
    if (r.server.trimmed().isEmpty()) {
        o.kind = SendOutcome::NoServer;
        return o;
    }
    if (!net::ServerPing(r.server, r.pingMs)) {
        o.kind = SendOutcome::PingFailed;
        return o;
    }
    bool ok = false;
    QString error;
    const QByteArray bytes = ReadWholeFile(r.file, &ok, &error);
    if (!ok) {
        o.kind = SendOutcome::ReadFailed;
        o.message = error;
        return o;
    }
    o = Md5Outcome(net::MD5Sum(bytes));
    if (o.md5.size() != 32) return o;
    if (r.check) {
        const QString message = CheckCabrillo(FromCp1252(bytes), r.formats);
        if (!message.isEmpty()) {
            o.kind = SendOutcome::CheckFailed;
            o.message = message;
            return o;
        }
    }
    QString reply;
    QString cause;
    const bool sent =
        net::HttpUploadFile(r.server, QString::fromLatin1(kUploadPath), r.file, reply, r.timeouts, &cause);
    o.kind = sent && JudgeReply(reply, o.md5, true) ? SendOutcome::Sent : SendOutcome::UploadFailed;
    if (sent && o.kind == SendOutcome::UploadFailed)
        cause = QStringLiteral("Die Antwort des Servers bestätigt den Empfang nicht (MD5 %1).").arg(o.md5);
    o.message = cause;
    return o;
}

QString TestCallLog() {
    const char* const lines[] = {
        "START-OF-LOG:  3.0",
        "CALLSIGN: TESTCALL",
        "CATEGORY-OPERATOR: SINGLE-OP",
        "CATEGORY -OVERLAY: OM",
        "CATEGORY -POWER: LOW",
        "CATEGORY: LOW-POWER MIX",
        "CLAIMED-SCORE: 3",
        "CONTEST: ZEFT 80/40m",
        "CREATED-BY: Kolibrino v0.0.00, 2012 by ZZ9QQQ",
        "EMAIL: zz9qqq@example.org",
        "LOCATION: BR",
        "NAME: Kuno",
        "ADDRESS:",
        "ADDRESS -POSTALCODE:",
        "ADDRESS -CITY:",
        "OPERATORS: ZZ9QQQ",
        "SOAPBOX:",
        "QSO:  3700 PH 2012-05-01 1500 2 TESTCALL      59  BR TESTCALL      59  BR",
        "END-OF-LOG:",
    };
    QString text;
    for (const char* l : lines)
        text += QLatin1String(l) + QStringLiteral("\r\n");
    return text;
}

SendOutcome RunConnectionTest(const QString& server, const QString& tmpFolder,
                              const net::HttpTimeouts& timeouts, long pingMs) {
    SendOutcome o;
    if (server.trimmed().isEmpty()) {
        o.kind = SendOutcome::NoServer;
        return o;
    }
    const QString file = tmpFolder + QStringLiteral("TESTCALL.LOG");
    const QString text = TestCallLog();
    const QString written = WriteFileAtomic(file, ToCp1252(text));
    if (!written.isEmpty()) {
        o.kind = SendOutcome::ReadFailed;
        o.message = written;
        return o;
    }
    if (!net::ServerPing(server, pingMs)) {
        QFile::remove(file);
        o.kind = SendOutcome::PingFailed;
        return o;
    }
    o = Md5Outcome(net::MD5Sum(ToCp1252(text)));
    if (o.md5.size() != 32) return o; // the test file stays behind
    QString reply;
    const bool sent = net::HttpUploadFile(server, QString::fromLatin1(kUploadPath), file, reply, timeouts);
    o.kind = sent && JudgeReply(reply, o.md5, false) ? SendOutcome::Sent : SendOutcome::UploadFailed;
    QFile::remove(file);
    return o;
}

QString NoServerText() {
    return QStringLiteral("Einsenden abgebrochen!\nEs ist kein Log-Server eingestellt.\n\n"
                          "Bitte unter Einstellungen → Server und Adressen… den Log-Server eintragen.");
}

QString PingFailedText() {
    return QStringLiteral("Einsenden abgebrochen!\nServer nicht erreichbar!");
}

QString Md5ProblemText(const SendOutcome& o, bool hochladenAbgebrochen) {
    const QString head =
        o.kind == SendOutcome::Md5Message ? o.message : QStringLiteral("Fehler beim erstellen der MD5Sum");
    return head + QStringLiteral("\n\n") +
           (hochladenAbgebrochen ? QStringLiteral("Hochladen abgebrochen\n") : QString()) +
           QStringLiteral("Bitte dem Autor diese Fehlermeldung mitteilen.");
}

QString UploadFailedText(const QString& file, const QString& mails) {
    return QStringLiteral(
               "Das Hochladen des Logs ist fehlgeschlagen.\n"
               "Wahrscheinlich blockiert deine Firewall den Upload oder dein Netzwerk lässt es nicht zu.\n"
               "Bitte versuch es später nochmals.\n\n"
               "Sollte es dann auch nicht gehen dann sende die Datei,\n") +
           file + QStringLiteral("\nan ") +
           (mails.isEmpty() ? QStringLiteral("den Contest-Manager") : mails) +
           QStringLiteral("\nmit der Info, daß du Probleme beim Hochladen hast.\n\n"
                          "Möchtest du den Ordner mit der Log-Datei jetzt öffnen?");
}

QString SentText() {
    return QStringLiteral("Das Log wurde erfolgreich eingesendet.\n\n\n"
                          "Möchtest du die Liste der eingesendeten Logs im Browser öffnen?");
}

QString CancelledText() {
    return QStringLiteral("Einsenden abgebrochen!\nDas Log wurde nicht eingesendet.");
}

QString UploadFailedPlainText(const QString& file, const QString& mails, const QString& cause) {
    return QStringLiteral("Das Hochladen des Logs ist fehlgeschlagen.\n") +
           (cause.isEmpty() ? QString() : cause + QLatin1Char('\n')) +
           QStringLiteral("Die Datei liegt unter ") + file +
           QStringLiteral("\nBitte später nochmals "
                          "versuchen oder sie an ") +
           (mails.isEmpty() ? QStringLiteral("den Contest-Manager") : mails) + QStringLiteral(" senden.");
}

QString TestSucceededText() {
    return QStringLiteral("Der Verbindungstest zum Log-Server war erfolgreich.\n"
                          "Das Einsenden der Logs sollte ohne Probleme funktionieren.");
}

QString TestFailedText() {
    return QStringLiteral("Der Verbindungstest zum Log-Server ist fehlgeschlagen\n\n"
                          "Mögliche Ursachen sind:\n"
                          "Log-Server im Moment nicht erreichbar\n"
                          "Keine Internetverbindung\n"
                          "Firewall blockiert PING\n"
                          "Firewall blockiert HTTP-Upload");
}

QString OutcomeText(const SendOutcome& o, const QString& file) {
    switch (o.kind) {
    case SendOutcome::Sent:
        return {};
    case SendOutcome::NoServer:
        return NoServerText();
    case SendOutcome::PingFailed:
        return PingFailedText();
    case SendOutcome::ReadFailed:
        return o.message;
    case SendOutcome::Md5Message:
    case SendOutcome::Md5Failed:
        return Md5ProblemText(o, true);
    case SendOutcome::CheckFailed:
        return o.message;
    case SendOutcome::UploadFailed:
        return UploadFailedPlainText(file, ContestMailSetting(), o.message);
    }
    return {};
}

} // namespace kolibrino::exporting
