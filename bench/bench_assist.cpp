// Figures for the partial-call window: one keystroke in the call field of the main
// window with the window open, from the key to the grid filled (the key event, the
// one-shot timer, the search and the grid), on generated logs of 1,000, 10,000 and
// 100,000 contacts, for 2, 3 and 5 typed characters; the key event alone with the
// window open and closed; the search alone. Prints medians; judges nothing. Run it
// with QT_QPA_PLATFORM=offscreen where there is no display.
//
// KOLIBRINO_SCREENSHOT=file.png: a picture of main window and partial-call window
// during typing instead of the figures.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "assist/partial_call.h"
#include "bench_support.h"
#include "core/clock.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/entry_keys.h"
#include "entry/main_window.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QRandomGenerator>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>
#include <cstdio>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

// A plausible call: mostly OE with a district digit and two or three letters, some
// neighbours' prefixes; about two contacts per station.
QString CallOf(QRandomGenerator& rng, int stations) {
    const int n = int(rng.bounded(quint32(stations)));
    QRandomGenerator pick(quint32(n) * 2654435761u);
    static const char* const foreign[] = {"DL", "OK", "S5", "9A", "HA", "OM", "HB9", "I"};
    QString c = pick.bounded(5) ? QStringLiteral("OE") : QString::fromLatin1(foreign[pick.bounded(8)]);
    c += QChar(u'1' + pick.bounded(9));
    const int letters = 2 + int(pick.bounded(2));
    for (int i = 0; i < letters; ++i)
        c += QChar(u'A' + pick.bounded(26));
    return c;
}

void WriteLog(const Model& base, const QString& name, int count) {
    Model m;
    m.SetLocale(base.Formats.Locale());
    m.LogFolder = base.LogFolder;
    m.CurrentLogName = name;
    m.Header = DefaultHeader(m);
    m.Header.MYCALL = QStringLiteral("OE3XYZ");
    m.Header.MYBZ = QStringLiteral("MD");
    m.Header.MYOPCALL = QStringLiteral("OE3XYZ");
    QRandomGenerator rng(11);
    for (int i = 0; i < count; ++i) {
        QsoRecord r;
        r.Call = CallOf(rng, std::max(10, count / 2));
        r.Band = rng.bounded(2) ? 40 : 80;
        r.Bezirk = QString::fromLatin1(kBenchDistricts[rng.bounded(4)]);
        r.Datum = QStringLiteral("01.05.2026");
        const int secs = (rng.bounded(2) ? 5 * 3600 : 14 * 3600) + int(rng.bounded(3 * 3600));
        r.Zeit = m.Formats.RecordTime(QTime::fromMSecsSinceStartOfDay(secs * 1000));
        r.RstGesendet = r.RstEmpfangen = QStringLiteral("59");
        r.Mode = r.ModeRx = rng.bounded(3) ? QStringLiteral("SSB") : QStringLiteral("CW");
        r.Operator = QStringLiteral("OE3XYZ");
        r.BandRx = QStringLiteral("0");
        r.Frequenz = r.Band == 40 ? 7050.5f : 3650.0f;
        r.LaufNr = float(i);
        m.LogRecords.push_back(r);
    }
    BuildLogText(m, true, 2026);
    if (!WriteLogFile(m).isEmpty()) std::abort();
}

struct Session {
    explicit Session(const QString& logName) {
        model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
        IniStartup(model, QCoreApplication::applicationDirPath());
        qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());
        window = std::make_unique<HauptForm>(model, dialogs, clock);
        InstallAssist(*window, model, dialogs, clock);
    }
    Model model;
    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    std::unique_ptr<HauptForm> window;
};

void Drain(QPointer<DBLog> d) {
    while (d && d->Timer1().isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
}

struct Stroke {
    double keyMs = 0;     // the key event alone
    double waitMs = 0;    // from the end of the key event to the start of the tick
    double tickMs = 0;    // the tick: caption, search, grid
    double filledMs = 0;  // key to the end of the tick: the grid filled
    double paintedMs = 0; // and painted
    int entries = 0;
};

// Notes when the timer's event arrives, before the window's tick runs.
class TickStart : public QObject {
public:
    QElapsedTimer* clock = nullptr;
    qint64 at = -1;
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() == QEvent::Timer && at < 0) at = clock->nsecsElapsed();
        return QObject::eventFilter(o, e);
    }
};

// Types all but the last character, lets everything settle, then times the last key.
Stroke TimeStroke(Session& s, QLineEdit* call, const QString& text) {
    QPointer<DBLog> d = DBLogOf(*s.window);
    call->setText(text.left(text.size() - 1));
    Drain(d);
    Stroke r;
    QElapsedTimer t;
    TickStart start;
    start.clock = &t;
    qint64 end = -1;
    QMetaObject::Connection done;
    if (d) {
        d->Timer1().installEventFilter(&start);
        done = QObject::connect(&d->Timer1(), &QTimer::timeout, [&] { end = t.nsecsElapsed(); });
    }
    t.start();
    QTest::keyClick(call, text.back().toLatin1());
    const qint64 keyEnd = t.nsecsElapsed();
    r.keyMs = double(keyEnd) / 1e6;
    if (!d) return r;
    Drain(d);
    QObject::disconnect(done);
    d->Timer1().removeEventFilter(&start);
    r.filledMs = double(end) / 1e6;
    r.waitMs = double(start.at - keyEnd) / 1e6;
    r.tickMs = double(end - start.at) / 1e6;
    d->GridView()->viewport()->repaint();
    r.paintedMs = double(t.nsecsElapsed()) / 1e6;
    r.entries = int(d->Grid().Entries().size());
    return r;
}

void KeystrokeBench(const Model& base, int count) {
    const QString name = QStringLiteral("assist%1.KOLBO").arg(count);
    WriteLog(base, name, count);
    Session s(name);
    if (!s.window->Load()) return;
    s.window->show();
    s.window->Timer1().stop(); // the clock fields stand still
    s.window->Timer3().stop();
    auto* call = s.window->findChild<QLineEdit*>(QStringLiteral("Text3"));
    call->setFocus();
    const QStringList texts = {QStringLiteral("KA"), QStringLiteral("3KA"), QStringLiteral("OE3KA"),
                               QStringLiteral("E1")};
    const PeriodRule rule(s.model.Formats, s.model.MittagsGrenze);
    for (const QString& text : texts) {
        s.window->Action(QStringLiteral("MnDB"))->trigger();
        DBLogOf(*s.window)->show();
        std::vector<double> key, wait, tick, filled, painted, search;
        int entries = 0;
        for (int i = 0; i < 31; ++i) {
            const Stroke r = TimeStroke(s, call, text);
            key.push_back(r.keyMs);
            wait.push_back(r.waitMs);
            tick.push_back(r.tickMs);
            filled.push_back(r.filledMs);
            painted.push_back(r.paintedMs);
            entries = r.entries;
            search.push_back(ElapsedMs([&] {
                PartialCallSearch(s.model.CallIndex, s.model.LogRecords, text, 40, QStringLiteral("SSB"),
                                  Period::Vormittag, rule);
            }));
        }
        s.window->Action(QStringLiteral("MnDB"))->trigger(); // closed again
        std::vector<double> keyClosed;
        for (int i = 0; i < 31; ++i)
            keyClosed.push_back(TimeStroke(s, call, text).keyMs);
        std::printf("%6d contacts, %d typed %-7s %5d entries: key to grid filled %6.2f ms (key event %5.3f, "
                    "waiting for the timer %5.2f, tick %6.2f; painted %6.2f); key event with the window "
                    "closed %5.3f ms; search alone %6.3f ms\n",
                    count, int(text.size()), qPrintable(QLatin1Char('"') + text + QLatin1Char('"')), entries,
                    Median(filled), Median(key), Median(wait), Median(tick), Median(painted),
                    Median(keyClosed), Median(search));
    }
    s.window->close();
}

// Main window and partial-call window side by side while a call is typed.
void Screenshot(const Model& base, const QString& path) {
    const QString name = QStringLiteral("OE3XYZ_ZEFT.KOLBO");
    WriteLog(base, name, 3000);
    Session s(name);
    if (!s.window->Load()) return;
    s.window->Timer3().stop();
    s.window->resize(1040, 560);
    s.window->show();
    s.window->Action(QStringLiteral("MnDB"))->trigger();
    DBLog* d = DBLogOf(*s.window);
    d->resize(d->width(), 190);
    auto* call = s.window->findChild<QLineEdit*>(QStringLiteral("Text3"));
    call->setFocus();
    QTest::keyClicks(call, QStringLiteral("OE3K"));
    Drain(d);
    QCoreApplication::processEvents();
    const QPixmap main = s.window->grab();
    const QPixmap side = d->grab();
    const int titleH = 24;
    QPixmap out(std::max(main.width(), side.width()), main.height() + side.height() + titleH + 8);
    out.fill(QColor(0xd0, 0xd0, 0xd0));
    QPainter p(&out);
    p.drawPixmap(0, 0, main);
    p.fillRect(0, main.height() + 8, side.width(), titleH, QColor(0x30, 0x50, 0x80));
    p.setPen(Qt::white);
    p.drawText(QRect(6, main.height() + 8, side.width() - 12, titleH), Qt::AlignVCenter, d->windowTitle());
    p.drawPixmap(0, main.height() + 8 + titleH, side);
    p.end();
    out.save(path);
    std::printf("Screenshot written to %s\n", qPrintable(path));
    s.window->close();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    Model base;
    PrepareBenchHome(base, home);
    const QString shot = qEnvironmentVariable("KOLIBRINO_SCREENSHOT");
    if (!shot.isEmpty()) {
        Screenshot(base, shot);
        return 0;
    }
    std::printf("Partial-call window, one keystroke in the call field (medians of 31)\n");
    for (const int count : {1000, 10000, 100000})
        KeystrokeBench(base, count);
    return 0;
}
