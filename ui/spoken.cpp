#include "ui/spoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
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

// Gives the carrier its own description back without an event (setting it sends
// none): the reader is not to repeat a control's meaning each time a message goes.
void GiveBack() {
    SpokenState& s = State();
    if (s.carrier) s.carrier->setAccessibleDescription(OwnDescriptionOf(s.carrier));
    s.carrier = nullptr;
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
    // Setting the description tells nobody; the event does (the same text again, too).
    target->setAccessibleDescription(text);
    SendDescriptionChanged(target);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent announcement(target, text);
    QAccessible::updateAccessibility(&announcement);
#endif
}

// Companion windows are plain widgets made windows; for the reader they are windows.
QAccessibleInterface* CompanionWindowFactory(const QString&, QObject* object) {
    auto* w = qobject_cast<QWidget*>(object);
    if (!w || !w->isWindow()) return nullptr;
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
