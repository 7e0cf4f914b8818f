// Figures for the main window: Enter to the file written for one contact, against a
// plain write and fsync of the same bytes; the refill of the grid; the start to a
// usable window. Generated logs in a temporary data folder. Prints medians; judges
// nothing. Run it with QT_QPA_PLATFORM=offscreen where there is no display.
#include "bench_support.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/log_grid_model.h"
#include "entry/main_window.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

// A log of count contacts with random calls, bands, modes and times in both periods.
void WriteLog(Model& base, const QString& name, int count) {
    Model m;
    m.SetLocale(base.Formats.Locale());
    m.LogFolder = base.LogFolder;
    m.CurrentLogName = name;
    FillGeneratedLog(m, count);
    if (!WriteLogFile(m).isEmpty()) std::abort();
}

struct Session {
    explicit Session(const QString& logName) {
        model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        IniStartup(model, QCoreApplication::applicationDirPath());
        window = std::make_unique<HauptForm>(model, dialogs, clock);
        qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());
    }
    Model model;
    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    std::unique_ptr<HauptForm> window;
};

void EnterBench(Model& base, int count) {
    const QString name = QStringLiteral("bench%1.KOLBO").arg(count);
    WriteLog(base, name, count);
    Session s(name);
    if (!s.window->Load()) return;
    s.window->Timer3().stop();
    auto* call = s.window->findChild<QLineEdit*>(QStringLiteral("Text3"));
    auto* bezirk = s.window->findChild<QComboBox*>(QStringLiteral("Combo5"));
    std::vector<double> enter, plain;
    const QString plainPath = s.model.LogFolder + QStringLiteral("plain.bin");
    for (int i = 0; i < 21; ++i) {
        call->setText(QStringLiteral("OE9N%1")
                          .arg(i, 3, 10, QLatin1Char('0'))
                          .replace(QLatin1Char('0'), QLatin1Char('A')));
        bezirk->setEditText(QString::fromLatin1(kBenchDistricts[i % 4]));
        const size_t before = s.model.LogRecords.size();
        enter.push_back(ElapsedMs([&] { s.window->Uebernehmen(); }));
        if (s.model.LogRecords.size() != before + 1) std::printf("  (entry %d was not logged)\n", i);
        s.window->Timer3().stop();
        const QByteArray bytes = ToCp1252(s.model.LogText);
        plain.push_back(ElapsedMs([&] { PlainWriteFsync(plainPath, bytes); }));
    }
    std::vector<double> encode, atomic;
    for (int i = 0; i < 21; ++i) {
        QByteArray bytes;
        encode.push_back(ElapsedMs([&] { bytes = ToCp1252(s.model.LogText); }));
        atomic.push_back(ElapsedMs([&] { if (!WriteLogFile(s.model).isEmpty()) std::abort(); }));
    }
    const double e = Median(enter), p = Median(plain);
    std::printf(
        "Enter to file written, log of %6d contacts: %8.2f ms   plain write+fsync: %8.2f ms   ratio %.2f\n",
        count, e, p, e / p);
    std::printf("  of which: encoding the text %.2f ms, the atomic write (with its encoding) %.2f ms\n",
                Median(encode), Median(atomic));
    s.window->close();
}

void RefillBench(Model& base, int count) {
    const QString name = QStringLiteral("refill%1.KOLBO").arg(count);
    WriteLog(base, name, count);
    Session s(name);
    if (!s.window->Load()) return;
    std::vector<double> window, logic;
    for (int i = 0; i < 5; ++i)
        window.push_back(ElapsedMs([&] { s.window->DatenInGrid1Neu(); }));
    LogGridModel grid(s.model.Formats);
    for (int i = 0; i < 5; ++i)
        logic.push_back(ElapsedMs([&] { DatenInGrid1Neu(s.model, grid); }));
    std::printf(
        "DatenInGrid1Neu, %6d contacts: %8.2f ms in the window   (rows and counters alone: %.2f ms)\n", count,
        Median(window), Median(logic));
    s.window->close();
}

void StartBench(Model& base, int count) {
    const QString name = QStringLiteral("start%1.KOLBO").arg(count);
    WriteLog(base, name, count);
    std::vector<double> t;
    for (int i = 0; i < 5; ++i) {
        Model m;
        ScriptedDialogs dialogs;
        FixedTimeSource clock(QDateTime(QDate(2026, 5, 1), QTime(6, 30)));
        qputenv("KOLIBRINO_LOG", name.toLocal8Bit());
        std::unique_ptr<HauptForm> w;
        t.push_back(ElapsedMs([&] {
            m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
            IniStartup(m, QCoreApplication::applicationDirPath());
            w = std::make_unique<HauptForm>(m, dialogs, clock);
            w->Load();
            QCoreApplication::processEvents();
            w->grab(); // painted once: the window is usable
        }));
        w->Timer3().stop();
        w->close();
    }
    std::printf("Start to a usable window, log of %6d contacts: %8.2f ms\n", count, Median(t));
}

// A picture of the main window with a log of a busy morning, for the manual.
void Screenshot(Model& base, const QString& path, int width, int height) {
    const QString name = QStringLiteral("OE3XYZ_ZEFT.KOLBO");
    WriteLog(base, name, 0);
    Session s(name);
    IniWrite(base.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ErwEeingabe"), -1);
    IniWriteSection(base.IniPath, QStringLiteral("OPCALLs"),
                    {QStringLiteral("OE3XYZ"), QStringLiteral("OE3ABC")});
    if (!s.window->Load()) return;
    s.window->resize(width, height);
    auto* call = s.window->findChild<QLineEdit*>(QStringLiteral("Text3"));
    auto* note = s.window->findChild<QLineEdit*>(QStringLiteral("Text8"));
    auto* band = s.window->findChild<QComboBox*>(QStringLiteral("Combo1"));
    auto* mode = s.window->findChild<QComboBox*>(QStringLiteral("Combo2"));
    auto* bezirk = s.window->findChild<QComboBox*>(QStringLiteral("Combo5"));
    const char* calls[] = {"OE3KLU", "OE1WHC", "OE6MBG", "OE5RNL", "OE3DMA", "OE8AIK",   "OE1DVA", "OE3PHE",
                           "OE2UKL", "OE9HRV", "OE4KMU", "OE7FTJ", "OE3RPB", "OE1SSB/P", "OE6POD", "OE5HSN",
                           "OE3KLU", "OE1MCU", "OE3BKW", "OE6FEG", "OE3WGW", "OE5XBR",   "OE1TKW"};
    QRandomGenerator rng(3);
    QTime t(5, 1, 0);
    for (int i = 0; i < int(std::size(calls)); ++i) {
        s.clock.Set(QDateTime(QDate(2026, 5, 1), t));
        s.window->Timer1Tick();
        band->setCurrentIndex(i < 12 ? 1 : 0);
        mode->setCurrentIndex(i % 5 == 3 ? 1 : 0);
        call->setText(QString::fromLatin1(calls[i]));
        bezirk->setEditText(QString::fromLatin1(kBenchDistricts[rng.bounded(4)]));
        if (i == 7) note->setText(QStringLiteral("Notstrom"));
        if (i == 16) { // the same station again: logged as a dupe
            s.dialogs.AnswerMsgBox(Msg::Yes);
            band->setCurrentIndex(1);
            mode->setCurrentIndex(0);
        }
        s.window->Uebernehmen();
        t = t.addSecs(60 + int(rng.bounded(240)));
    }
    s.clock.Set(QDateTime(QDate(2026, 5, 1), t));
    s.window->Timer1Tick();
    call->setText(QStringLiteral("OE"));
    s.window->Uebernehmen(); // leaves its message in the message line
    QCoreApplication::processEvents();
    if (qEnvironmentVariableIsSet("KOLIBRINO_SCREENSHOT_DEBUG")) {
        for (const char* n :
             {"Central", "Picture3", "Picture4", "Label13", "MSFlexGrid1", "Frame1", "Combo6"}) {
            QWidget* w = s.window->findChild<QWidget*>(QString::fromLatin1(n));
            std::printf("%s geo %d,%d %dx%d hint %dx%d min %dx%d\n", n, w->x(), w->y(), w->width(),
                        w->height(), w->sizeHint().width(), w->sizeHint().height(),
                        w->minimumSizeHint().width(), w->minimumSizeHint().height());
        }
        std::printf("window %dx%d min %dx%d\n", s.window->width(), s.window->height(),
                    s.window->minimumSizeHint().width(), s.window->minimumSizeHint().height());
    }
    s.window->grab().save(path);
    std::printf("Screenshot %dx%d written to %s\n", width, height, qPrintable(path));
    s.window->Timer3().stop();
    s.window->close();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    Model base;
    PrepareBenchHome(base, home);
    // KOLIBRINO_SCREENSHOT=path[,width,height]: only the picture, no figures.
    const QStringList shot = qEnvironmentVariable("KOLIBRINO_SCREENSHOT").split(QLatin1Char(','));
    if (!shot.first().isEmpty()) {
        Screenshot(base, shot.first(), shot.size() > 2 ? shot[1].toInt() : 1040,
                   shot.size() > 2 ? shot[2].toInt() : 640);
        return 0;
    }
    std::printf("Main window figures (medians), data folder %s\n", qPrintable(home.path()));
    EnterBench(base, 1000);
    EnterBench(base, 10000);
    RefillBench(base, 10000);
    RefillBench(base, 100000);
    StartBench(base, 10000);
    return 0;
}
