#include "ui/field_gate.h"

#include <QComboBox>
#include <QLineEdit>

namespace kolibrino {

FieldValidator::FieldValidator(TextField field, QObject* parent) : QValidator(parent), field_(field) {}

QValidator::State FieldValidator::validate(QString& input, int& pos) const {
    const TextFieldRule& rule = RuleOf(field_);
    for (const QChar c : std::as_const(input))
        if (!FieldCharAllowed(field_, c)) return Invalid;
    for (const QString& tag : HeaderTagTexts())
        if (input.contains(tag)) return Invalid;
    if (rule.upper) input = UpperCp1252(input);
    if (rule.noBlanks) {
        // A blank never belongs in a call or a report: a pasted "oe3yyy " stands as
        // "OE3YYY" at once.
        for (qsizetype i = input.size() - 1; i >= 0; --i) {
            if (input[i] != QLatin1Char(' ')) continue;
            input.remove(i, 1);
            if (pos > i) --pos;
        }
    }
    if (rule.maxLength > 0 && input.size() > rule.maxLength) return Invalid;
    return Acceptable;
}

void InstallFieldGate(QLineEdit* edit, TextField field) {
    if (!edit) return;
    edit->setValidator(new FieldValidator(field, edit));
    const int max = RuleOf(field).maxLength;
    if (max > 0) edit->setMaxLength(max);
}

void InstallFieldGate(QComboBox* combo, TextField field) {
    if (!combo || !combo->isEditable()) return;
    combo->setValidator(new FieldValidator(field, combo));
    const int max = RuleOf(field).maxLength;
    if (max > 0) combo->lineEdit()->setMaxLength(max);
}

void RemoveFieldGate(QComboBox* combo) {
    if (!combo || !combo->isEditable()) return;
    combo->setValidator(nullptr);
    combo->lineEdit()->setMaxLength(32767);
}

} // namespace kolibrino
