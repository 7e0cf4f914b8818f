#include "ui/combo_max_length.h"

#include <QComboBox>
#include <QLineEdit>

namespace kolibrino {

void SetComboMaxLength(QComboBox* combo, int maxLength, bool truncate) {
    if (!combo || !combo->lineEdit()) return;
    if (maxLength < 0) maxLength = 0;
    QLineEdit* edit = combo->lineEdit();
    const QString text = edit->text();
    // QLineEdit cuts on its own when the limit shrinks; the truncate flag decides whether
    // a longer text may stay, so keep it until we know.
    edit->setMaxLength(maxLength == 0 ? 32767 : maxLength);
    if (maxLength > 0 && truncate && text.size() > maxLength) {
        edit->setText(text.left(maxLength));
        edit->setCursorPosition(maxLength);
    } else if (edit->text() != text) {
        edit->setText(text);
    }
}

} // namespace kolibrino
