// Small widgets of the log set-up windows: a button that leaves Enter to its window, a
// label that can be clicked, and the key filters of the call and locator fields.
//
// GUI thread only. Never fails.
#pragma once

#include <QLabel>
#include <QObject>
#include <functional>

class QLineEdit;
class QPushButton;

namespace kolibrino::setup {

// A push button with its classic object name that does not take Enter by default.
QPushButton* Button(const QString& caption, const QString& name, QWidget* parent);

// A label with a frame that reacts to a click of the left button.
class ClickLabel : public QLabel {
    Q_OBJECT
public:
    explicit ClickLabel(QWidget* parent = nullptr);

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* e) override;
};

// Per key press: calls keep "/" to "9", letters (folded up), "-" as "/", backspace,
// cut and copy, and drop the rest (paste too); the locator folds every key up.
// onEnter, when set, takes the Enter key (which is then dropped).
class KeyFilter : public QObject {
    Q_OBJECT
public:
    enum class Kind { Call, Locator };
    KeyFilter(Kind kind, QLineEdit* edit, std::function<void()> onEnter = {});

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Kind kind_;
    QLineEdit* edit_;
    std::function<void()> onEnter_;
};

} // namespace kolibrino::setup
