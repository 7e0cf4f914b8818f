#include "corrections/log_text_patch.h"

#include "core/call_index.h"
#include "core/log_file.h"

namespace kolibrino::corrections {
namespace {

QString Rebuild(Model& m, int year, bool rebuildIndex) {
    return BuildLogText(m, rebuildIndex, year);
}

} // namespace

QString PatchLogText(Model& m, int year, size_t record, const QString& oldLine, qsizetype liveBefore,
                     bool rebuildIndex) {
    if (record >= m.LogRecords.size()) return Rebuild(m, year, rebuildIndex);
    const QsoRecord& r = m.LogRecords[record];
    const bool deleted = r.Status == Status::Deleted;
    const QString header = IdentificationLine(year) + HeaderText(m.Header);
    if (!m.LogText.startsWith(header)) return Rebuild(m, year, rebuildIndex);

    // The place of the record's line: behind the lines of the live records before it.
    qsizetype before = 0;
    for (size_t i = 0; i < record; ++i)
        if (m.LogRecords[i].Status != Status::Deleted) ++before;
    const QStringView text(m.LogText);
    qsizetype pos = header.size();
    qsizetype lines = 0;
    qsizetype lineStart = -1;
    while (pos < text.size()) {
        if (lines == before) lineStart = pos;
        const qsizetype nl = text.indexOf(u'\n', pos);
        if (nl < 0 || nl == 0 || text[nl - 1] != u'\r') return Rebuild(m, year, rebuildIndex);
        pos = nl + 1;
        ++lines;
    }
    if (lines != liveBefore || lineStart < 0) return Rebuild(m, year, rebuildIndex);
    if (text.mid(lineStart, oldLine.size()) != oldLine) return Rebuild(m, year, rebuildIndex);

    if (rebuildIndex) {
        // The index holds one entry per live record in array order; only the changed
        // record's entry can differ from the rebuilt one.
        if (m.CallIndex.count(kPilcrow) != liveBefore + 1) return Rebuild(m, year, rebuildIndex);
        const QString entry = kPilcrow + r.Call + kTimes + QString::number(record) + kPilcrow;
        const qsizetype at = m.CallIndex.indexOf(entry);
        if (at < 0) return Rebuild(m, year, rebuildIndex);
        if (deleted) m.CallIndex.remove(at + 1, entry.size() - 1);
    }
    if (deleted)
        m.LogText.remove(lineStart, oldLine.size());
    else
        m.LogText.replace(lineStart, oldLine.size(), ContactLine(r));
    return m.LogText;
}

} // namespace kolibrino::corrections
