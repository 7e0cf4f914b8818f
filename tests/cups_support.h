// A private CUPS scheduler for the printing tests: cupsd started by the test with its own
// configuration in a temporary folder, listening on a local socket only, with one raw
// queue "KolibrinoTest" to the file device /dev/null that keeps each job's document in
// its spool folder (PreserveJobFiles), made the default printer. CUPS_SERVER points the
// test process (and Qt's print support) at it. Where cupsd or lpadmin is missing or the
// scheduler does not come up, Why() says so and the tests skip.
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

namespace kolibrino::test {

class CupsQueue {
public:
    static constexpr const char* kQueue = "KolibrinoTest";

    CupsQueue() { why_ = Start(); }
    ~CupsQueue() {
        if (cupsd_.state() != QProcess::NotRunning) {
            cupsd_.terminate();
            if (!cupsd_.waitForFinished(10000)) {
                cupsd_.kill();
                cupsd_.waitForFinished(5000);
            }
        }
    }
    // Empty when the queue is up.
    QString Why() const { return why_; }
    QString Socket() const { return dir_.path() + QStringLiteral("/cups.sock"); }

    // Runs a CUPS tool (lpadmin, cupsreject, cupsaccept, cupsdisable, cupsenable) on it.
    QString Tool(const QString& tool, QStringList args) const {
        QProcess p;
        args.prepend(Socket());
        args.prepend(QStringLiteral("-h"));
        p.start(tool, args);
        if (!p.waitForFinished(30000)) return tool + QStringLiteral(" hängt");
        if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
            return tool + QStringLiteral(": ") + QString::fromLocal8Bit(p.readAllStandardError());
        return {};
    }
    // The documents of the jobs the queue accepted, oldest first.
    QStringList JobDocuments() const {
        QDir spool(dir_.path() + QStringLiteral("/spool"));
        QStringList out;
        for (const QString& f : spool.entryList({QStringLiteral("d*")}, QDir::Files, QDir::Name))
            out << spool.filePath(f);
        return out;
    }

private:
    QString Start() {
        const QString cupsd = QFileInfo::exists(QStringLiteral("/usr/sbin/cupsd"))
                                  ? QStringLiteral("/usr/sbin/cupsd")
                                  : QStandardPaths::findExecutable(QStringLiteral("cupsd"));
        if (cupsd.isEmpty()) return QStringLiteral("cupsd ist nicht installiert (Paket cups)");
        if (QStandardPaths::findExecutable(QStringLiteral("lpadmin")).isEmpty())
            return QStringLiteral("lpadmin ist nicht installiert (Paket cups-client)");
        if (!dir_.isValid()) return QStringLiteral("kein temporärer Ordner");
        const QString d = dir_.path();
        for (const char* sub : {"spool", "tmp", "cache", "state", "ppd"})
            QDir().mkpath(d + QLatin1Char('/') + QLatin1String(sub));
        QFile::setPermissions(d + QStringLiteral("/tmp"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        auto write = [](const QString& path, const QString& text) {
            QFile f(path);
            return f.open(QIODevice::WriteOnly) && f.write(text.toUtf8()) > 0;
        };
        const QString conf = QStringLiteral("Listen %1\nLogLevel warn\nWebInterface No\nBrowsing No\n"
                                            "DefaultAuthType None\nPreserveJobFiles Yes\nPreserveJobHistory Yes\n"
                                            "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                                            "<Policy default>\n  <Limit All>\n    Order deny,allow\n"
                                            "  </Limit>\n</Policy>\n")
                                 .arg(Socket());
        const QString files = QStringLiteral("ServerRoot %1\nRequestRoot %1/spool\nTempDir %1/tmp\n"
                                             "CacheDir %1/cache\nStateDir %1/state\nErrorLog %1/error_log\n"
                                             "AccessLog %1/access_log\nPageLog %1/page_log\nFileDevice Yes\n"
                                             "Sandboxing Relaxed\nServerBin /usr/lib/cups\n"
                                             "DataDir /usr/share/cups\n")
                                  .arg(d);
        if (!write(d + QStringLiteral("/cupsd.conf"), conf) || !write(d + QStringLiteral("/cups-files.conf"), files))
            return QStringLiteral("Konfiguration nicht schreibbar");
        cupsd_.setProcessChannelMode(QProcess::MergedChannels);
        cupsd_.start(cupsd, {QStringLiteral("-f"), QStringLiteral("-c"), d + QStringLiteral("/cupsd.conf"),
                             QStringLiteral("-s"), d + QStringLiteral("/cups-files.conf")});
        if (!cupsd_.waitForStarted(10000)) return QStringLiteral("cupsd startet nicht");
        for (int i = 0; i < 200 && !QFileInfo::exists(Socket()); ++i) {
            if (cupsd_.state() == QProcess::NotRunning) break;
            QThread::msleep(50);
        }
        if (!QFileInfo::exists(Socket()))
            return QStringLiteral("cupsd läuft hier nicht: ") + QString::fromLocal8Bit(cupsd_.readAll()).trimmed();
        qputenv("CUPS_SERVER", Socket().toLocal8Bit());
        QString e = Tool(QStringLiteral("lpadmin"), {QStringLiteral("-p"), QLatin1String(kQueue), QStringLiteral("-E"),
                                                     QStringLiteral("-v"), QStringLiteral("file:///dev/null"),
                                                     QStringLiteral("-m"), QStringLiteral("raw")});
        if (e.isEmpty()) e = Tool(QStringLiteral("lpadmin"), {QStringLiteral("-d"), QLatin1String(kQueue)});
        return e;
    }

    QTemporaryDir dir_;
    QProcess cupsd_;
    QString why_;
};

} // namespace kolibrino::test
