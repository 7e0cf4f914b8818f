#include "core/cp1252.h"

#include <array>

namespace kolibrino {
namespace {

// 0x80..0x9F of code page 1252. The five unassigned bytes map to the C1 control
// of the same number, as Windows does, so every byte survives a round trip.
constexpr std::array<char16_t, 32> kHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char EncodeOne(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == c) return static_cast<char>(0x80 + i);
    return '?';
}

} // namespace

QString FromCp1252(const QByteArray& bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* dst = out.data();
    const auto* src = reinterpret_cast<const unsigned char*>(bytes.constData());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const unsigned char b = src[i];
        dst[i] = QChar((b >= 0x80 && b < 0xA0) ? kHigh[b - 0x80] : char16_t(b));
    }
    return out;
}

char* WriteCp1252Rest(char* dst, QStringView text) {
    const char16_t* p = text.utf16();
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = p[i];
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            *dst++ = char(c);
        } else if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(p[i + 1])) {
            *dst++ = '?';
            ++i;
        } else {
            *dst++ = EncodeOne(c);
        }
    }
    return dst;
}

QByteArray ToCp1252(const QString& text) {
    QByteArray out(text.size(), Qt::Uninitialized);
    char* end = WriteCp1252(out.data(), text);
    out.truncate(end - out.constData());
    return out;
}

QString Cp1252Clean(const QString& text) {
    return FromCp1252(ToCp1252(text));
}

} // namespace kolibrino
