// What the Cabrillo and ADIF writers use to put a file together: one byte buffer in
// code page 1252 filled through a pointer, field helpers that cut and pad by
// characters (as the file formats count them), and a memory for the few texts that
// repeat from row to row.
//
// Used by the export writers on whatever thread builds the file. Nothing here fails;
// a writer asks for room before it writes and the buffer grows as needed.
#pragma once

#include "core/cp1252.h"
#include "export/export_common.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>

namespace kolibrino::exporting {

// The bytes of a file being written: p is where the next byte goes. A writer that
// knows its size ahead reserves it at once; one that does not asks Room() per line.
class ByteOut {
public:
    explicit ByteOut(qsizetype reserve = 0) : buf_(std::max<qsizetype>(reserve, 64), Qt::Uninitialized) {
        p = buf_.data();
    }
    // Makes room for n more bytes; p stays the place to write.
    void Room(qsizetype n) {
        const qsizetype used = p - buf_.constData();
        if (buf_.size() - used >= n) return;
        buf_.resize(std::max(buf_.size() * 2, used + n));
        p = buf_.data() + used;
    }
    qsizetype Size() const { return p - buf_.constData(); }
    // Drops bytes from the end.
    void Chop(qsizetype n) { p -= n; }
    QByteArray Take() {
        buf_.truncate(Size());
        p = nullptr;
        return std::move(buf_);
    }

    char* p = nullptr;

private:
    QByteArray buf_;
};

template <std::size_t N> inline char* PutLiteral(char* p, const char (&text)[N]) {
    std::memcpy(p, text, N - 1);
    return p + N - 1;
}

inline char* PutBytes(char* p, const QByteArray& bytes) {
    std::memcpy(p, bytes.constData(), size_t(bytes.size()));
    return p + bytes.size();
}

inline char* PutBlanks(char* p, qsizetype n) {
    for (qsizetype i = 0; i < n; ++i)
        *p++ = ' ';
    return p;
}

// Left-aligned in width characters: a longer value cut at the right, a shorter one
// padded with blanks. Needs room for width bytes.
inline char* PutLeft(char* p, QStringView value, qsizetype width) {
    const qsizetype n = std::min(value.size(), width);
    return PutBlanks(WriteCp1252(p, value.first(n)), width - n);
}

// The same for a width known when compiling: the blanks go first, in one store.
template <qsizetype W> inline char* PutLeft(char* p, QStringView value) {
    static constexpr char kBlanks[] = "                ";
    static_assert(W < qsizetype(sizeof kBlanks));
    std::memcpy(p, kBlanks, W);
    const qsizetype n = std::min(value.size(), W);
    char* end = WriteCp1252(p, value.first(n));
    return end == p + n ? p + W : PutBlanks(end, W - n); // fewer bytes: a surrogate pair
}

// Right-aligned in width characters; a longer value keeps its leftmost characters.
inline char* PutRight(char* p, QStringView value, qsizetype width) {
    const qsizetype n = std::min(value.size(), width);
    return WriteCp1252(PutBlanks(p, width - n), value.first(n));
}

// Whether a cell is exactly the given ASCII text.
template <std::size_t N> inline bool Is(const QString& cell, const char (&text)[N]) {
    if (cell.size() != qsizetype(N - 1)) return false;
    const char16_t* s = reinterpret_cast<const char16_t*>(cell.constData());
    for (std::size_t i = 0; i + 1 < N; ++i)
        if (s[i] != char16_t(text[i])) return false;
    return true;
}

// GridMinutes() with the grid's own form "hh:mm" read in place.
inline std::optional<int> RowMinutes(const LocaleFormats& f, const QString& text) {
    if (text.size() == 5) {
        const char16_t* s = reinterpret_cast<const char16_t*>(text.constData());
        const auto digit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
        if (digit(s[0]) && digit(s[1]) && s[2] < 0x80 && !digit(s[2]) && digit(s[3]) && digit(s[4])) {
            const int h = (s[0] - u'0') * 10 + (s[1] - u'0');
            const int m = (s[3] - u'0') * 10 + (s[4] - u'0');
            if (h < 24 && m < 60) return h * 60 + m;
        }
    }
    return GridMinutes(f, text);
}

// Minutes of the day as hhmm.
inline char* PutHhmm(char* p, int minutes) {
    p[0] = char('0' + minutes / 600);
    p[1] = char('0' + minutes / 60 % 10);
    p[2] = char('0' + minutes % 60 / 10);
    p[3] = char('0' + minutes % 10);
    return p + 4;
}

// A count in decimal digits.
inline char* PutNumber(char* p, qsizetype n) {
    if (n >= 0 && n < 100) { // the length of nearly every field
        if (n >= 10) *p++ = char('0' + n / 10);
        *p++ = char('0' + n % 10);
        return p;
    }
    char digits[24];
    int k = 0;
    do {
        digits[k++] = char('0' + n % 10);
        n /= 10;
    } while (n > 0);
    while (k > 0)
        *p++ = digits[--k];
    return p;
}

// The bytes of the last text a function made from a cell: the rows of a log share a
// handful of dates, so a writer computes each once.
class LastText {
public:
    using Make = std::function<QByteArray(const QString&)>;
    explicit LastText(Make make) : make_(std::move(make)) {}
    const QByteArray& operator()(const QString& cell) {
        const bool same =
            valid_ && cell.size() == text_.size() && (cell.constData() == text_.constData() || cell == text_);
        if (!same) {
            bytes_ = make_(cell);
            text_ = cell;
            valid_ = true;
        }
        return bytes_;
    }

private:
    Make make_;
    QString text_;
    QByteArray bytes_;
    bool valid_ = false;
};

} // namespace kolibrino::exporting
