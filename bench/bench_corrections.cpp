// Figures for the corrections on a log of 10,000 contacts: an edit and a deletion from
// the click to the file written, each beside a plain write plus fsync of the same
// bytes; a bulk change of every contact from the click on "Übernehmen" to the preview
// grid filled again, and its save. Prints medians; judges nothing. Run it with
// QT_QPA_PLATFORM=offscreen where there is no display.
#include "bench_support.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "corrections/bearbeiten.h"
#include "corrections/install_corrections.h"
#include "corrections/zeit_aendern.h"
#include "entry/main_window.h"
#include "setup/modal.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <cstdio>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

struct Session {
    Session(Model& base, int count) {
        const QString name = QStringLiteral("bench%1.KOLBO").arg(count);
        {
            Model m;
            m.SetLocale(base.Formats.Locale());
            m.LogFolder = base.LogFolder;
            m.CurrentLogName = name;
            FillGeneratedLog(m, count);
            if (!WriteLogFile(m).isEmpty()) std::abort();
        }
        model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        IniStartup(model, QCoreApplication::applicationDirPath());
        window = std::make_unique<HauptForm>(model, dialogs, clock);
        qputenv("KOLIBRINO_LOG", name.toLocal8Bit());
        ok = window->Load();
        corrections::InstallCorrections(*window, model, dialogs, clock);
        window->Timer3().stop();
    }
    Model model;
    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    std::unique_ptr<HauptForm> window;
    bool ok = false;
};

void Line(const char* what, const std::vector<double>& t, const std::vector<double>& plain) {
    const double a = Median(t);
    const double p = Median(plain);
    std::printf("  %-44s %8.2f ms   plain write+fsync %7.2f ms   ratio %5.2f\n", what, a, p,
                p > 0 ? a / p : 0);
}

void EditBench(Model& base, int count) {
    Session s(base, count);
    if (!s.ok) return;
    std::vector<double> edit, plain;
    const QString plainPath = s.model.LogFolder + QStringLiteral("plain.bin");
    for (int i = 0; i < 21; ++i) {
        int row = (i * 4099) % s.window->Grid().DataRows();
        while (s.window->Grid().Text(row, kGridColDupe) == QLatin1String("Dupe"))
            row = (row + 1) % s.window->Grid().DataRows();
        corrections::Bearbeiten w(*s.window, s.model, s.dialogs, s.clock, row);
        w.Open();
        w.findChild<QLineEdit*>(QStringLiteral("Text8"))->setText(QStringLiteral("Notiz %1").arg(i));
        QCoreApplication::processEvents(); // the window has caught up before the click
        edit.push_back(ElapsedMs([&] { w.Command4Click(); }));
        if (!w.Applied()) std::printf("  (edit %d was refused)\n", i);
        const QByteArray bytes = ToCp1252(s.model.LogText);
        plain.push_back(ElapsedMs([&] { PlainWriteFsync(plainPath, bytes); }));
    }
    Line(qPrintable(QStringLiteral("edit, %1 contacts, OK to file").arg(count)), edit, plain);
    // For comparison: a full rebuild of the text, and the atomic rewrite of the core alone.
    std::vector<double> build, atomic;
    for (int i = 0; i < 21; ++i) {
        build.push_back(ElapsedMs([&] { BuildLogText(s.model, false, 2026); }));
        atomic.push_back(ElapsedMs([&] { if (!WriteLogFile(s.model).isEmpty()) std::abort(); }));
    }
    std::printf("  %-44s %8.2f ms\n", "  a full BuildLogText, for comparison", Median(build));
    Line("  atomic rewrite alone (encode, write, rename)", atomic, plain);
}

void DeleteBench(Model& base, int count) {
    Session s(base, count);
    if (!s.ok) return;
    std::vector<double> del, plain;
    const QString plainPath = s.model.LogFolder + QStringLiteral("plain.bin");
    for (int i = 0; i < 21; ++i) {
        const int row = (i * 4099) % s.window->Grid().DataRows();
        s.dialogs.AnswerMsgBox(Msg::Yes);
        QCoreApplication::processEvents(); // the window has caught up before the next click
        del.push_back(
            ElapsedMs([&] { corrections::LoeschenFlow(*s.window, s.model, s.dialogs, s.clock, row); }));
        s.window->Timer3().stop();
        const QByteArray bytes = ToCp1252(s.model.LogText);
        plain.push_back(ElapsedMs([&] { PlainWriteFsync(plainPath, bytes); }));
    }
    Line(qPrintable(QStringLiteral("delete, %1 contacts, Yes to file").arg(count)), del, plain);
}

void BulkBench(Model& base, int count) {
    Session s(base, count);
    if (!s.ok) return;
    corrections::ZeitAendern w(*s.window, s.model, s.dialogs, s.clock);
    w.show();
    w.Command7Click(); // the preview grid is shown
    QCoreApplication::processEvents();
    std::vector<double> apply;
    auto* value = w.findChild<QComboBox*>(QStringLiteral("Combo1"));
    for (int i = 0; i < 11; ++i) {
        value->setEditText(i % 2 ? QStringLiteral("-1") : QStringLiteral("1"));
        s.dialogs.AnswerMsgBox(Msg::Yes);
        s.dialogs.AnswerMsgBox(Msg::Ok);
        apply.push_back(ElapsedMs([&] {
            w.Command2Click();
            QCoreApplication::processEvents();
        }));
    }
    std::printf("  %-44s %8.2f ms\n",
                qPrintable(QStringLiteral("bulk change, %1 contacts, to grid shown").arg(count)),
                Median(apply));
    s.dialogs.AnswerMsgBox(Msg::Yes);
    const double save = ElapsedMs([&] {
        w.Command6Click();
        QCoreApplication::processEvents();
    });
    std::printf("  %-44s %8.2f ms (once)\n",
                qPrintable(QStringLiteral("bulk save, %1 contacts, read back, grid").arg(count)), save);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    setup::SetDriverMode(true);
    Model base;
    PrepareBenchHome(base, home);
    std::printf("Corrections figures (medians), data folder %s\n", qPrintable(home.path()));
    EditBench(base, 10000);
    DeleteBench(base, 10000);
    BulkBench(base, 10000);
    return 0;
}
