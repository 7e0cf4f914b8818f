// Number reading the way the log file and the settings have always read numbers.
//
// LeadingNumber() is the lenient reader of contact lines: the leading numeric value,
// 0 when there is none. IsNumericText() is the strict test used for header lengths and
// numeric header values. Both accept "." and "," as the decimal point; Kolibrino writes ".".
//
// Pure functions; any thread. They never fail.
#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace kolibrino {

double LeadingNumber(QStringView text);
bool IsNumericText(QStringView text);
std::optional<double> NumericValue(QStringView text); // strict; nullopt when not numeric
// A 16-bit field from a number: rounded half to even, clamped to the 16-bit range.
int ToInt16(double value);
// Shortest decimal text that reads back as the same single-precision number ("." point).
QString FloatText(float value);
// VB-style Trim: blanks (spaces) only, both ends.
QString TrimBlanks(const QString& text);

} // namespace kolibrino
