// A random walk through the program: from fixed seeds, random sequences of what an
// operator does across the windows (log a contact, correct any field of a contact with
// any text, delete a contact, switch the log, kill the program with SIGKILL), each
// checked against a plain reference model of the logs written for this test. After
// every step:
//   - the log file loads, and every contact line holds its 19 file fields (the record's
//     20th, the running number, is the load's);
//   - the file holds the contacts of the reference model (call, band, mode, district),
//     and a correction changed only the contact it was made on;
//   - what the grid shows equals the grid of a fresh load of the file;
//   - `kolibrino-cli score` on the file equals the figures of the result window.
//
// KOLIBRINO_WALK_ACTIONS sets the number of steps (the suite walks a short round;
// tools/dev.sh walk walks a long one), KOLIBRINO_WALK_SEED the first seed. Every
// finding is listed with its seed and step, so that a walk can be replayed.
#include "core/cp1252.h"
#include "core/tallies.h"
#include "corrections/install_corrections.h"
#include "entry/log_grid_model.h"
#include "scoring/install_scoring.h"
#include "scoring/score.h"
#include "scoring/statistik_window.h"
#include "scoring_support.h"
#include "setup/log_switch.h"
#include "setup/main_window_setup.h"
#include "setup/modal.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRandomGenerator>
#include <csignal>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QString kLogs[2] = {QStringLiteral("walk.KOLBO"), QStringLiteral("zweit.KOLBO")};

// What the reference model knows of a contact.
struct Ref {
    QString call;
    int band = 0;
    QString mode;
    QString bezirk;
    QString note;
    bool operator==(const Ref&) const = default;
};

QString Show(const Ref& r) {
    return QStringLiteral("%1/%2/%3/%4/%5").arg(r.call).arg(r.band).arg(r.mode, r.bezirk, r.note);
}

// One key press per character (a character outside the basic plane is one key too),
// sent to the control itself.
void TypeInto(QWidget* w, const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        QString one(text[i]);
        if (text[i].isHighSurrogate() && i + 1 < text.size()) one += text[++i];
        const QChar c = one[0];
        Qt::Key key = Qt::Key_unknown;
        if (c >= u'A' && c <= u'Z') key = Qt::Key(Qt::Key_A + (c.unicode() - u'A'));
        if (c >= u'a' && c <= u'z') key = Qt::Key(Qt::Key_A + (c.unicode() - u'a'));
        if (c >= u'0' && c <= u'9') key = Qt::Key(Qt::Key_0 + (c.unicode() - u'0'));
        if (c == u' ') key = Qt::Key_Space;
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, one);
        QApplication::sendEvent(w, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, one);
        QApplication::sendEvent(w, &release);
    }
}

// Lets the one-shot refresh timers of the side windows run.
void Settle() {
    for (int i = 0; i < 5; ++i) {
        QTest::qWait(5);
        QCoreApplication::processEvents();
    }
}

void Clear(QLineEdit* e) {
    e->setFocus();
    e->selectAll();
    QTest::keyClick(e, Qt::Key_Backspace);
}

class Walk {
public:
    Walk(quint32 seed, QStringList* findings) : seed_(seed), rng_(seed), findings_(findings) {}

    // One walk of n steps; false when the program could not be started at all.
    bool Run(int n, int* walked) {
        setup::SetDriverMode(true);
        f_.Ini(QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen"), QStringLiteral("-1"));
        QDir().mkpath(f_.home.Path(QStringLiteral("xdg")));
        for (const QString& log : kLogs)
            f_.WriteLog(log, {});
        current_ = kLogs[0];
        if (!Start()) return false;
        for (step_ = 0; step_ < n && findings_->size() < 20; ++step_) {
            const quint32 pick = rng_.bounded(100u);
            if (step_ == 20) // every walk of that length kills the program at least once
                KillRound();
            else if (pick < 45)
                Contact();
            else if (pick < 70)
                Edit();
            else if (pick < 80)
                Delete();
            else if (pick < 86)
                Bulk();
            else if (pick < 94)
                Switch();
            else
                KillRound();
            if (!f_.window) return true; // a failed start, already told
            Check();
            ++*walked;
        }
        setup::ClearModalDrivers();
        return true;
    }

private:
    void Finding(const QString& what) {
        *findings_ << QStringLiteral("seed %1 step %2: %3").arg(seed_).arg(step_).arg(what);
    }

    bool Start() {
        qputenv("KOLIBRINO_LOG", current_.toLocal8Bit());
        f_.window = std::make_unique<HauptForm>(f_.home.model, f_.dialogs, f_.clock);
        InstallScoring(*f_.window, f_.home.model, f_.dialogs, f_.clock);
        corrections::InstallCorrections(*f_.window, f_.home.model, f_.dialogs, f_.clock);
        if (!f_.window->Load()) {
            Finding(QStringLiteral("the main window does not start on %1").arg(current_));
            f_.window.reset();
            return false;
        }
        f_.window->show();
        // The result window comes back by itself when it was open at the last end.
        if (!f_.Menu("MnStatistik")->isChecked()) f_.Menu("MnStatistik")->trigger();
        statistik_ = OpenStatistik(*f_.window);
        if (!statistik_) Finding(QStringLiteral("the result window does not open"));
        return true;
    }

    QString RandomCall() {
        QString s = QStringLiteral("OE%1").arg(1 + rng_.bounded(9u));
        for (int i = 0, n = 2 + int(rng_.bounded(2u)); i < n; ++i)
            s += QChar(u'A' + int(rng_.bounded(26u)));
        return s + QString::number(next_++);
    }
    QString RandomBezirk() {
        const std::vector<BezirkRecord>& b = f_.home.model.BezirkRecords;
        return b[1 + rng_.bounded(quint32(b.size() - 1))].Code;
    }
    // Text an operator or a paste could bring: plain, lower case, separators of the
    // file, tag text, emoji, characters outside code page 1252, long.
    QString RandomText() {
        static const QStringList parts = {
            QStringLiteral("Portabel"), QStringLiteral("oe3yyy "),  QStringLiteral("\u00B6"),
            QStringLiteral("\u00D7"),   QStringLiteral("[ENDHEAD:]"), QStringLiteral("\U0001F600"),
            QStringLiteral("\u03A9"),   QStringLiteral("59"),        QStringLiteral("OE1\u00B6XY"),
            QStringLiteral("x"),        QStringLiteral("  "),        QStringLiteral("\u00E4\u00F6\u00FC\u00DF"),
            QStringLiteral("[MYCALL:]"), QStringLiteral("1234567890123456789"), QStringLiteral("\t")};
        QString t;
        for (int i = 0, n = 1 + int(rng_.bounded(4u)); i < n; ++i)
            t += parts[int(rng_.bounded(quint32(parts.size())))];
        if (rng_.bounded(6u) == 0) t = t.repeated(20);
        return t;
    }

    std::vector<Ref>& RefOf() { return refs_[current_]; }

    // A valid contact typed into the entry fields, Enter in the call field.
    void Contact() {
        const QString call = RandomCall();
        const int band = int(rng_.bounded(2u));
        const int mode = int(rng_.bounded(2u));
        const QString bezirk = RandomBezirk();
        f_.dialogs = ScriptedDialogs();
        const size_t before = f_.home.model.LogRecords.size();
        f_.Type(call, band, bezirk, mode);
        if (f_.home.model.LogRecords.size() != before + 1) {
            Finding(QStringLiteral("the contact %1 %2 was not logged (%3)")
                        .arg(call, bezirk, f_.Label13()->text()));
            return;
        }
        RefOf().push_back({call, band == 0 ? 40 : 80, mode == 0 ? QStringLiteral("SSB") : QStringLiteral("CW"),
                           bezirk, QString()});
    }

    // The grid row of the n-th live contact of the reference, by call.
    int RowOfCall(const QString& call) const {
        for (int r = 0; r < f_.Grid().DataRows(); ++r)
            if (f_.Grid().Text(r, kGridColCall) == call) return r;
        return -1;
    }

    void Popup(int row, const char* entry) {
        LogGridView* view = f_.window->GridView();
        view->scrollTo(f_.Grid().index(row, 0));
        QTest::mouseClick(view->viewport(), Qt::RightButton, {},
                          view->visualRect(f_.Grid().index(row, 4)).center());
        f_.window->PopupMenu()->hide();
        QAction* a = f_.window->Action(QString::fromLatin1(entry));
        if (!a || !a->isEnabled()) return Finding(QStringLiteral("pop-up entry %1 not there").arg(QLatin1String(entry)));
        a->trigger();
    }

    // "Bearbeiten" on a random contact: one random field gets random text, OK.
    void Edit() {
        std::vector<Ref>& ref = RefOf();
        if (ref.empty()) return Contact();
        const size_t at = rng_.bounded(quint32(ref.size()));
        const int row = RowOfCall(ref[at].call);
        if (row < 0) return Finding(QStringLiteral("%1 is not in the grid").arg(ref[at].call));
        static const char* const fields[] = {"Text8", "Text3", "Text4", "Text5", "Combo6", "Combo5"};
        const char* field = fields[rng_.bounded(6u)];
        const QString text = RandomText();
        f_.dialogs = ScriptedDialogs();
        bool opened = false;
        setup::PushModalDriver([&](QDialog& d) {
            opened = true;
            QLineEdit* e = nullptr;
            if (auto* c = d.findChild<QComboBox*>(QString::fromLatin1(field)))
                e = c->lineEdit();
            else
                e = d.findChild<QLineEdit*>(QString::fromLatin1(field));
            if (e) {
                Clear(e);
                TypeInto(e, text);
            }
            // A box of the window's own checks keeps it open: it is then cancelled.
            if (auto* ok = d.findChild<QPushButton*>(QStringLiteral("Command4")))
                QTest::mouseClick(ok, Qt::LeftButton);
        });
        Popup(row, "MnVerstecktBearbeiten");
        setup::ClearModalDrivers();
        if (!opened) return Finding(QStringLiteral("the edit window did not open on %1").arg(ref[at].call));
        lastEdit_ = QStringLiteral("%1 = \"%2\" on %3").arg(QLatin1String(field), text, ref[at].call);
        editedCall_ = ref[at].call;
        editPending_ = true;
    }

    void Delete() {
        std::vector<Ref>& ref = RefOf();
        if (ref.empty()) return Contact();
        const size_t at = rng_.bounded(quint32(ref.size()));
        const int row = RowOfCall(ref[at].call);
        if (row < 0) return Finding(QStringLiteral("%1 is not in the grid").arg(ref[at].call));
        f_.dialogs = ScriptedDialogs();
        f_.dialogs.AnswerMsgBox(Msg::Yes); // "Soll dieser Eintrag wirklich gelöscht werden?"
        Popup(row, "MnVerstecktLoeschen");
        ref.erase(ref.begin() + qsizetype(at));
    }

    // "Log nachträglich ändern" over the whole log: the band, or the operator call with
    // random text; every question answered as the operator who means it.
    void Bulk() {
        f_.dialogs = ScriptedDialogs();
        f_.dialogs.AnswerMsgBox(Msg::Yes); // "Möchtest du die Änderungen wirklich übernehmen?"
        f_.dialogs.AnswerMsgBox(Msg::Ok);  // "Änderungen erfolgreich abgeschlossen" ...
        f_.dialogs.AnswerMsgBox(Msg::Yes); // "Möchtest du die Änderungen wirklich speichern?"
        const bool band = rng_.bounded(2u) == 0;
        const QString value = band ? (rng_.bounded(2u) == 0 ? QStringLiteral("40m") : QStringLiteral("80m"))
                                   : RandomText();
        bool driven = false;
        setup::PushModalDriver([&](QDialog& d) {
            driven = true;
            auto* option = d.findChild<QRadioButton*>(band ? QStringLiteral("Option1_4") : QStringLiteral("Option1_3"));
            auto* combo = d.findChild<QComboBox*>(QStringLiteral("Combo1"));
            auto* apply = d.findChild<QPushButton*>(QStringLiteral("Command2"));
            auto* save = d.findChild<QPushButton*>(QStringLiteral("Command6"));
            if (!option || !combo || !apply || !save) return;
            QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
            combo->clearEditText();
            combo->lineEdit()->setFocus();
            TypeInto(combo->lineEdit(), value);
            QTest::mouseClick(apply, Qt::LeftButton);
            QTest::mouseClick(save, Qt::LeftButton);
        });
        f_.Menu("MnLogExportierenDatumZeit")->trigger();
        setup::ClearModalDrivers();
        if (!driven) return Finding(QStringLiteral("the bulk change window did not open"));
        lastEdit_ = QStringLiteral("bulk %1 = \"%2\"").arg(band ? QStringLiteral("band") : QStringLiteral("opcall"), value);
        if (band && !RefOf().empty()) bulkBand_ = value == QLatin1String("40m") ? 40 : 80;
    }

    void Switch() {
        const QString previous = current_;
        const QString next = current_ == kLogs[0] ? kLogs[1] : kLogs[0];
        f_.home.model.CurrentLogName = next;
        f_.dialogs = ScriptedDialogs();
        const auto r = setup::FinishOpenLog(f_.home.model, f_.dialogs, setup::HooksOf(*f_.window, f_.home.model),
                                            previous);
        if (r != setup::SwitchResult::Switched) {
            f_.home.model.CurrentLogName = previous;
            return Finding(QStringLiteral("switch to %1 failed").arg(next));
        }
        current_ = next;
    }

    // The program itself in a child process, driven through its standard input, killed
    // with SIGKILL after a random number of contacts; then the window again.
    void KillRound() {
        f_.window->close();
        f_.window.reset();
        statistik_ = nullptr;
        // The program opens the last log at its start.
        f_.Ini(QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), current_);
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KOLIBRINO_TEST_DRIVE"), QStringLiteral("1"));
        env.insert(QStringLiteral("KOLIBRINO_LOG"), current_);
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        child.setProcessEnvironment(env);
        child.setStandardErrorFile(QProcess::nullDevice());
        child.start(QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino"), {});
        child.waitForStarted(30000);
        const int contacts = int(rng_.bounded(4u));
        QString inFlight;
        Ref inFlightRef;
        bool up = false;
        QByteArray input;
        QElapsedTimer t;
        t.start();
        int sent = 0;
        auto send = [&] {
            if (sent >= contacts) return false;
            ++sent;
            const int band = int(rng_.bounded(2u));
            inFlightRef = {RandomCall(), band == 0 ? 40 : 80, QStringLiteral("SSB"), RandomBezirk(), QString()};
            inFlight = inFlightRef.call;
            child.write(QStringLiteral("Q %1 %2 0 %3\n").arg(inFlight).arg(band).arg(inFlightRef.bezirk).toUtf8());
            return true;
        };
        // Up to the last answer, then the kill lands while the next contact may be in flight.
        bool sendOneMore = rng_.bounded(2u) == 0;
        while (child.state() != QProcess::NotRunning && t.elapsed() < 60000) {
            child.waitForReadyRead(200);
            input += child.readAllStandardOutput();
            bool next = false;
            for (qsizetype eol = input.indexOf('\n'); eol >= 0; eol = input.indexOf('\n')) {
                const QByteArray line = input.left(eol).trimmed();
                input.remove(0, eol + 1);
                if (line == "R") {
                    up = true;
                    next = true;
                } else if (line.startsWith("A ")) {
                    RefOf().push_back(inFlightRef);
                    inFlight.clear();
                    next = true;
                } else if (line.startsWith("N ")) {
                    Finding(QStringLiteral("the driven program refused %1").arg(inFlight));
                    inFlight.clear();
                    next = true;
                } else if (line.startsWith("M ")) {
                    Finding(QStringLiteral("the driven program showed: %1").arg(QString::fromUtf8(line.mid(2))));
                }
            }
            if (next && !send()) {
                if (sendOneMore) {
                    sendOneMore = false;
                    inFlightRef = {RandomCall(), 80, QStringLiteral("SSB"), RandomBezirk(), QString()};
                    inFlight = inFlightRef.call;
                    child.write(QStringLiteral("Q %1 1 0 %2\n").arg(inFlight, inFlightRef.bezirk).toUtf8());
                }
                break;
            }
        }
        if (!up) Finding(QStringLiteral("the driven program did not come up"));
        ::kill(pid_t(child.processId()), SIGKILL);
        child.waitForFinished(10000);
        ++kills_;
        // A contact in flight at the kill is there or not; the reference takes what is.
        if (!inFlight.isEmpty() && FileCalls().contains(inFlight)) RefOf().push_back(inFlightRef);
        Start();
    }

    QStringList FileCalls() {
        Model m;
        m.SetLocale(AustrianLocale());
        ScriptedDialogs d;
        QStringList calls;
        if (LoadLog(m, d, f_.home.model.LogFolder + current_) != 1) return calls;
        for (const QsoRecord& r : m.LogRecords)
            calls << r.Call;
        return calls;
    }

    // The grid's rows as texts without the running number (a load numbers anew).
    static QStringList GridRows(const LogGridModel& g) {
        QStringList rows;
        for (int r = 0; r < g.DataRows(); ++r) {
            QStringList cells;
            for (int c = 0; c < kGridColumns; ++c)
                if (c != kGridColLaufNr) cells << g.Text(r, c);
            rows << cells.join(QLatin1Char('|'));
        }
        rows.sort();
        return rows;
    }

    void Check() {
        if (!f_.window) return;
        Settle();
        const QString path = f_.home.model.LogFolder + current_;
        const QByteArray bytes = ReadBytes(path);
        // Every contact line holds its 20 fields.
        const QString text = FromCp1252(bytes);
        const qsizetype head = text.indexOf(QStringLiteral("[ENDHEAD:]\r\n"));
        if (head < 0) return Finding(QStringLiteral("the file has no header end"));
        const QStringList lines = text.mid(head + 12).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        // The nineteen file fields, each closed by its separator; the load adds the
        // running number, the record's twentieth.
        for (const QString& line : lines)
            if (line.count(QChar(0x00B6)) != 19 || !line.endsWith(QChar(0x00B6)))
                Finding(QStringLiteral("a contact line with %1 fields after %2: %3")
                            .arg(line.count(QChar(0x00B6)))
                            .arg(lastEdit_, line));
        // The file against the reference model.
        Model m;
        m.SetLocale(AustrianLocale());
        m.DataFolder = f_.home.model.DataFolder;
        ScriptedDialogs d;
        LoadBezirkTable(m, d);
        if (LoadLog(m, d, path) != 1) return Finding(QStringLiteral("the log does not load after %1").arg(lastEdit_));
        std::vector<Ref>& ref = RefOf();
        std::vector<Ref> file;
        for (const QsoRecord& r : m.LogRecords)
            if (r.Status != Status::Deleted)
                file.push_back({r.Call, r.Band, r.Mode, r.Bezirk.trimmed(), r.Bemerkung});
        if (bulkBand_) {
            // A band changed over the whole log, if it was saved: every contact or none.
            bool all = true;
            for (const Ref& r : file)
                all = all && r.band == bulkBand_;
            if (all)
                for (Ref& r : ref)
                    r.band = bulkBand_;
            bulkBand_ = 0;
        }
        if (editPending_) {
            // A correction changes its own contact only; the reference takes what it became.
            editPending_ = false;
            if (file.size() == ref.size())
                for (size_t i = 0; i < ref.size(); ++i)
                    if (ref[i].call == editedCall_) {
                        ref[i] = file[i];
                        break;
                    }
        }
        // Notes are the edit's business (kept by the reference from the file).
        for (size_t i = 0; i < file.size() && i < ref.size(); ++i)
            ref[i].note = file[i].note;
        if (file != ref) {
            QStringList want, got;
            for (const Ref& r : ref)
                want << Show(r);
            for (const Ref& r : file)
                got << Show(r);
            Finding(QStringLiteral("file and reference differ after %1:\n  want %2\n  got  %3")
                        .arg(lastEdit_, want.join(QLatin1Char(' ')), got.join(QLatin1Char(' '))));
            ref = file; // go on from what is
        }
        lastEdit_ = QStringLiteral("step %1").arg(step_);
        // The grid against a fresh load.
        LogGridModel fresh(m.Formats);
        DatenInGrid1Neu(m, fresh);
        const QStringList shown = GridRows(f_.Grid());
        const QStringList loaded = GridRows(fresh);
        if (shown != loaded)
            Finding(QStringLiteral("the grid differs from the file:\n  grid %1\n  file %2")
                        .arg(shown.join(QStringLiteral(" / ")), loaded.join(QStringLiteral(" / "))));
        // The command line's score against the result window.
        if (!statistik_) return;
        QString window;
        for (const auto& [caption, value] : ScoreLabels(statistik_->Shown()))
            window += caption + QStringLiteral(": ") + value + QLatin1Char('\n');
        const CliResult cli = RunCli(f_.home.dir.path(), {QStringLiteral("score"), path});
        if (cli.code != 0 || QString::fromLocal8Bit(cli.out) != window)
            Finding(QStringLiteral("kolibrino-cli score differs from the result window:\n%1\n--\n%2")
                        .arg(QString::fromLocal8Bit(cli.out), window));
    }

public:
    int kills_ = 0;

private:
    quint32 seed_;
    QRandomGenerator rng_;
    QStringList* findings_;
    ScoringFixture f_;
    Statistik* statistik_ = nullptr;
    QString current_;
    std::map<QString, std::vector<Ref>> refs_;
    int step_ = 0;
    int next_ = 1;
    QString lastEdit_;
    QString editedCall_;
    bool editPending_ = false;
    int bulkBand_ = 0;
};

} // namespace

class TestRandomWalk : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void cleanup() { setup::ClearModalDrivers(); }

    void everyStepKeepsWindowFileAndScoreAlike() {
        const QString program = QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino");
        QVERIFY2(QFileInfo::exists(program), "build the program first");
        const int actions = qEnvironmentVariableIsSet("KOLIBRINO_WALK_ACTIONS")
                                ? qEnvironmentVariableIntValue("KOLIBRINO_WALK_ACTIONS")
                                : 40;
        const quint32 firstSeed = qEnvironmentVariableIsSet("KOLIBRINO_WALK_SEED")
                                      ? quint32(qEnvironmentVariableIntValue("KOLIBRINO_WALK_SEED"))
                                      : 1u;
        const int perWalk = 40;
        QStringList findings;
        int walked = 0;
        int kills = 0;
        for (quint32 seed = firstSeed; walked < actions && findings.size() < 20; ++seed) {
            Walk walk(seed, &findings);
            QVERIFY(walk.Run(std::min(perWalk, actions - walked), &walked));
            kills += walk.kills_;
        }
        qInfo("random walk: %d actions, %d kills, %lld findings", walked, kills, qlonglong(findings.size()));
        QVERIFY2(findings.isEmpty(), qPrintable(findings.join(QLatin1Char('\n'))));
    }
};

QTEST_MAIN(TestRandomWalk)
#include "tst_random_walk.moc"
