#include "entry/spoken_texts.h"

namespace kolibrino {

QString LoggedText(const QsoRecord& r) {
    QString text = QStringLiteral("Geloggt %1 %2m %3").arg(r.Call, QString::number(r.Band), r.Mode.trimmed());
    const QString bezirk = r.Bezirk.trimmed();
    if (!bezirk.isEmpty()) text += QLatin1Char(' ') + bezirk;
    if (r.Status == Status::Dupe) text += QStringLiteral(", Dupe");
    return text;
}

QString ValueText(const QString& caption, const QString& value) {
    const QString v = value.trimmed();
    return caption + QLatin1Char(' ') + (v.isEmpty() ? QStringLiteral("leer") : v);
}

QString DupeButtonText(bool lit) {
    return lit ? QStringLiteral("Dupe-Warnung: Station bereits gearbeitet") : QStringLiteral("keine Dupe-Warnung");
}

} // namespace kolibrino
