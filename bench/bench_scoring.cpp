// Scoring figures (medians): the recomputation of the result window at 10,000 and
// 100,000 contacts, the fill of one district and of all 94 on the full map, and the
// time from Enter to map and table coloured with both windows open.
//
// KOLIBRINO_SCORING_SHOTS=folder: only the pictures of the README (the result window
// and the filled map of a generated log), no figures.
#include "bench_support.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "core/tallies.h"
#include "entry/main_window.h"
#include "scoring/bz_karte.h"
#include "scoring/grid_karte.h"
#include "scoring/install_scoring.h"
#include "scoring/map_paint.h"
#include "scoring/score.h"
#include "scoring/statistik_window.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

const QString kSource = QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/");

// A generated log over the shipped districts, one contact in twenty with a state station.
void WriteScoringLog(Model& base, const QString& name, int count) {
    Model m;
    m.SetLocale(base.Formats.Locale());
    m.LogFolder = base.LogFolder;
    m.CurrentLogName = name;
    m.DataFolder = base.DataFolder;
    ScriptedDialogs d;
    LoadBezirkTable(m, d);
    FillGeneratedLog(m, count);
    QRandomGenerator rng(11);
    const int districts = int(m.BezirkRecords.size()) - 1;
    for (QsoRecord& r : m.LogRecords) {
        // Mostly the east of the country, as on a contest morning; the west now and then.
        const int n =
            rng.bounded(4) ? 1 + int(rng.bounded(std::min(districts, 71))) : 1 + int(rng.bounded(districts));
        r.Bezirk = m.BezirkRecords[size_t(n)].Code;
        if (rng.bounded(20) == 0)
            r.Call = QStringLiteral("OE%1%2").arg(QChar(u'A' + rng.bounded(8))).arg(r.Call.mid(3));
    }
    m.Header.MYNPOWER = 2;
    m.Header.MYCITY = QStringLiteral("Mödling");
    BuildLogText(m, true, 2026);
    if (!WriteLogFile(m).isEmpty()) std::abort();
}

struct Session {
    explicit Session(const QString& logName) {
        model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        IniStartup(model, QCoreApplication::applicationDirPath());
        window = std::make_unique<HauptForm>(model, dialogs, clock);
        InstallScoring(*window, model, dialogs, clock);
        qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());
    }
    // Opens a companion window unless the settings reopened it at Load.
    void Open(const char* menuEntry) {
        QAction* a = window->Action(QString::fromLatin1(menuEntry));
        if (!a->isChecked()) a->trigger();
    }
    void Settle() {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }
    Model model;
    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    std::unique_ptr<HauptForm> window;
};

void RecomputeBench(Model& base, int count) {
    const QString name = QStringLiteral("score%1.KOLBO").arg(count);
    WriteScoringLog(base, name, count);
    Session s(name);
    if (!s.window->Load()) return;
    s.Open("MnStatistik");
    s.Settle();
    Statistik* st = OpenStatistik(*s.window);
    const double logic = MedianMs(51, [&] { ComputeScore(s.model); });
    const double tick = MedianMs(51, [&] { st->Timer1Tick(); });
    std::printf(
        "Result window recompute, %6d contacts: %6.3f ms the window's tick   (ComputeScore alone %.3f ms)\n",
        count, tick, logic);
    s.window->close();
}

void FillBench(const Model& m) {
    const QImage fresh = LoadMapImage(m.DataFolder + QStringLiteral("BZ_Karte.gif"));
    MapColours c;
    std::vector<double> one;
    double largest = 0;
    QString largestCode;
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        QImage image = fresh;
        image.detach();
        const double t = ElapsedMs([&] { FillDistrict(image, m.BezirkRecords[i], c.c40); });
        one.push_back(t);
        if (t > largest) largest = t, largestCode = m.BezirkRecords[i].Code;
    }
    Model all = m;
    for (size_t i = 1; i < all.BezirkRecords.size(); ++i) { // every district, a third on both bands
        all.BezirkRecords[i].Anz40 = 1;
        all.BezirkRecords[i].Anz80 = i % 3 == 0 ? 1 : 0;
    }
    std::vector<double> full, fullWithLoad;
    for (int r = 0; r < 21; ++r) {
        QImage image = fresh;
        image.detach();
        full.push_back(ElapsedMs([&] { PaintStandard(image, all, c); }));
        fullWithLoad.push_back(ElapsedMs([&] {
            QImage loaded = LoadMapImage(m.DataFolder + QStringLiteral("BZ_Karte.gif"));
            PaintStandard(loaded, all, c);
        }));
    }
    std::printf("Fill of one district: median %.3f ms, slowest %.3f ms (%s)\n", Median(one), largest,
                qPrintable(largestCode));
    std::printf("Fill of all 94 districts: %.2f ms   (with the map loaded from BZ_Karte.gif: %.2f ms)\n",
                Median(full), Median(fullWithLoad));
}

void EnterBench(Model& base, int count) {
    const QString name = QStringLiteral("enter%1.KOLBO").arg(count);
    WriteScoringLog(base, name, count);
    Session s(name);
    if (!s.window->Load()) return;
    s.window->Timer3().stop();
    s.Open("MnBZKarte");
    s.Open("MnBZGrid");
    s.Settle();
    double hooks = 0;
    const size_t before = s.model.LogRecords.size();
    int fills = 0;
    auto fuellen = s.window->bzKarteFuellen;
    auto cell = s.window->gridKarteCellColor;
    s.window->bzKarteFuellen = [&](const QString& code) {
        ++fills;
        hooks += ElapsedMs([&] { fuellen(code); });
    };
    s.window->gridKarteCellColor = [&](const QString& c, int st, const QString& p) {
        hooks += ElapsedMs([&] { cell(c, st, p); });
    };
    auto* call = s.window->findChild<QLineEdit*>(QStringLiteral("Text3"));
    auto* bezirk = s.window->findChild<QComboBox*>(QStringLiteral("Combo5"));
    std::vector<double> enter, coloured;
    for (int i = 0; i < 21; ++i) {
        call->setText(QStringLiteral("OE9Q%1").arg(QChar(u'A' + i)) + QStringLiteral("X"));
        bezirk->setEditText(s.model.BezirkRecords[size_t(1 + (i * 7) % 94)].Code);
        hooks = 0;
        enter.push_back(ElapsedMs([&] { QTest::keyClick(call, Qt::Key_Return); }));
        coloured.push_back(hooks);
    }
    std::printf(
        "Enter with map and table open, %6d contacts: %7.2f ms the whole Enter (file written and synced)   "
        "map and table coloured: %.3f ms\n",
        count, Median(enter), Median(coloured));
    std::printf("  (%d contacts logged, %d districts filled)\n", int(s.model.LogRecords.size() - before),
                fills);
    s.window->close();
}

void Shots(Model& base, const QString& folder) {
    const QString name = QStringLiteral("OE3XYZ_ZEFT.KOLBO");
    WriteScoringLog(base, name, 600);
    Session s(name);
    if (!s.window->Load()) return;
    s.window->Timer3().stop();
    s.Open("MnStatistik");
    s.Open("MnBZKarte");
    s.Settle();
    Statistik* st = OpenStatistik(*s.window);
    st->resize(900, 640);
    st->grab().save(folder + QStringLiteral("/statistik.png"));
    OpenBZKarte(*s.window)->Map().save(folder + QStringLiteral("/bz_karte.png"));
    std::printf("Pictures written to %s\n", qPrintable(folder));
    s.window->close();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    Model base;
    PrepareBenchHome(base, home); // the bench table is replaced by the shipped one
    QFile::remove(base.DataFolder + QStringLiteral("bez_koord.txt"));
    QFile::copy(kSource + QStringLiteral("bez_koord.txt"), base.DataFolder + QStringLiteral("bez_koord.txt"));
    QFile::copy(kSource + QStringLiteral("BZ_Karte.gif"), base.DataFolder + QStringLiteral("BZ_Karte.gif"));
    const QString shots = qEnvironmentVariable("KOLIBRINO_SCORING_SHOTS");
    if (!shots.isEmpty()) {
        Shots(base, QDir(shots).absolutePath());
        return 0;
    }
    ScriptedDialogs d;
    LoadBezirkTable(base, d);
    std::printf("Scoring figures (medians), data folder %s\n", qPrintable(home.path()));
    RecomputeBench(base, 10000);
    RecomputeBench(base, 100000);
    FillBench(base);
    EnterBench(base, 10000);
    return 0;
}
