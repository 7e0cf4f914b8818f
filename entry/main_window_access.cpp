// The main window for the screen reader and the keyboard alone: the values of the
// band, mode and operator boxes in words, the state of the DUPE button, the grid's
// name, the keys that reach the log grid, the date field and each open companion
// window, and the announcement of a companion window that opens.
//
// Keys (none of them is taken by a field, a menu or the clearing keys):
//   F6                  log grid; F6 in the grid goes back to the call field
//   Ctrl+Shift+D        date field
//   Ctrl+Shift+H        main window, call field (from any window of the program)
//   Ctrl+Shift+K/M/F/E/C/T/R  the open companion window: map, multiplier table,
//                       frequency, result, call check, partial calls, transceiver
#include "entry/log_grid_view.h"
#include "entry/main_window.h"
#include "entry/spoken_texts.h"
#include "ui/keyboard_focus.h"
#include "ui/spoken.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace kolibrino {
namespace {

struct CompanionKey {
    Companion id;
    Qt::Key key;
    const char* caption; // the window as the menu names it
};

const CompanionKey kCompanionKeys[] = {
    {Companion::BZKarte, Qt::Key_K, "Bezirke Karte"},
    {Companion::GridKarte, Qt::Key_M, "Multiplikatoren Tabelle"},
    {Companion::Frequenz, Qt::Key_F, "Frequenz Einstellung"},
    {Companion::Statistik, Qt::Key_E, "Ergebnis"},
    {Companion::LogTracker, Qt::Key_C, "Rufzeichen Check"},
    {Companion::DBLog, Qt::Key_T, "Teilrufzeichen"},
    {Companion::Transceiver, Qt::Key_R, "Transceiver Steuerung"},
};

constexpr auto kCtrlShift = Qt::ControlModifier | Qt::ShiftModifier;

QShortcut* MakeShortcut(QWidget* owner, const QKeySequence& keys, const char* name, Qt::ShortcutContext context) {
    auto* s = new QShortcut(keys, owner);
    s->setObjectName(QString::fromLatin1(name));
    s->setContext(context);
    return s;
}

// A box's own description: its value, then its meaning ("80m, TX Band").
QString BoxDescription(const QComboBox* box) {
    const QString value = box->currentText().trimmed();
    return value.isEmpty() ? box->toolTip() : value + QStringLiteral(", ") + box->toolTip();
}

} // namespace

void HauptForm::BuildAccess() {
    InstallAccessibility();
    gridView_->setAccessibleName(QStringLiteral("Log"));
    label13_->setAccessibleDescription(QStringLiteral("Meldung"));

    const std::pair<QComboBox*, QString> boxes[] = {
        {combo1_, QStringLiteral("Band")}, {combo2_, QStringLiteral("Mode")}, {combo6_, QStringLiteral("Operator")}};
    for (const auto& [box, caption] : boxes) {
        // The box's value in its description: read with the box, told to nobody.
        SetOwnDescription(box, BoxDescription(box));
        connect(box, &QComboBox::currentTextChanged, this, [box] { SetOwnDescription(box, BoxDescription(box)); });
        // A new choice is spoken, whoever made it; typing in the operator box is not.
        connect(box, &QComboBox::currentIndexChanged, this, [this, box, caption] {
            if (box == combo6_ && combo6Busy_) return; // the list is being rebuilt
            SpeakValue(caption, box);
        });
    }

    connect(MakeShortcut(this, QKeySequence(Qt::Key_F6), "KeyLogGrid", Qt::WindowShortcut), &QShortcut::activated,
            this, &HauptForm::FocusLogGrid);
    connect(MakeShortcut(this, QKeySequence(kCtrlShift | Qt::Key_D), "KeyDatum", Qt::WindowShortcut),
            &QShortcut::activated, this, [this] { FocusFromKeyboard(text1_); });
    connect(MakeShortcut(this, QKeySequence(kCtrlShift | Qt::Key_H), "KeyHauptfenster", Qt::ApplicationShortcut),
            &QShortcut::activated, this, [this] {
                raise();
                activateWindow();
                FocusFromKeyboard(text3_);
            });
    for (const CompanionKey& k : kCompanionKeys) {
        auto* s = new QShortcut(QKeySequence(kCtrlShift | k.key), this);
        s->setObjectName(QStringLiteral("Key") + QString::fromLatin1(CompanionOf(k.id).name));
        s->setContext(Qt::ApplicationShortcut);
        connect(s, &QShortcut::activated, this, [this, k] { BringUpCompanion(k.id, QString::fromUtf8(k.caption)); });
    }
}

void HauptForm::SpeakValue(const QString& caption, const QComboBox* box) {
    if (isVisible() && box->currentIndex() >= 0) Speak(text3_, ValueText(caption, box->currentText()));
}

void HauptForm::FocusLogGrid() {
    if (gridView_->hasFocus()) {
        FocusFromKeyboard(text3_);
        return;
    }
    if (grid_.DataRows() > 0 && !gridView_->currentIndex().isValid())
        gridView_->setCurrentIndex(grid_.index(grid_.DataRows() - 1, 0));
    gridView_->setFocus(Qt::ShortcutFocusReason);
    if (grid_.DataRows() == 0) Speak(gridView_, QStringLiteral("Log leer"));
}

void HauptForm::BringUpCompanion(Companion id, const QString& caption) {
    QWidget* w = CompanionWindow(id);
    if (!w || !OpenFlag(m_, id)) {
        Speak(this, QStringLiteral("Fenster %1 nicht geöffnet").arg(caption));
        return;
    }
    w->show();
    w->raise();
    w->activateWindow();
    if (w->focusWidget()) return;
    // A window shown for the first time has no control with the focus yet: its first one.
    for (QWidget* child : w->findChildren<QWidget*>())
        if ((child->focusPolicy() & Qt::TabFocus) && child->isVisibleTo(w) && child->isEnabled()) {
            child->setFocus(Qt::ShortcutFocusReason);
            break;
        }
}

void HauptForm::AnnounceCompanion(QWidget* window) {
    // A companion window is built anew for each opening: its first Show is its opening.
    window->installEventFilter(this);
    if (!window->isVisible()) return;
    window->setProperty("kolibrinoAnnounced", true);
    AnnounceWindow(window);
}

bool HauptForm::CompanionShown(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Show) return false;
    auto* w = qobject_cast<QWidget*>(watched);
    if (!w || !w->isWindow() || w == this || w->property("kolibrinoAnnounced").toBool()) return false;
    for (const CompanionDef& c : Companions())
        if (CompanionWindow(c.id) == w) {
            w->setProperty("kolibrinoAnnounced", true);
            AnnounceWindow(w);
            return true;
        }
    return false;
}

void HauptForm::ShowDupeState() {
    SetOwnDescription(dupCommand1_, DupeButtonText(dupe_.enabled));
}

} // namespace kolibrino
