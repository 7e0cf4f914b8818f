#include "upkeep/info_window.h"

#include "upkeep/info_logic.h"
#include "upkeep/logo.h"

#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace kolibrino::upkeep {

InfoWindow::InfoWindow(const Model& m, Dialogs& d, std::function<bool(const QUrl&)> openUrl, QWidget* parent)
    : QDialog(parent), m_(m), d_(d), openUrl_(std::move(openUrl)) {
    setObjectName(QStringLiteral("Info"));
    setWindowTitle(QStringLiteral("Info"));
    setModal(true);
    resize(480, 380);
    auto* grid = new QGridLayout(this);
    auto* picture1 = new QLabel(this);
    picture1->setObjectName(QStringLiteral("Picture1"));
    picture1->setPixmap(KolibrinoLogo(96));
    grid->addWidget(picture1, 0, 0, 3, 1, Qt::AlignTop);
    auto* label1 = new QLabel(QStringLiteral("Kolibrino"), this);
    label1->setObjectName(QStringLiteral("Label1"));
    label1->setFont(QFont(QStringLiteral("Serif"), 26, QFont::Bold));
    grid->addWidget(label1, 0, 1);
    auto* label2 = new QLabel(QStringLiteral("© ZZ9QQQ"), this);
    label2->setObjectName(QStringLiteral("Label2"));
    grid->addWidget(label2, 1, 1);
    auto* label3 = new QLabel(InfoVersionText(), this);
    label3->setObjectName(QStringLiteral("Label3"));
    grid->addWidget(label3, 2, 1);
    auto* text1 = new QPlainTextEdit(this);
    text1->setObjectName(QStringLiteral("Text1"));
    text1->setReadOnly(true);
    text1->setPlainText(InfoText(m_));
    grid->addWidget(text1, 3, 0, 1, 2);
    auto* command2 = new QPushButton(QStringLiteral("eMail an ZZ9QQQ"), this);
    command2->setObjectName(QStringLiteral("Command2"));
    command2->setToolTip(QStringLiteral("eMail senden zwecks Spende, Frage, Kommentar, ....."));
    grid->addWidget(command2, 4, 0, 1, 2);
    connect(command2, &QPushButton::clicked, this, &InfoWindow::Command2Click);
}

void InfoWindow::Command2Click() {
    const QString address = ContestManagerAddress(m_.IniPath);
    if (address.isEmpty()) {
        d_.MsgBox(QString::fromUtf8(kTxtKeineMailAdresse), Msg::Information);
        return;
    }
    OpenMail(address, QString::fromUtf8(kInfoSubject), {});
}

void InfoWindow::OpenMail(const QString& address, const QString& subject, const QString& body) {
    BusyScope wait(d_);
    if (openUrl_) openUrl_(QUrl(MailtoLink(address, subject, body), QUrl::TolerantMode));
}

} // namespace kolibrino::upkeep
