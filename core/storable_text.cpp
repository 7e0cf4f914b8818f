#include "core/storable_text.h"

#include "core/cp1252.h"
#include "core/vb_text.h"

#include <QStringList>
#include <iterator>

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

// ---- The gate ------------------------------------------------------------------------

namespace kolibrino {
namespace {

//                                   name               max    upper  trim   noBlank multi
const TextFieldRule kRules[] = {
    /* Call         */ {"Rufzeichen", 13, true, true, true, false},
    /* RstGesendet  */ {"RST gesendet", 4, true, true, true, false},
    /* RstEmpfangen */ {"RST empfangen", 4, true, true, true, false},
    /* Mode         */ {"Mode", 5, false, true, true, false},
    /* Bezirk       */ {"Bezirk", 0, false, true, false, false}, // checks 7 and 8 judge the rest
    /* Operator     */ {"Operator", 13, true, true, false, false},
    /* Bemerkung    */ {"Notiz", 0, false, false, false, false},
    /* MyCall       */ {"Stationsrufzeichen", 13, true, true, true, false},
    /* MyOpCall     */ {"Operatorrufzeichen", 13, true, true, false, false},
    /* MyLocator    */ {"Locator", 6, true, true, false, false},
    /* MyOpName     */ {"Name", 70, false, true, false, false},
    /* MyAdress     */ {"Adresse", 70, false, true, false, false},
    /* MyPlz        */ {"PLZ", 10, true, true, false, false},
    /* MyCity       */ {"Ort", 70, false, true, false, false},
    /* MyEmail      */ {"eMail", 250, false, true, false, false},
    /* MyStation    */ {"Station", 20000, false, false, false, true},
    /* MyKomment    */ {"Kommentar", 20000, false, false, false, true},
};
static_assert(std::size(kRules) == size_t(TextField::MyKomment) + 1);

QString Name(TextField field) {
    return QString::fromUtf8(RuleOf(field).name);
}

// The character as a box shows it: a surrogate pair whole.
QString Shown(const QString& text, qsizetype i) {
    if (text[i].isHighSurrogate() && i + 1 < text.size()) return text.mid(i, 2);
    return QString(text[i]);
}

} // namespace

const TextFieldRule& RuleOf(TextField field) {
    return kRules[size_t(field)];
}

QString UpperCp1252(const QString& text) {
    QString out = text;
    for (qsizetype i = 0; i < out.size(); ++i) {
        const QChar c = out[i];
        if (c.isSurrogate() || !c.isLower()) continue;
        const QChar u = c.toUpper();
        if (u != c && IsCp1252Char(u)) out[i] = u;
    }
    return out;
}

QString FieldText(TextField field, const QString& text) {
    const TextFieldRule& rule = RuleOf(field);
    QString t = rule.trimmed ? TrimBlanks(text) : text;
    if (rule.upper) t = UpperCp1252(t);
    return t;
}

bool FieldCharAllowed(TextField field, QChar c) {
    if (!IsCp1252Char(c) || IsSeparatorChar(c)) return false;
    const char16_t u = c.unicode();
    const bool control = u < 0x20 || u == 0x7F || (u >= 0x80 && u < 0xA0 && c.category() == QChar::Other_Control);
    if (!control) return true;
    return RuleOf(field).multiLine && (u == u'\r' || u == u'\n' || u == u'\t');
}

QString FieldTextProblem(TextField field, const QString& text) {
    const TextFieldRule& rule = RuleOf(field);
    const QString t = FieldText(field, text);
    for (qsizetype i = 0; i < t.size(); ++i) {
        const QChar c = t[i];
        if (FieldCharAllowed(field, c)) continue;
        if (IsSeparatorChar(c))
            return QStringLiteral("Das Zeichen \"%1\" im Feld \"%2\" ist nicht erlaubt!\r\n"
                                  "Es würde die Logdatei beschädigen.")
                .arg(Shown(t, i), Name(field));
        if (!IsCp1252Char(c))
            return QStringLiteral("Das Zeichen \"%1\" im Feld \"%2\" kann nicht gespeichert werden!\r\n"
                                  "Bitte das Zeichen entfernen.")
                .arg(Shown(t, i), Name(field));
        return QStringLiteral("Ein Zeilenumbruch oder Steuerzeichen im Feld \"%1\" ist nicht erlaubt!")
            .arg(Name(field));
    }
    for (const QString& tag : HeaderTagTexts()) {
        if (t.contains(tag))
            return QStringLiteral("Der Text \"%1\" im Feld \"%2\" ist nicht erlaubt!\r\n"
                                  "Er würde die Logdatei beschädigen.")
                .arg(tag, Name(field));
    }
    if (rule.noBlanks && t.contains(QLatin1Char(' ')))
        return QStringLiteral("Das Feld \"%1\" darf keine Leerzeichen enthalten!").arg(Name(field));
    if (rule.maxLength > 0 && t.size() > rule.maxLength)
        return QStringLiteral("Das Feld \"%1\" darf höchstens %2 Zeichen lang sein!")
            .arg(Name(field))
            .arg(rule.maxLength);
    return {};
}

GatedText GateText(TextField field, const QString& text) {
    return GatedText{FieldText(field, text), FieldTextProblem(field, text)};
}

QStringList GatedOperatorList(const QStringList& rows) {
    QStringList out;
    for (const QString& row : rows) {
        const GatedText g = GateText(TextField::Operator, row);
        if (g.Ok() && !g.text.isEmpty()) out << g.text;
    }
    return out;
}

} // namespace kolibrino
