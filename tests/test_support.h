// Shared helpers of the test suite: a pinned locale, a private data folder per test,
// fixtures and byte comparisons.
#pragma once

#include "core/cp1252.h"
#include "core/log_model.h"
#include "core/paths.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace kolibrino::test {

inline QLocale AustrianLocale() {
    return QLocale(QLocale::German, QLocale::Austria);
}

inline void PinLocale() {
    QLocale::setDefault(AustrianLocale());
}

inline QString FixturePath(const QString& name) {
    return QStringLiteral(KOLIBRINO_FIXTURES "/") + name;
}

inline QByteArray ReadBytes(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return f.readAll();
}

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    f.write(bytes);
}

// Text written as the program writes files: code page 1252.
inline QByteArray Cp(const QString& text) {
    return ToCp1252(text);
}

// A private DataFolder (KOLIBRINO_HOME) and a model whose folders lie in it; the
// desktop's data folder (XDG_DATA_HOME, with the trash) is its "xdg/".
class Home {
public:
    Home() {
        qputenv("KOLIBRINO_HOME", dir.path().toLocal8Bit());
        // The desktop's trash, where deleted logs go, lies in the test's folder too.
        QDir().mkpath(dir.path() + QStringLiteral("/xdg"));
        qputenv("XDG_DATA_HOME", (dir.path() + QStringLiteral("/xdg")).toLocal8Bit());
        model.SetLocale(AustrianLocale());
        model.Header = DefaultHeader(model);
        IniStartup(model, QStringLiteral(KOLIBRINO_BINARY_DIR));
        SetupFolders(model);
    }
    QString Path(const QString& rel) const { return dir.path() + QLatin1Char('/') + rel; }
    // Copies the shipped district table into the data folder.
    void InstallDistricts() {
        QFile::copy(QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/bez_koord.txt"),
                    model.DataFolder + QStringLiteral("bez_koord.txt"));
    }

    QTemporaryDir dir;
    Model model;
};

// A district table small enough to reason about: Wien (1), Mödling (3), Graz (6).
inline QByteArray SmallDistrictTable() {
    return Cp(QStringLiteral("WI;500;200;Wien;1;\r\nMD;480;230;M\u00f6dling;3;\r\nGZ;420;420;Graz;6;\r\n"
                             "ZZ;10;10;Testbezirk;9;\r\n"));
}

// The multiplier tallies of two models agree: districts and states per band, state
// stations, and every district from `firstDistrict` on.
inline void CompareMultiplierTallies(const Model& got, const Model& want, size_t firstDistrict = 0) {
    QCOMPARE(got.GruppeBandCount, want.GruppeBandCount);
    QCOMPARE(got.StaatsfunkRecords.size(), want.StaatsfunkRecords.size());
    for (size_t i = 0; i < got.StaatsfunkRecords.size(); ++i) {
        QCOMPARE(got.StaatsfunkRecords[i].Prefix, want.StaatsfunkRecords[i].Prefix);
        QCOMPARE(got.StaatsfunkRecords[i].Anz80, want.StaatsfunkRecords[i].Anz80);
        QCOMPARE(got.StaatsfunkRecords[i].Anz30, want.StaatsfunkRecords[i].Anz30);
    }
    QCOMPARE(got.BezirkRecords.size(), want.BezirkRecords.size());
    for (size_t i = firstDistrict; i < got.BezirkRecords.size(); ++i) {
        QCOMPARE(got.BezirkRecords[i].AnzGesamt, want.BezirkRecords[i].AnzGesamt);
        QCOMPARE(got.BezirkRecords[i].Anz40, want.BezirkRecords[i].Anz40);
        QCOMPARE(got.BezirkRecords[i].Anz80, want.BezirkRecords[i].Anz80);
        QCOMPARE(got.BezirkRecords[i].Anz30, want.BezirkRecords[i].Anz30);
    }
}

// One run of the built kolibrino-cli on the data folder `home`, in the de_AT locale the
// tests pin. code stays -1 when the program did not end within the time.
struct CliResult {
    int code = -1;
    QByteArray out;
    QByteArray err;
};

inline CliResult RunCli(const QString& home, const QStringList& args, int waitMs = 60000) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("KOLIBRINO_HOME"), home);
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_AT.UTF-8"));
    env.insert(QStringLiteral("LANG"), QStringLiteral("de_AT.UTF-8"));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino-cli"), args);
    if (!p.waitForFinished(waitMs)) return {};
    return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
}

} // namespace kolibrino::test
