#include "core/call_index.h"

#include <charconv>
#include <cmath>

namespace kolibrino {

CallIndexEntry ParseIndexEntry(const QString& callIndex, qsizetype position) {
    if (position <= 0 || callIndex.isEmpty()) return {};
    const qsizetype from = std::min(position, callIndex.size()) - 1;
    const qsizetype open = callIndex.lastIndexOf(kPilcrow, from);
    if (open < 0) return {};
    const qsizetype close = callIndex.indexOf(kPilcrow, open + 1);
    if (close < 0) return {};
    const QStringView body = QStringView(callIndex).mid(open + 1, close - open - 1);
    const qsizetype times = body.indexOf(kTimes);
    CallIndexEntry e;
    if (times < 0) {
        e.Call = body.toString();
        return e;
    }
    e.Call = body.left(times).toString();
    QStringView number = body.mid(times + 1);
    const qsizetype more = number.indexOf(kTimes);
    if (more >= 0) number = number.left(more);
    bool ok = false;
    const int v = number.toInt(&ok);
    e.RecordIndex = ok ? v : 0;
    return e;
}

void AppendIndexEntry(QString& callIndex, const QString& call, qsizetype arrayIndex) {
    char digits[24];
    const auto res = std::to_chars(digits, digits + sizeof digits, arrayIndex);
    callIndex += call;
    callIndex += kTimes;
    callIndex += QLatin1StringView(digits, res.ptr - digits);
    callIndex += kPilcrow;
}

QString IndexKey(const QString& call) {
    return kPilcrow + call + kTimes;
}

bool CallInIndex(const QString& callIndex, const QString& call) {
    return callIndex.contains(IndexKey(call));
}

QString DupeWarningText(const Model& m, const QTime& recordTime) {
    return QStringLiteral("Station bereits um ") + m.Formats.ShortTime(recordTime) +
           QStringLiteral(" Uhr gearbeitet!");
}

DupeVerdict CallExistTest(const Model& m, const QString& call, int band, const QString& mode,
                          const std::optional<QTime>& entryTime) {
    DupeVerdict v;
    const QString key = IndexKey(call);
    const bool entryPm = entryTime && !(*entryTime < m.MittagsGrenze);
    const int noon = m.MittagsGrenze.msecsSinceStartOfDay() / 1000;
    qsizetype hit = m.CallIndex.indexOf(key);
    while (hit >= 0) {
        const CallIndexEntry e = ParseIndexEntry(m.CallIndex, hit + 1);
        if (e.Call != call) break;
        if (e.RecordIndex < 0 || size_t(e.RecordIndex) >= m.LogRecords.size()) {
            v.error = kIndexOutOfRange;
            return v;
        }
        const QsoRecord& r = m.LogRecords[size_t(e.RecordIndex)];
        v.found = true;
        v.bezirk = r.Bezirk;
        const auto secs = m.Formats.TimeSeconds(r.Zeit);
        const bool samePeriod = entryTime && secs && (entryPm ? *secs > noon : *secs < noon);
        if (r.Call == call && r.Band == band && r.Mode == mode && samePeriod && r.Status != Status::Dupe &&
            r.Status > Status::Deleted) {
            v.isDupe = true;
            v.dupeTime = QTime::fromMSecsSinceStartOfDay(*secs * 1000);
            v.dupeRecord = e.RecordIndex;
            return v;
        }
        hit = m.CallIndex.indexOf(key, hit + 1);
    }
    return v;
}

} // namespace kolibrino
