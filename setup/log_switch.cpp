#include "setup/log_switch.h"

#include "core/atomic_file.h"
#include "core/call_index.h"
#include "core/cp1252.h"
#include "core/log_file.h"
#include "core/log_lock.h"
#include "core/settings.h"
#include "core/tallies.h"
#include "core/vb_text.h"
#include "setup/log_manager.h"

#include <QDir>
#include <QFileInfo>

namespace kolibrino::setup {

QByteArray ReadFileDefault(const QString& path, bool* ok) {
    return ReadWholeFile(path, ok);
}

bool IsContestDay(const QDate& d) {
    return d.day() == 1 && d.month() == 5;
}

SameDay SameDayWarning(const Model& m, Dialogs& dialogs, const TimeSource& clock, QString* lastLog,
                       const FileReader& read) {
    const QDate today = clock.Now().date();
    if (!IsContestDay(today)) return SameDay::NoWarning;
    const QString last = IniReadString(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"));
    if (last.isEmpty() || !QFileInfo(m.LogFolder + last).isFile()) return SameDay::NoWarning;
    bool ok = false;
    const QString text = FromCp1252(read(m.LogFolder + last, &ok));
    if (!ok) return SameDay::NoWarning;
    const QString mark = QStringLiteral("[ENDHEAD:]\r\n");
    const qsizetype at = text.indexOf(mark);
    if (at < 0) return SameDay::NoWarning;
    const QString contacts = TrimBlanks(text.mid(at + 12));
    if (contacts.size() <= 14) return SameDay::NoWarning;
    const QChar sep = m.DateSeparator;
    const QChar pilcrow(0x00B6);
    const QString needle = pilcrow + QStringLiteral("%1").arg(today.day(), 2, 10, QLatin1Char('0')) + sep +
                           QStringLiteral("%1").arg(today.month(), 2, 10, QLatin1Char('0')) + sep +
                           QStringLiteral("%1").arg(today.year(), 4, 10, QLatin1Char('0')) + pilcrow;
    if (!contacts.contains(needle)) return SameDay::NoWarning;
    const QStringList lines = {
        QStringLiteral("Du hast heute bereits Stationen geloggt."),
        QString(),
        QStringLiteral("Du musst Contestperiode 1 und 2 "),
        QStringLiteral("(VORMITTAG und NACHMITTAG)"),
        QStringLiteral("in das selbe Log eintragen."),
        QStringLiteral("Du erleichterst damit die Auswertung!"),
        QString(),
        QStringLiteral("JA = Zuletzt verwendetes Log laden"),
        QStringLiteral("NEIN = Neues Log anlegen"),
        QStringLiteral("Abbrechen = Zurück zum vorherigen Fenster"),
    };
    const int answer =
        dialogs.MsgBox(lines.join(QStringLiteral("\r\n")), Msg::YesNoCancel | Msg::Information);
    if (answer == Msg::Yes) {
        if (lastLog) *lastLog = last;
        return SameDay::TakeLastLog;
    }
    if (answer == Msg::No) return SameDay::NewLog;
    return SameDay::Cancel;
}

QString MainTitle(const Model& m) {
    return QStringLiteral("Kolibrino (%1%2)").arg(QDir::toNativeSeparators(m.LogFolder), m.CurrentLogName);
}

SwitchResult SwitchLog(Model& m, Dialogs& dialogs, const MainHooks& hooks, bool fromOpenLog) {
    if (hooks.clearGrid) hooks.clearGrid();
    ResetTallies(m);
    const QString path = m.LogFolder + m.CurrentLogName;
    bool loaded = false;
    {
        BusyScope busy(dialogs);
        bool ok = false;
        const QByteArray bytes = ReadWholeFile(path, &ok);
        loaded = ok && ParseLog(m, bytes);
        if (!loaded) {
            // The model is emptied either way; the old log is gone from memory.
            m.Header = DefaultHeader(m);
            m.LogRecords.clear();
            m.CallIndex = QString(QChar(0x00B6));
            m.LogText.clear();
        }
    }
    if (!loaded) {
        const int answer = dialogs.MsgBox(LoadFailureText(path), Msg::RetryCancel | Msg::Critical);
        if (answer == Msg::Retry) return SwitchResult::Retry;
        if (fromOpenLog) dialogs.MsgBox(QStringLiteral("Kolibrino muss beendet werden."), Msg::Critical);
        return SwitchResult::EndProgram;
    }
    m.IsStaatsfunkstelle = m.Header.MYWERTUNGSST == 4;
    RebuildTallies(m);
    if (hooks.fillGrid) hooks.fillGrid();
    if (hooks.showStation) hooks.showStation(m.Header.MYBZ, m.Header.MYCALL, m.Header.MYOPCALL);
    if (hooks.applyBandDefault && m.Open.Frequenz) hooks.applyBandDefault();
    if (hooks.refreshSideWindows) hooks.refreshSideWindows();
    if (hooks.setTitle) hooks.setTitle(MainTitle(m));
    return SwitchResult::Switched;
}

SwitchResult FinishNewLog(Model& m, Dialogs& dialogs, const MainHooks& hooks) {
    if (m.Header.MYCALL.isEmpty() && !m.LogChanged && m.Header.MYBZ.trimmed().isEmpty()) {
        dialogs.MsgBox(QStringLiteral("Ungültiges Log!\r\nKolibrino muss beendet werden."), Msg::Critical);
        return SwitchResult::EndProgram;
    }
    if (!m.LogChanged) return SwitchResult::Unchanged;
    m.LogChanged = false;
    // The new log was written a moment ago; another program that took it since then
    // leaves this one without a log it may write.
    if (!TakeWriteLock(m, dialogs)) {
        dialogs.MsgBox(QStringLiteral("Kolibrino muss beendet werden."), Msg::Critical);
        return SwitchResult::EndProgram;
    }
    WriteLastLogFile(m, m.CurrentLogName);
    return SwitchLog(m, dialogs, hooks, false);
}

SwitchResult FinishOpenLog(Model& m, Dialogs& dialogs, const MainHooks& hooks, const QString& previous) {
    if (m.CurrentLogName == previous) return SwitchResult::Unchanged;
    // A log that another program writes is not opened; the old one stays, with its lock.
    if (!TakeWriteLock(m, dialogs)) {
        m.CurrentLogName = previous;
        return SwitchResult::Unchanged;
    }
    WriteLastLogFile(m, m.CurrentLogName);
    return SwitchLog(m, dialogs, hooks, true);
}

} // namespace kolibrino::setup
