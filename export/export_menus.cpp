#include "export/export_menus.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/save_folders.h"
#include "entry/main_window.h"
#include "export/adif.h"
#include "export/busy_panel.h"
#include "export/check_cabrillo.h"
#include "export/export_common.h"
#include "export/printout.h"
#include "export/submission.h"

#include <QAction>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <atomic>
#include <memory>

namespace kolibrino::exporting {
namespace {

class ExportMenus {
public:
    ExportMenus(HauptForm& w, Model& m, Dialogs& d, const TimeSource& clock, ExportOptions o)
        : w_(w), m_(m), d_(d), clock_(clock), o_(std::move(o)) {
        if (!o_.score) o_.score = [](const Model&) { return std::optional<long>(0); };
    }

    void Cabrillo() {
        ExportCabrilloMenu(d_, Source(), o_.score, SaveStartFolder(m_, SaveKind::Cabrillo), [this](const QString& p) { OpenFile(p); });
    }
    void Adif() {
        ExportAdifMenu(d_, m_, w_.Grid(), OwnBezirk(), [this](const QString& p) { OpenFile(p); });
    }
    void Drucken() {
        PrintLogMenu(d_, m_, w_.Grid(), m_.Header.MYBZ, [this](const QUrl& u) {
            Open(u);
            return true;
        });
    }

    void Einsenden() {
        NetworkJob job;
        if (d_.MsgBox(QStringLiteral("Es ist eine Internetverbindung erforderlich!\n\n"
                                     "Soll das aktuelle Log jetzt eingesendet werden?"),
                      Msg::YesNo | Msg::Question) != Msg::Yes)
            return;
        const QString name = m_.CurrentLogName;
        const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
        const QString file =
            m_.LogFolder + (dot >= 0 ? name.left(dot + 1) : name + QLatin1Char('.')) + QStringLiteral("log");
        QFile::remove(file);
        if (w_.Grid().Rows() < 2) {
            d_.MsgBox(QStringLiteral("Einsenden abgebrochen!\n") + QString::fromUtf8(kKeineLogeintraege),
                      Msg::Information);
            return;
        }
        BusyScope wait(d_);
        BusyPanel panel(&w_);
        bool scoreFailed = false;
        const bool written = RunTrapped(d_, [&]() -> QString {
            // The panel says what happens while the file is made and written.
            panel.Show(QStringLiteral("Cabrillo erzeugen..."));
            const std::optional<QByteArray> bytes = BuildCabrilloBytes(Source(), o_.score);
            scoreFailed = !bytes;
            if (scoreFailed) return {};
            QString error;
            panel.Run([&] { error = WriteFileAtomic(file, *bytes); });
            if (!error.isEmpty()) panel.Hide();
            return error;
        });
        if (!written || scoreFailed) {
            panel.Hide();
            if (scoreFailed) d_.MsgBox(QString::fromUtf8(kCabrilloFehler), Msg::Critical);
            return;
        }
        Send(file, panel, false);
    }

    void Hochladen() {
        NetworkJob job;
        if (lastFolder_.isEmpty()) lastFolder_ = m_.LogFolder;
        const QString answer = d_.OpenDialog(QStringLiteral("*.LOG| *.LOG"),
                                             QStringLiteral("Cabrillo-Log auswählen..."), lastFolder_);
        if (answer.isEmpty()) return;
        lastFolder_ = QFileInfo(answer).absolutePath() + QLatin1Char('/');
        if (d_.MsgBox(QStringLiteral("Es ist eine Internetverbindung erforderlich!\n\n"
                                     "Soll das Cabrillo-Log wirklich eingesendet werden?"),
                      Msg::YesNo | Msg::Question) != Msg::Yes)
            return;
        BusyScope wait(d_);
        BusyPanel panel(&w_);
        panel.Show(QStringLiteral("LOG-Hochladen..."));
        Send(answer, panel, true);
    }

    void VerbindungsTest() {
        NetworkJob job;
        const QString server = LogServerSetting();
        SendOutcome o;
        BusyScope busy(d_);
        RunBeside(&w_, QStringLiteral("Verbindungstest..."),
                  [&] { o = RunConnectionTest(server, m_.TmpFolder, o_.timeouts, o_.pingMs); });
        switch (o.kind) {
        case SendOutcome::Sent:
            d_.MsgBox(TestSucceededText(), Msg::Information);
            break;
        case SendOutcome::NoServer:
            d_.MsgBox(NoServerText(), Msg::Critical);
            break;
        case SendOutcome::Md5Message:
        case SendOutcome::Md5Failed:
            d_.MsgBox(Md5ProblemText(o, false), Msg::OkOnly);
            break;
        case SendOutcome::ReadFailed:
            d_.MsgBox(FehlerText(o.message), kFehlerFlags);
            break;
        default:
            d_.MsgBox(TestFailedText(), Msg::Critical);
            break;
        }
    }

private:
    CabrilloSource Source() const {
        return CabrilloSource{m_, w_.Grid(), OwnBezirk(), ContestNow(clock_, 0).date().year()};
    }
    QString OwnBezirk() const {
        const QLabel* l = w_.findChild<QLabel*>(QStringLiteral("Label12"));
        return l ? l->text() : m_.Header.MYBZ;
    }
    void Open(const QUrl& url) {
        if (w_.openUrl)
            w_.openUrl(url);
        else
            QDesktopServices::openUrl(url);
    }
    void OpenFile(const QString& path) { Open(QUrl::fromLocalFile(path)); }

    // Ping, MD5, (check), upload and the judge of the echo, with their messages. The
    // panel is up with the text of the step before; it says "LOG-Hochladen..." while
    // the file goes to the server. The operator can cancel ping and upload.
    void Send(const QString& file, BusyPanel& panel, bool check) {
        const QString server = LogServerSetting();
        if (server.isEmpty()) {
            panel.Hide();
            d_.MsgBox(NoServerText(), Msg::Critical);
            return;
        }
        std::atomic<bool> cancel{false};
        bool reachable = false;
        if (!panel.Run([&] { reachable = net::ServerPing(server, o_.pingMs, &cancel); }, o_.pingMs, &cancel))
            return Cancelled(panel);
        if (!reachable) {
            panel.Hide();
            d_.MsgBox(PingFailedText(), Msg::Critical);
            return;
        }
        bool ok = false;
        QString error;
        QByteArray bytes;
        panel.Run([&] { bytes = ReadWholeFile(file, &ok, &error); });
        if (!ok) {
            panel.Hide();
            d_.MsgBox(FehlerText(error), kFehlerFlags);
            return;
        }
        SendOutcome o;
        o.md5 = net::MD5Sum(bytes);
        if (o.md5.size() != 32) {
            panel.Hide();
            o.kind = o.md5.size() >= 33 ? SendOutcome::Md5Message : SendOutcome::Md5Failed;
            o.message = o.md5;
            d_.MsgBox(Md5ProblemText(o, true), Msg::OkOnly);
            return;
        }
        if (check) {
            const QString message = CheckCabrillo(FromCp1252(bytes), m_.Formats);
            if (!message.isEmpty()) {
                panel.Hide();
                d_.MsgBox(message, Msg::Information);
                return;
            }
        }
        QString reply;
        bool sent = false;
        net::HttpTimeouts timeouts = o_.timeouts;
        timeouts.cancel = &cancel;
        panel.Show(QStringLiteral("LOG-Hochladen..."));
        const bool finished = panel.Run(
            [&] {
                sent = net::HttpUploadFile(server, QString::fromLatin1(kUploadPath), file, reply, timeouts);
            },
            timeouts.transferMs, &cancel);
        if (!finished) return Cancelled(panel);
        panel.Hide();
        if (sent && JudgeReply(reply, o.md5, true)) {
            if (d_.MsgBox(SentText(), Msg::YesNo | Msg::Information) == Msg::Yes)
                Open(QUrl(QStringLiteral("http://") + server + QString::fromLatin1(kShowPath)));
            return;
        }
        if (d_.MsgBox(UploadFailedText(file, ContestMailSetting()), Msg::YesNo | Msg::Information) ==
            Msg::Yes)
            Open(QUrl::fromLocalFile(QFileInfo(file).absolutePath() + QLatin1Char('/')));
    }

    void Cancelled(BusyPanel& panel) {
        panel.Hide();
        d_.MsgBox(CancelledText(), Msg::Information);
    }

    HauptForm& w_;
    Model& m_;
    Dialogs& d_;
    const TimeSource& clock_;
    ExportOptions o_;
    QString lastFolder_;
};

} // namespace

void InstallExport(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock,
                   ExportOptions options) {
    auto menus = std::make_shared<ExportMenus>(window, m, dialogs, clock, std::move(options));
    // A network job never starts inside another: what comes meanwhile (a reminder)
    // waits until the running one has ended.
    auto idle = [&window, menus](const char* key, void (ExportMenus::*click)()) {
        return [&window, menus, key, click] {
            RunWhenIdle(&window, QString::fromLatin1(key), [menus, click] { (menus.get()->*click)(); });
        };
    };
    auto hook = [&window, menus, idle](const char* name, void (ExportMenus::*click)(), bool network) {
        QAction* a = window.Action(QString::fromLatin1(name));
        if (!a) return;
        a->setEnabled(true);
        if (network)
            QObject::connect(a, &QAction::triggered, &window, idle(name, click));
        else
            QObject::connect(a, &QAction::triggered, &window, [menus, click] { (menus.get()->*click)(); });
    };
    hook("MnLogExportierenCabrillo", &ExportMenus::Cabrillo, false);
    hook("MnLogExportierenADIF", &ExportMenus::Adif, false);
    hook("MnLogHochladen", &ExportMenus::Hochladen, true);
    hook("MnLogServerUploadTest", &ExportMenus::VerbindungsTest, true);
    hook("MnLogDrucken", &ExportMenus::Drucken, false);
    if (QAction* a = window.Action(QStringLiteral("MnLogEinsenden"))) a->setEnabled(true);
    window.logEinsenden = idle("MnLogEinsenden", &ExportMenus::Einsenden);
    if (QAction* a = window.Action(QStringLiteral("MnEingesendeteLogsAnzeigen"))) a->setEnabled(true);
}

} // namespace kolibrino::exporting
