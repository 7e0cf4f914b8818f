#include "core/storable_text.h"

#include "core/cp1252.h"

#include <QStringList>

namespace kolibrino {

bool IsCp1252Char(QChar c) {
    if (c.isSurrogate()) return false;
    return ToCp1252(QString(c)) != QByteArrayLiteral("?") || c == u'?';
}

bool IsSeparatorChar(QChar c) {
    return c == QChar(0x00B6) || c == QChar(0x00D7);
}

bool DropsFromContactField(QChar c) {
    return IsSeparatorChar(c) || c == u'\r' || c == u'\n' || !IsCp1252Char(c);
}

QString StorableContactText(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (IsSeparatorChar(c) || c == u'\r' || c == u'\n') continue;
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            out += QLatin1Char('?');
            ++i;
        } else {
            out += IsCp1252Char(c) ? c : QLatin1Char('?');
        }
    }
    return out;
}

const QStringList& HeaderTagTexts() {
    static const QStringList tags = {
        QStringLiteral("[MYCALL:"),    QStringLiteral("[MYLOCATOR:"),    QStringLiteral("[MYBZ:"),
        QStringLiteral("[MYOMYL:"),    QStringLiteral("[MYOPCALL:"),     QStringLiteral("[MYOPNAME:"),
        QStringLiteral("[MYADRESS:"),  QStringLiteral("[MYPLZ:"),        QStringLiteral("[MYCITY:"),
        QStringLiteral("[MYEMAIL:"),   QStringLiteral("[MYWERTUNGSST:"), QStringLiteral("[MYPWR:"),
        QStringLiteral("[MYSTATION:"), QStringLiteral("[MYKOMMENT:"),    QStringLiteral("[MYEXAMDAT:"),
        QStringLiteral("[MYOPKLASS:"), QStringLiteral("[MYNPOWER:"),     QStringLiteral("[ENDHEAD:]")};
    return tags;
}

QString WithoutTagText(const QString& value) {
    if (!value.contains(QLatin1Char('['))) return value;
    QString out = value;
    for (const QString& tag : HeaderTagTexts())
        for (qsizetype at = out.indexOf(tag); at >= 0; at = out.indexOf(tag, at + 1))
            out[at] = QLatin1Char('(');
    return out;
}

QString HeaderValueProblem(const QString& fieldName, const QString& value) {
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (IsCp1252Char(c)) continue;
        const QString shown = (c.isHighSurrogate() && i + 1 < value.size()) ? value.mid(i, 2) : QString(c);
        return QStringLiteral("Das Zeichen \"%1\" im Feld \"%2\" kann nicht gespeichert werden!\r\n"
                              "Bitte das Zeichen entfernen.")
            .arg(shown, fieldName);
    }
    for (const QString& tag : HeaderTagTexts()) {
        if (value.contains(tag))
            return QStringLiteral("Der Text \"%1\" im Feld \"%2\" ist nicht erlaubt!\r\n"
                                  "Er würde die Logdatei beschädigen.")
                .arg(tag, fieldName);
    }
    return {};
}

} // namespace kolibrino
