#include "fuzz_entries.h"

#include "core/call_index.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"

#include <QByteArray>
#include <QLocale>
#include <cstring>

namespace kolibrino::fuzz {
namespace {

void Require(bool condition, const char* what) {
    if (!condition) qFatal("fuzz check failed: %s", what);
}

Model FreshModel() {
    Model m;
    m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
    m.Header = DefaultHeader(m);
    return m;
}

QByteArray Bytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

// One index entry per record, and the index starts with its separator.
void RequireConsistentIndex(const Model& m) {
    Require(m.CallIndex.startsWith(kPilcrow), "index starts with the pilcrow");
    Require(size_t(m.CallIndex.count(kPilcrow) - 1) == m.LogRecords.size(), "one index entry per record");
}

} // namespace

void LogLoader(const uint8_t* data, size_t size) {
    Model m = FreshModel();
    if (!ParseLog(m, Bytes(data, size))) {
        Require(m.LogRecords.empty(), "a failed load leaves no records");
        return;
    }
    RequireConsistentIndex(m);
    for (const QsoRecord& r : m.LogRecords)
        (void)CallExistTest(m, r.Call, r.Band, r.Mode, QTime(6, 0));
    // What the program writes back must load again, with every record still there.
    size_t kept = 0;
    for (const QsoRecord& r : m.LogRecords)
        if (r.Status != Status::Deleted) ++kept;
    const QString text = BuildLogText(m, true, 2026);
    RequireConsistentIndex(m);
    Model again = FreshModel();
    Require(ParseLog(again, ToCp1252(text)), "a rebuilt log loads");
    Require(again.LogRecords.size() <= kept, "a rebuilt log holds no more records than were kept");
}

void DistrictTable(const uint8_t* data, size_t size) {
    Model m = FreshModel();
    ScriptedDialogs dialogs; // an unscripted "FEHLER" box answers Cancel
    const int n = ParseBezirkTable(m, dialogs, Bytes(data, size));
    Require(n >= 0 && size_t(n) + (m.BezirkRecords.empty() ? 0 : 1) == m.BezirkRecords.size(),
            "count matches the records");
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
        const int number = BezirkNumber(m, m.BezirkRecords[i].Code);
        Require(number >= 0, "a district number is never negative");
    }
    (void)BezirkNumber(m, QStringLiteral("WI"));
}

void IniReader(const uint8_t* data, size_t size) {
    const QByteArray bytes = Bytes(data, size);
    (void)ProfileReadString(bytes, QStringLiteral("Einstellungen"), QStringLiteral("Band"));
    (void)ProfileReadSection(bytes, QStringLiteral("OPCALLs"));
    (void)ProfileInt(FromCp1252(bytes.left(64)));
    const QByteArray written =
        ProfileWrite(bytes, QStringLiteral("Einstellungen"), QStringLiteral("Band"), QStringLiteral("2"));
    Require(ProfileReadString(written, QStringLiteral("EINSTELLUNGEN"), QStringLiteral("band")) ==
                QStringLiteral("2"),
            "a written key reads back");
}

void CallIndexLookup(const uint8_t* data, size_t size) {
    // Input: the call sought, a 0x00 byte, then the index text.
    const QByteArray bytes = Bytes(data, size);
    const qsizetype zero = bytes.indexOf('\0');
    const QString call = FromCp1252(zero < 0 ? QByteArray() : bytes.left(zero));
    Model m = FreshModel();
    m.CallIndex = FromCp1252(zero < 0 ? bytes : bytes.mid(zero + 1));
    for (int i = 0; i < 4; ++i) {
        QsoRecord r;
        r.Call = call;
        r.Band = i % 2 ? 80 : 40;
        r.Mode = QStringLiteral("SSB");
        r.Zeit = i < 2 ? QStringLiteral("06:00:00") : QStringLiteral("15:00:00");
        r.Status = i == 3 ? Status::Dupe : Status::Normal;
        m.LogRecords.push_back(r);
    }
    const DupeVerdict v = CallExistTest(m, call, 40, QStringLiteral("SSB"), QTime(6, 30));
    Require(!v.isDupe || (v.dupeRecord >= 0 && size_t(v.dupeRecord) < m.LogRecords.size()),
            "a dupe names a record that exists");
    for (qsizetype p = 0; p <= m.CallIndex.size() + 1; p += 1 + m.CallIndex.size() / 16)
        (void)ParseIndexEntry(m.CallIndex, p);
}

Entry EntryByName(const char* name) {
    struct Named {
        const char* name;
        Entry entry;
    };
    static const Named kEntries[] = {{"log_loader", LogLoader},         {"district_table", DistrictTable},
                                     {"ini_reader", IniReader},         {"call_index", CallIndexLookup},
                                     {"cabrillo_check", CabrilloCheck}, {"upload_reply", UploadReply},
                                     {"update_list", UpdateList}};
    for (const Named& n : kEntries)
        if (std::strcmp(n.name, name) == 0) return n.entry;
    return nullptr;
}

} // namespace kolibrino::fuzz
