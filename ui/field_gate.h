// The text gate at the keyboard: a validator that lets into a line edit or an editable
// combo box only what the field may store (core/storable_text.h). A key or a paste that
// brings a character the field cannot hold, a separator or the text of a header tag is
// refused as a whole; capitals and blanks are set right in the field at once, so the
// field shows what the file will hold.
//
// GUI thread only. Never fails.
#pragma once

#include "core/storable_text.h"

#include <QValidator>

class QComboBox;
class QLineEdit;

namespace kolibrino {

class FieldValidator final : public QValidator {
public:
    FieldValidator(TextField field, QObject* parent);
    State validate(QString& input, int& pos) const override;
    TextField Field() const { return field_; }

private:
    TextField field_;
};

// Sets the validator of the field and its length limit to the stored limit.
void InstallFieldGate(QLineEdit* edit, TextField field);
void InstallFieldGate(QComboBox* combo, TextField field);
// Takes the gate off a combo box whose values change kind (the bulk change's value).
void RemoveFieldGate(QComboBox* combo);

} // namespace kolibrino
