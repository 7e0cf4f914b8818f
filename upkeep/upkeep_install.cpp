#include "upkeep/upkeep_install.h"

#include "entry/main_window.h"
#include "export/busy_panel.h"
#include "setup/modal.h"
#include "upkeep/http_update_transport.h"
#include "upkeep/info_window.h"
#include "upkeep/update_window.h"

#include <QAction>
#include <QDesktopServices>

namespace kolibrino::upkeep {

bool RunUpdateWindow(QWidget* parent, Model& m, Dialogs& dialogs, UpdateTransport& t, bool splashWay) {
    exporting::NetworkJob job; // a reminder that comes meanwhile waits until the window has closed
    UpdateWindow w(m, dialogs, t, ReadUpdateServer(m.IniPath), RunningProgram(), splashWay, parent);
    setup::ExecModal(w);
    return w.UpdatesInstalled();
}

void InstallUpkeep(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource&,
                   std::shared_ptr<UpdateTransport> transport) {
    if (!transport) transport = std::make_shared<HttpUpdateTransport>();
    w.updateAtStart = [&m, &dialogs, transport] {
        if (!CheckAtStart(m.IniPath) || ReadUpdateServer(m.IniPath).host.isEmpty()) return;
        RunUpdateWindow(nullptr, m, dialogs, *transport, true);
    };
    auto connectEntry = [&w](const char* name, std::function<void()> click) {
        QAction* a = w.Action(QString::fromLatin1(name));
        if (!a) return;
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, &w, std::move(click));
    };
    connectEntry("MnUpdatePruefung", [&w, &m, &dialogs, transport] {
        const int answer = dialogs.MsgBox(QString::fromUtf8(kTxtUpdateWarnung),
                                          Msg::YesNo | Msg::Question | Msg::DefaultButton2);
        if (answer != Msg::Yes) return;
        if (RunUpdateWindow(&w, m, dialogs, *transport, false)) w.close();
    });
    connectEntry("MnInfo", [&w, &m, &dialogs] {
        auto open = [&w](const QUrl& url) {
            return w.openUrl ? w.openUrl(url) : QDesktopServices::openUrl(url);
        };
        InfoWindow info(m, dialogs, open, &w);
        setup::ExecModal(info);
    });
}

} // namespace kolibrino::upkeep
