#include "ui/keyboard_focus.h"

#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QObject>
#include <QWidget>

namespace kolibrino {
namespace {

constexpr const char* kMarker = "kolibrinoSelectsOnKeyboardFocus";

bool FromKeyboard(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

QLineEdit* EditOf(QObject* o) {
    if (auto* combo = qobject_cast<QComboBox*>(o)) return combo->isEditable() ? combo->lineEdit() : nullptr;
    auto* edit = qobject_cast<QLineEdit*>(o);
    // The line edit inside a combo box is covered through its combo box.
    if (edit && qobject_cast<QComboBox*>(edit->parent())) return nullptr;
    return edit;
}

class SelectAllFilter : public QObject {
public:
    explicit SelectAllFilter(QObject* parent) : QObject(parent) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn && FromKeyboard(static_cast<QFocusEvent*>(event)->reason()))
            if (QLineEdit* edit = EditOf(watched)) edit->selectAll();
        return false;
    }
};

SelectAllFilter* Filter() {
    static SelectAllFilter* filter = nullptr;
    if (!filter) filter = new SelectAllFilter(nullptr);
    return filter;
}

void Cover(QWidget* w) {
    if (!EditOf(w) || w->property(kMarker).toBool()) return;
    w->setProperty(kMarker, true);
    w->installEventFilter(Filter());
}

} // namespace

void SelectAllOnKeyboardFocus(QWidget* root) {
    if (!root) return;
    Cover(root);
    for (QWidget* w : root->findChildren<QWidget*>())
        Cover(w);
}

void FocusFromKeyboard(QWidget* w) {
    if (w) w->setFocus(Qt::ShortcutFocusReason);
}

} // namespace kolibrino
