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
        CabrilloResult result = CabrilloResult::Written;
        const bool written = RunTrapped(d_, [&]() -> QString {
            BusyScope busy(d_);
            QString error;
            result = WriteCabrillo(Source(), o_.score, file, &error);
            return result == CabrilloResult::WriteFailed ? error : QString();
        });
        if (!written) return;
        if (result == CabrilloResult::ScoreFailed) {
            d_.MsgBox(QString::fromUtf8(kCabrilloFehler), Msg::Critical);
            return;
        }
        Send(file, QStringLiteral("Cabrillo erzeugen..."), false);
    }

    void Hochladen() {
        if (lastFolder_.isEmpty()) lastFolder_ = m_.LogFolder;
        const QString answer = d_.OpenDialog(QStringLiteral("*.LOG| *.LOG"),
                                             QStringLiteral("Cabrillo-Log auswählen..."), lastFolder_);
        if (answer.isEmpty()) return;
        lastFolder_ = QFileInfo(answer).absolutePath() + QLatin1Char('/');
        if (d_.MsgBox(QStringLiteral("Es ist eine Internetverbindung erforderlich!\n\n"
                                     "Soll das Cabrillo-Log wirklich eingesendet werden?"),
                      Msg::YesNo | Msg::Question) != Msg::Yes)
            return;
        Send(answer, QStringLiteral("LOG-Hochladen..."), true);
    }

    void VerbindungsTest() {
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

    // Ping, MD5, (check), upload and the judge of the echo, with their messages.
    void Send(const QString& file, const QString& firstText, bool check) {
        const QString server = LogServerSetting();
        if (server.isEmpty()) {
            d_.MsgBox(NoServerText(), Msg::Critical);
            return;
        }
        BusyScope busy(d_);
        bool reachable = false;
        RunBeside(&w_, firstText, [&] { reachable = net::ServerPing(server, o_.pingMs); });
        if (!reachable) {
            d_.MsgBox(PingFailedText(), Msg::Critical);
            return;
        }
        bool ok = false;
        QString error;
        const QByteArray bytes = ReadWholeFile(file, &ok, &error);
        if (!ok) {
            d_.MsgBox(FehlerText(error), kFehlerFlags);
            return;
        }
        SendOutcome o;
        o.md5 = net::MD5Sum(bytes);
        if (o.md5.size() != 32) {
            o.kind = o.md5.size() >= 33 ? SendOutcome::Md5Message : SendOutcome::Md5Failed;
            o.message = o.md5;
            d_.MsgBox(Md5ProblemText(o, true), Msg::OkOnly);
            return;
        }
        if (check) {
            const QString message = CheckCabrillo(FromCp1252(bytes), m_.Formats);
            if (!message.isEmpty()) {
                d_.MsgBox(message, Msg::Information);
                return;
            }
        }
        QString reply;
        bool sent = false;
        RunBeside(&w_, QStringLiteral("LOG-Hochladen..."), [&] {
            sent = net::HttpUploadFile(server, QString::fromLatin1(kUploadPath), file, reply, o_.timeouts);
        });
        if (sent && JudgeReply(reply, o.md5, true)) {
            if (d_.MsgBox(SentText(), Msg::YesNo | Msg::Information) == Msg::Yes)
                Open(QUrl(QStringLiteral("http://") + server + QString::fromLatin1(kShowPath)));
            return;
        }
        if (d_.MsgBox(UploadFailedText(file, ContestMailSetting()), Msg::YesNo | Msg::Information) ==
            Msg::Yes)
            Open(QUrl::fromLocalFile(QFileInfo(file).absolutePath() + QLatin1Char('/')));
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
    auto hook = [&window, menus](const char* name, void (ExportMenus::*click)()) {
        QAction* a = window.Action(QString::fromLatin1(name));
        if (!a) return;
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, &window, [menus, click] { (menus.get()->*click)(); });
    };
    hook("MnLogExportierenCabrillo", &ExportMenus::Cabrillo);
    hook("MnLogExportierenADIF", &ExportMenus::Adif);
    hook("MnLogHochladen", &ExportMenus::Hochladen);
    hook("MnLogServerUploadTest", &ExportMenus::VerbindungsTest);
    hook("MnLogDrucken", &ExportMenus::Drucken);
    if (QAction* a = window.Action(QStringLiteral("MnLogEinsenden"))) a->setEnabled(true);
    window.logEinsenden = [menus] { menus->Einsenden(); };
    if (QAction* a = window.Action(QStringLiteral("MnEingesendeteLogsAnzeigen"))) a->setEnabled(true);
}

} // namespace kolibrino::exporting
