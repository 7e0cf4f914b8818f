// The installation: `cmake --install` of this build tree into a throwaway root (prefix
// /usr under DESTDIR), the files a desktop and a package need, the installed programs
// answering --version, and the installed program finding its shipped data in
// ../share/kolibrino. Skips when the install cannot run here (no cmake, build tree
// not complete); a failing install is a failure.
#include "test_support.h"

#include <QImage>
#include <QProcess>
#include <QStandardPaths>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

struct Run {
    bool started = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

Run RunProgram(const QString& program, const QStringList& args,
               const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment()) {
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(program, args);
    Run r;
    r.started = p.waitForStarted(10000);
    if (!r.started) return r;
    p.waitForFinished(120000);
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

QString VersionLine() {
    return ProgramTitle() + QLatin1Char(' ') + ProgramVersionText() + QLatin1Char('\n');
}

} // namespace

class TestInstall : public QObject {
    Q_OBJECT
    QTemporaryDir root_;
    QString usr_;
    QString skip_;

    QString Installed(const QString& rel) const { return usr_ + rel; }

private slots:
    void initTestCase() {
        const QString build = QStringLiteral(KOLIBRINO_BINARY_DIR);
        for (const char* f : {"/kolibrino", "/kolibrino-cli", "/data/KOLBOHilfe.pdf"})
            if (!QFileInfo::exists(build + QLatin1String(f))) {
                skip_ = QStringLiteral("Build tree not complete, missing ") + QLatin1String(f);
                return;
            }
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DESTDIR"), root_.path());
        const Run r = RunProgram(
            QStringLiteral(KOLIBRINO_CMAKE),
            {QStringLiteral("--install"), build, QStringLiteral("--prefix"), QStringLiteral("/usr")}, env);
        if (!r.started) {
            skip_ = QStringLiteral("cmake cannot be started: " KOLIBRINO_CMAKE);
            return;
        }
        QVERIFY2(r.exitCode == 0, (r.out + r.err).constData());
        usr_ = root_.path() + QStringLiteral("/usr/");
    }

    void init() {
        if (!skip_.isEmpty()) QSKIP(qPrintable(skip_));
    }

    void buildTreeProgramsPrintTheVersion() {
        const QString build = QStringLiteral(KOLIBRINO_BINARY_DIR);
        for (const char* p : {"/kolibrino", "/kolibrino-cli"}) {
            const Run r = RunProgram(build + QLatin1String(p), {QStringLiteral("--version")});
            QCOMPARE(r.exitCode, 0);
            QCOMPARE(QString::fromUtf8(r.out), VersionLine());
        }
    }

    void filesLandInTheirFhsPlaces() {
        for (const char* f : {"bin/kolibrino", "bin/kolibrino-cli"}) {
            const QFileInfo fi(Installed(QLatin1String(f)));
            QVERIFY2(fi.isFile() && fi.isExecutable(), f);
        }
        for (const char* f : {"share/kolibrino/bez_koord.txt", "share/kolibrino/BZ_Karte.gif",
                              "share/kolibrino/KOLBOHilfe.pdf", "share/applications/kolibrino.desktop",
                              "share/metainfo/at.zeft.kolibrino.metainfo.xml",
                              "share/icons/hicolor/scalable/apps/kolibrino.svg",
                              "share/man/de/man1/kolibrino.1.gz", "share/man/de/man1/kolibrino-cli.1.gz",
                              "share/man/man1/kolibrino.1.gz", "share/man/man1/kolibrino-cli.1.gz",
                              "share/doc/kolibrino/copyright", "share/doc/kolibrino/changelog.gz"})
            QVERIFY2(QFileInfo(Installed(QLatin1String(f))).isFile(), f);
        QVERIFY(!QFileInfo::exists(Installed(QStringLiteral("share/kolibrino/README.md"))));
        QVERIFY(!QFileInfo::exists(Installed(QStringLiteral("share/kolibrino/.keep"))));
        QCOMPARE(ReadBytes(Installed(QStringLiteral("share/kolibrino/KOLBOHilfe.pdf"))),
                 ReadBytes(QStringLiteral(KOLIBRINO_BINARY_DIR "/data/KOLBOHilfe.pdf")));
        for (const int size : {48, 128}) {
            const QImage icon(
                Installed(QStringLiteral("share/icons/hicolor/%1x%1/apps/kolibrino.png").arg(size)));
            QCOMPARE(icon.size(), QSize(size, size));
        }
    }

    void germanManualPagesLieUnderDeAndEnglishOnesAreEnglish() {
        auto page = [this](const char* rel) {
            const Run r = RunProgram(QStringLiteral("gzip"), {QStringLiteral("-dc"), Installed(QLatin1String(rel))});
            return r.exitCode == 0 ? QString::fromUtf8(r.out) : QString();
        };
        for (const char* rel : {"share/man/de/man1/kolibrino.1.gz", "share/man/de/man1/kolibrino-cli.1.gz"}) {
            const QString text = page(rel);
            QVERIFY2(text.contains(QStringLiteral(".SH BESCHREIBUNG")), rel);
        }
        for (const char* rel : {"share/man/man1/kolibrino.1.gz", "share/man/man1/kolibrino-cli.1.gz"}) {
            const QString text = page(rel);
            QVERIFY2(text.contains(QStringLiteral(".SH DESCRIPTION")), rel);
            QVERIFY2(!text.contains(QStringLiteral("BESCHREIBUNG")), rel);
        }
        // What the page promises for KOLIBRINO_LOG works (tst_server_settings shows it).
        QVERIFY(page("share/man/de/man1/kolibrino.1.gz").contains(QStringLiteral("ohne Log-Manager")));
    }

    void desktopEntryIsGermanAndValid() {
        const QString path = Installed(QStringLiteral("share/applications/kolibrino.desktop"));
        const QString text = QString::fromUtf8(ReadBytes(path));
        QVERIFY(text.contains(QStringLiteral("\nName=Kolibrino\n")));
        QVERIFY(text.contains(QStringLiteral("\nComment=Logbuch für den ZEFT-80/40m-Contest")));
        QVERIFY(text.contains(QStringLiteral("\nExec=kolibrino\n")));
        QVERIFY(text.contains(QStringLiteral("\nIcon=kolibrino\n")));
        QVERIFY(text.contains(QStringLiteral("\nCategories=Network;HamRadio;\n")));
        const QString validator = QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
        if (validator.isEmpty()) QSKIP("desktop-file-validate not installed (desktop-file-utils)");
        const Run r = RunProgram(validator, {path});
        QVERIFY2(r.exitCode == 0 && r.out.isEmpty(), (r.out + r.err).constData());
    }

    void metainfoNamesTheVersionAndValidates() {
        const QString path = Installed(QStringLiteral("share/metainfo/at.zeft.kolibrino.metainfo.xml"));
        QVERIFY(ReadBytes(path).contains("<release version=\"" + ProgramVersionText().toUtf8() + "\""));
        const QString validator = QStandardPaths::findExecutable(QStringLiteral("appstreamcli"));
        if (validator.isEmpty()) QSKIP("appstreamcli not installed (appstream)");
        const Run r = RunProgram(validator, {QStringLiteral("validate"), QStringLiteral("--no-net"), path});
        QVERIFY2(r.exitCode == 0, (r.out + r.err).constData());
    }

    // The installed programs need no library paths of the build: Qt, libcurl and Hamlib
    // are the system's.
    void installedProgramsPrintTheVersion() {
        for (const char* p : {"bin/kolibrino", "bin/kolibrino-cli"}) {
            const Run r = RunProgram(Installed(QLatin1String(p)), {QStringLiteral("--version")});
            QVERIFY2(r.exitCode == 0, r.err.constData());
            QCOMPARE(QString::fromUtf8(r.out), VersionLine());
        }
    }

    // The manual exists only in the build's data/ and the install: finding it in the
    // data folder afterwards shows the installed program read ../share/kolibrino.
    void installedProgramCopiesItsShippedDataFromShare() {
        QTemporaryDir home;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KOLIBRINO_HOME"), home.path());
        const Run r =
            RunProgram(Installed(QStringLiteral("bin/kolibrino-cli")),
                       {QStringLiteral("tallies"), FixturePath(QStringLiteral("basic.KOLBO"))}, env);
        QVERIFY2(r.exitCode == 0, r.err.constData());
        for (const char* f : {"KOLBOHilfe.pdf", "bez_koord.txt", "BZ_Karte.gif"})
            QCOMPARE(ReadBytes(home.path() + QLatin1Char('/') + QLatin1String(f)),
                     ReadBytes(Installed(QStringLiteral("share/kolibrino/")) + QLatin1String(f)));
        QVERIFY(!QFileInfo::exists(home.path() + QStringLiteral("/README.md")));
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
