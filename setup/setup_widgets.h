// Small widgets of the log set-up windows: a button that leaves Enter to its window, a
// label that can be clicked, and the key filters of the call and locator fields.
//
// GUI thread only. Never fails.
#pragma once

#include <QLabel>
#include <QObject>
#include <functional>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace kolibrino::setup {

// A push button with its classic object name that does not take Enter by default.
QPushButton* Button(const QString& caption, const QString& name, QWidget* parent);

// Enter (either key) on w runs action and is taken; other keys stay w's own.
void OnEnterKey(QWidget* w, std::function<void()> action);

// A label with a frame that reacts to a click of the left button.
class ClickLabel : public QLabel {
    Q_OBJECT
public:
    explicit ClickLabel(QWidget* parent = nullptr);
    // A long text is shortened with "…" to the width the window gives the label, and
    // never widens the window; the full text stays text().
    void SetElided(bool on);

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

private:
    bool elided_ = false;
};

// Per key press: calls keep "/" to "9", letters (folded up), "-" as "/", backspace,
// cut and copy, and drop the rest (paste too); the locator folds every key up.
// onEnter, when set, takes the Enter key (which is then dropped).
class KeyFilter : public QObject {
    Q_OBJECT
public:
    enum class Kind { Call, Locator };
    KeyFilter(Kind kind, QLineEdit* edit, std::function<void()> onEnter = {});
    // An editable combo box: the keys come to the combo box itself (its line edit is
    // only its display), so the filter sits on both and types into the line edit.
    KeyFilter(Kind kind, QComboBox* combo, std::function<void()> onEnter = {});

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Kind kind_;
    QLineEdit* edit_;
    QObject* combo_ = nullptr;
    std::function<void()> onEnter_;
};

} // namespace kolibrino::setup
