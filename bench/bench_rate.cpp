// Rate and missing multipliers (medians): the refresh of the window "QSO-Rate" and of
// the window "Fehlende Multiplikatoren" after a contact typed and entered, at 10,000
// and 100,000 contacts; for comparison the rate window's reading of the whole log (its
// refresh after an edit or a deletion) and the command line's count.
#include "bench_support.h"
#include "core/scripted_dialogs.h"
#include "entry/main_window.h"
#include "scoring/fehlende_multi.h"
#include "scoring/install_scoring.h"
#include "scoring/needed.h"
#include "scoring/qso_rate.h"
#include "scoring/rate.h"

#include <QAction>
#include <QApplication>
#include <cstdlib>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

const QString kSource = QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/");

// A generated log over the shipped districts.
void WriteRateLog(Model& base, const QString& name, int count) {
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
    for (QsoRecord& r : m.LogRecords)
        r.Bezirk = m.BezirkRecords[size_t(1 + rng.bounded(std::min(districts, 80)))].Code;
    BuildLogText(m, true, 2026);
    if (!WriteLogFile(m).isEmpty()) std::abort();
}

void RefreshBench(Model& base, int count) {
    const QString name = QStringLiteral("rate%1.KOLBO").arg(count);
    WriteRateLog(base, name, count);
    Model model;
    model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
    IniStartup(model, QCoreApplication::applicationDirPath());
    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    qputenv("KOLIBRINO_LOG", name.toLocal8Bit());
    HauptForm window(model, dialogs, clock);
    InstallScoring(window, model, dialogs, clock);
    if (!window.Load()) return;
    window.Timer3().stop();
    for (const char* entry : {"MnQsoRate", "MnFehlendeMulti"}) {
        QAction* a = window.Action(QString::fromLatin1(entry));
        if (!a->isChecked()) a->trigger();
    }
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
    QsoRate* rate = OpenQsoRate(window);
    FehlendeMulti* needed = OpenFehlendeMulti(window);
    auto* call = window.findChild<QLineEdit*>(QStringLiteral("Text3"));
    auto* bezirk = window.findChild<QComboBox*>(QStringLiteral("Combo5"));
    std::vector<double> rateMs, neededMs;
    for (int i = 0; i < 21; ++i) {
        call->setText(QStringLiteral("OE9R%1X").arg(QChar(u'A' + i)));
        bezirk->setEditText(model.BezirkRecords[size_t(81 + i % 13)].Code); // a district still missing
        QTest::keyClick(call, Qt::Key_Return);
        // The timers were armed by the contact; their ticks are the refresh.
        rateMs.push_back(ElapsedMs([&] { rate->Timer1Tick(); }));
        neededMs.push_back(ElapsedMs([&] { needed->Timer1Tick(); }));
        QCoreApplication::processEvents();
    }
    const double full = MedianMs(11, [&] {
        rate->LogChanged(false);
        rate->Timer1Tick();
    });
    const double cli = MedianMs(11, [&] { CountRate(model, clock.Now()); });
    std::printf("After a contact, %6d contacts: QSO-Rate %6.3f ms   Fehlende Multiplikatoren %6.3f ms\n", count,
                Median(rateMs), Median(neededMs));
    std::printf("  QSO-Rate reading the whole log (after an edit or deletion): %.2f ms;   "
                "CountRate (kolibrino-cli rate): %.2f ms\n",
                full, cli);
    window.close();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    Model base;
    PrepareBenchHome(base, home); // the bench table is replaced by the shipped one
    QFile::remove(base.DataFolder + QStringLiteral("bez_koord.txt"));
    QFile::copy(kSource + QStringLiteral("bez_koord.txt"), base.DataFolder + QStringLiteral("bez_koord.txt"));
    std::printf("Rate and missing multipliers (medians of 21 contacts), data folder %s\n", qPrintable(home.path()));
    RefreshBench(base, 10000);
    RefreshBench(base, 100000);
    return 0;
}
