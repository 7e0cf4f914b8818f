#include "setup/station_logic.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/locale_fmt.h"
#include "core/log_file.h"
#include "core/log_lock.h"
#include "core/settings.h"
#include "core/storable_text.h"
#include "core/tallies.h"
#include "core/trash.h"
#include "core/vb_text.h"
#include "setup/log_manager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace kolibrino::setup {
namespace {

const QString kFailure =
    QStringLiteral("Die Datei\r\n\r\nist fehlerhaft oder keine gültige Kolibrino Logdatei!");

QString Today(const TimeSource& clock) {
    return clock.Now().date().toString(QStringLiteral("yyyyMMdd"));
}

bool ThirdIsLetter(const QString& trimmedCall) {
    return IsStaatsfunkCall(trimmedCall);
}

int OptionValue(const QString& value, int count, int fallback) {
    const double v = std::trunc(LeadingNumber(value));
    if (v < 0 || v >= count) return fallback;
    return int(v);
}

} // namespace

QString ContestManagerMail() {
    return QStringLiteral("logs@zeft-contest.at");
}

QString EmergencyPowerText() {
    return QStringLiteral("Die Station wurde in beiden Contestperioden unabhängig vom öffentlichen Stromnetz "
                          "betrieben.\n"
                          "Dies zählt +2 Multiplikatorpunkte.\n"
                          "Bei Notstrombetrieb sind Fotos der Anlage an  %1  zu senden!")
        .arg(ContestManagerMail());
}

std::optional<QChar> FilterCallKey(QChar c) {
    const char16_t u = c.unicode();
    if (u == 8 || u == 24 || u == 3) return c;
    if (u == u'-') return QLatin1Char('/');
    if ((u >= u'/' && u <= u'9') || (u >= u'A' && u <= u'Z')) return c;
    if (u >= u'a' && u <= u'z') return QChar(char16_t(u - 32));
    return std::nullopt;
}

QChar FilterLocatorKey(QChar c) {
    return UpperCp1252(QString(c)).at(0);
}

QStringList DistrictRows(const Model& m) {
    QStringList rows;
    for (size_t i = 1; i < m.BezirkRecords.size(); ++i)
        rows << m.BezirkRecords[i].Code + QStringLiteral(" - ") + m.BezirkRecords[i].Name;
    return rows;
}

QStringList YearRows(const TimeSource& clock) {
    const int year = clock.Now().date().year();
    QStringList rows;
    for (int y = year; y >= year - 3; --y)
        rows << QString::number(y);
    return rows;
}

QStringList MonthNames(const QLocale& locale) {
    QStringList names;
    for (int i = 1; i <= 12; ++i)
        names << locale.standaloneMonthName(i, QLocale::LongFormat);
    return names;
}

QStringList DayRows() {
    QStringList rows;
    for (int d = 1; d <= 31; ++d)
        rows << QString::number(d);
    return rows;
}

QStringList ReadOperators(const Model& m) {
    QStringList rows;
    IniReadSection(m.IniPath, QStringLiteral("OPCALLs"), rows);
    // The section may have been edited by hand: only what the gate lets through.
    return GatedOperatorList(rows);
}

StationForm LoadForm(const Model& m) {
    StationForm f;
    f.combo5Rows = ReadOperators(m);
    f.option5 = m.Header.MYNPOWER == 0 ? 0 : 1;
    return f;
}

void ClickOption2(StationForm& f, int index) {
    f.option2 = index;
    f.frame5Visible = index == 3;
}

void ClickOption5(Model& m, StationForm& f, int index) {
    f.option5 = index;
    m.Header.MYNPOWER = index == 0 ? 0 : 2;
}

void FillFromHeader(const Model& m, const TimeSource& clock, StationForm& f) {
    const LogHeader& h = m.Header;
    f.label10 = m.CurrentLogName;
    f.text1 = h.MYCALL;
    f.text3 = h.MYLOCATOR;
    f.combo1Text.clear();
    for (const QString& row : DistrictRows(m))
        if (row.left(2) == h.MYBZ) f.combo1Text = row;
    if (h.MYOMYL >= 0 && h.MYOMYL <= 1) f.option1 = h.MYOMYL;
    f.combo5Text = h.MYOPCALL;
    f.text4 = h.MYOPNAME;
    f.text5 = h.MYADRESS;
    f.text9 = h.MYPLZ;
    f.text10 = h.MYCITY;
    f.text6 = h.MYEMAIL;
    if (h.MYWERTUNGSST >= 0 && h.MYWERTUNGSST <= 4) ClickOption2(f, h.MYWERTUNGSST);
    if (h.MYPWR >= 0 && h.MYPWR <= 1) f.option3 = h.MYPWR;
    f.text7 = h.MYSTATION;
    f.text8 = h.MYKOMMENT;
    if (h.MYWERTUNGSST == 3) {
        f.frame5Visible = true;
        const QStringList parts = h.MYEXAMDAT.split(m.DateSeparator);
        const int day = parts.size() > 0 ? int(LeadingNumber(parts[0])) : 0;
        const int month = parts.size() > 1 ? int(LeadingNumber(parts[1])) : 0;
        const int year = parts.size() > 2 ? int(LeadingNumber(parts[2])) : 0;
        if (day >= 1 && day <= 31) f.combo2Text = QString::number(day);
        // Only January to July come back; a later month must be picked again.
        if (month >= 1 && month <= 7) f.combo3Index = month - 1;
        if (YearRows(clock).contains(QString::number(year))) f.combo4Text = QString::number(year);
    }
    if (h.MYOPKLASS >= 0 && h.MYOPKLASS <= 2) f.option4 = h.MYOPKLASS;
}

std::optional<QString> ExamDate(const StationForm& f, QChar sep) {
    if (f.combo2Text.isEmpty() || f.combo3Index < 0 || f.combo4Text.isEmpty()) return std::nullopt;
    bool okDay = false, okYear = false;
    const int day = f.combo2Text.toInt(&okDay);
    const int year = f.combo4Text.toInt(&okYear);
    const int month = f.combo3Index + 1;
    if (!okDay || !okYear || !QDate(year, month, day).isValid()) return std::nullopt;
    return f.combo2Text + sep + QString::number(month) + sep + f.combo4Text;
}

Focus ChooseFileName(Model& m, Dialogs& dialogs, const TimeSource& clock, StationForm& f) {
    const QString call = TrimBlanks(f.text1);
    if (call.size() < 3) {
        dialogs.MsgBox(QStringLiteral("Bitte zuerst das Stationsrufzeichen eingeben!"), Msg::Information);
        return Focus::Text1;
    }
    QString suggestion = call.toUpper();
    suggestion.replace(QLatin1Char('/'), QLatin1Char('_'));
    const auto answer =
        dialogs.InputBox(QStringLiteral("Namen für neues Log eingeben"), QStringLiteral("Dateiname"),
                         QStringLiteral("ZEFT_%1_%2").arg(suggestion, Today(clock)));
    if (!answer) return Focus::None;
    QString name = *answer;
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    if (HasForbiddenNameChar(name) || name.size() >= 251) {
        dialogs.MsgBox(QStringLiteral("Dateiname ungültig"));
        return Focus::None;
    }
    if (!FileNameFits(m.LogFolder, name + QLatin1String(".KOLBO"))) {
        dialogs.MsgBox(QStringLiteral("Dateiname zu lang!"), Msg::Critical);
        return Focus::None;
    }
    const QString path = m.LogFolder + name + QLatin1String(".KOLBO");
    if (QFileInfo::exists(path)) {
        // A log that another program writes is neither replaced nor moved away.
        if (QString locked; LockedByOther(path, &locked)) {
            dialogs.MsgBox(locked, Msg::Exclamation);
            return Focus::None;
        }
        const int a = dialogs.MsgBox(QStringLiteral("Datei existiert bereits! Überschreiben?"),
                                     Msg::YesNo | Msg::Question | Msg::DefaultButton2);
        if (a == Msg::No) ChooseFileName(m, dialogs, clock, f);
        // This pass's file goes, whatever the answer, and this pass's name wins; it goes
        // to the trash, so that a No the flow does not heed costs nothing. A file that
        // does not reach the trash keeps its name: the new log never overwrites it.
        if (!RunTrapped(dialogs, [&]() -> QString { return MoveToTrash(path, m.BackupFolder, clock.Now()); })) {
            dialogs.MsgBox(QStringLiteral("Das bestehende Log %1 wurde nicht in den Papierkorb verschoben und "
                                          "bleibt unverändert.\r\n\r\nDas neue Log wird unter diesem Namen "
                                          "nicht angelegt.")
                               .arg(QDir::toNativeSeparators(path)),
                           Msg::Exclamation);
            return Focus::None;
        }
    }
    m.CurrentLogName = name + QLatin1String(".KOLBO");
    f.label10 = m.CurrentLogName;
    return Focus::None;
}

QString StationFormProblem(const StationForm& f) {
    const std::pair<TextField, QString> fields[] = {
        {TextField::MyCall, f.text1},
        {TextField::MyOpCall, f.combo5Text},
        {TextField::MyLocator, f.text3},
        {TextField::MyOpName, f.text4},
        {TextField::MyAdress, f.text5},
        {TextField::MyPlz, f.text9},
        {TextField::MyCity, f.text10},
        {TextField::MyEmail, f.text6},
        {TextField::MyStation, f.text7Lines.join(QLatin1Char('\n'))},
        {TextField::MyKomment, f.text8Lines.join(QLatin1Char('\n'))}};
    for (const auto& [field, value] : fields)
        if (const QString p = FieldTextProblem(field, value); !p.isEmpty()) return p;
    // The operator list goes into the main window's operator box and so into contacts.
    for (const QString& row : f.combo5Rows)
        if (const QString p = FieldTextProblem(TextField::Operator, row); !p.isEmpty()) return p;
    return {};
}

bool Validate(Model& m, Dialogs& dialogs, const TimeSource& clock, StationForm& f, Focus* focus) {
    *focus = Focus::None;
    const QString call = TrimBlanks(f.text1);
    auto fail = [&](const QString& text, Focus where) {
        dialogs.MsgBox(text, Msg::Critical);
        *focus = where;
        return false;
    };
    if (call.size() < 3)
        return fail(QStringLiteral("Bitte ein gültiges Stationsrufzeichen eingeben!"), Focus::Text1);
    const bool stateCall = ThirdIsLetter(call);
    if (!stateCall && f.option2 == 4)
        return fail(QStringLiteral("Wertungsklasse 'Staatsfunkstelle' mit diesem Rufzeichen nicht möglich!"),
                    Focus::Text1);
    if (stateCall && f.option2 != 4)
        return fail(
            QStringLiteral(
                "Für eine Staatsfunkstelle muss die Wertungsklasse 'Staatsfunkstelle' ausgewählt werden!"),
            Focus::Option2State);
    if (f.label10.isEmpty()) {
        dialogs.MsgBox(QStringLiteral("Kein Name für die Logdatei angegeben!"), Msg::Critical);
        *focus = ChooseFileName(m, dialogs, clock, f);
        return false;
    }
    if (TrimBlanks(f.combo5Text).size() < 3)
        return fail(QStringLiteral("Bitte ein gültiges Operatorrufzeichen eingeben!"), Focus::Combo5);
    if (f.combo1Text.size() < 2)
        return fail(QStringLiteral("Bitte den eigenen Bezirk auswählen!"), Focus::Combo1);
    if (f.frame5Visible) {
        const QChar sep = FirstNonDigit(m.Formats.ShortDate(clock.Now().date()), m.DateSeparator);
        if (!ExamDate(f, sep))
            return fail(QStringLiteral("Du hast kein gültiges Datum für deine Lizenzprüfung angegeben!"),
                        Focus::None);
    }
    if (const QString problem = StationFormProblem(f); !problem.isEmpty()) return fail(problem, Focus::None);
    if (!f.text6.contains(QLatin1Char('@'))) {
        const int a = dialogs.MsgBox(
            QStringLiteral(
                "Du hast deine eMail-Adresse nicht angegeben!\r\nBitte gib sie zwecks Rückfragen ein!"),
            Msg::YesNo);
        if (a == Msg::Yes) {
            *focus = Focus::Text6;
            return false;
        }
    }
    return true;
}

QString NormalizeMemo(const QStringList& displayedLines, StationMode mode) {
    QStringList lines;
    for (const QString& l : displayedLines)
        lines << l.left(256);
    QString text = lines.join(QStringLiteral("\r\n"));
    for (;;) {
        if (text.endsWith(QStringLiteral("\r\n")))
            text.chop(2);
        else if (text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
            text.chop(1);
        else
            break;
    }
    if (mode == StationMode::Options) text = text.left(248);
    return text + QStringLiteral("\r\n");
}

bool Save(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks, StationForm& f,
          StationMode mode, bool newLogWindowOpen) {
    const bool isNew = mode == StationMode::NewLog;
    dialogs.SetBusy(true);
    struct Pointer {
        Dialogs& d;
        bool on = true;
        void Off() {
            if (on) d.SetBusy(false);
            on = false;
        }
        ~Pointer() { Off(); }
    } pointer{dialogs};

    // 9: the memo fields through the control's own line wrap.
    f.text7 = NormalizeMemo(f.text7Lines, mode);
    f.text8 = NormalizeMemo(f.text8Lines, mode);
    // 10: trimmed texts back into the controls.
    for (QString* s : {&f.text1, &f.combo5Text, &f.text3, &f.text4, &f.text5, &f.text6, &f.text9, &f.text10})
        *s = TrimBlanks(*s);
    // 11: the old file of a new log is replaced whole by the write of step 14.
    // 12: the header.
    LogHeader& h = m.Header;
    // The texts as the gate stores them (Validate has refused what it cannot store).
    h.MYCALL = FieldText(TextField::MyCall, f.text1);
    h.MYLOCATOR = FieldText(TextField::MyLocator, f.text3);
    h.MYBZ = Fixed2(f.combo1Text.left(2).toUpper());
    h.MYOMYL = f.option1;
    h.MYOPCALL = FieldText(TextField::MyOpCall, f.combo5Text);
    h.MYOPNAME = FieldText(TextField::MyOpName, f.text4);
    h.MYADRESS = FieldText(TextField::MyAdress, f.text5);
    h.MYPLZ = FieldText(TextField::MyPlz, f.text9);
    h.MYCITY = FieldText(TextField::MyCity, f.text10);
    h.MYEMAIL = FieldText(TextField::MyEmail, f.text6);
    h.MYWERTUNGSST = f.option2;
    h.MYPWR = f.option3;
    h.MYSTATION = f.text7;
    h.MYKOMMENT = f.text8;
    if (f.frame5Visible) {
        const QChar sep = FirstNonDigit(m.Formats.ShortDate(clock.Now().date()), m.DateSeparator);
        if (const auto date = ExamDate(f, sep)) h.MYEXAMDAT = *date;
    }
    h.MYOPKLASS = f.option4;
    // 13: a new log starts without contacts.
    if (isNew) m.LogRecords.clear();
    // 14: the file.
    const QString text = BuildLogText(m, false, clock);
    if (text.size() > 10) {
        if (!RunTrapped(dialogs, [&] { return WriteLogFile(m); })) return false;
    }
    // 15
    if (!isNew) m.IsStaatsfunkstelle = h.MYWERTUNGSST == 4;
    // 16: the operator list.
    // Removing the section and writing it anew is one file replacement.
    QStringList operatorRows;
    if (isNew) {
        operatorRows = f.combo5Rows;
    } else if (!f.combo5Rows.isEmpty()) {
        const QString typed = TrimBlanks(f.combo5Text);
        if (!f.combo5Rows.contains(typed)) f.combo5Rows << typed;
        while (f.combo5Rows.size() >= 11)
            f.combo5Rows.removeLast();
        // The main window's box is cleared before each row: only the last stays, until
        // the caller refills it from the settings.
        if (hooks.setOperators)
            for (const QString& row : f.combo5Rows)
                hooks.setOperators(QStringList{row}, QString());
        operatorRows = f.combo5Rows;
    }
    IniReplaceSection(m.IniPath, QStringLiteral("OPCALLs"), operatorRows);
    // 17
    if (isNew) {
        IniWrite(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastNewLogFile"), m.CurrentLogName);
        IniWrite(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastNewLogDate"), Today(clock));
    }
    // 18
    if (isNew) {
        pointer.Off();
        if (!newLogWindowOpen) m.LogChanged = true;
    } else {
        m.LogChanged = true;
    }
    // 19
    if (m.Open.Statistik && hooks.startScoreRefresh) hooks.startScoreRefresh();
    return true;
}

void ImportLastLog(Model& m, Dialogs& dialogs, StationForm& f) {
    const QString last = IniReadString(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"));
    if (last.isEmpty() || !QFileInfo(m.LogFolder + last).isFile()) return;
    QByteArray bytes;
    const bool read = RunTrapped(dialogs, [&]() -> QString {
        bool ok = false;
        QString err;
        bytes = ReadWholeFile(m.LogFolder + last, &ok, &err);
        return ok ? QString() : err;
    });
    if (!read) return;
    const QString text = FromCp1252(bytes);
    static const char* const kOrder[] = {"MYCALL",    "MYLOCATOR", "MYBZ",      "MYOMYL",       "MYOPCALL",
                                         "MYOPNAME",  "MYADRESS",  "MYEMAIL",   "MYWERTUNGSST", "MYPWR",
                                         "MYSTATION", "MYKOMMENT", "MYEXAMDAT", "MYOPKLASS",    "MYPLZ",
                                         "MYCITY",    "MYNPOWER"};
    for (const char* name : kOrder) {
        const QString tagName = QString::fromLatin1(name);
        const QString tag = QLatin1Char('[') + tagName + QLatin1Char(':');
        const qsizetype p = text.indexOf(tag);
        if (p < 0) continue;
        const bool npower = tagName == QLatin1String("MYNPOWER");
        const qsizetype lenStart = p + tag.size();
        const qsizetype close = text.indexOf(QLatin1Char(']'), lenStart);
        if (close < 0) {
            if (npower) {
                m.Header.MYNPOWER = 0;
                continue;
            }
            dialogs.MsgBox(kFailure, Msg::Critical);
            return;
        }
        const auto len = NumericValue(QStringView(text).mid(lenStart, close - lenStart));
        if (!len) {
            dialogs.MsgBox(kFailure, Msg::Critical);
            return;
        }
        const double n = std::trunc(*len);
        const QString value =
            n > 0 ? text.mid(close + 1, qsizetype(std::min(n, double(text.size())))) : QString();
        if (tagName == QLatin1String("MYCALL"))
            f.text1 = value;
        else if (tagName == QLatin1String("MYLOCATOR"))
            f.text3 = value;
        else if (tagName == QLatin1String("MYOMYL"))
            f.option1 = OptionValue(value, 2, f.option1);
        else if (tagName == QLatin1String("MYOPCALL"))
            f.combo5Text = value;
        else if (tagName == QLatin1String("MYOPNAME"))
            f.text4 = value;
        else if (tagName == QLatin1String("MYADRESS"))
            f.text5 = value;
        else if (tagName == QLatin1String("MYEMAIL"))
            f.text6 = value;
        else if (tagName == QLatin1String("MYWERTUNGSST"))
            ClickOption2(f, OptionValue(value, 5, f.option2));
        else if (tagName == QLatin1String("MYPWR"))
            f.option3 = OptionValue(value, 2, f.option3);
        else if (tagName == QLatin1String("MYSTATION"))
            f.text7 = value;
        else if (tagName == QLatin1String("MYKOMMENT"))
            f.text8 = value;
        else if (tagName == QLatin1String("MYOPKLASS"))
            f.option4 = OptionValue(value, 3, f.option4);
        else if (tagName == QLatin1String("MYPLZ"))
            f.text9 = value;
        else if (tagName == QLatin1String("MYCITY"))
            f.text10 = value;
        else if (npower) {
            // The button is chosen by the tag's length, not its value: "Ja" for the
            // one-character value every log holds.
            if (n >= 0 && n <= 1) ClickOption5(m, f, int(n));
        }
        // MYBZ and MYEXAMDAT are read and dropped: both are chosen anew.
    }
}

bool OperatorListMayAdd(Dialogs& dialogs, const QStringList& rows) {
    if (rows.size() >= kMaxOperators) {
        dialogs.MsgBox(
            QStringLiteral("Du must zuerst ein Rufzeichen löschen um ein neues eingeben zu können!\r\n"
                           "Es sind maximal 10 Rufzeichen möglich."),
            Msg::Information);
        return false;
    }
    return true;
}

bool OperatorListTakeOver(Dialogs& dialogs, QStringList& rows, int editIndex, const QString& text2) {
    const QString call = TrimBlanks(text2);
    if (call.size() < 3) {
        dialogs.MsgBox(QStringLiteral("Rufzeichen muss mindestens 3 Zeichen lang sein!"), Msg::Critical);
        return false;
    }
    const GatedText gated = GateText(TextField::Operator, call);
    if (!gated.Ok()) {
        dialogs.MsgBox(gated.problem, Msg::Critical);
        return false;
    }
    if (editIndex < 0 || editIndex >= rows.size())
        rows << gated.text;
    else
        rows[editIndex] = gated.text;
    return true;
}

QStringList OperatorListDelete(Dialogs& dialogs, const QStringList& rows, const QList<int>& selected) {
    if (selected.isEmpty()) {
        dialogs.MsgBox(QStringLiteral("Kein Rufzeichen ausgewählt!"), Msg::Information);
        return rows;
    }
    QStringList left;
    bool stop = false;
    for (int i = 0; i < rows.size(); ++i) {
        if (stop || !selected.contains(i)) {
            left << rows[i];
            continue;
        }
        const int a =
            dialogs.MsgBox(QStringLiteral("Möchtest du '%1' wirklich aus der Liste löschen?").arg(rows[i]),
                           Msg::YesNoCancel | Msg::Question);
        if (a == Msg::Yes) continue;
        left << rows[i];
        if (a == Msg::Cancel)
            stop = true;
        else
            dialogs.Beep();
    }
    return left;
}

} // namespace kolibrino::setup
