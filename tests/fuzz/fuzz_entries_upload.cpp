// The entry functions of the parsers around sending and updating: the Cabrillo check
// of a foreign log, the judge of the log server's reply page, and the update list.
#include "core/cp1252.h"
#include "core/settings.h"
#include "export/check_cabrillo.h"
#include "export/submission.h"
#include "fuzz_entries.h"
#include "upkeep/update_list.h"

#include <QByteArray>
#include <QLocale>

namespace kolibrino::fuzz {
namespace {

void Require(bool condition, const char* what) {
    if (!condition) qFatal("fuzz check failed: %s", what);
}

QByteArray Bytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

const LocaleFormats& Austrian() {
    static const LocaleFormats f(QLocale(QLocale::German, QLocale::Austria));
    return f;
}

bool IsHexDigest(const QString& s) {
    if (s.size() != 32) return false;
    for (QChar c : s) {
        const char a = c.toLatin1();
        if (!((a >= '0' && a <= '9') || (a >= 'A' && a <= 'F') || (a >= 'a' && a <= 'f'))) return false;
    }
    return true;
}

} // namespace

void CabrilloCheck(const uint8_t* data, size_t size) {
    // The file as the upload menu reads it: bytes in code page 1252.
    const QString text = FromCp1252(Bytes(data, size));
    const QString verdict = exporting::CheckCabrillo(text, Austrian());
    Require(verdict.isEmpty() || exporting::CheckCabrilloMessages().contains(verdict),
            "the check answers nothing or one of its own messages");
    // The check reads the text in capitals: the case of the file changes nothing.
    Require(exporting::CheckCabrillo(text.toUpper(), Austrian()) == verdict, "capitals change nothing");
    // A value ends at a line end: a file without one cannot pass.
    if (verdict.isEmpty()) Require(text.contains(QStringLiteral("\r\n")), "a passing file has line ends");
    // Behind a good header and twenty good contact lines anything may follow: the first
    // entry of each keyword counts, and no more than twenty contact lines are read.
    static const QString good = [] {
        QString t = QStringLiteral("START-OF-LOG: 3.0\r\nCALLSIGN: OE1XYZ\r\nCATEGORY-OVERLAY: OM\r\n"
                                   "CATEGORY: LOW-POWER MIX\r\nLOCATION: WI\r\nEND-OF-LOG:\r\n");
        for (int i = 0; i < 20; ++i)
            t += QStringLiteral("QSO:  3650 PH 2026-05-01 0503 1 OE1XYZ 59 WI OE3ABC 57 MD\r\n");
        return t;
    }();
    Require(exporting::CheckCabrillo(good + text, Austrian()).isEmpty(),
            "the twenty-first line may hold anything");
}

void UploadReply(const uint8_t* data, size_t size) {
    // Input: the local MD5 up to the first line feed, then the reply page's bytes as
    // the HTTP client hands them on (Latin-1).
    const QByteArray bytes = Bytes(data, size);
    const qsizetype lf = bytes.indexOf('\n');
    const QString md5 = QString::fromLatin1(lf < 0 ? QByteArray() : bytes.left(lf));
    const QString reply = QString::fromLatin1(lf < 0 ? bytes : bytes.mid(lf + 1));

    QString stored = QStringLiteral("unberührt");
    const bool sent = exporting::JudgeReply(reply, md5, true, &stored);
    const bool test = exporting::JudgeReply(reply, md5, false);
    Require(!sent || test, "a reply that proves a submission proves the connection test");
    if (!sent) Require(stored == QStringLiteral("unberührt"), "a failed judge names no stored file");
    if (test) {
        Require(reply.contains(QStringLiteral("\"md5\">")), "a passing reply has the md5 marker");
        Require(reply.toUpper().contains(md5.trimmed().toUpper()), "a passing reply names the digest");
    }
    if (sent) Require(stored == stored.trimmed() && stored == stored.toUpper(), "the stored name is trimmed");
    // A well-formed page with the local digest in front of anything passes, in any
    // letter case of the digest.
    if (IsHexDigest(md5)) {
        const QString page =
            QStringLiteral("<p>MD5: <span id=\"md5\"> ") + md5.toLower() +
            QStringLiteral(" </span></p>\n<p>Datei: <span id=\"logfile\">oe1xyz.log</span></p>\n");
        QString name;
        Require(exporting::JudgeReply(page + reply, md5, true, &name), "the server's page passes");
        Require(name == QStringLiteral("OE1XYZ.LOG"), "the stored name is read from the page");
    }
}

void UpdateList(const uint8_t* data, size_t size) {
    const QString text = FromCp1252(Bytes(data, size));
    const std::vector<upkeep::UpdateEntry> entries = upkeep::ParseUpdateList(text);
    Require(entries.size() <= size_t(text.count(QLatin1Char('|')) / 4), "every entry has its five fields");
    QByteArray ini;
    const QLocale locale(QLocale::German, QLocale::Austria);
    for (const upkeep::UpdateEntry& e : entries) {
        Require(!e.Name.trimmed().isEmpty(), "an entry has a name");
        Require(e.Version >= 0 && e.Size >= 0, "version and size are whole numbers");
        Require(IsHexDigest(e.Md5), "the checksum is 32 hexadecimal digits");
        (void)upkeep::EntryCaption(e, locale, QLatin1Char('.'));
        (void)upkeep::EntryLine(e);
        (void)upkeep::IsProgramEntry(e, QStringLiteral("kolibrino"));
        // The entry written back as a list line reads as the same entry.
        const QChar bar = QLatin1Char('|');
        const QString line = e.Name + bar + QString::number(e.Version) + bar + e.Datum + bar +
                             QString::number(e.Size) + bar + e.Md5 + bar + e.Info;
        upkeep::UpdateEntry again;
        Require(upkeep::ParseListLine(line, again), "an entry written back is a list line");
        Require(again.Name == e.Name && again.Version == e.Version && again.Datum == e.Datum &&
                    again.Size == e.Size && again.Md5 == e.Md5 && again.Info == e.Info,
                "an entry written back reads the same");
        // Installed, an entry is not offered again: its version reads back under the
        // name the list gives (the settings are read with the name in capitals).
        ini = ProfileWrite(ini, e.Name.trimmed(), QStringLiteral("Version"), QString::number(e.Version));
        Require(ProfileInt(ProfileReadString(ini, e.Name.trimmed().toUpper(), QStringLiteral("Version"))) ==
                    e.Version,
                "an installed version reads back");
    }
}

} // namespace kolibrino::fuzz
