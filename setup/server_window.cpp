#include "setup/server_window.h"

#include "core/error_trap.h"
#include "export/busy_panel.h"
#include "export/submission.h"
#include "upkeep/update_flow.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kolibrino::setup {

namespace {
QPushButton* Button(const char* name, const QString& caption) {
    auto* b = new QPushButton(caption);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    return b;
}
} // namespace

ServerAdressen::ServerAdressen(const Model& m, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs) {
    setObjectName(QStringLiteral("ServerAdressen"));
    setWindowTitle(QStringLiteral("Server und Adressen"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    const ServerSettings s = ReadServerSettings();
    auto add = [&](const char* name, const QString& label, const QString& help, const QString& value) {
        auto* edit = new QLineEdit(value);
        edit->setObjectName(QString::fromLatin1(name));
        auto* box = new QVBoxLayout;
        box->setSpacing(1);
        box->addWidget(edit);
        auto* h = new QLabel(help);
        h->setWordWrap(true);
        h->setObjectName(QString::fromLatin1(name) + QStringLiteral("Hilfe"));
        QFont small = h->font();
        small.setPointSizeF(small.pointSizeF() * 0.9);
        h->setFont(small);
        box->addWidget(h);
        auto* l = new QLabel(label);
        l->setBuddy(edit);
        form->addRow(l, box);
        return edit;
    };
    logServer_ = add("TextLogServer", QStringLiteral("&Log-Server:"),
                     QStringLiteral("Name oder Adresse des Servers, an den \"Aktuelles Log einsenden\" und "
                                    "\"Cabrillo-Datei einsenden\" die Logs schicken, auf Wunsch mit :Port "
                                    "(ohne \"http://\"). Leer: Einsenden nicht möglich."),
                     s.logServer);
    contestMail_ = add("TextContestMail", QStringLiteral("eMail des &Contest-Managers:"),
                       QStringLiteral("Wird genannt, wenn das Hochladen scheitert, damit die Datei per eMail "
                                      "eingesendet werden kann. Mehrere Adressen durch Leerzeichen getrennt."),
                       s.contestMail);
    regeln_ = add("TextRegeln", QStringLiteral("Contest&regeln:"),
                  QStringLiteral("Web-Adresse, die Hilfe → Contestregeln im Browser öffnet "
                                 "(beginnt mit http:// oder https://)."),
                  s.regelnUrl);
    infoMail_ = add("TextInfoMail", QStringLiteral("eMail im &Info-Fenster:"),
                    QStringLiteral("Die Adresse, an die der eMail-Knopf im Fenster \"Info\" schreibt."),
                    s.infoMail);
    updateServer_ = add("TextUpdateServer", QStringLiteral("&Update-Server:"),
                        QStringLiteral("Name oder Adresse des Servers, von dem \"Auf Updates prüfen\" die "
                                       "Liste KOLBOUpd.txt und die Dateien lädt, auf Wunsch mit :Port. "
                                       "Leer: keine Updates."),
                        s.updateServer);
    updatePfad_ = add("TextUpdatePfad", QStringLiteral("&Pfad am Update-Server:"),
                      QStringLiteral("Ordner der Update-Liste auf dem Server. Leer: ") +
                          QString::fromLatin1(upkeep::kDefaultUpdatePath),
                      s.updatePath);
    beimStart_ = new QCheckBox(QStringLiteral("Beim &Start auf Updates prüfen"));
    beimStart_->setObjectName(QStringLiteral("CheckBeimStart"));
    beimStart_->setChecked(s.checkAtStart);
    form->addRow(QString(), beimStart_);

    auto* tests = new QHBoxLayout;
    QPushButton* logTest = Button("CommandLogTest", QStringLiteral("Log-Server &testen"));
    QPushButton* updTest = Button("CommandUpdateTest", QStringLiteral("Update-Server t&esten"));
    tests->addWidget(logTest);
    tests->addWidget(updTest);
    tests->addStretch();
    layout->addLayout(tests);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    QPushButton* ok = Button("CommandOK", QStringLiteral("OK"));
    ok->setDefault(true);
    QPushButton* cancel = Button("CommandAbbrechen", QStringLiteral("Abbrechen"));
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(logTest, &QPushButton::clicked, this, &ServerAdressen::CommandLogTestClick);
    connect(updTest, &QPushButton::clicked, this, &ServerAdressen::CommandUpdateTestClick);
    connect(ok, &QPushButton::clicked, this, [this] {
        if (CommandOkClick()) accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    resize(560, sizeHint().height());
}

ServerSettings ServerAdressen::Entered() const {
    ServerSettings s;
    s.logServer = logServer_->text().trimmed();
    s.contestMail = contestMail_->text().trimmed();
    s.regelnUrl = regeln_->text().trimmed();
    s.infoMail = infoMail_->text().trimmed();
    s.updateServer = updateServer_->text().trimmed();
    s.updatePath = updatePfad_->text().trimmed();
    s.checkAtStart = beimStart_->isChecked();
    return s;
}

void ServerAdressen::CommandLogTestClick() {
    const ServerSettings s = Entered();
    if (s.logServer.isEmpty()) {
        dialogs_.MsgBox(QStringLiteral("Es ist kein Log-Server eingetragen."), Msg::Exclamation);
        logServer_->setFocus();
        return;
    }
    if (const QString bad = ValidateServerSettings(ServerSettings{s.logServer, {}, {}, {}, {}, {}, true});
        !bad.isEmpty()) {
        dialogs_.MsgBox(bad, Msg::Exclamation);
        logServer_->setFocus();
        return;
    }
    exporting::SendOutcome o;
    const QString tmp = m_.TmpFolder;
    {
        BusyScope busy(dialogs_);
        exporting::RunBeside(this, QStringLiteral("Verbindungstest..."),
                             [&] { o = exporting::RunConnectionTest(s.logServer, tmp); });
    }
    switch (o.kind) {
    case exporting::SendOutcome::Sent:
        dialogs_.MsgBox(exporting::TestSucceededText(), Msg::Information);
        break;
    case exporting::SendOutcome::Md5Message:
    case exporting::SendOutcome::Md5Failed:
        dialogs_.MsgBox(exporting::Md5ProblemText(o, false), Msg::OkOnly);
        break;
    case exporting::SendOutcome::ReadFailed:
        dialogs_.MsgBox(FehlerText(o.message), Msg::Critical);
        break;
    default:
        dialogs_.MsgBox(exporting::TestFailedText(), Msg::Critical);
        break;
    }
}

void ServerAdressen::CommandUpdateTestClick() {
    const ServerSettings s = Entered();
    if (s.updateServer.isEmpty()) {
        dialogs_.MsgBox(QStringLiteral("Es ist kein Update-Server eingetragen."), Msg::Exclamation);
        updateServer_->setFocus();
        return;
    }
    if (const QString bad = ValidateServerSettings(ServerSettings{{}, {}, {}, {}, s.updateServer, s.updatePath, true});
        !bad.isEmpty()) {
        dialogs_.MsgBox(bad, Msg::Exclamation);
        updateServer_->setFocus();
        return;
    }
    QString why;
    const QString tmp = m_.TmpFolder;
    {
        BusyScope busy(dialogs_);
        exporting::RunBeside(this, QStringLiteral("PINGe Server..."),
                             [&] { why = TestUpdateServer(s.updateServer, s.updatePath, tmp); });
    }
    if (why.isEmpty())
        dialogs_.MsgBox(QStringLiteral("Der Update-Server ist erreichbar, die Update-Liste KOLBOUpd.txt wurde "
                                       "gefunden."),
                        Msg::Information);
    else
        dialogs_.MsgBox(QStringLiteral("Der Test des Update-Servers ist fehlgeschlagen.\n\n") + why, Msg::Critical);
}

bool ServerAdressen::CommandOkClick() {
    const ServerSettings s = Entered();
    const QString bad = ValidateServerSettings(s);
    if (!bad.isEmpty()) {
        dialogs_.MsgBox(bad, Msg::Exclamation);
        return false;
    }
    WriteServerSettings(s);
    return true;
}

void MnServerAdressen(QWidget* parent, const Model& m, Dialogs& dialogs) {
    ServerAdressen w(m, dialogs, parent);
    w.exec();
}

} // namespace kolibrino::setup
