#include "export/export_common.h"

namespace kolibrino::exporting {

QString SaveNameWithExtension(const QString& answer, const QString& ext) {
    const QString name = answer.trimmed();
    if (name.right(ext.size()).toUpper() == ext) return name;
    return name + ext;
}

namespace {

std::optional<QDate> ParseGridDate(const LocaleFormats& f, const QString& text);

} // namespace

std::optional<QDate> GridDate(const LocaleFormats& f, const QString& text) {
    // The rows of a log share a handful of dates: remember the last one per thread.
    thread_local QString lastText;
    thread_local std::optional<QDate> lastDate;
    thread_local const LocaleFormats* lastFormats = nullptr;
    if (lastFormats == &f && text == lastText) return lastDate;
    lastDate = ParseGridDate(f, text);
    lastText = text;
    lastFormats = &f;
    return lastDate;
}

namespace {

std::optional<QDate> ParseGridDate(const LocaleFormats& f, const QString& text) {
    if (auto d = f.ParseDate(text)) return d;
    const QDate iso = QDate::fromString(text.trimmed(), Qt::ISODate);
    if (iso.isValid()) return iso;
    // Day, month and year in three groups of digits, whatever separates them.
    QList<int> parts;
    QString digits;
    for (QChar c : text + QLatin1Char(' ')) {
        if (c.isDigit()) {
            digits += c;
        } else if (!digits.isEmpty()) {
            parts.append(digits.toInt());
            digits.clear();
        }
    }
    if (parts.size() == 3) {
        const QDate d(parts[2], parts[1], parts[0]);
        if (d.isValid() && parts[2] >= 1000) return d;
    }
    return std::nullopt;
}

} // namespace

QString GridDateText(const LocaleFormats& f, const QString& text, const QString& format) {
    thread_local QString lastText, lastFormat, lastResult;
    thread_local const LocaleFormats* lastFormats = nullptr;
    if (lastFormats == &f && text == lastText && format == lastFormat) return lastResult;
    const auto d = GridDate(f, text);
    lastResult = d ? d->toString(format) : text;
    lastText = text;
    lastFormat = format;
    lastFormats = &f;
    return lastResult;
}

std::optional<int> GridMinutes(const LocaleFormats& f, const QString& text) {
    // The grid's own form "hh:mm" (any separator) without the locale's parser.
    if (text.size() == 5 && text[0].isDigit() && text[1].isDigit() && !text[2].isDigit() &&
        text[3].isDigit() && text[4].isDigit()) {
        const int h = text[0].digitValue() * 10 + text[1].digitValue();
        const int m = text[3].digitValue() * 10 + text[4].digitValue();
        if (h < 24 && m < 60) return h * 60 + m;
    }
    if (auto t = f.ParseTime(text)) return t->hour() * 60 + t->minute();
    return std::nullopt;
}

QString GridTimeHhmm(const LocaleFormats& f, const QString& text) {
    if (auto m = GridMinutes(f, text)) {
        const QChar d[4] = {QChar(u'0' + *m / 600), QChar(u'0' + *m / 60 % 10), QChar(u'0' + *m % 60 / 10),
                            QChar(u'0' + *m % 10)};
        return QString(d, 4);
    }
    QString digits;
    for (QChar c : text)
        if (c.isDigit()) digits += c;
    return digits.left(4);
}

void AskOpenInEditor(Dialogs& dialogs, const QString& path,
                     const std::function<void(const QString&)>& openInEditor) {
    const QString text = QStringLiteral("Datei gespeichert unter\n") + path +
                         QStringLiteral("\n\nSoll die Datei im Editor geöffnet werden?");
    if (dialogs.MsgBox(text, Msg::YesNo) == Msg::Yes && openInEditor) openInEditor(path);
}

} // namespace kolibrino::exporting
