// Helpers of the log set-up tests: a private data folder with districts, scripted
// dialogs, a fixed clock, ready-made log files and screenshots on request.
#pragma once

#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "test_support.h"

#include <QWidget>
#include <vector>

namespace kolibrino::test {

// With KOLIBRINO_SCREENSHOTS set, saves a grab of the window there as <name>.png.
inline void Shot(QWidget* w, const QString& name) {
    const QString dir = qEnvironmentVariable("KOLIBRINO_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    w->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

struct SetupEnv {
    Home home;
    ScriptedDialogs d;
    FixedTimeSource clock;
    Model& m = home.model;

    explicit SetupEnv(const QDateTime& now = QDateTime(QDate(2026, 3, 10), QTime(9, 30)),
                      bool districts = true)
        : clock(now) {
        if (!districts) return;
        WriteBytes(m.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        LoadBezirkTable(m, d);
        d.Clear();
    }

    // A log file of the station call in Wien, with the given contacts.
    void MakeLog(const QString& name, const std::vector<QsoRecord>& contacts = {}, int klasse = 0,
                 const QString& call = QStringLiteral("OE1XYZ")) {
        Model tmp = m;
        tmp.Header = DefaultHeader(m);
        tmp.Header.MYCALL = call;
        tmp.Header.MYBZ = QStringLiteral("WI");
        tmp.Header.MYOPCALL = call;
        tmp.Header.MYWERTUNGSST = klasse;
        tmp.LogRecords = contacts;
        WriteBytes(m.LogFolder + name, Cp(BuildLogText(tmp, false, 2026)));
    }

    void SetLast(const QString& name) {
        IniWrite(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), name);
    }
};

} // namespace kolibrino::test
