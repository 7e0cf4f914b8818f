#include "setup/setup_flows.h"

#include "core/backup.h"
#include "setup/log_new_open.h"
#include "setup/modal.h"
#include "setup/sichern_einstellungen.h"
#include "setup/station_log.h"
#include "setup/station_logic.h"

#include <QFileInfo>

namespace kolibrino::setup {

bool ChooseLogAtStart(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                      const MainHooks& hooks) {
    {
        LogNewOpen window(m, dialogs, clock, hooks, LogNewOpen::Mode::Start, parent);
        ExecModal(window);
    }
    return !m.CurrentLogName.isEmpty() && QFileInfo(m.LogFolder + m.CurrentLogName).isFile();
}

SwitchResult MnNeuesLog(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                        const MainHooks& hooks) {
    for (;;) {
        QString last;
        const SameDay warning = SameDayWarning(m, dialogs, clock, &last);
        if (warning == SameDay::Cancel) return SwitchResult::Unchanged;
        if (warning == SameDay::TakeLastLog) {
            m.CurrentLogName = last;
            m.LogChanged = true;
        } else {
            StationLog window(m, dialogs, clock, hooks, StationMode::NewLog, parent);
            window.SetImportVisible(true);
            ExecModal(window);
        }
        const SwitchResult r = FinishNewLog(m, dialogs, hooks);
        if (r != SwitchResult::Retry) return r;
    }
}

SwitchResult MnOpenLog(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                       const MainHooks& hooks) {
    for (;;) {
        const QString previous = m.CurrentLogName;
        {
            LogNewOpen window(m, dialogs, clock, hooks, LogNewOpen::Mode::OpenOnly, parent);
            ExecModal(window);
        }
        const SwitchResult r = FinishOpenLog(m, dialogs, hooks, previous);
        if (r != SwitchResult::Retry) return r;
    }
}

void MnLogoptionen(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                   const MainHooks& hooks) {
    {
        StationLog window(m, dialogs, clock, hooks, StationMode::Options, parent);
        window.FillFromLog();
        ExecModal(window);
    }
    if (!m.LogChanged) return;
    m.LogChanged = false;
    if (hooks.showStation) hooks.showStation(m.Header.MYBZ, m.Header.MYCALL, m.Header.MYOPCALL);
    if (hooks.setOperators) hooks.setOperators(ReadOperators(m), m.Header.MYOPCALL);
    if (hooks.armBackupTimer) hooks.armBackupTimer();
    const bool checked = hooks.autoBackupChecked && hooks.autoBackupChecked();
    if (checked && !m.ExtraBackupPath.isEmpty())
        BackupFile(dialogs, m.LogFolder + m.CurrentLogName, m.ExtraBackupPath + m.CurrentLogName,
                   m.ExtraBackupPath);
}

std::optional<bool> MnAutomatischesSichern(QWidget* parent, Model& m, Dialogs& dialogs) {
    SichernEinstellungen window(m, dialogs, parent);
    if (ExecModal(window) != QDialog::Accepted) return std::nullopt;
    return window.Enabled();
}

} // namespace kolibrino::setup
