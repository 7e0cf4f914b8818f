#include "setup/setup_widgets.h"

#include "setup/station_logic.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

namespace kolibrino::setup {

QPushButton* Button(const QString& caption, const QString& name, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

ClickLabel::ClickLabel(QWidget* parent) : QLabel(parent) {
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Sunken);
    setCursor(Qt::PointingHandCursor);
    setMinimumHeight(24);
    setTextInteractionFlags(Qt::NoTextInteraction);
}

void ClickLabel::mouseReleaseEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton && isEnabled() && rect().contains(e->position().toPoint()))
        emit clicked();
    QLabel::mouseReleaseEvent(e);
}

KeyFilter::KeyFilter(Kind kind, QLineEdit* edit, std::function<void()> onEnter)
    : QObject(edit), kind_(kind), edit_(edit), onEnter_(std::move(onEnter)) {
    edit->installEventFilter(this);
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (watched != edit_ || event->type() != QEvent::KeyPress) return false;
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Escape:
    case Qt::Key_Delete:
        return false;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (onEnter_) onEnter_();
        return kind_ == Kind::Call || onEnter_;
    default:
        break;
    }
    if (kind_ == Kind::Call && key->matches(QKeySequence::Paste)) return true;
    const QString text = key->text();
    if (text.isEmpty()) return false; // navigation and modifiers
    const QChar c = text.front();
    if (kind_ == Kind::Locator) {
        if (c.unicode() < 32) return false;
        edit_->insert(QString(FilterLocatorKey(c)));
        return true;
    }
    const auto mapped = FilterCallKey(c);
    if (!mapped) return true;
    if (mapped->unicode() < 32) return false; // backspace, cut, copy: the field's own
    edit_->insert(QString(*mapped));
    return true;
}

} // namespace kolibrino::setup
