// The info window: version from the build, the free text, and the mail button.
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "test_support.h"
#include "upkeep/info_logic.h"
#include "upkeep/info_window.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::upkeep;

namespace {
// With KOLIBRINO_SCREENSHOTS set, saves a grab of the window there (for the manual).
void Shot(QWidget* w, const QString& name) {
    const QString dir = qEnvironmentVariable("KOLIBRINO_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    w->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}
} // namespace

class TstInfoWindow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { test::PinLocale(); }

    void showsNameVersionFromTheBuildAndTheMakersLine() {
        test::Home home;
        ScriptedDialogs d;
        InfoWindow w(home.model, d, {});
        QCOMPARE(w.windowTitle(), QStringLiteral("Info"));
        QCOMPARE(w.findChild<QLabel*>(QStringLiteral("Label1"))->text(), QStringLiteral("Kolibrino"));
        QCOMPARE(w.findChild<QLabel*>(QStringLiteral("Label3"))->text(), QStringLiteral("Kolibrino v%1.%2.%3")
                                                                             .arg(KOLIBRINO_VERSION_MAJOR)
                                                                             .arg(KOLIBRINO_VERSION_MINOR)
                                                                             .arg(KOLIBRINO_VERSION_PATCH));
        QVERIFY(w.findChild<QLabel*>(QStringLiteral("Label2"))->text().contains(QStringLiteral("ZZ9QQQ")));
        QVERIFY(!w.findChild<QLabel*>(QStringLiteral("Picture1"))->pixmap().isNull());
        auto* mail = w.findChild<QPushButton*>(QStringLiteral("Command2"));
        QCOMPARE(mail->text(), QStringLiteral("eMail an ZZ9QQQ"));
        QCOMPARE(mail->toolTip(), QStringLiteral("eMail senden zwecks Spende, Frage, Kommentar, ....."));
        auto* text = w.findChild<QPlainTextEdit*>(QStringLiteral("Text1"));
        QVERIFY(text->isReadOnly());
        QCOMPARE(text->toPlainText(),
                 DefaultInfoText().replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        w.show();
        Shot(&w, QStringLiteral("info_window"));
    }

    void infoTxtInTheDataFolderIsTheFreeText() {
        test::Home home;
        test::WriteBytes(home.model.DataFolder + QStringLiteral("Info.txt"),
                         test::Cp(QStringLiteral("Grüße vom Verein")));
        ScriptedDialogs d;
        InfoWindow w(home.model, d, {});
        QCOMPARE(w.findChild<QPlainTextEdit*>(QStringLiteral("Text1"))->toPlainText(),
                 QStringLiteral("Grüße vom Verein"));
    }

    void mailLinkJoinsItsParametersUnencoded() {
        QCOMPARE(MailtoLink(QStringLiteral("a@b.at"), {}, {}), QStringLiteral("mailto:a@b.at"));
        QCOMPARE(MailtoLink(QStringLiteral("a@b.at"), QStringLiteral("Frage & Co"), {}),
                 QStringLiteral("mailto:a@b.at?subject=Frage & Co"));
        QCOMPARE(MailtoLink(QStringLiteral("a@b.at"), {}, QStringLiteral("Text")),
                 QStringLiteral("mailto:a@b.at?body=Text"));
        QCOMPARE(MailtoLink(QStringLiteral("a@b.at"), QStringLiteral("S"), QStringLiteral("B")),
                 QStringLiteral("mailto:a@b.at?subject=S&body=B"));
    }

    void mailButtonWithoutAnAddressSaysSoAndOpensNothing() {
        test::Home home;
        ScriptedDialogs d;
        QList<QUrl> opened;
        InfoWindow w(home.model, d, [&](const QUrl& u) {
            opened << u;
            return true;
        });
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        QVERIFY(opened.isEmpty());
        QCOMPARE(d.boxes.size(), 1);
        QVERIFY(d.boxes[0].text.startsWith(
            QStringLiteral("Es ist keine eMail-Adresse des Contest-Managers eingestellt.")));
    }

    void mailButtonOpensANewMailToTheContestManager() {
        test::Home home;
        IniWrite({}, QStringLiteral("Info"), QStringLiteral("MailAdresse"),
                 QStringLiteral("contest@verein.example"));
        ScriptedDialogs d;
        QList<QUrl> opened;
        InfoWindow w(home.model, d, [&](const QUrl& u) {
            opened << u;
            return false; // a mail program that does not open is not reported
        });
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened[0].scheme(), QStringLiteral("mailto"));
        QCOMPARE(opened[0].toString(),
                 QStringLiteral("mailto:contest@verein.example?subject=Kontodaten Frage Kommentar"));
        QVERIFY(d.boxes.isEmpty());
        QCOMPARE(d.busyDepth, 0);
        QCOMPARE(d.maxBusyDepth, 1);
    }
};

QTEST_MAIN(TstInfoWindow)
#include "tst_info_window.moc"
