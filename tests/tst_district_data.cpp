// The shipped district table (data/bez_koord.txt) and district map (data/BZ_Karte.gif),
// and the flood fill that colours the map.
#include "core/log_file.h"
#include "core/log_model.h"
#include "core/scripted_dialogs.h"
#include "scoring/flood_fill.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QSet>
#include <QtTest>

using namespace kolibrino;

namespace {

const QString kTablePath = QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/bez_koord.txt");
const QString kMapPath = QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/BZ_Karte.gif");
constexpr QRgb kWhite = 0xffffffffu;

// German dictionary order as the table uses it: umlauts as their base letter.
QString SortKey(const QString& name) {
    QString key = name.toLower();
    key.replace(QChar(0xE4), QLatin1Char('a'));
    key.replace(QChar(0xF6), QLatin1Char('o'));
    key.replace(QChar(0xFC), QLatin1Char('u'));
    key.replace(QChar(0xDF), QStringLiteral("ss"));
    return key;
}

// The pixels a fill changed: where the two images differ.
QList<QPoint> ChangedPixels(const QImage& before, const QImage& after) {
    QList<QPoint> changed;
    for (int y = 0; y < before.height(); ++y) {
        const auto* a = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* b = reinterpret_cast<const QRgb*>(after.constScanLine(y));
        for (int x = 0; x < before.width(); ++x) {
            if (a[x] != b[x]) changed.append(QPoint(x, y));
        }
    }
    return changed;
}

int CountColour(const QImage& image, QRgb colour) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) n += (line[x] | 0xff000000u) == (colour | 0xff000000u);
    }
    return n;
}

// A small picture from rows of characters: '.' white, '#' black, 'g' grey.
QImage Picture(const QStringList& rows) {
    QImage image(int(rows.first().size()), int(rows.size()), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QChar c = rows[y][x];
            image.setPixel(x, y, c == u'#' ? qRgb(0, 0, 0) : c == u'g' ? qRgb(128, 128, 128) : qRgb(255, 255, 255));
        }
    }
    return image;
}

} // namespace

class TestDistrictData : public QObject {
    Q_OBJECT

private:
    Model model_;
    ScriptedDialogs dialogs_;
    int loaded_ = 0;
    QImage map_; // the shipped map as RGB32

private slots:
    void initTestCase() {
        loaded_ = LoadBezirkTable(model_, dialogs_, kTablePath);
        QImage image(kMapPath);
        QVERIFY2(!image.isNull(), qPrintable(QStringLiteral("cannot read ") + kMapPath));
        map_ = image.convertToFormat(QImage::Format_RGB32);
    }

    // --- the table ---------------------------------------------------------------------

    void tableLoadsWithoutAnyMessage() {
        QVERIFY2(dialogs_.boxes.isEmpty(),
                 qPrintable(dialogs_.boxes.isEmpty() ? QString() : dialogs_.boxes.first().text));
        QCOMPARE(loaded_, 94);
        QCOMPARE(int(model_.BezirkRecords.size()), 95);
        const BezirkRecord& empty = model_.BezirkRecords[0];
        QVERIFY(empty.Code.isEmpty() || empty.Code.trimmed().isEmpty());
        QCOMPARE(empty.X, 0);
        QCOMPARE(empty.Y, 0);
        QVERIFY(empty.Name.isEmpty());
        QCOMPARE(empty.Gruppe, 0);
    }

    void tableFileIsCodePage1252WithCrLf() {
        QFile f(kTablePath);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray bytes = f.readAll();
        QVERIFY(bytes.endsWith("\r\n"));
        QCOMPARE(bytes.count("\r\n"), 94);
        QCOMPARE(bytes.count('\n'), 94);
        QCOMPARE(bytes.count('\r'), 94);
        QVERIFY2(!bytes.contains('\xC3'), "UTF-8 in the table");
        QVERIFY(bytes.contains("M\xF6" "dling;")); // ö as the single byte 0xF6
        for (const QByteArray& line : bytes.split('\n')) {
            if (line.isEmpty()) continue;
            QCOMPARE(line.count(';'), 5);
            QVERIFY(line.endsWith(";\r"));
        }
    }

    void codesAreTwoUpperCaseLettersAndUnique() {
        QSet<QString> seen;
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            const QString code = model_.BezirkRecords[i].Code;
            QCOMPARE(code.size(), 2);
            for (const QChar c : code) QVERIFY2(c >= u'A' && c <= u'Z', qPrintable(code));
            QVERIFY2(!seen.contains(code), qPrintable(code));
            seen.insert(code);
            QVERIFY2(!model_.BezirkRecords[i].Name.isEmpty(), qPrintable(code));
        }
        QCOMPARE(seen.size(), 94);
    }

    void bezirkNumberFindsEveryCodeAtItsElement() {
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            QCOMPARE(BezirkNumber(model_, model_.BezirkRecords[i].Code), i);
        }
        QCOMPARE(BezirkNumber(model_, QStringLiteral("XX")), 0);
    }

    void districtsPerGruppe_data() {
        QTest::addColumn<int>("gruppe");
        QTest::addColumn<int>("districts");
        QTest::newRow("OE1 Wien") << 1 << 1;
        QTest::newRow("OE2 Salzburg") << 2 << 6;
        QTest::newRow("OE3 Niederoesterreich") << 3 << 24;
        QTest::newRow("OE4 Burgenland") << 4 << 9;
        QTest::newRow("OE5 Oberoesterreich") << 5 << 18;
        QTest::newRow("OE6 Steiermark") << 6 << 13;
        QTest::newRow("OE7 Tirol") << 7 << 9;
        QTest::newRow("OE8 Kaernten") << 8 << 10;
        QTest::newRow("OE9 Vorarlberg") << 9 << 4;
    }
    void districtsPerGruppe() {
        QFETCH(int, gruppe);
        QFETCH(int, districts);
        int n = 0;
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            const int g = model_.BezirkRecords[i].Gruppe;
            QVERIFY(g >= 1 && g <= 9);
            n += g == gruppe;
        }
        QCOMPARE(n, districts);
    }

    void districtsKnownByCode_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("gruppe");
        QTest::newRow("Wien") << "WI" << "Wien" << 1;
        QTest::newRow("Salzburg city") << "SA" << "Salzburg (Stadt)" << 2;
        QTest::newRow("Moedling") << "MD" << QStringLiteral("M\u00f6dling") << 3;
        QTest::newRow("Rust") << "RU" << "Rust (Stadt)" << 4;
        QTest::newRow("Eisenstadt") << "EI" << "Eisenstadt (Stadt)" << 4;
        QTest::newRow("Linz city") << "LS" << "Linz (Stadt)" << 5;
        QTest::newRow("Graz city") << "GZ" << "Graz (Stadt)" << 6;
        QTest::newRow("Innsbruck city") << "IN" << "Innsbruck (Stadt)" << 7;
        QTest::newRow("Voelkermarkt") << "VK" << QStringLiteral("V\u00f6lkermarkt") << 8;
        QTest::newRow("Bregenz") << "BG" << "Bregenz" << 9;
        QTest::newRow("Waidhofen an der Ybbs") << "WY" << "Waidhofen an der Ybbs (Stadt)" << 3;
    }
    void districtsKnownByCode() {
        QFETCH(QString, code);
        QFETCH(QString, name);
        QFETCH(int, gruppe);
        const int n = BezirkNumber(model_, code);
        QVERIFY2(n > 0, qPrintable(code));
        QCOMPARE(model_.BezirkRecords[n].Name, name);
        QCOMPARE(model_.BezirkRecords[n].Gruppe, gruppe);
    }

    void tableIsOrderedByGruppeThenName() {
        for (int i = 2; i < int(model_.BezirkRecords.size()); ++i) {
            const BezirkRecord& a = model_.BezirkRecords[i - 1];
            const BezirkRecord& b = model_.BezirkRecords[i];
            const bool ordered = a.Gruppe < b.Gruppe ||
                                 (a.Gruppe == b.Gruppe && SortKey(a.Name) < SortKey(b.Name));
            QVERIFY2(ordered, qPrintable(a.Name + QStringLiteral(" before ") + b.Name));
        }
    }

    // --- the map -----------------------------------------------------------------------

    void mapLoadsWithTheSizeTheTableAssumes() {
        QImageReader reader(kMapPath);
        QCOMPARE(reader.format(), QByteArray("gif"));
        QCOMPARE(map_.size(), QSize(1100, 600));
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            const BezirkRecord& r = model_.BezirkRecords[i];
            QVERIFY2(map_.rect().contains(r.X, r.Y), qPrintable(r.Code));
            QVERIFY2(map_.pixel(r.X, r.Y) == kWhite, qPrintable(r.Code + QStringLiteral(" seed is not white")));
        }
        // The outside of the country is a colour of its own, not white.
        QVERIFY(map_.pixel(0, 0) != kWhite);
    }

    void fillFromSeedStaysInsideItsDistrict_data() {
        QTest::addColumn<int>("element");
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            const BezirkRecord& r = model_.BezirkRecords[i];
            QTest::newRow(qPrintable(r.Code + QLatin1Char(' ') + r.Name)) << i;
        }
    }
    void fillFromSeedStaysInsideItsDistrict() {
        QFETCH(int, element);
        const BezirkRecord& r = model_.BezirkRecords[element];
        const QRgb outside = map_.pixel(0, 0);
        QImage filled = map_;
        const int n = FloodFill4(filled, QPoint(r.X, r.Y), qRgb(255, 0, 0));
        QVERIFY2(n >= 30, qPrintable(QStringLiteral("%1 pixels").arg(n)));
        const QList<QPoint> changed = ChangedPixels(map_, filled);
        QCOMPARE(int(changed.size()), n);
        // No other district's seed inside.
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            if (i == element) continue;
            const BezirkRecord& o = model_.BezirkRecords[i];
            QVERIFY2(filled.pixel(o.X, o.Y) == kWhite, qPrintable(QStringLiteral("reaches ") + o.Code));
        }
        // Never at the edge of the image, never next to the outside of the country.
        const QRect inner = map_.rect().adjusted(1, 1, -1, -1);
        for (const QPoint& p : changed) {
            QVERIFY2(inner.contains(p), "fill reaches the edge of the map");
            for (const QPoint& d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                QVERIFY2(map_.pixel(p + d) != outside, "fill touches the outside of the country");
            }
        }
    }

    void afterFillingEveryDistrictNoWhiteRemains() {
        QImage filled = map_;
        const QList<QRgb> colours = {qRgb(255, 170, 170), qRgb(170, 220, 170), qRgb(170, 190, 255),
                                     qRgb(255, 230, 140), qRgb(220, 170, 240), qRgb(140, 230, 230)};
        int total = 0;
        for (int i = 1; i < int(model_.BezirkRecords.size()); ++i) {
            const BezirkRecord& r = model_.BezirkRecords[i];
            const int n = FloodFill4(filled, QPoint(r.X, r.Y), colours[i % colours.size()]);
            QVERIFY2(n > 0, qPrintable(r.Code + QStringLiteral(" was already filled by another")));
            total += n;
        }
        QCOMPARE(CountColour(filled, kWhite), 0);
        QCOMPARE(total, CountColour(map_, kWhite));
    }

    void refillingADistrictChangesOnlyItsColour() {
        // A district that moves from one band colour to another is filled again from the
        // same seed, over its present colour.
        const BezirkRecord& r = model_.BezirkRecords[BezirkNumber(model_, QStringLiteral("WI"))];
        QImage filled = map_;
        const int first = FloodFill4(filled, QPoint(r.X, r.Y), qRgb(255, 0, 0));
        const int second = FloodFill4(filled, QPoint(r.X, r.Y), qRgb(0, 0, 255));
        QCOMPARE(second, first);
        QCOMPARE(CountColour(filled, qRgb(255, 0, 0)), 0);
    }

    // --- the flood fill ----------------------------------------------------------------

    void floodFillCoversTheFourConnectedRegion_data() {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QPoint>("seed");
        QTest::addColumn<int>("filled");
        QTest::newRow("all of a plain image") << QStringList{"....", "....", "...."} << QPoint(1, 1) << 12;
        QTest::newRow("a diagonal line closes a region")
            << QStringList{"..#..", ".#...", "#....", "....."} << QPoint(0, 0) << 3;
        QTest::newRow("the other side of the diagonal")
            << QStringList{"..#..", ".#...", "#....", "....."} << QPoint(4, 3) << 14;
        QTest::newRow("goes round a letter in the way")
            << QStringList{"......", ".#.#..", ".###..", ".#.#..", "......"} << QPoint(0, 0) << 23;
        QTest::newRow("a hollow stays out")
            << QStringList{".....", ".###.", ".#.#.", ".###.", "....."} << QPoint(0, 0) << 16;
        QTest::newRow("runs round a spiral")
            << QStringList{"#######", "......#", "#####.#", "#...#.#", "#.###.#", "#.....#", "#######"}
            << QPoint(0, 1) << 18;
        QTest::newRow("fills a black region too")
            << QStringList{"..#..", "..#..", "..#.."} << QPoint(2, 1) << 3;
    }
    void floodFillCoversTheFourConnectedRegion() {
        QFETCH(QStringList, rows);
        QFETCH(QPoint, seed);
        QFETCH(int, filled);
        QImage image = Picture(rows);
        const QImage before = image;
        QCOMPARE(FloodFill4(image, seed, qRgb(255, 0, 0)), filled);
        QCOMPARE(int(ChangedPixels(before, image).size()), filled);
        QCOMPARE(CountColour(image, qRgb(255, 0, 0)), filled);
        QCOMPARE(image.format(), QImage::Format_RGB32);
    }

    void floodFillMatchesTheColourExactly() {
        QImage image = Picture({"....", "....", "...."});
        image.setPixel(2, 0, qRgb(255, 255, 254));
        image.setPixel(2, 1, qRgb(254, 255, 255));
        image.setPixel(2, 2, qRgb(255, 254, 255));
        QCOMPARE(FloodFill4(image, QPoint(0, 0), qRgb(0, 200, 0)), 6);
        QCOMPARE(image.pixel(3, 1), kWhite);
    }

    void floodFillFillsNothing_data() {
        QTest::addColumn<QPoint>("seed");
        QTest::addColumn<QRgb>("fill");
        QTest::newRow("seed left of the image") << QPoint(-1, 0) << qRgb(255, 0, 0);
        QTest::newRow("seed below the image") << QPoint(0, 3) << qRgb(255, 0, 0);
        QTest::newRow("seed right of the image") << QPoint(4, 0) << qRgb(255, 0, 0);
        QTest::newRow("seed already has the colour") << QPoint(1, 1) << qRgb(255, 255, 255);
    }
    void floodFillFillsNothing() {
        QFETCH(QPoint, seed);
        QFETCH(QRgb, fill);
        QImage image = Picture({"....", "....", "...."});
        const QImage before = image;
        QCOMPARE(FloodFill4(image, seed, fill), 0);
        QCOMPARE(image, before);
        QImage null;
        QCOMPARE(FloodFill4(null, QPoint(0, 0), fill), 0);
    }

    void floodFillWorksOnEveryImageFormat_data() {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("after");
        QTest::newRow("RGB32 stays") << int(QImage::Format_RGB32) << int(QImage::Format_RGB32);
        QTest::newRow("ARGB32 stays") << int(QImage::Format_ARGB32) << int(QImage::Format_ARGB32);
        QTest::newRow("indexed becomes RGB32") << int(QImage::Format_Indexed8) << int(QImage::Format_RGB32);
        QTest::newRow("RGB888 becomes RGB32") << int(QImage::Format_RGB888) << int(QImage::Format_RGB32);
        QTest::newRow("premultiplied becomes ARGB32")
            << int(QImage::Format_ARGB32_Premultiplied) << int(QImage::Format_ARGB32);
    }
    void floodFillWorksOnEveryImageFormat() {
        QFETCH(int, format);
        QFETCH(int, after);
        QImage image = Picture({"..#..", "..#..", "..#.."}).convertToFormat(QImage::Format(format));
        QCOMPARE(FloodFill4(image, QPoint(4, 2), qRgb(0, 0, 255)), 6);
        QCOMPARE(image.format(), QImage::Format(after));
        QCOMPARE(image.pixel(3, 0), qRgb(0, 0, 255));
        QCOMPARE(image.pixel(1, 0), kWhite);
        QCOMPARE(image.pixel(2, 0), qRgb(0, 0, 0));
    }

    void floodFillOfTheShippedGifAsLoaded() {
        // The map as the image reader gives it (an indexed image) fills as well.
        QImage image(kMapPath);
        const BezirkRecord& r = model_.BezirkRecords[BezirkNumber(model_, QStringLiteral("RU"))];
        QImage copy = map_;
        const int expected = FloodFill4(copy, QPoint(r.X, r.Y), qRgb(10, 200, 10));
        QCOMPARE(FloodFill4(image, QPoint(r.X, r.Y), qRgb(10, 200, 10)), expected);
        QCOMPARE(image.pixel(r.X, r.Y), qRgb(10, 200, 10));
    }

    void floodFillHandlesALargeRegion() {
        QImage image(2000, 1500, QImage::Format_RGB32);
        image.fill(qRgb(255, 255, 255));
        for (int y = 0; y < 1500; y += 2) image.setPixel((y / 2) % 2 == 0 ? 1999 : 0, y, qRgb(0, 0, 0));
        QCOMPARE(FloodFill4(image, QPoint(500, 500), qRgb(1, 2, 3)), 2000 * 1500 - 750);
    }
};

QTEST_GUILESS_MAIN(TestDistrictData)
#include "tst_district_data.moc"
