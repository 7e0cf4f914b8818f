// Dialogs for the command-line companion: boxes go to standard error, every question
// is answered with its default button, every file dialog is cancelled.
//
// Main thread only. Never blocks, never fails.
#pragma once

#include "core/dialogs.h"

namespace kolibrino {

class ConsoleDialogs final : public Dialogs {
public:
    int MsgBox(const QString& text, int flags, const QString& title) override;
    std::optional<QString> InputBox(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    QString OpenDialog(const QString&, const QString&, const QString&) override { return {}; }
    QString SaveDialog(const QString&, const QString&, const QString&) override { return {}; }
    QString BrowseFolder(const QString&, const QString&) override { return {}; }
    int SelectColor(int, bool) override { return -1; }
    void SetBusy(bool) override {}
    void Beep() override {}
};

} // namespace kolibrino
