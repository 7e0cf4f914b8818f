#include "ui/spoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QStringList>
#include <QTimer>

namespace kolibrino {
namespace {

const char* const kOwnDescription = "kolibrinoOwnDescription";

struct SpokenState {
    QPointer<QWidget> carrier; // the control whose description is a spoken text now
    QPointer<QWidget> context;
    QStringList pending;
    bool scheduled = false;
};

SpokenState& State() {
    static SpokenState s;
    return s;
}

QString OwnDescriptionOf(const QWidget* w) {
    return w->property(kOwnDescription).toString();
}

void SendDescriptionChanged(QWidget* w) {
    QAccessibleEvent event(w, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

// The control the reader stands on: the focused widget of the application, else the
// last focused one of the context's window, else the context. The line edit of a
// combo box stands for its box.
QWidget* ReaderFocus(QWidget* context) {
    QWidget* w = QApplication::focusWidget();
    if (!w && context) w = context->window()->focusWidget();
    if (!w) w = context;
    if (w && qobject_cast<QLineEdit*>(w))
        if (auto* combo = qobject_cast<QComboBox*>(w->parentWidget()); combo && combo->lineEdit() == w) w = combo;
    return w;
}

// Gives the carrier its own description back (the message has gone).
void GiveBack() {
    SpokenState& s = State();
    if (s.carrier) s.carrier->setAccessibleDescription(OwnDescriptionOf(s.carrier));
    s.carrier = nullptr;
}


const char* const kAnsage = "KolibrinoAnsage";

// When the focus leaves the control that carries a spoken text for another control,
// the control gets its own description back; the reader no longer stands there. A
// switch to another program or a menu is no such leave.
class Keeper : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// Each window's announcer: an invisible notification whose appearance a reader speaks
// at once (Orca presents a notification that becomes showing), its name the text.
void Announce(QWidget* target, const QString& text) {
    QWidget* window = target->window();
    auto* ansage = window->findChild<QWidget*>(QString::fromLatin1(kAnsage), Qt::FindDirectChildrenOnly);
    if (!ansage) {
        // Named before it joins the window, so that the reader sees it as what it is.
        ansage = new QWidget;
        ansage->setObjectName(QString::fromLatin1(kAnsage));
        ansage->setParent(window);
        ansage->setAttribute(Qt::WA_TransparentForMouseEvents);
        ansage->setFocusPolicy(Qt::NoFocus);
        ansage->setGeometry(0, 0, 0, 0);
    }
    ansage->hide();
    ansage->setAccessibleName(text);
    ansage->show();
}

bool Keeper::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FocusOut) return false;
    auto* w = static_cast<QWidget*>(watched);
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) return false;
    w->removeEventFilter(this);
    if (w == State().carrier) GiveBack();
    return false;
}

void Deliver() {
    SpokenState& s = State();
    s.scheduled = false;
    const QString text = s.pending.join(QStringLiteral(". "));
    s.pending.clear();
    if (text.isEmpty()) return;
    QWidget* target = ReaderFocus(s.context);
    if (!target) return;
    if (target != s.carrier) GiveBack();
    s.carrier = target;
    target->setAccessibleDescription(text);
    SendDescriptionChanged(target);
    // Orca 43 over Qt 6.4 reads the description with the control's next presentation
    // only (the bridge's change events carry no text), so the text also appears as a
    // notification, which it speaks at once.
    Announce(target, text);
    static Keeper keeper;
    target->installEventFilter(&keeper);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent announcement(target, text);
    QAccessible::updateAccessibility(&announcement);
#endif
}

// Companion windows are plain widgets made windows; for the reader they are windows.
// The announcer of a window is a notification.
QAccessibleInterface* CompanionWindowFactory(const QString&, QObject* object) {
    auto* w = qobject_cast<QWidget*>(object);
    if (!w) return nullptr;
    if (w->objectName() == QLatin1String(kAnsage)) return new QAccessibleWidget(w, QAccessible::Notification);
    if (!w->isWindow()) return nullptr;
    if (w->metaObject()->superClass() != &QWidget::staticMetaObject) return nullptr;
    const Qt::WindowType type = w->windowType();
    if (type != Qt::Window && type != Qt::Tool) return nullptr;
    return new QAccessibleWidget(w, QAccessible::Window);
}

} // namespace

void Speak(QWidget* context, const QString& text) {
    if (text.isEmpty()) return;
    SpokenState& s = State();
    s.context = context;
    s.pending << text;
    if (s.scheduled) return;
    s.scheduled = true;
    QTimer::singleShot(0, qApp, &Deliver);
}

void ShowMessage(QLabel* line, const QString& text) {
    line->setText(text);
    Speak(line, text);
}

void ClearMessage(QLabel* line) {
    if (line->text().isEmpty()) return;
    line->clear();
    GiveBack();
}

void SetOwnDescription(QWidget* w, const QString& description) {
    w->setProperty(kOwnDescription, description);
    if (w != State().carrier) w->setAccessibleDescription(description);
}

void AnnounceWindow(QWidget* window) {
    Speak(window, QStringLiteral("Fenster %1 geöffnet").arg(window->windowTitle()));
}

void InstallAccessibility() {
    static bool installed = false;
    if (installed) return;
    installed = true;
    QAccessible::installFactory(&CompanionWindowFactory);
}

} // namespace kolibrino
