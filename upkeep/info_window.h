// The window "Info": name, version from the build, the maker's line, the logo, a free
// text (Info.txt in DataFolder when present) and the mail button to the contest manager.
//
// Made by InstallUpkeep for the menu entry MnInfo, shown modally. GUI thread only. A
// mail program that does not open is not reported; a missing address is (German box).
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QDialog>
#include <QUrl>
#include <functional>

namespace kolibrino::upkeep {

class InfoWindow : public QDialog {
    Q_OBJECT
public:
    // openUrl: the desktop's shell (QDesktopServices in the program).
    InfoWindow(const Model& m, Dialogs& d, std::function<bool(const QUrl&)> openUrl,
               QWidget* parent = nullptr);

    void Command2Click(); // "eMail an ZZ9QQQ"
    // Opens the mail link with the wait pointer around it.
    void OpenMail(const QString& address, const QString& subject, const QString& body);

private:
    const Model& m_;
    Dialogs& d_;
    std::function<bool(const QUrl&)> openUrl_;
};

} // namespace kolibrino::upkeep
