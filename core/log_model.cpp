#include "core/log_model.h"

namespace kolibrino {

int BandColumn(int band) {
    switch (band) {
    case kBand40:
        return 0;
    case kBand80:
        return 1;
    case kBand30:
        return 2;
    default:
        return -1;
    }
}

int BandOfListIndex(int listIndex) {
    switch (listIndex) {
    case 0:
        return kBand40;
    case 1:
        return kBand80;
    case 2:
        return kBand30;
    default:
        return 0;
    }
}

float DefaultFrequency(int listIndex) {
    switch (listIndex) {
    case 0:
        return 7000.0f;
    case 1:
        return 3500.0f;
    case 2:
        return 10100.0f;
    default:
        return 0.0f;
    }
}

QString Fixed2(const QString& text) {
    QString s = text.left(2);
    while (s.size() < 2)
        s.append(QLatin1Char(' '));
    return s;
}

void Model::SetLocale(const QLocale& locale) {
    Formats = LocaleFormats(locale);
    TimeSeparator = Formats.TimeSeparator();
    DateSeparator = Formats.DateSeparator();
    MittagsGrenze = QTime(12, 0);
}

LogHeader DefaultHeader(const Model& m) {
    LogHeader h;
    h.MYEXAMDAT = QStringLiteral("00") + m.DateSeparator + QStringLiteral("00") + m.DateSeparator +
                  QStringLiteral("2000");
    return h;
}

QString ProgramTitle() {
    return QStringLiteral("Kolibrino");
}

QString ProgramVersionText() {
    return QStringLiteral("%1.%2.%3")
        .arg(KOLIBRINO_VERSION_MAJOR)
        .arg(KOLIBRINO_VERSION_MINOR)
        .arg(KOLIBRINO_VERSION_PATCH);
}

int ProgramVersionNumber() {
    return KOLIBRINO_VERSION_MAJOR * 100000 + KOLIBRINO_VERSION_MINOR * 1000 + KOLIBRINO_VERSION_PATCH;
}

} // namespace kolibrino
