#include "ui/modal_focus.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace kolibrino {
namespace {

class ModalFocusReturn final : public QObject {
public:
    explicit ModalFocusReturn(QObject* parent) : QObject(parent) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Hide || !watched->isWidgetType()) return false;
        auto* w = static_cast<QWidget*>(watched);
        if (!w->isWindow() || !w->isModal() || !w->parentWidget()) return false;
        // Only the window that had the keys hands them back.
        QWidget* active = QApplication::activeWindow();
        if (active && active != w) return false;
        QWidget* back = w->parentWidget()->window();
        if (back->isVisible()) back->activateWindow();
        return false;
    }
};

} // namespace

void ReturnFocusAfterModalWindows(QApplication& app) {
    app.installEventFilter(new ModalFocusReturn(&app));
}

} // namespace kolibrino
