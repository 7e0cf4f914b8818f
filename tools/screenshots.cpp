// screenshots: the pictures of the README, made by the program's own windows.
//
//   QT_QPA_PLATFORM=offscreen build/tools/screenshots [FOLDER]    (tools/dev.sh screenshots)
//
// Builds the program as app/main.cpp does, in a throwaway data folder with the shipped
// data, on a contest morning's log (generated with a fixed seed, the last contacts typed
// into the entry fields), opens the windows through their menu entries and grabs each.
// The frequency window reads Hamlib's dummy rig from a rigctld started here; without
// rigctld it shows OFFLINE. Writes FOLDER/*.png (default docs/screenshots); exit status
// 1 when a picture cannot be made or written.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "core/clock.h"
#include "core/log_file.h"
#include "core/log_model.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "corrections/install_corrections.h"
#include "entry/main_window.h"
#include "export/export_menus.h"
#include "rig/frequenz.h"
#include "rig/hamlib_rig.h"
#include "rig/main_window_rig.h"
#include "scoring/bz_karte.h"
#include "scoring/fehlende_multi.h"
#include "scoring/grid_karte.h"
#include "scoring/install_scoring.h"
#include "scoring/qso_rate.h"
#include "scoring/score.h"
#include "scoring/statistik_window.h"
#include "setup/main_window_setup.h"
#include "setup/station_log.h"
#include "upkeep/upkeep_install.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>

using namespace kolibrino;

namespace {

const QDate kContestDay(2026, 5, 1);

// Waits with the event loop running, up to ms, until done() holds.
bool WaitFor(const std::function<bool()>& done, int ms) {
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > ms) return false;
        QTest::qWait(20);
    }
    return true;
}

// Hamlib's dummy rig behind rigctld on a free loopback port, tuned to 40 m LSB.
class DummyRig {
public:
    ~DummyRig() {
        if (proc_.state() == QProcess::NotRunning) return;
        proc_.kill();
        proc_.waitForFinished(5000);
    }
    bool Start() {
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("rigctld"));
        if (daemon.isEmpty()) return false;
        {
            QTcpServer probe;
            if (!probe.listen(QHostAddress::LocalHost)) return false;
            port_ = probe.serverPort();
        }
        proc_.start(daemon, {QStringLiteral("-m"), QStringLiteral("1"), QStringLiteral("-T"),
                             QStringLiteral("127.0.0.1"), QStringLiteral("-t"), QString::number(port_)});
        if (!proc_.waitForStarted(5000)) return false;
        // rigctl sets frequency and mode once the daemon listens.
        const QString rigctl = QStandardPaths::findExecutable(QStringLiteral("rigctl"));
        return WaitFor(
            [&] {
                if (rigctl.isEmpty()) return true;
                return QProcess::execute(rigctl, {QStringLiteral("-m"), QStringLiteral("2"),
                                                  QStringLiteral("-r"), Address(), QStringLiteral("F"),
                                                  QStringLiteral("7063500"), QStringLiteral("M"),
                                                  QStringLiteral("LSB"), QStringLiteral("2400")}) == 0;
            },
            5000);
    }
    QString Address() const { return QStringLiteral("127.0.0.1:%1").arg(port_); }

private:
    QProcess proc_;
    quint16 port_ = 0;
};

// Calls of a contest morning: mostly the east of the country.
QString RandomCall(QRandomGenerator& rng) {
    static const int areas[] = {1, 1, 1, 3, 3, 3, 3, 5, 5, 6, 6, 2, 4, 7, 8, 9};
    QString call = QStringLiteral("OE%1").arg(areas[rng.bounded(int(std::size(areas)))]);
    const int letters = rng.bounded(5) ? 3 : 2;
    for (int i = 0; i < letters; ++i)
        call += QChar(u'A' + rng.bounded(26));
    return call;
}

// The districts of a call's area (its digit is the state's group), else any.
QString DistrictFor(const Model& m, const QString& call, QRandomGenerator& rng) {
    const int group = call.size() > 2 ? call[2].digitValue() : -1;
    QStringList codes;
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i)
        if (m.BezirkRecords[i].Gruppe == group) codes << m.BezirkRecords[i].Code;
    if (codes.isEmpty()) return m.BezirkRecords[1 + rng.bounded(int(m.BezirkRecords.size()) - 1)].Code;
    return codes[rng.bounded(int(codes.size()))];
}

// The log up to 06:20 of the first period: distinct stations on 80 m and 40 m, SSB
// with some CW, a few state stations, one stored dupe.
void WriteMorningLog(Model& base, const QString& name) {
    Model m;
    m.SetLocale(base.Formats.Locale());
    m.DataFolder = base.DataFolder;
    m.LogFolder = base.LogFolder;
    m.CurrentLogName = name;
    ScriptedDialogs d;
    LoadBezirkTable(m, d);
    m.Header = DefaultHeader(m);
    m.Header.MYCALL = QStringLiteral("OE3XYZ");
    m.Header.MYOPCALL = QStringLiteral("OE3XYZ");
    m.Header.MYOPNAME = QStringLiteral("Franz Muster");
    m.Header.MYBZ = QStringLiteral("MD");
    m.Header.MYCITY = QStringLiteral("Mödling");
    m.Header.MYADRESS = QStringLiteral("Hauptstraße 1");
    m.Header.MYPLZ = QStringLiteral("2340");
    m.Header.MYSTATION = QStringLiteral("IC-7300, 100 W, Dipol für 80 m und 40 m");
    m.Header.MYLOCATOR = QStringLiteral("JN88EC");
    m.Header.MYEMAIL = QStringLiteral("oe3xyz@example.org");
    m.Header.MYPWR = 100;
    m.Header.MYNPOWER = 2;
    QRandomGenerator rng(1505);
    QStringList used;
    QTime t(5, 0, 20);
    for (int i = 0; t < QTime(6, 20); ++i) {
        QsoRecord r;
        QString call = RandomCall(rng);
        if (i % 23 == 11) call = QStringLiteral("OE%1A").arg(QChar(u'A' + rng.bounded(6))); // state station
        if (call.startsWith(QLatin1String("OE3")) && call.size() > 4 && rng.bounded(3) == 0)
            call[3] = u'K'; // some more calls for the partial-call picture
        if (used.contains(call)) continue;
        used << call;
        r.Call = call;
        r.Band = (i / 9) % 3 == 2 ? 40 : 80;
        r.Bezirk = DistrictFor(m, call, rng);
        r.Datum = m.Formats.RecordDate(kContestDay);
        r.Zeit = m.Formats.RecordTime(t);
        r.Mode = r.ModeRx = rng.bounded(6) ? QStringLiteral("SSB") : QStringLiteral("CW");
        r.RstGesendet = r.Mode == QLatin1String("CW") ? QStringLiteral("599") : QStringLiteral("59");
        r.RstEmpfangen = r.RstGesendet;
        r.Operator = QStringLiteral("OE3XYZ");
        r.BandRx = QStringLiteral("0");
        r.Frequenz = r.Band == 40 ? 7050.0f + float(rng.bounded(30)) : 3660.0f + float(rng.bounded(60));
        r.LaufNr = float(m.LogRecords.size());
        m.LogRecords.push_back(r);
        if (i == 40) { // worked again on the same band: stored as a dupe
            QsoRecord dupe = r;
            dupe.Zeit = m.Formats.RecordTime(t.addSecs(50));
            dupe.Status = Status::Dupe;
            dupe.LaufNr = float(m.LogRecords.size());
            m.LogRecords.push_back(dupe);
        }
        t = t.addSecs(25 + rng.bounded(60));
    }
    BuildLogText(m, true, kContestDay.year());
    if (!WriteLogFile(m).isEmpty()) std::abort();
}

bool Save(const QPixmap& picture, const QString& folder, const char* name) {
    const QString path = folder + QLatin1Char('/') + QLatin1String(name);
    if (picture.isNull() || !picture.save(path)) {
        std::fprintf(stderr, "Bild nicht geschrieben: %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s (%dx%d)\n", qPrintable(path), picture.width(), picture.height());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString folder =
        QDir(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/screenshots")).absolutePath();
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "Ordner kann nicht angelegt werden: %s\n", qPrintable(folder));
        return 1;
    }
    QTemporaryDir home;
    qputenv("KOLIBRINO_HOME", home.path().toLocal8Bit());
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Austria));

    Model model;
    model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
    IniStartup(model, QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
    SetupFolders(model);
    if (CopyShippedData(model).isEmpty()) {
        std::fprintf(stderr, "Keine mitgelieferten Daten gefunden\n");
        return 1;
    }
    IniWrite(model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), 12); // no offset
    IniWriteSection(model.IniPath, QStringLiteral("OPCALLs"),
                    {QStringLiteral("OE3XYZ"), QStringLiteral("OE3ABC")});
    DummyRig rig;
    const bool rigUp = rig.Start();
    if (rigUp) rig::WriteRigConfig(model.IniPath, 1, {rig::kModelNetRigctl, rig.Address(), 0});
    const QString logName = QStringLiteral("OE3XYZ_ZEFT_2026.KOLBO");
    WriteMorningLog(model, logName);
    qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());

    ScriptedDialogs dialogs;
    FixedTimeSource clock(QDateTime(kContestDay, QTime(6, 20, 40)));
    HauptForm window(model, dialogs, clock);
    setup::InstallLogSetup(window, model, dialogs, clock);
    InstallScoring(window, model, dialogs, clock);
    exporting::ExportOptions exportOptions;
    exportOptions.score = ClaimedScoreValue;
    exporting::InstallExport(window, model, dialogs, clock, exportOptions);
    corrections::InstallCorrections(window, model, dialogs, clock);
    rig::InstallRig(window, model, dialogs, clock);
    InstallAssist(window, model, dialogs, clock);
    upkeep::InstallUpkeep(window, model, dialogs, clock);
    window.logChooser = nullptr; // the log named by KOLIBRINO_LOG, not the log manager
    if (!window.Load()) {
        std::fprintf(stderr, "Das Log wurde nicht geladen\n");
        return 1;
    }
    window.Timer3().stop();
    window.resize(1040, 640);

    // The last contacts typed as an operator does, the clock running on.
    auto* call = window.findChild<QLineEdit*>(QStringLiteral("Text3"));
    auto* bezirk = window.findChild<QComboBox*>(QStringLiteral("Combo5"));
    auto* band = window.findChild<QComboBox*>(QStringLiteral("Combo1"));
    band->setCurrentIndex(1); // 80 m
    const char* typed[][2] = {{"OE1WHC", "WI"}, {"OE3KLU", "BL"}, {"OE6MBG", "GZ"}, {"OE3KAB", "MD"}};
    for (const auto& [c, b] : typed) {
        clock.AdvanceSeconds(70);
        window.Timer1Tick();
        call->setText(QString::fromLatin1(c));
        bezirk->setEditText(QString::fromLatin1(b));
        window.Uebernehmen();
    }
    window.Timer3().stop();
    clock.AdvanceSeconds(40);
    window.Timer1Tick();

    bool ok = true;
    // The frequency window first, so that its band and mode stand in the main window.
    window.Action(QStringLiteral("MnFrequenz"))->trigger();
    auto* frequenz = window.findChild<rig::Frequenz*>(QStringLiteral("Frequenz"));
    if (frequenz && rigUp) {
        auto* status = frequenz->findChild<QLabel*>(QStringLiteral("Label3"));
        WaitFor([&] { return status && status->text() == QLatin1String("ONLINE"); }, 5000);
    }
    window.Action(QStringLiteral("MnStatistik"))->trigger();
    window.Action(QStringLiteral("MnBZKarte"))->trigger();
    window.Action(QStringLiteral("MnBZGrid"))->trigger();
    window.Action(QStringLiteral("MnDB"))->trigger();
    QTest::qWait(100);

    // A call half typed: the partial-call window lists what the log has.
    call->setFocus();
    QTest::keyClicks(call, QStringLiteral("OE3K"));
    QPointer<DBLog> db = DBLogOf(window);
    WaitFor([&] { return !db || !db->Timer1().isActive(); }, 5000);
    QTest::qWait(50);

    ok = Save(window.grab(), folder, "hauptfenster.png") && ok;
    ok = frequenz && Save(frequenz->grab(), folder, "frequenz.png") && ok;
    ok = db && Save(db->grab(), folder, "teilrufzeichen.png") && ok;
    Statistik* statistik = OpenStatistik(window);
    ok = statistik && Save(statistik->grab(), folder, "ergebnis.png") && ok;
    BZKarte* karte = OpenBZKarte(window);
    ok = karte && Save(karte->grab(), folder, "karte.png") && ok;
    GridKarte* tabelle = OpenGridKarte(window);
    ok = tabelle && Save(tabelle->grab(), folder, "multiplikatoren.png") && ok;

    // The rate and the multipliers still missing, at the same moment.
    window.Action(QStringLiteral("MnQsoRate"))->trigger();
    window.Action(QStringLiteral("MnFehlendeMulti"))->trigger();
    QTest::qWait(50);
    QsoRate* rate = OpenQsoRate(window);
    ok = rate && Save(rate->grab(), folder, "qso_rate.png") && ok;
    FehlendeMulti* fehlende = OpenFehlendeMulti(window);
    ok = fehlende && Save(fehlende->grab(), folder, "fehlende_multiplikatoren.png") && ok;

    // The station and contest settings of the open log, as Einstellungen shows them.
    setup::StationLog station(model, dialogs, clock, {}, setup::StationMode::Options, &window);
    station.FillFromLog();
    station.show();
    QTest::qWait(50);
    ok = Save(station.grab(), folder, "contest_einstellungen.png") && ok;
    station.hide();

    window.Timer3().stop();
    window.close();
    return ok ? 0 : 1;
}
