#include "app/test_drive.h"

#include "core/clock.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "corrections/install_corrections.h"
#include "entry/log_grid_model.h"
#include "entry/main_window.h"
#include "setup/log_switch.h"
#include "setup/main_window_setup.h"
#include "setup/modal.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSocketNotifier>
#include <cstdio>
#include <unistd.h>

namespace kolibrino {
namespace {

void Answer(const QByteArray& line) {
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

Qt::Key KeyOf(QChar c) {
    if (c >= u'A' && c <= u'Z') return Qt::Key(Qt::Key_A + (c.unicode() - u'A'));
    if (c >= u'a' && c <= u'z') return Qt::Key(Qt::Key_A + (c.unicode() - u'a'));
    if (c >= u'0' && c <= u'9') return Qt::Key(Qt::Key_0 + (c.unicode() - u'0'));
    if (c == u'/') return Qt::Key_Slash;
    return Qt::Key_unknown;
}

// One key as the operator presses it: press and release, through the event filters.
void Press(QWidget* w, Qt::Key key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(w, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(w, &release);
}

void TypeText(QWidget* w, const QString& text) {
    for (const QChar c : text)
        Press(w, KeyOf(c), QString(c));
}

class Drive : public QObject {
public:
    Drive(HauptForm& w, Model& m, Dialogs& dialogs)
        : QObject(&w), w_(w), m_(m), dialogs_(dialogs), notifier_(STDIN_FILENO, QSocketNotifier::Read, this) {
        connect(&notifier_, &QSocketNotifier::activated, this, [this] { ReadInput(); });
    }

private:
    void ReadInput() {
        char buf[4096];
        const ssize_t n = ::read(STDIN_FILENO, buf, sizeof buf);
        if (n <= 0) {
            notifier_.setEnabled(false);
            return;
        }
        pending_.append(buf, qsizetype(n));
        for (qsizetype eol = pending_.indexOf('\n'); eol >= 0; eol = pending_.indexOf('\n')) {
            const QByteArray line = pending_.left(eol).trimmed();
            pending_.remove(0, eol + 1);
            if (!line.isEmpty()) Run(QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
        }
    }

    void Run(const QStringList& cmd) {
        if (cmd[0] == QLatin1String("Q") && cmd.size() == 5) return Contact(cmd);
        if (cmd[0] == QLatin1String("O") && cmd.size() >= 2) {
            IniWriteSection({}, QStringLiteral("OPCALLs"), cmd.mid(1));
            return Answer("S");
        }
        if (cmd[0] == QLatin1String("L") && cmd.size() == 2) {
            const QString previous = m_.CurrentLogName;
            m_.CurrentLogName = cmd[1];
            setup::FinishOpenLog(m_, dialogs_, setup::HooksOf(w_, m_), previous);
            return Answer((m_.CurrentLogName == cmd[1] ? "L " : "N ") + cmd[1].toUtf8());
        }
        if (cmd[0] == QLatin1String("D") && cmd.size() == 2) return Delete(cmd[1]);
        if (cmd[0] == QLatin1String("E") && cmd.size() == 4) return Edit(cmd[1], cmd[2], cmd[3]);
        Answer("?");
    }

    int RowOfCall(const QString& call) const {
        const LogGridModel& grid = w_.Grid();
        for (int r = 0; r < grid.DataRows(); ++r)
            if (grid.Text(r, kGridColCall) == call) return r;
        return -1;
    }

    // The live record of call, or nullptr.
    const QsoRecord* LiveRecord(const QString& call) const {
        for (const QsoRecord& r : m_.LogRecords)
            if (r.Status != Status::Deleted && r.Call == call) return &r;
        return nullptr;
    }

    void Delete(const QString& call) {
        const int row = RowOfCall(call);
        if (row < 0) return Answer("N " + call.toUtf8());
        ScriptedDialogs operatorSays;
        operatorSays.AnswerMsgBox(Msg::Yes); // "Soll dieser Eintrag wirklich gelöscht werden?"
        corrections::LoeschenFlow(w_, m_, operatorSays, clock_, row);
        const bool deleted = !LiveRecord(call) && operatorSays.boxes.size() == 1;
        Answer((deleted ? "D " : "N ") + call.toUtf8());
    }

    void Edit(const QString& call, const QString& newCall, const QString& bezirk) {
        const int row = RowOfCall(call);
        if (row < 0) return Answer("N " + call.toUtf8());
        ScriptedDialogs operatorSays;
        // The window runs as a driven modal: the fields are typed into and OK pressed
        // where the operator would, without a nested event loop.
        setup::SetDriverMode(true);
        setup::PushModalDriver([&](QDialog& d) {
            auto* text3 = d.findChild<QLineEdit*>(QStringLiteral("Text3"));
            auto* combo5 = d.findChild<QComboBox*>(QStringLiteral("Combo5"));
            auto* ok = d.findChild<QPushButton*>(QStringLiteral("Command4"));
            if (!text3 || !combo5 || !ok) return;
            text3->setFocus();
            text3->selectAll();
            Press(text3, Qt::Key_Backspace, QStringLiteral("\b"));
            TypeText(text3, newCall);
            combo5->lineEdit()->selectAll();
            Press(combo5->lineEdit(), Qt::Key_Backspace, QStringLiteral("\b"));
            TypeText(combo5->lineEdit(), bezirk);
            ok->click();
        });
        corrections::BearbeitenFlow(w_, m_, operatorSays, clock_, row);
        setup::ClearModalDrivers();
        setup::SetDriverMode(false);
        const QsoRecord* r = LiveRecord(newCall);
        const bool edited =
            r && r->Bezirk.trimmed() == bezirk && !LiveRecord(call) && operatorSays.boxes.isEmpty();
        Answer(edited ? "E " + newCall.toUtf8() : "N " + call.toUtf8());
    }

    void Contact(const QStringList& cmd) {
        auto* text3 = w_.findChild<QLineEdit*>(QStringLiteral("Text3"));
        auto* combo1 = w_.findChild<QComboBox*>(QStringLiteral("Combo1"));
        auto* combo2 = w_.findChild<QComboBox*>(QStringLiteral("Combo2"));
        auto* combo5 = w_.findChild<QComboBox*>(QStringLiteral("Combo5"));
        if (!text3 || !combo1 || !combo2 || !combo5) return Answer("?");
        combo1->setCurrentIndex(cmd[2].toInt());
        combo2->setCurrentIndex(cmd[3].toInt());
        text3->setFocus();
        text3->clear();
        TypeText(text3, cmd[1]);
        combo5->clearEditText();
        TypeText(combo5->lineEdit(), cmd[4]);
        const size_t before = m_.LogRecords.size();
        Press(text3, Qt::Key_Return, QStringLiteral("\r"));
        const bool logged = m_.LogRecords.size() == before + 1 && m_.LogRecords.back().Call == cmd[1];
        Answer((logged ? "A " : "N ") + cmd[1].toUtf8());
    }

    HauptForm& w_;
    Model& m_;
    Dialogs& dialogs_;
    SystemTimeSource clock_; // the program's own clock is the system's too
    QSocketNotifier notifier_;
    QByteArray pending_;
};

} // namespace

bool TestDriveWanted() {
    return qEnvironmentVariableIntValue("KOLIBRINO_TEST_DRIVE") == 1;
}

int DriveDialogs::MsgBox(const QString& text, int flags, const QString&) {
    QString line = text;
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" | "));
    line.replace(QLatin1Char('\n'), QStringLiteral(" | "));
    Answer("M " + line.toUtf8());
    if (Msg::Buttons(flags) == Msg::RetryCancel) return Msg::Cancel;
    return DefaultAnswer(flags);
}

bool InstallTestDrive(HauptForm& window, Model& m, Dialogs& dialogs) {
    if (!TestDriveWanted()) return false;
    new Drive(window, m, dialogs);
    Answer("R");
    return true;
}

} // namespace kolibrino
