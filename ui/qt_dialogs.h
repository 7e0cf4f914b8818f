// The operator's dialogs on Qt Widgets: message boxes by flag number, input box,
// file, folder and colour dialogs, the hourglass.
//
// GUI thread only. Every call blocks in a modal dialog until answered; cancelling
// gives the empty text or -1. Never throws.
#pragma once

#include "core/dialogs.h"

#include <QColor>

class QWidget;

namespace kolibrino {

class QtDialogs final : public Dialogs {
public:
    explicit QtDialogs(QWidget* parent = nullptr) : parent_(parent) {}
    void SetParent(QWidget* parent) { parent_ = parent; }

    int MsgBox(const QString& text, int flags, const QString& title) override;
    std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                    const QString& defaultText) override;
    QString OpenDialog(const QString& filter, const QString& title, const QString& startFolder) override;
    QString SaveDialog(const QString& filter, const QString& title, const QString& startFolder) override;
    QString BrowseFolder(const QString& title, const QString& startFolder) override;
    int SelectColor(int initial, bool fullOpen) override;
    bool PrintDialog(QPrinter& printer, const QString& title) override;
    void SetBusy(bool busy) override;
    void Beep() override;

private:
    QWidget* parent_;
};

// "name|pattern|..." as a Qt name filter list ("name (pattern)").
QString QtNameFilter(const QString& filter);
// 0x00BBGGRR and back.
int ColorToBgr(const QColor& c);
QColor BgrToColor(int bgr);

} // namespace kolibrino
