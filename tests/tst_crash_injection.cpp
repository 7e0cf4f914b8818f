// Crash injection: the real program, offscreen in a child process, logs contacts and
// saves settings through its own window (driven by KOLIBRINO_TEST_DRIVE, see
// app/test_drive.h), and is killed with SIGKILL at random moments from fixed seeds.
// It also deletes and edits contacts through the grid's pop-up entries "Löschen" and
// "Bearbeiten". After every kill:
//   - the log loads;
//   - it holds exactly the contacts the program acknowledged, with the districts last
//     acknowledged, give or take the one command in flight at the kill: a contact
//     being logged is there or not, one being deleted is there or gone, and one being
//     edited stands either wholly as before or wholly as after the change, never both,
//     never neither, never a mix of the two;
//   - no file is half written: the log, its backup copies and the settings are whole;
//   - the settings file holds either the old or the new operator list.
//
// KOLIBRINO_CRASH_KILLS sets the number of kills (the suite runs a short round;
// tools/dev.sh crash runs 200 and more), KOLIBRINO_CRASH_SEED the first seed.
#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/settings.h"
#include "test_support.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <csignal>
#include <iterator>
#include <map>
#include <optional>
#include <set>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QString kLogName = QStringLiteral("crash.KOLBO");
const QString kOtherLog = QStringLiteral("zweit.KOLBO"); // the log switch goes back and forth
const int kProbeKeys = 40;

// A call nobody else in the run has: OE, an area digit, three letters.
QString CallNumber(int n) {
    QString s = QStringLiteral("OE%1").arg(1 + n % 9);
    int k = n / 9;
    for (int i = 0; i < 3; ++i) {
        s += QChar(u'A' + k % 26);
        k /= 26;
    }
    return s + QString::number(n / (9 * 26 * 26 * 26));
}

QStringList OperatorList(int version) {
    QStringList ops;
    for (int i = 0; i < 10; ++i)
        ops << QStringLiteral("OE%1OP%2").arg(1 + i % 9).arg(QChar(u'A' + (version + i) % 26));
    return ops;
}

struct Outcome {
    int kills = 0;
    int contactsAcknowledged = 0;
    int deletesAcknowledged = 0;
    int editsAcknowledged = 0;
    int killsInCorrection = 0; // a delete or edit was in flight at the kill
    int correctionsOnDisk = 0; // ... and its result was on disk already
    int settingsAcknowledged = 0;
    int switchesAcknowledged = 0;
    int killsDuringStart = 0;
    int leftoverTempFiles = 0;
    QStringList failures;
};

const char* const kBezirke[] = {"WI", "MD", "GZ"};

// The command whose answer had not come when the program was killed.
struct InFlight {
    enum Kind { None, Contact, Delete, Edit } kind = None;
    QString log;
    QString call;    // the contact logged, deleted or edited
    QString bezirk;  // its district (before the edit)
    QString newCall; // an edit's new call and district
    QString newBezirk;
};

class CrashRun {
public:
    CrashRun(const QString& program, quint32 seed) : program_(program), rng_(seed) {
        QVERIFY(home_.isValid());
        data_ = home_.path() + QLatin1Char('/');
        QDir().mkpath(data_ + QStringLiteral("Logs"));
        QDir().mkpath(data_ + QStringLiteral("xdg"));
        WriteBytes(data_ + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        // The settings: open the last log at start, no time offset, a probe section
        // that every rewrite must carry whole, and a first operator list.
        const QString ini = data_ + QLatin1String(kIniFileName);
        IniWrite(ini, QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen"), -1);
        IniWrite(ini, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), 12);
        IniWrite(ini, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), kLogName);
        QStringList probe;
        for (int i = 0; i < kProbeKeys; ++i)
            probe << QStringLiteral("Schluessel%1=Wert%1").arg(i);
        IniWriteSection(ini, QStringLiteral("KRASHPROBE"), probe);
        IniWriteSection(ini, QStringLiteral("OPCALLs"), OperatorList(0));
        // Two empty logs of the station.
        for (const QString& name : {kLogName, kOtherLog}) {
            Model m;
            m.SetLocale(AustrianLocale());
            m.Header = DefaultHeader(m);
            m.Header.MYCALL = QStringLiteral("OE1XYZ");
            m.Header.MYBZ = QStringLiteral("WI");
            m.Header.MYOPCALL = QStringLiteral("OE1XYZ");
            m.LogFolder = data_ + QStringLiteral("Logs/");
            m.CurrentLogName = name;
            BuildLogText(m, true, 2026);
            QCOMPARE(WriteLogFile(m), QString());
        }
    }

    // One life of the program: start, drive, kill at a random moment, check.
    void Round(Outcome& out) {
        // The program opens the last log at start: the one the settings name.
        current_ = IniReadString(data_ + QLatin1String(kIniFileName), QStringLiteral("Pathe"),
                                 QStringLiteral("LastLogFile"));
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KOLIBRINO_HOME"), home_.path());
        env.insert(QStringLiteral("XDG_DATA_HOME"), data_ + QStringLiteral("xdg"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("KOLIBRINO_TEST_DRIVE"), QStringLiteral("1"));
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_AT.UTF-8"));
        env.remove(QStringLiteral("KOLIBRINO_LOG"));
        child.setProcessEnvironment(env);
        child.setProcessChannelMode(QProcess::SeparateChannels);
        child.setStandardErrorFile(QProcess::nullDevice());
        child.start(program_, {});
        if (!child.waitForStarted(10000)) {
            out.failures << QStringLiteral("program did not start: %1").arg(program_);
            return;
        }
        // The moment of the kill: anywhere from the start-up to well into the logging.
        const int killAfterMs = int(rng_.bounded(1500u));
        QElapsedTimer clock;
        clock.start();
        bool ready = false;
        QByteArray input;
        InFlight inFlight;
        int inFlightOps = -1;
        auto sendNext = [&] {
            std::map<QString, QString>& logged = expected_[current_];
            inFlight = InFlight{};
            inFlight.log = current_;
            if (rng_.bounded(12u) == 0) {
                child.write("L " + (current_ == kLogName ? kOtherLog : kLogName).toUtf8() + '\n');
            } else if (rng_.bounded(5u) == 0) {
                inFlightOps = ++opsVersion_;
                child.write("O " + OperatorList(inFlightOps).join(QLatin1Char(' ')).toUtf8() + '\n');
            } else if (logged.size() >= 3 && rng_.bounded(4u) == 0) {
                auto it = logged.begin();
                std::advance(it, rng_.bounded(quint32(logged.size())));
                inFlight.call = it->first;
                inFlight.bezirk = it->second;
                if (rng_.bounded(2u) == 0) {
                    inFlight.kind = InFlight::Delete;
                    child.write("D " + inFlight.call.toUtf8() + '\n');
                } else {
                    inFlight.kind = InFlight::Edit;
                    inFlight.newCall = CallNumber(nextCall_++);
                    do
                        inFlight.newBezirk = QLatin1String(kBezirke[rng_.bounded(3u)]);
                    while (inFlight.newBezirk == inFlight.bezirk);
                    child.write(QStringLiteral("E %1 %2 %3\n")
                                    .arg(inFlight.call, inFlight.newCall, inFlight.newBezirk)
                                    .toUtf8());
                }
            } else {
                inFlight.kind = InFlight::Contact;
                inFlight.call = CallNumber(nextCall_++);
                inFlight.bezirk = QLatin1String(kBezirke[rng_.bounded(3u)]);
                child.write(QStringLiteral("Q %1 %2 %3 %4\n")
                                .arg(inFlight.call)
                                .arg(rng_.bounded(2u))
                                .arg(rng_.bounded(2u))
                                .arg(inFlight.bezirk)
                                .toUtf8());
            }
        };
        while (clock.elapsed() < killAfterMs && child.state() == QProcess::Running) {
            child.waitForReadyRead(std::max<int>(1, killAfterMs - int(clock.elapsed())));
            input += child.readAllStandardOutput();
            for (qsizetype eol = input.indexOf('\n'); eol >= 0; eol = input.indexOf('\n')) {
                const QByteArray line = input.left(eol).trimmed();
                input.remove(0, eol + 1);
                if (line == "R") {
                    ready = true;
                } else if (line.startsWith("A ")) {
                    expected_[inFlight.log][inFlight.call] = inFlight.bezirk;
                    ++out.contactsAcknowledged;
                    inFlight = InFlight{};
                } else if (line.startsWith("D ")) {
                    expected_[inFlight.log].erase(inFlight.call);
                    ++out.deletesAcknowledged;
                    inFlight = InFlight{};
                } else if (line.startsWith("E ")) {
                    expected_[inFlight.log].erase(inFlight.call);
                    expected_[inFlight.log][inFlight.newCall] = inFlight.newBezirk;
                    ++out.editsAcknowledged;
                    inFlight = InFlight{};
                } else if (line.startsWith("N ")) {
                    if (inFlight.kind != InFlight::Contact)
                        Fail(out, QStringLiteral("correction refused: %1").arg(QString::fromUtf8(line)));
                    inFlight = InFlight{}; // refused by a check: nothing promised
                } else if (line.startsWith("L ")) {
                    current_ = QString::fromUtf8(line.mid(2));
                    ++out.switchesAcknowledged;
                } else if (line == "S") {
                    ackedOps_ = inFlightOps;
                    inFlightOps = -1;
                    ++out.settingsAcknowledged;
                } else {
                    continue;
                }
                if (clock.elapsed() < killAfterMs) sendNext();
            }
        }
        if (!ready) ++out.killsDuringStart;
        if (child.state() == QProcess::Running) {
            ::kill(pid_t(child.processId()), SIGKILL);
            ++out.kills;
        } else {
            out.failures << QStringLiteral("round %1: the program ended by itself").arg(round_);
        }
        child.waitForFinished(10000);
        Check(out, inFlightOps, inFlight);
        ++round_;
    }

private:
    void Fail(Outcome& out, const QString& what) {
        out.failures << QStringLiteral("round %1: %2").arg(round_).arg(what);
    }

    // A log file is whole: it loads, and rebuilt from what it loaded it is the same
    // bytes behind the identification line (the program only ever writes that form).
    bool WholeLog(Outcome& out, const QString& path, Model* loaded) {
        bool ok = false;
        const QByteArray bytes = ReadWholeFile(path, &ok);
        if (!ok) {
            Fail(out, QStringLiteral("%1 cannot be read").arg(path));
            return false;
        }
        Model m;
        m.SetLocale(AustrianLocale());
        QString error;
        if (!ParseLog(m, bytes, &error)) {
            Fail(out, QStringLiteral("%1 does not load: %2").arg(path, error));
            return false;
        }
        const QByteArray rebuilt = ToCp1252(BuildLogText(m, false, 2026));
        auto body = [](const QByteArray& b) { return b.mid(b.indexOf("\r\n")); };
        if (body(rebuilt) != body(bytes)) {
            Fail(out, QStringLiteral("%1 is not whole (%2 bytes)").arg(path).arg(bytes.size()));
            return false;
        }
        if (loaded) *loaded = std::move(m);
        return true;
    }

    // The contacts of a log on disk against those acknowledged, with the command in
    // flight at the kill taken either way; what is on disk is the truth of the next
    // round.
    void CheckContacts(Outcome& out, const QString& name, const Model& m, const InFlight& inFlight) {
        std::map<QString, QString> disk; // call -> district
        for (const QsoRecord& r : m.LogRecords) {
            if (r.Status == Status::Deleted) continue;
            if (disk.count(r.Call)) Fail(out, QStringLiteral("%1 stands twice in %2").arg(r.Call, name));
            disk[r.Call] = r.Bezirk.trimmed();
        }
        std::map<QString, QString>& expected = expected_[name];
        if (inFlight.log == name) {
            const auto at = [&](const QString& call) -> std::optional<QString> {
                const auto it = disk.find(call);
                if (it == disk.end()) return std::nullopt;
                return it->second;
            };
            switch (inFlight.kind) {
            case InFlight::Contact:
                if (at(inFlight.call)) expected[inFlight.call] = inFlight.bezirk;
                break;
            case InFlight::Delete:
                ++out.killsInCorrection;
                if (!at(inFlight.call)) {
                    expected.erase(inFlight.call);
                    ++out.correctionsOnDisk;
                }
                break;
            case InFlight::Edit: {
                ++out.killsInCorrection;
                const bool before = at(inFlight.call) == inFlight.bezirk;
                const bool after = at(inFlight.newCall) == inFlight.newBezirk;
                if (before && after) {
                    Fail(out, QStringLiteral("edit %1 -> %2 stands both before and after in %3")
                                  .arg(inFlight.call, inFlight.newCall, name));
                } else if (after) {
                    ++out.correctionsOnDisk;
                    expected.erase(inFlight.call);
                    expected[inFlight.newCall] = inFlight.newBezirk;
                } else if (!before) {
                    Fail(out, QStringLiteral("edit %1 -> %2 is neither before nor after in %3")
                                  .arg(inFlight.call, inFlight.newCall, name));
                }
                break;
            }
            case InFlight::None:
                break;
            }
        }
        for (const auto& [call, bezirk] : expected) {
            const auto it = disk.find(call);
            if (it == disk.end())
                Fail(out, QStringLiteral("acknowledged contact %1 is missing in %2").arg(call, name));
            else if (it->second != bezirk)
                Fail(out, QStringLiteral("contact %1 has district %2, not %3, in %4")
                              .arg(call, it->second, bezirk, name));
        }
        for (const auto& [call, bezirk] : disk)
            if (!expected.count(call))
                Fail(out, QStringLiteral("contact %1 in %2 was never acknowledged there or was deleted")
                              .arg(call, name));
        expected = disk; // after a failure, go on from what is there
    }

    void Check(Outcome& out, int inFlightOps, const InFlight& inFlight) {
        for (const QString& name : {kLogName, kOtherLog}) {
            Model m;
            if (!WholeLog(out, data_ + QStringLiteral("Logs/") + name, &m)) continue;
            CheckContacts(out, name, m, inFlight);
        }
        // The backup copies are whole too, where they are.
        const QDir backups(data_ + QStringLiteral("Sicherung"));
        for (const QString& name :
             backups.entryList({QStringLiteral("*.KOLBO"), QStringLiteral("*.ALT")}, QDir::Files))
            WholeLog(out, backups.filePath(name), nullptr);
        // Temporary files a kill left behind are allowed (the next write replaces them)
        // but counted.
        for (const QString& folder :
             {data_, data_ + QStringLiteral("Logs/"), data_ + QStringLiteral("Sicherung/")})
            out.leftoverTempFiles +=
                int(QDir(folder).entryList({QStringLiteral(".*.tmp")}, QDir::Files | QDir::Hidden).size());
        // The settings: whole, and the operator list the old one or the new one.
        const QString ini = data_ + QLatin1String(kIniFileName);
        bool ok = false;
        const QByteArray bytes = ReadWholeFile(ini, &ok);
        if (!ok) return Fail(out, QStringLiteral("the settings file cannot be read"));
        if (!bytes.endsWith("\r\n")) Fail(out, QStringLiteral("the settings file is cut short"));
        const QStringList probe = ProfileReadSection(bytes, QStringLiteral("KRASHPROBE"));
        if (probe.size() != kProbeKeys)
            Fail(out, QStringLiteral("the settings lost keys (%1 of %2)").arg(probe.size()).arg(kProbeKeys));
        const QString last = ProfileReadString(bytes, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"));
        if (last != kLogName && last != kOtherLog)
            Fail(out, QStringLiteral("the settings lost the last log"));
        const QStringList ops = ProfileReadSection(bytes, QStringLiteral("OPCALLs"));
        const int acked = std::max(ackedOps_, 0);
        if (ops == OperatorList(acked)) return;
        if (inFlightOps >= 0 && ops == OperatorList(inFlightOps)) {
            ackedOps_ = inFlightOps; // the new list is on disk: it is the old one from now on
            return;
        }
        // The program itself rewrites the list at closing and from the operator field;
        // neither runs here, so anything else is a broken promise.
        Fail(out, QStringLiteral("operator list is neither old nor new: %1").arg(ops.join(QLatin1Char(','))));
    }

    QString program_;
    QRandomGenerator rng_;
    QTemporaryDir home_;
    QString data_;
    std::map<QString, std::map<QString, QString>> expected_; // by log file: call -> district
    QString current_;
    int nextCall_ = 0;
    int opsVersion_ = 0;
    int ackedOps_ = 0;
    int round_ = 0;
};

} // namespace

class TestCrashInjection : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    void everyAcknowledgedContactSurvivesAKill() {
        const QString program = QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino");
        QVERIFY2(QFileInfo::exists(program), "build the program first");
        const int kills = qEnvironmentVariableIsSet("KOLIBRINO_CRASH_KILLS")
                              ? qEnvironmentVariableIntValue("KOLIBRINO_CRASH_KILLS")
                              : 40;
        const quint32 firstSeed = qEnvironmentVariableIsSet("KOLIBRINO_CRASH_SEED")
                                      ? quint32(qEnvironmentVariableIntValue("KOLIBRINO_CRASH_SEED"))
                                      : 20260501u;
        Outcome out;
        QElapsedTimer clock;
        clock.start();
        // A fresh data folder every 50 kills keeps the log at a few hundred contacts.
        for (int done = 0, seed = 0; done < kills; ++seed) {
            CrashRun run(program, firstSeed + quint32(seed));
            for (int i = 0; i < 50 && done < kills; ++i, ++done)
                run.Round(out);
        }
        const QString summary =
            QStringLiteral(
                "Absturztest: %1 Kills in %2 s (%3 während des Starts), %4 Kontakte, %9 Löschungen, %10 "
                "Bearbeitungen, %5 Einstellungen und %8 Logwechsel bestätigt, %6 liegen gebliebene "
                "Temporärdateien, %11 Kills während einer Korrektur (%12 davon schon auf der Platte), %7 "
                "Fehler")
                .arg(out.kills)
                .arg(clock.elapsed() / 1000.0, 0, 'f', 1)
                .arg(out.killsDuringStart)
                .arg(out.contactsAcknowledged)
                .arg(out.settingsAcknowledged)
                .arg(out.leftoverTempFiles)
                .arg(out.failures.size())
                .arg(out.switchesAcknowledged)
                .arg(out.deletesAcknowledged)
                .arg(out.editsAcknowledged)
                .arg(out.killsInCorrection)
                .arg(out.correctionsOnDisk);
        std::printf("%s\n", qPrintable(summary));
        for (const QString& f : out.failures.mid(0, 20))
            std::printf("  %s\n", qPrintable(f));
        std::fflush(stdout);
        QVERIFY2(out.failures.isEmpty(), qPrintable(out.failures.value(0)));
        QCOMPARE(out.kills, kills);
        QVERIFY(out.contactsAcknowledged > 0);
        QVERIFY(out.deletesAcknowledged > 0);
        QVERIFY(out.editsAcknowledged > 0);
    }
};

QTEST_GUILESS_MAIN(TestCrashInjection)
#include "tst_crash_injection.moc"
