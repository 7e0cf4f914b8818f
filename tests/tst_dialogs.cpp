// The operator's dialogs: scripted answers, Qt boxes by flag number, filters, colours,
// the combo length limit and the FEHLER trap.
#include "core/error_trap.h"
#include "core/scripted_dialogs.h"
#include "test_support.h"
#include "ui/combo_max_length.h"
#include "ui/modal_focus.h"
#include "ui/qt_dialogs.h"
#include "ui/translation.h"

#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// Runs f on the next modal widget that appears.
void OnNextModal(std::function<void(QWidget*)> f) {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, f]() {
        if (QWidget* w = QApplication::activeModalWidget()) {
            timer->stop();
            timer->deleteLater();
            f(w);
        }
    });
    timer->start();
}

} // namespace

class TestDialogs : public QObject {
    Q_OBJECT

private slots:
    void filterWithoutClosingBarBecomesTwoStrings() {
        QCOMPARE(ParseDialogFilter(QStringLiteral("*.log|*.log")),
                 (QStringList{QStringLiteral("*.log"), QStringLiteral("*.log")}));
        QCOMPARE(ParseDialogFilter(QStringLiteral("Log|*.KOLBO|")),
                 (QStringList{QStringLiteral("Log"), QStringLiteral("*.KOLBO")}));
        QCOMPARE(QtNameFilter(QStringLiteral("*.log|*.log")), QStringLiteral("*.log (*.log)"));
    }

    void comboOfFifteenLimitedToThirteenHoldsThirteenWithTheCaretAtTheEnd() {
        QComboBox combo;
        combo.setEditable(true);
        combo.setEditText(QStringLiteral("OE1ABCDEFGHIJK"));
        combo.lineEdit()->setText(QStringLiteral("123456789012345"));
        SetComboMaxLength(&combo, 13, true);
        QCOMPARE(combo.currentText(), QStringLiteral("1234567890123"));
        QCOMPARE(combo.lineEdit()->cursorPosition(), 13);
        QCOMPARE(combo.lineEdit()->selectionStart(), -1);
        QTest::keyClicks(combo.lineEdit(), QStringLiteral("XYZ"));
        QCOMPARE(combo.currentText().size(), 13);
    }

    void negativeLengthMeansNoLimit() {
        QComboBox combo;
        combo.setEditable(true);
        SetComboMaxLength(&combo, -5, true);
        QTest::keyClicks(combo.lineEdit(), QString(40, QLatin1Char('a')));
        QCOMPARE(combo.currentText().size(), 40);
    }

    void cancelledColourDialogGivesMinusOne() {
        QtDialogs d;
        OnNextModal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
        QCOMPARE(d.SelectColor(255, true), -1);
        ScriptedDialogs s;
        QCOMPARE(s.SelectColor(255, false), -1);
    }

    void acceptedColourDialogGivesBgr() {
        QtDialogs d;
        OnNextModal([](QWidget* w) {
            auto* dlg = static_cast<QColorDialog*>(w);
            dlg->setCurrentColor(QColor(0x11, 0x22, 0x33));
            dlg->accept();
        });
        QCOMPARE(d.SelectColor(0, false), 0x332211);
    }

    void messageBoxesKeepTheirFlags_data() {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<int>("defaultIndex");
        QTest::addColumn<int>("enterAnswer");
        QTest::newRow("16 stop") << 16 << int(QMessageBox::Critical) << QStringList{QStringLiteral("OK")} << 0
                                 << 1;
        QTest::newRow("64 information")
            << 64 << int(QMessageBox::Information) << QStringList{QStringLiteral("OK")} << 0 << 1;
        QTest::newRow("21 retry cancel")
            << 21 << int(QMessageBox::Critical)
            << QStringList{QStringLiteral("&Wiederholen"), QStringLiteral("Abbrechen")} << 0 << 4;
        QTest::newRow("292 question, no default")
            << 292 << int(QMessageBox::Question)
            << QStringList{QStringLiteral("&Ja"), QStringLiteral("&Nein")} << 1 << 7;
        QTest::newRow("36 question, yes default")
            << 36 << int(QMessageBox::Question) << QStringList{QStringLiteral("&Ja"), QStringLiteral("&Nein")}
            << 0 << 6;
        QTest::newRow("3 yes no cancel")
            << 3 << int(QMessageBox::NoIcon)
            << QStringList{QStringLiteral("&Ja"), QStringLiteral("&Nein"), QStringLiteral("Abbrechen")} << 0
            << 6;
        QTest::newRow("48 exclamation")
            << 48 << int(QMessageBox::Warning) << QStringList{QStringLiteral("OK")} << 0 << 1;
    }
    void messageBoxesKeepTheirFlags() {
        QFETCH(int, flags);
        QFETCH(int, icon);
        QFETCH(QStringList, buttons);
        QFETCH(int, defaultIndex);
        QFETCH(int, enterAnswer);
        QtDialogs d;
        QStringList seen;
        int seenIcon = -1;
        QString defaultText;
        QString title;
        OnNextModal([&](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            QVERIFY(box);
            seenIcon = box->icon();
            title = box->windowTitle();
            for (QAbstractButton* b : box->buttons())
                seen << b->text();
            defaultText = box->defaultButton()->text();
            QTest::keyClick(box, Qt::Key_Return);
        });
        const int answer = d.MsgBox(QStringLiteral("Text\r\nzweite Zeile"), flags, QString());
        QCOMPARE(seenIcon, icon);
        QCOMPARE(title, QStringLiteral("Kolibrino"));
        std::sort(seen.begin(), seen.end());
        QStringList expected = buttons;
        std::sort(expected.begin(), expected.end());
        QCOMPARE(seen, expected);
        QCOMPARE(defaultText, buttons[defaultIndex]);
        QCOMPARE(answer, enterAnswer);
        ScriptedDialogs s;
        QCOMPARE(s.MsgBox(QStringLiteral("x"), flags, QString()),
                 flags == 21 ? int(Msg::Cancel) : enterAnswer);
    }

    void errorTrapRetriesUntilTheOperatorCancels() {
        ScriptedDialogs s;
        s.AnswerMsgBox(Msg::Retry);
        s.AnswerMsgBox(Msg::Retry);
        s.AnswerMsgBox(Msg::Cancel);
        int runs = 0;
        QVERIFY(!RunTrapped(s, [&] {
            ++runs;
            return QStringLiteral("Zugriff verweigert");
        }));
        QCOMPARE(runs, 3);
        QCOMPARE(s.boxes.size(), 3);
        QCOMPARE(s.boxes[0].text, QStringLiteral("FEHLER\r\n\r\n\tZugriff verweigert"));
        QCOMPARE(s.boxes[0].flags, 21);
    }

    void errorTrapRetryCanSucceed() {
        ScriptedDialogs s;
        s.AnswerMsgBox(Msg::Retry);
        int runs = 0;
        QVERIFY(RunTrapped(s, [&] { return ++runs < 2 ? QStringLiteral("noch nicht") : QString(); }));
        QCOMPARE(runs, 2);
    }

    void inputBoxCancelIsNoAnswer() {
        QtDialogs d;
        OnNextModal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
        QVERIFY(!d.InputBox(QStringLiteral("Bitte den Namen für den neuen Ordner eingeben"),
                            QStringLiteral("Ordnername"), {})
                     .has_value());
        OnNextModal([](QWidget* w) {
            QTest::keyClicks(w->focusWidget(), QStringLiteral("Neu"));
            static_cast<QDialog*>(w)->accept();
        });
        QCOMPARE(d.InputBox(QStringLiteral("Name"), {}, {}).value_or(QString()), QStringLiteral("Neu"));
    }

    void qtStandardButtonsSpeakGerman() {
        QVERIFY(InstallGermanTranslation(*QCoreApplication::instance()));
        QMessageBox plain;
        plain.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(plain.button(QMessageBox::Cancel)->text(), QStringLiteral("Abbrechen"));
        QtDialogs d;
        QString cancel;
        OnNextModal([&cancel](QWidget* w) {
            if (auto* box = w->findChild<QDialogButtonBox*>())
                if (QPushButton* b = box->button(QDialogButtonBox::Cancel)) cancel = b->text();
            static_cast<QDialog*>(w)->reject();
        });
        QVERIFY(
            !d.InputBox(QStringLiteral("Namen für das Log eingeben/ändern"), QStringLiteral("Dateiname"), {})
                 .has_value());
        QCOMPARE(cancel, QStringLiteral("Abbrechen"));
    }
    // A dupe question answered, the next call typed at once: the keys go to the main
    // window's call field, whether or not a window manager hands the focus back.
    void closingABoxGivesTheKeysBackToTheWindowBelow() {
        ReturnFocusAfterModalWindows(*qApp);
        QWidget main;
        main.setWindowTitle(QStringLiteral("Kolibrino (A.KOLBO)"));
        auto* call = new QLineEdit(&main);
        main.show();
        main.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&main));
        call->setFocus();
        QtDialogs d(&main);
        OnNextModal([](QWidget* w) {
            QTest::keyClick(w, Qt::Key_J); // "&Ja"
        });
        QCOMPARE(d.MsgBox(QStringLiteral("Soll das QSO als DUPE geloggt werden?"), 292, QString()),
                 int(Msg::Yes));
        QTRY_COMPARE(QApplication::activeWindow(), &main);
        QCOMPARE(QApplication::focusWidget(), call);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("OE1ABC"));
        QCOMPARE(call->text(), QStringLiteral("OE1ABC"));
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
