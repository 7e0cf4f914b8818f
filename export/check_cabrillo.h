// The check of a Cabrillo file before it is sent: header entries, the category
// vocabulary and the shape of the first twenty contact lines.
//
// CheckCabrillo() is a pure function: the whole file as text in, the empty text when
// the file passes, else the message to show. Dates are judged by the locale given
// (the ISO form yyyy-mm-dd always passes). Any thread; never fails, never throws,
// and runs in time linear in the text whatever it holds.
#pragma once

#include "core/locale_fmt.h"

#include <QString>
#include <QStringList>

namespace kolibrino::exporting {

QString CheckCabrillo(const QString& text, const LocaleFormats& formats = LocaleFormats());

// Every message CheckCabrillo can give (for tests and callers that sort them).
QStringList CheckCabrilloMessages();

} // namespace kolibrino::exporting
