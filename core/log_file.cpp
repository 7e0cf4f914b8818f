#include "core/log_file.h"
#include "core/log_lock.h"

#include "core/atomic_file.h"
#include "core/call_index.h"
#include "core/clock.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/storable_text.h"
#include "core/vb_text.h"

#include <QDir>
#include <cmath>

namespace kolibrino {
namespace {

const QString kLineEnd = QStringLiteral("\r\n");
const QString kEndHead = QStringLiteral("[ENDHEAD:]\r\n");

enum class TagKind { Text, Fixed2, Number, LenientNumber };

struct TagDef {
    const char* tag;
    TagKind kind;
    QString LogHeader::*text;
    int LogHeader::*number;
};

// Order of the tag lines in the file.
const TagDef kTags[] = {
    {"[MYCALL:", TagKind::Text, &LogHeader::MYCALL, nullptr},
    {"[MYLOCATOR:", TagKind::Text, &LogHeader::MYLOCATOR, nullptr},
    {"[MYBZ:", TagKind::Fixed2, &LogHeader::MYBZ, nullptr},
    {"[MYOMYL:", TagKind::Number, nullptr, &LogHeader::MYOMYL},
    {"[MYOPCALL:", TagKind::Text, &LogHeader::MYOPCALL, nullptr},
    {"[MYOPNAME:", TagKind::Text, &LogHeader::MYOPNAME, nullptr},
    {"[MYADRESS:", TagKind::Text, &LogHeader::MYADRESS, nullptr},
    {"[MYPLZ:", TagKind::Text, &LogHeader::MYPLZ, nullptr},
    {"[MYCITY:", TagKind::Text, &LogHeader::MYCITY, nullptr},
    {"[MYEMAIL:", TagKind::Text, &LogHeader::MYEMAIL, nullptr},
    {"[MYWERTUNGSST:", TagKind::Number, nullptr, &LogHeader::MYWERTUNGSST},
    {"[MYPWR:", TagKind::Number, nullptr, &LogHeader::MYPWR},
    {"[MYSTATION:", TagKind::Text, &LogHeader::MYSTATION, nullptr},
    {"[MYKOMMENT:", TagKind::Text, &LogHeader::MYKOMMENT, nullptr},
    {"[MYEXAMDAT:", TagKind::Text, &LogHeader::MYEXAMDAT, nullptr},
    {"[MYOPKLASS:", TagKind::Number, nullptr, &LogHeader::MYOPKLASS},
    {"[MYNPOWER:", TagKind::LenientNumber, nullptr, &LogHeader::MYNPOWER},
};

// Order in which the loader looks the tags up: postcode and city after the licence
// class, the emergency-power flag last.
const int kLoadOrder[] = {0, 1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 15, 7, 8, 16};

// Reads one tag into the header. False when the file is damaged.
bool ReadTag(const QString& text, const TagDef& def, LogHeader& h) {
    const QString tag = QString::fromLatin1(def.tag);
    const qsizetype p = text.indexOf(tag);
    if (p < 0) return true; // absent: the default stays
    const bool lenient = def.kind == TagKind::LenientNumber;
    const qsizetype lenStart = p + tag.size();
    const qsizetype close = text.indexOf(QLatin1Char(']'), lenStart);
    if (close < 0) return lenient;
    const auto len = NumericValue(QStringView(text).mid(lenStart, close - lenStart));
    if (!len) return lenient;
    const double n = std::trunc(*len);
    if (!(n > 0)) return true; // length 0 keeps the default
    const qsizetype take = n > double(text.size()) ? text.size() : qsizetype(n);
    const QString value = text.mid(close + 1, take);
    switch (def.kind) {
    case TagKind::Text:
        h.*def.text = value;
        break;
    case TagKind::Fixed2:
        h.*def.text = Fixed2(value);
        break;
    case TagKind::Number: {
        const auto v = NumericValue(value);
        if (!v) return false;
        h.*def.number = ToInt16(*v);
        break;
    }
    case TagKind::LenientNumber: {
        const auto v = NumericValue(value);
        h.*def.number = v ? ToInt16(*v) : 0;
        break;
    }
    }
    return true;
}

// Shares equal texts between records: most fields repeat from line to line, so a few
// recent values per field spare an allocation for nearly every one.
class Interner {
public:
    QString Get(QStringView v) {
        for (const QString& s : recent_)
            if (v == s) return s;
        QString s = v.toString();
        recent_[next_] = s;
        next_ = (next_ + 1) % kSlots;
        return s;
    }

private:
    static constexpr int kSlots = 4;
    QString recent_[kSlots];
    int next_ = 0;
};

// Next CR LF at or behind from, -1 when none.
qsizetype FindLineEnd(QStringView block, qsizetype from) {
    for (;;) {
        const qsizetype cr = block.indexOf(u'\r', from);
        if (cr < 0 || cr + 1 >= block.size()) return -1;
        if (block[cr + 1] == u'\n') return cr;
        from = cr + 1;
    }
}

// A small whole number as most numeric fields hold it; anything else the lenient way.
double FieldNumber(QStringView v) {
    if (!v.isEmpty() && v.size() <= 6) {
        qsizetype i = (v[0] == u'-') ? 1 : 0;
        int n = 0;
        bool plain = i < v.size();
        for (; i < v.size() && plain; ++i) {
            const char16_t c = v[i].unicode();
            plain = c >= u'0' && c <= u'9';
            n = n * 10 + (c - u'0');
        }
        if (plain) return v[0] == u'-' ? -n : n;
    }
    return LeadingNumber(v);
}

void ParseContacts(Model& m, QStringView block) {
    Interner fields[19];
    qsizetype pos = 0;
    QStringView pieces[20];
    m.CallIndex.reserve(block.size() / 4);
    do {
        const qsizetype e = FindLineEnd(block, pos);
        if (e < 0 || e - pos <= 15) break; // a short line ends the contacts
        const QStringView line = block.mid(pos, e - pos);
        // Split at every pilcrow in one pass over the line.
        int count = 0;
        const QChar* chars = line.data();
        const qsizetype len = line.size();
        qsizetype start = 0;
        for (qsizetype i = 0; i < len; ++i) {
            if (chars[i] != kPilcrow) continue;
            if (count < 20) pieces[count] = line.mid(start, i - start);
            ++count;
            start = i + 1;
        }
        if (count < 20) pieces[count] = line.mid(start);
        ++count;
        if (count >= 16) {
            QsoRecord& r = m.LogRecords.emplace_back();
            r.Call = pieces[0].toString();
            r.Band = ToInt16(FieldNumber(pieces[1]));
            r.Bezirk = Fixed2(fields[2].Get(pieces[2]));
            r.Datum = fields[3].Get(pieces[3]);
            r.Zeit = pieces[4].toString();
            r.RstGesendet = fields[5].Get(pieces[5]);
            r.RstEmpfangen = fields[6].Get(pieces[6]);
            r.Qsl = ToInt16(FieldNumber(pieces[7]));
            r.Mode = fields[8].Get(pieces[8]);
            r.ModeRx = fields[9].Get(pieces[9]);
            r.Status = ToInt16(FieldNumber(pieces[10]));
            r.Operator = fields[11].Get(pieces[11]);
            r.Bemerkung = fields[12].Get(pieces[12]);
            r.BandRx = fields[13].Get(pieces[13]);
            r.Frequenz = float(LeadingNumber(pieces[14]));
            r.FrequenzRx = float(LeadingNumber(pieces[15]));
            if (count > 16) r.Reserve1 = fields[16].Get(pieces[16]);
            if (count > 17) r.Reserve2 = fields[17].Get(pieces[17]);
            if (count > 18) r.Reserve3 = fields[18].Get(pieces[18]);
            const qsizetype index = qsizetype(m.LogRecords.size()) - 1;
            r.LaufNr = float(index);
            AppendIndexEntry(m.CallIndex, r.Call, index);
        }
        pos = e + 2;
    } while (block.size() - pos >= 16);
}

void ResetLog(Model& m) {
    m.Header = DefaultHeader(m);
    m.CallIndex = QString(kPilcrow);
    m.LogRecords.clear();
    ApplyHeaderRules(m);
}

} // namespace

QString LoadFailureText(const QString& path) {
    return QStringLiteral("Die Datei\r\n%1\r\nist fehlerhaft oder keine gültige Kolibrino Logdatei!")
        .arg(QDir::toNativeSeparators(path));
}

void ApplyHeaderRules(Model& m) {
    m.IsStaatsfunkstelle = m.Header.MYWERTUNGSST == 4;
    m.MittagsGrenze = QTime(12, 0);
}

bool ParseLog(Model& m, const QByteArray& bytes, QString* error) {
    const QString text = FromCp1252(bytes);
    ResetLog(m);
    for (const int i : kLoadOrder) {
        if (!ReadTag(text, kTags[i], m.Header)) {
            ResetLog(m);
            if (error)
                *error = QStringLiteral("Kopfzeile %1 ist fehlerhaft").arg(QString::fromLatin1(kTags[i].tag));
            return false;
        }
    }
    const qsizetype end = text.indexOf(kEndHead);
    if (end < 0) {
        ResetLog(m);
        if (error) *error = QStringLiteral("[ENDHEAD:] fehlt");
        return false;
    }
    // The contact block, trimmed of blanks at both ends.
    QStringView block = QStringView(text).mid(end + kEndHead.size());
    while (!block.isEmpty() && block.front() == u' ')
        block = block.mid(1);
    while (!block.isEmpty() && block.back() == u' ')
        block.chop(1);
    if (block.size() >= 15) {
        m.LogRecords.reserve(size_t(block.size() / 60));
        ParseContacts(m, block);
    }
    m.LogText = text;
    ApplyHeaderRules(m);
    return true;
}

int LoadLog(Model& m, Dialogs& dialogs, const QString& path) {
    BusyScope busy(dialogs);
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(path, &ok);
    if (ok && ParseLog(m, bytes)) return 1;
    ResetLog(m);
    dialogs.MsgBox(LoadFailureText(path), Msg::Critical);
    return 0;
}

QString IdentificationLine(int year) {
    return QStringLiteral("CREATED-BY %1 v%2, \u00A9%3 by ZZ9QQQ\r\n")
        .arg(ProgramTitle(), ProgramVersionText())
        .arg(year, 4, 10, QLatin1Char('0'));
}

QString HeaderText(const LogHeader& h) {
    QString out;
    for (const TagDef& def : kTags) {
        // The length counts the bytes the file will hold: a character the code page
        // cannot take is stored as one "?" and counted so.
        // A tag text inside a value (only a damaged file brings one) is made harmless.
        const QString value =
            def.text ? WithoutTagText(Cp1252Clean(h.*def.text)) : QString::number(h.*def.number);
        out += QString::fromLatin1(def.tag) + QString::number(value.size()) + QLatin1Char(']') + value +
               kLineEnd;
    }
    out += kEndHead;
    return out;
}

QString ContactLine(const QsoRecord& r) {
    // The nineteen file fields in their order; the record's own running number is not among them.
    const QString fields[] = {r.Call,
                              QString::number(r.Band),
                              r.Bezirk,
                              r.Datum,
                              r.Zeit,
                              r.RstGesendet,
                              r.RstEmpfangen,
                              QString::number(r.Qsl),
                              r.Mode,
                              r.ModeRx,
                              QString::number(r.Status),
                              r.Operator,
                              r.Bemerkung,
                              r.BandRx,
                              FloatText(r.Frequenz),
                              FloatText(r.FrequenzRx),
                              r.Reserve1,
                              r.Reserve2,
                              r.Reserve3};
    QString s;
    s.reserve(96 + r.Bemerkung.size());
    for (const QString& f : fields) {
        s += f;
        s += kPilcrow;
    }
    s += kLineEnd;
    return s;
}

QString BuildLogText(Model& m, bool rebuildIndex, int year) {
    if (rebuildIndex) m.CallIndex = QString(kPilcrow);
    QString text = IdentificationLine(year) + HeaderText(m.Header);
    text.reserve(text.size() + qsizetype(m.LogRecords.size()) * 72);
    for (size_t i = 0; i < m.LogRecords.size(); ++i) {
        const QsoRecord& r = m.LogRecords[i];
        if (r.Status == Status::Deleted) continue;
        if (rebuildIndex) AppendIndexEntry(m.CallIndex, r.Call, qsizetype(i));
        text += ContactLine(r);
    }
    m.LogText = text;
    return text;
}

QString BuildLogText(Model& m, bool rebuildIndex, const TimeSource& clock) {
    return BuildLogText(m, rebuildIndex, clock.Now().date().year());
}

QString CurrentLogPath(const Model& m) {
    return m.LogFolder + m.CurrentLogName;
}

QString WriteLogFile(const Model& m) {
    if (m.CurrentLogName.isEmpty()) return QStringLiteral("Kein Log geöffnet");
    return WriteLogBytes(m, ToCp1252(m.LogText));
}

QString WriteLogBytes(const Model& m, const QByteArray& bytes) {
    if (m.CurrentLogName.isEmpty()) return QStringLiteral("Kein Log geöffnet");
    const QString path = CurrentLogPath(m);
    // A model without the log's lock (a tool, a fixture) holds it for this one write.
    std::shared_ptr<LogLock> once;
    if (!m.WriteLock || !m.WriteLock->Covers(path)) {
        QString error;
        once = LogLock::Take(path, &error);
        if (!once) return error;
    }
    return WriteFileAtomic(path, bytes);
}

void UpdateCounters(Model& m, int band, const QString& mode, const QTime& time, bool doAdd) {
    const int col = BandColumn(band);
    if (col < 0) return;
    const int modeRow = mode == QLatin1String("SSB") ? 0 : 1;
    const bool pm = !(time < m.MittagsGrenze);
    const int periodRow = modeRow * 2 + (pm ? 1 : 0);
    if (doAdd) {
        ++m.ModeBandCount[modeRow][col];
        if (time.isValid()) ++m.PeriodBandCount[periodRow][col];
    } else {
        --m.ModeBandCount[modeRow][col];
        if (time.isValid() && m.PeriodBandCount[periodRow][col] >= 1) --m.PeriodBandCount[periodRow][col];
    }
}

void UpdateCounters(Model& m, int band, const QString& mode, const QTime& time, const QString& doAdd) {
    if (doAdd == QLatin1String("True"))
        UpdateCounters(m, band, mode, time, true);
    else if (doAdd == QLatin1String("False"))
        UpdateCounters(m, band, mode, time, false);
}

void RaiseGruppeBandCount(Model& m, int gruppe, int band) {
    const int col = BandColumn(band);
    if (col < 0) return;
    for (int g = 1; g <= 9; ++g) {
        if (g == gruppe) {
            ++m.GruppeBandCount[g - 1][col];
            return;
        }
    }
}

int BezirkNumber(const Model& m, const QString& code) {
    if (code.size() != 2) return 0;
    // Element i stands at 0-based position 3i - 1; a hit anywhere else spans two entries.
    for (qsizetype idx = m.BezirkIndex.indexOf(code); idx >= 0; idx = m.BezirkIndex.indexOf(code, idx + 1))
        if ((idx + 1) % 3 == 0) return int((idx + 1) / 3);
    return 0;
}

bool IsBezirkCode(const Model& m, const QString& code) {
    return BezirkNumber(m, code) >= 1;
}

int LoadBezirkTable(Model& m, Dialogs& dialogs) {
    return LoadBezirkTable(m, dialogs, m.DataFolder + QStringLiteral("bez_koord.txt"));
}

namespace {

// One line of the district table into rec; the empty text or the error.
QString ParseBezirkLine(const QString& line, BezirkRecord& rec, bool* stop) {
    *stop = false;
    const qsizetype s1 = line.indexOf(QLatin1Char(';'), 3);
    if (s1 < 0)
        return QStringLiteral("Ungültiger Prozeduraufruf oder ungültiges Argument (Zeile \"%1\")").arg(line);
    const qsizetype s2 = line.indexOf(QLatin1Char(';'), s1 + 1);
    if (s2 < 0)
        return QStringLiteral("Ungültiger Prozeduraufruf oder ungültiges Argument (Zeile \"%1\")").arg(line);
    const auto x = NumericValue(QStringView(line).mid(3, s1 - 3));
    const auto y = NumericValue(QStringView(line).mid(s1 + 1, s2 - s1 - 1));
    if (!x || !y) return QStringLiteral("Typen unverträglich (Zeile \"%1\")").arg(line);
    rec.X = ToInt16(*x);
    rec.Y = ToInt16(*y);
    const qsizetype s3 = line.indexOf(QLatin1Char(';'), s2 + 1);
    if (s3 < 0) {
        *stop = true; // the record keeps its code and seed
        return {};
    }
    rec.Name = line.mid(s2 + 1, s3 - s2 - 1);
    const qsizetype s4 = line.indexOf(QLatin1Char(';'), s3 + 1);
    if (s4 < 0)
        return QStringLiteral("Ungültiger Prozeduraufruf oder ungültiges Argument (Zeile \"%1\")").arg(line);
    const auto g = NumericValue(QStringView(line).mid(s3 + 1, s4 - s3 - 1));
    if (!g) return QStringLiteral("Typen unverträglich (Zeile \"%1\")").arg(line);
    rec.Gruppe = ToInt16(*g);
    return {};
}

// Lines as a line-input reader sees them: CR LF, CR or LF end a line; a final line
// end opens no further line.
QStringList InputLines(const QString& text) {
    QStringList lines;
    qsizetype start = 0;
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text[i];
        if (c == u'\r' || c == u'\n') {
            lines.append(text.mid(start, i - start));
            if (c == u'\r' && i + 1 < n && text[i + 1] == u'\n') ++i;
            start = i + 1;
        }
    }
    if (start < n) lines.append(text.mid(start));
    return lines;
}

} // namespace

int LoadBezirkTable(Model& m, Dialogs& dialogs, const QString& path) {
    m.BezirkIndex = QString(600, QLatin1Char(' '));
    m.BezirkRecords.clear();
    QByteArray bytes;
    const bool opened = RunTrapped(dialogs, [&]() -> QString {
        bool ok = false;
        QString err;
        bytes = ReadWholeFile(path, &ok, &err);
        return ok ? QString() : err;
    });
    if (opened) return ParseBezirkTable(m, dialogs, bytes);
    m.BezirkIndex.clear(); // nothing read: the index is all blanks, cut away
    return 0;
}

int ParseBezirkTable(Model& m, Dialogs& dialogs, const QByteArray& bytes) {
    m.BezirkIndex = QString(600, QLatin1Char(' '));
    m.BezirkRecords.clear();
    {
        const QStringList lines = InputLines(FromCp1252(bytes));
        for (const QString& line : lines) {
            if (m.BezirkRecords.empty()) m.BezirkRecords.resize(1);
            m.BezirkRecords.emplace_back();
            const qsizetype element = qsizetype(m.BezirkRecords.size()) - 1;
            BezirkRecord& rec = m.BezirkRecords.back();
            rec.Code = Fixed2(line);
            const QString entry = rec.Code + QLatin1Char(';');
            for (int k = 0; k < 3; ++k) {
                const qsizetype at = 3 * element - 1 + k;
                if (at < m.BezirkIndex.size()) m.BezirkIndex[at] = entry[k];
            }
            bool stop = false;
            const bool done = RunTrapped(dialogs, [&] { return ParseBezirkLine(line, rec, &stop); });
            if (!done || stop || line.size() < 6) break;
        }
    }
    while (m.BezirkIndex.endsWith(QLatin1Char(' ')))
        m.BezirkIndex.chop(1);
    return m.BezirkRecords.empty() ? 0 : int(m.BezirkRecords.size()) - 1;
}

QString NormalizeTime(const QString& text, QChar timeSeparator) {
    QString t = text;
    if (t.size() < 5) t = t.rightJustified(4, QLatin1Char('0'));
    if (!t.contains(timeSeparator)) t = t.left(t.size() - 2) + timeSeparator + t.right(2);
    return t;
}

} // namespace kolibrino
