// Helpers of the main-window tests: a private data folder with a small district table
// and settings, logs written the way the program writes them, a main window over
// scripted dialogs and a clock that stands still, and typing into the entry fields.
#pragma once

#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"
#include "test_support.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>
#include <memory>

namespace kolibrino::test {

inline const QDateTime kContestMorning(QDate(2026, 5, 1), QTime(6, 0));

inline QsoRecord MakeRecord(const QString& call, int band, const QString& bezirk, const QString& zeit,
                            const QString& mode = QStringLiteral("SSB"), int status = Status::Normal) {
    QsoRecord r;
    r.Call = call;
    r.Band = band;
    r.Bezirk = Fixed2(bezirk);
    r.Datum = QStringLiteral("01.05.2026");
    r.Zeit = zeit;
    r.RstGesendet = mode == QLatin1String("SSB") ? QStringLiteral("59") : QStringLiteral("599");
    r.RstEmpfangen = r.RstGesendet;
    r.Mode = mode;
    r.ModeRx = mode;
    r.Status = status;
    r.Operator = QStringLiteral("OE1OPR");
    r.BandRx = QStringLiteral("0");
    r.Frequenz = float(DefaultFrequency(band == 40 ? 0 : band == 80 ? 1 : 2));
    return r;
}

// A data folder of its own, the district table, and settings for a zero time offset.
class WindowFixture {
public:
    WindowFixture() {
        WriteBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        Ini(QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), QStringLiteral("12"));
        qunsetenv("KOLIBRINO_LOG");
    }
    ~WindowFixture() {
        if (window) window->close();
        window.reset();
        qunsetenv("KOLIBRINO_LOG");
    }

    void Ini(const QString& section, const QString& key, const QString& value) {
        IniWrite(home.model.IniPath, section, key, value);
    }

    // Writes a log of these records under name (with ".KOLBO") into LogFolder.
    void WriteLog(const QString& name, const std::vector<QsoRecord>& records, int wertungsst = 0) {
        Model m;
        m.SetLocale(AustrianLocale());
        m.LogFolder = home.model.LogFolder;
        m.Header = DefaultHeader(m);
        m.Header.MYCALL = QStringLiteral("OE1XYZ");
        m.Header.MYBZ = QStringLiteral("WI");
        m.Header.MYOPCALL = QStringLiteral("OE1XYZ");
        m.Header.MYWERTUNGSST = wertungsst;
        m.LogRecords = records;
        m.CurrentLogName = name;
        BuildLogText(m, true, 2026);
        QVERIFY(WriteLogFile(m).isEmpty());
    }

    // Builds the main window over the fixture's model and runs its Load.
    bool Start(const QString& logName = QStringLiteral("test.KOLBO")) {
        if (!logName.isEmpty()) qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        window->openUrl = [this](const QUrl& u) {
            opened << u;
            return true;
        };
        return window->Load();
    }
    // An empty log, opened.
    bool StartEmpty() {
        WriteLog(QStringLiteral("test.KOLBO"), {});
        return Start();
    }

    template <class W> W* Child(const char* name) const {
        return window->findChild<W*>(QString::fromLatin1(name));
    }
    QLineEdit* Text(int n) const {
        return Child<QLineEdit>(QStringLiteral("Text%1").arg(n).toLatin1().constData());
    }
    QComboBox* Combo(int n) const {
        return Child<QComboBox>(QStringLiteral("Combo%1").arg(n).toLatin1().constData());
    }
    QLabel* Label13() const { return Child<QLabel>("Label13"); }
    LogGridModel& Grid() const { return window->Grid(); }
    QString LogPath() const { return home.model.LogFolder + home.model.CurrentLogName; }
    QByteArray FileBytes() const { return ReadBytes(LogPath()); }

    // Types a contact the way an operator does and presses Enter in the call field.
    void Type(const QString& call, int bandIndex, const QString& bezirk, int modeIndex = 0) {
        Combo(1)->setCurrentIndex(bandIndex);
        Combo(2)->setCurrentIndex(modeIndex);
        Text(3)->clear();
        QTest::keyClicks(Text(3), call);
        Combo(5)->clearEditText();
        QTest::keyClicks(Combo(5), bezirk);
        QTest::keyClick(Text(3), Qt::Key_Return);
    }
    // Moves the clock and lets the time fields follow.
    void At(const QTime& t) {
        clock.Set(QDateTime(kContestMorning.date(), t));
        window->Timer1Tick();
    }

    Home home;
    ScriptedDialogs dialogs;
    FixedTimeSource clock{kContestMorning};
    std::unique_ptr<HauptForm> window;
    QList<QUrl> opened;
};

} // namespace kolibrino::test
