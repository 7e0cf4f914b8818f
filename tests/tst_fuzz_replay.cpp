// Every input the fuzzers keep (tests/fuzz/corpus/<target>/) and every input that once
// crashed a parser (tests/fuzz/crashes/<target>/) runs again through the same entry
// functions, built with the normal compiler. A crash or a failed check aborts the run.
#include "fuzz/fuzz_entries.h"
#include "test_support.h"

#include <QDirIterator>

using namespace kolibrino;
using namespace kolibrino::test;

class TestFuzzReplay : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    void everyKeptInputRunsCleanly_data() {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("path");
        const QString root = QStringLiteral(KOLIBRINO_SOURCE_DIR "/tests/fuzz");
        int inputs = 0;
        for (const char* target : {"log_loader", "district_table", "ini_reader", "call_index",
                                   "cabrillo_check", "upload_reply", "update_list"}) {
            for (const char* kind : {"corpus", "crashes"}) {
                QDirIterator it(
                    QStringLiteral("%1/%2/%3").arg(root, QLatin1String(kind), QLatin1String(target)),
                    QDir::Files);
                while (it.hasNext()) {
                    const QString path = it.next();
                    if (it.fileName().startsWith(QLatin1Char('.'))) continue;
                    QTest::newRow(
                        qPrintable(QStringLiteral("%1/%2/%3")
                                       .arg(QLatin1String(target), QLatin1String(kind), it.fileName())))
                        << QString::fromLatin1(target) << path;
                    ++inputs;
                }
            }
        }
        QVERIFY2(inputs >= 4, "the corpus is committed beside the fuzz targets");
    }
    void everyKeptInputRunsCleanly() {
        QFETCH(QString, target);
        QFETCH(QString, path);
        const fuzz::Entry entry = fuzz::EntryByName(target.toLatin1().constData());
        QVERIFY(entry);
        const QByteArray bytes = ReadBytes(path);
        entry(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
    }
};

QTEST_GUILESS_MAIN(TestFuzzReplay)
#include "tst_fuzz_replay.moc"
