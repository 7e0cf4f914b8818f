#include "core/vb_text.h"

#include <QtGlobal>
#include <charconv>
#include <cmath>
#include <limits>

namespace kolibrino {
namespace {

struct Scan {
    double value = 0;
    qsizetype end = 0; // characters used, 0 when nothing numeric
};

bool IsAsciiDigit(QChar c) {
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

// Sign, digits, one decimal point ("." or ","), digits, optional exponent. Numbers in
// the files are short: the text is copied to a small buffer, never to the heap.
Scan ScanNumber(QStringView t, qsizetype i) {
    const qsizetype n = t.size();
    char buf[72];
    int len = 0;
    auto put = [&](char c) {
        if (len < int(sizeof buf) - 1) buf[len++] = c;
    };
    const qsizetype start = i;
    bool negative = false;
    if (i < n && (t[i] == u'+' || t[i] == u'-')) negative = t[i++] == u'-';
    bool digits = false;
    while (i < n && IsAsciiDigit(t[i])) {
        put(char(t[i++].unicode()));
        digits = true;
    }
    if (i < n && (t[i] == u'.' || t[i] == u',')) {
        qsizetype j = i + 1;
        const int mark = len;
        put('.');
        bool frac = false;
        while (j < n && IsAsciiDigit(t[j])) {
            put(char(t[j++].unicode()));
            frac = true;
        }
        if (digits || frac) {
            digits = true;
            i = j;
        } else {
            len = mark;
        }
    }
    if (!digits) return {0, 0};
    if (i < n && (t[i] == u'e' || t[i] == u'E' || t[i] == u'd' || t[i] == u'D')) {
        qsizetype j = i + 1;
        const int mark = len;
        put('e');
        if (j < n && (t[j] == u'+' || t[j] == u'-')) put(char(t[j++].unicode()));
        bool expDigits = false;
        while (j < n && IsAsciiDigit(t[j])) {
            put(char(t[j++].unicode()));
            expDigits = true;
        }
        if (expDigits)
            i = j;
        else
            len = mark;
    }
    double v = 0;
    const auto res = std::from_chars(buf, buf + len, v);
    if (res.ec == std::errc::result_out_of_range) v = HUGE_VAL;
    return {negative ? -v : v, i > start ? i : 0};
}

} // namespace

double LeadingNumber(QStringView text) {
    qsizetype i = 0;
    while (i < text.size() && (text[i] == u' ' || text[i] == u'\t'))
        ++i;
    const Scan s = ScanNumber(text, i);
    return s.end ? s.value : 0.0;
}

std::optional<double> NumericValue(QStringView text) {
    const QStringView t = text.trimmed();
    if (t.isEmpty()) return std::nullopt;
    const Scan s = ScanNumber(t, 0);
    if (s.end == 0 || s.end != t.size()) return std::nullopt;
    return s.value;
}

bool IsNumericText(QStringView text) {
    return NumericValue(text).has_value();
}

int ToInt16(double value) {
    if (std::isnan(value)) return 0;
    const double r = std::nearbyint(value);
    if (r > std::numeric_limits<qint16>::max()) return std::numeric_limits<qint16>::max();
    if (r < std::numeric_limits<qint16>::min()) return std::numeric_limits<qint16>::min();
    return static_cast<int>(r);
}

QString FloatText(float value) {
    if (!std::isfinite(value)) return QStringLiteral("0");
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
    QString s = QString::fromLatin1(buf, res.ptr - buf);
    if (s == QLatin1String("-0")) s = QStringLiteral("0");
    return s;
}

QString TrimBlanks(const QString& text) {
    qsizetype b = 0, e = text.size();
    while (b < e && text[b] == u' ')
        ++b;
    while (e > b && text[e - 1] == u' ')
        --e;
    return (b == 0 && e == text.size()) ? text : text.mid(b, e - b);
}

} // namespace kolibrino
