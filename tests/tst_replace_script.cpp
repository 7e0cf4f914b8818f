// The script that replaces the running program, run for real in a scratch folder whose
// path has a blank, a quote, a "$" and an umlaut.
#include "test_support.h"
#include "upkeep/replace_script.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

using namespace kolibrino;
using namespace kolibrino::upkeep;

namespace {

// Waits (without a time limit of the test's own) until a condition holds or ~20 s pass.
template <class F> bool WaitFor(F condition) {
    for (int i = 0; i < 2000; ++i) {
        if (condition()) return true;
        QThread::msleep(10);
    }
    return condition();
}

void WriteProgram(const QString& path, const QByteArray& body) {
    test::WriteBytes(path, "#!/bin/sh\n" + body);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                                    QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
}

} // namespace

class TstReplaceScript : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { test::PinLocale(); }

    void shellQuoteGivesBackTheSameBytes() {
        const QList<QByteArray> words = {
            "plain", "with blank", "it's", "$HOME `x` \\n", "Prüfung \xe2\x82\xac", "'", "''", ""};
        for (const QByteArray& w : words) {
            QProcess sh;
            sh.start(QStringLiteral("/bin/sh"),
                     {QStringLiteral("-c"), QString::fromUtf8("printf %s " + ShellQuote(w))});
            QVERIFY(sh.waitForFinished());
            QCOMPARE(sh.readAllStandardOutput(), w);
        }
    }

    void umlautPathsStandInTheScriptInTheFileSystemEncoding() {
        const QString source = QStringLiteral("/tmp/Grüße/kolibrino.bin");
        const QByteArray s = ReplacementScript(source, QStringLiteral("/opt/Kö'nig/kolibrino"), 42, 0755,
                                               source + QStringLiteral(".sh"));
        QVERIFY(s.contains("source='/tmp/Gr\xc3\xbc\xc3\x9f"
                           "e/kolibrino.bin'\n"));
        QVERIFY(s.contains("target='/opt/K\xc3\xb6'\\''nig/kolibrino'\n"));
        QVERIFY(s.contains("pid=42\n"));
        QVERIFY(s.contains("chmod 0755"));
        QCOMPARE(ReplacementScriptPath(source), QStringLiteral("/tmp/Grüße/kolibrino.bin.sh"));
    }

    // The steps in their order: wait for the running program, replace it keeping its run
    // bit, delete the source, start the new program, delete the script.
    void replacementRunsForRealWithBlankQuoteAndUmlautInThePath() {
        QTemporaryDir scratch;
        const QString dir = scratch.path() + QStringLiteral("/Kolibrino's Prüf $ordner");
        QVERIFY(QDir().mkpath(dir + QStringLiteral("/bin")));
        QVERIFY(QDir().mkpath(dir + QStringLiteral("/Daten")));
        const QString target = dir + QStringLiteral("/bin/kolibrino");
        const QString source = dir + QStringLiteral("/Daten/kolibrino.bin");
        const QString log = dir + QStringLiteral("/lauf.txt");
        const QByteArray quotedLog = ShellQuote(QFile::encodeName(log));
        const QByteArray quotedSource = ShellQuote(QFile::encodeName(source));
        WriteProgram(target, "echo alt >> " + quotedLog + "\n");
        WriteProgram(source, "if [ -e " + quotedSource +
                                 " ]; then echo neu-quelle-da; else echo neu-quelle-weg; fi >> " + quotedLog +
                                 "\n");
        QFile::setPermissions(source, QFile::ReadOwner | QFile::WriteOwner); // the download has no run bit

        // The "running program": a process that ends when the test says so.
        QProcess running;
        running.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("read x")});
        QVERIFY(running.waitForStarted());

        QCOMPARE(WriteReplacementScript(source, target, running.processId()), QString());
        const QString script = ReplacementScriptPath(source);
        QVERIFY(QFileInfo(script).isExecutable());
        QVERIFY(StartReplacementScript(script));

        // While the program runs, nothing is replaced.
        QThread::msleep(400);
        QCOMPARE(test::ReadBytes(target), QByteArray("#!/bin/sh\necho alt >> " + quotedLog + "\n"));
        QVERIFY(QFile::exists(source));
        QVERIFY(QFile::exists(script));

        running.write("ende\n");
        running.closeWriteChannel();
        QVERIFY(running.waitForFinished());

        QVERIFY(WaitFor([&] { return test::ReadBytes(log).contains("neu"); }));
        QVERIFY(WaitFor([&] { return !QFile::exists(script); }));
        QCOMPARE(test::ReadBytes(log),
                 QByteArray("neu-quelle-weg\n")); // started after the source was deleted
        QVERIFY(test::ReadBytes(target).contains("neu-quelle"));
        QVERIFY(QFileInfo(target).isExecutable());
        QVERIFY(!QFile::exists(source));
        QCOMPARE(QDir(dir + QStringLiteral("/bin")).entryList(QDir::Files),
                 QStringList{QStringLiteral("kolibrino")});
    }

    void withoutSourceTheScriptOnlyStartsTheProgram() {
        QTemporaryDir scratch;
        const QString target = scratch.path() + QStringLiteral("/kolibrino");
        const QString log = scratch.path() + QStringLiteral("/lauf.txt");
        WriteProgram(target, "echo alt >> " + ShellQuote(QFile::encodeName(log)) + "\n");
        const QString source = scratch.path() + QStringLiteral("/kolibrino.bin");
        QCOMPARE(WriteReplacementScript(source, target, 0x7ffffff0), QString());
        QVERIFY(StartReplacementScript(ReplacementScriptPath(source)));
        QVERIFY(WaitFor([&] { return test::ReadBytes(log) == "alt\n"; }));
        QVERIFY(WaitFor([&] { return !QFile::exists(ReplacementScriptPath(source)); }));
    }

    void aSystemFolderIsNotWritable() {
        QTemporaryDir scratch;
        QVERIFY(FolderWritable(scratch.path()));
        // Not even root may create files in /proc: it stands for a system install.
        QVERIFY(!FolderWritable(QStringLiteral("/proc")));
        QVERIFY(!FolderWritable(scratch.path() + QStringLiteral("/fehlt")));
        QVERIFY(QFileInfo(ExecutablePath()).isExecutable());
    }
};

QTEST_GUILESS_MAIN(TstReplaceScript)
#include "tst_replace_script.moc"
