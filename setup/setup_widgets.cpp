#include "setup/setup_widgets.h"

#include "setup/station_logic.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStyle>

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

namespace {

class EnterKeyFilter : public QObject {
public:
    EnterKeyFilter(QWidget* w, std::function<void()> action) : QObject(w), action_(std::move(action)) {
        w->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
        action_();
        return true;
    }

private:
    std::function<void()> action_;
};

} // namespace

void OnEnterKey(QWidget* w, std::function<void()> action) {
    new EnterKeyFilter(w, std::move(action));
}

void ClickLabel::SetElided(bool on) {
    elided_ = on;
    QSizePolicy p = sizePolicy();
    p.setHorizontalPolicy(on ? QSizePolicy::Ignored : QSizePolicy::Preferred);
    setSizePolicy(p);
    updateGeometry();
    update();
}

void ClickLabel::paintEvent(QPaintEvent* e) {
    if (!elided_) {
        QLabel::paintEvent(e);
        return;
    }
    QPainter p(this);
    drawFrame(&p);
    const QRect r = contentsRect().adjusted(margin() + 2, margin(), -margin() - 2, -margin());
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, r.width());
    style()->drawItemText(&p, r, int(QStyle::visualAlignment(layoutDirection(), alignment())), palette(),
                          isEnabled(), shown, foregroundRole());
}

KeyFilter::KeyFilter(Kind kind, QLineEdit* edit, std::function<void()> onEnter)
    : QObject(edit), kind_(kind), edit_(edit), onEnter_(std::move(onEnter)) {
    edit->installEventFilter(this);
}

KeyFilter::KeyFilter(Kind kind, QComboBox* combo, std::function<void()> onEnter)
    : QObject(combo), kind_(kind), edit_(combo->lineEdit()), onEnter_(std::move(onEnter)) {
    combo_ = combo;
    combo->installEventFilter(this);
    edit_->installEventFilter(this);
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if ((watched != edit_ && watched != combo_) || event->type() != QEvent::KeyPress) return false;
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
