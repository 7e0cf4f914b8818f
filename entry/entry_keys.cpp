#include "entry/entry_keys.h"

#include "core/call_index.h"
#include "core/log_file.h"
#include "core/settings.h"
#include "core/storable_text.h"
#include "core/vb_text.h"

namespace kolibrino {
namespace {

const QString kSection = QStringLiteral("Einstellungen");
const QString kOpCallsSection = QStringLiteral("OPCALLs");
const QString kOE = QStringLiteral("OE");

bool IsAsciiDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsAsciiUpper(char16_t c) {
    return c >= u'A' && c <= u'Z';
}
bool IsAsciiLower(char16_t c) {
    return c >= u'a' && c <= u'z';
}
// Backspace, Ctrl+X and Ctrl+C: the editing keys every filtered field keeps.
bool IsEditingKey(char16_t c) {
    return c == KeyAscii::Backspace || c == KeyAscii::CtrlX || c == KeyAscii::CtrlC;
}

KeyAction Typed(QChar ch, bool stopsTimer1) {
    KeyAction a;
    a.kind = KeyAction::Type;
    a.ch = ch;
    a.stopsTimer1 = stopsTimer1;
    return a;
}

KeyAction Swallowed(KeyAction::Kind kind, bool stopsTimer1) {
    KeyAction a;
    a.kind = kind;
    a.stopsTimer1 = stopsTimer1;
    return a;
}

bool IsTimeField(EntryField f) {
    return f == EntryField::Text1 || f == EntryField::Text2;
}

} // namespace

// ---- Keys ----------------------------------------------------------------------------

int ShiftStateOf(Qt::KeyboardModifiers modifiers) {
    int s = 0;
    if (modifiers & Qt::ShiftModifier) s |= 1;
    if (modifiers & Qt::ControlModifier) s |= 2;
    if (modifiers & Qt::AltModifier) s |= 4;
    return s;
}

int KeyCodeOf(int qtKey) {
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return 'A' + (qtKey - Qt::Key_A);
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) return '0' + (qtKey - Qt::Key_0);
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12) return 112 + (qtKey - Qt::Key_F1);
    return 0;
}

bool ClearsEntry(int keyCode, int shiftState) {
    return shiftState > 1 && (keyCode == kKeyCodeF10 || keyCode == kKeyCodeW);
}

std::optional<EntryField> SpaceTarget(EntryField field, bool shiftDown) {
    switch (field) {
    case EntryField::Text1:
    case EntryField::Text2:
    case EntryField::Combo1:
    case EntryField::Combo2:
    case EntryField::Check1:
        return shiftDown ? EntryField::Combo5 : EntryField::Text3;
    case EntryField::Text3:
        return EntryField::Combo5;
    case EntryField::Text4:
    case EntryField::Text5:
        return shiftDown ? EntryField::Text3 : EntryField::Combo5;
    case EntryField::Combo5:
        return EntryField::Text3;
    case EntryField::Text8:
    case EntryField::Combo6:
        return std::nullopt;
    }
    return std::nullopt;
}

KeyAction FilterKeyPress(EntryField field, QChar key, bool shiftDown, QChar dateSeparator,
                         QChar timeSeparator) {
    const char16_t k = key.unicode();
    const bool stops = IsTimeField(field);
    if (k == KeyAscii::Tab) return Typed(key, false);
    if (k == KeyAscii::Delete) return Typed(key, stops);

    if (field == EntryField::Combo6) {
        if (k == KeyAscii::Enter) return Swallowed(KeyAction::OperatorEnter, false);
        if (DropsFromContactField(key) && !IsEditingKey(k)) return Swallowed(KeyAction::Drop, false);
        return Typed(key.toUpper(), false);
    }
    if (k == KeyAscii::Enter) return Swallowed(KeyAction::Take, stops);
    if (k == KeyAscii::Space) {
        const std::optional<EntryField> target = SpaceTarget(field, shiftDown);
        if (!target) return Typed(key, stops);
        KeyAction a = Swallowed(KeyAction::Jump, stops);
        a.target = *target;
        return a;
    }

    // Separators, line ends and characters the file cannot hold never reach a field.
    if (DropsFromContactField(key) && !IsEditingKey(k)) return Swallowed(KeyAction::Drop, stops);

    switch (field) {
    case EntryField::Text1:
    case EntryField::Text2: {
        const QChar sep = field == EntryField::Text1 ? dateSeparator : timeSeparator;
        if (IsAsciiDigit(k) || key == sep || IsEditingKey(k)) return Typed(key, true);
        return Swallowed(KeyAction::Drop, true);
    }
    case EntryField::Text3:
        if (k == KeyAscii::Minus) return Typed(QChar(KeyAscii::Slash), false);
        if (IsAsciiLower(k)) return Typed(key.toUpper(), false);
        if (k == KeyAscii::Slash || IsAsciiDigit(k) || IsAsciiUpper(k) || IsEditingKey(k))
            return Typed(key, false);
        return Swallowed(KeyAction::Drop, false);
    case EntryField::Combo5:
        return Typed(key.isLetter() ? key.toUpper() : key, false);
    default:
        return Typed(key, false);
    }
}

std::optional<EntryField> TabTarget(EntryField leaving, bool backwards, bool fieldsLocked,
                                    bool extendedEntry) {
    if (!backwards && (leaving == EntryField::Combo5 || leaving == EntryField::Text8)) {
        if (extendedEntry && leaving == EntryField::Combo5)
            return fieldsLocked ? EntryField::Check1 : EntryField::Text1;
        return fieldsLocked ? EntryField::Combo1 : EntryField::Text2;
    }
    // Text8 lies in the extended panel; while it is hidden the usual order stands.
    if (backwards && leaving == EntryField::Text2 && extendedEntry) return EntryField::Text8;
    return std::nullopt;
}

// ---- Look ----------------------------------------------------------------------------

quint32 FocusColour(EntryField field, bool focused, const DateTimeLockState& lock) {
    if (IsTimeField(field) && (lock.manualTime || lock.dateTimeLock)) return lock.FieldColour();
    return focused ? EntryColour::Cyan : EntryColour::White;
}

bool SelectsAllOnFocus(EntryField field) {
    return field == EntryField::Text4 || field == EntryField::Text5;
}

int ComboMaxLength(EntryField field) {
    switch (field) {
    case EntryField::Combo1:
    case EntryField::Combo2:
        return 5;
    case EntryField::Combo5:
        return 2;
    case EntryField::Combo6:
        return 13;
    default:
        return 0;
    }
}

CheckLook Check1Look(int value) {
    if (value == 1) return {kQslJa, EntryColour::Highlight};
    return {kQslNein, EntryColour::ButtonFace};
}

// ---- The call field ------------------------------------------------------------------

CallCheck CheckCall(const Model& m, const QString& call, int band, const QString& mode,
                    const std::optional<QTime>& entryTime) {
    CallCheck c;
    const DupeVerdict v = CallExistTest(m, call, band, mode, entryTime);
    c.found = v.found;
    c.bezirk = v.bezirk;
    c.isDupe = v.isDupe;
    if (v.isDupe && v.dupeTime) c.warning = DupeWarningText(m, *v.dupeTime);
    return c;
}

QString ListCall(const QString& call) {
    const qsizetype slash = call.indexOf(QLatin1Char('/'), 3);
    return slash >= 0 ? call.left(slash) : call;
}

std::optional<QString> StationName(const QString& oeCallList, const QString& call) {
    if (call.isEmpty() || oeCallList.isEmpty()) return std::nullopt;
    // The hit must start a line: "E1ABC;" is no hit in the line "OE1ABC;...".
    const QString key = call + QLatin1Char(';');
    qsizetype p = oeCallList.indexOf(key);
    while (p > 0 && oeCallList[p - 1] != QLatin1Char('\n'))
        p = oeCallList.indexOf(key, p + 1);
    if (p < 0) return std::nullopt;
    const qsizetype semi = oeCallList.indexOf(QLatin1Char(';'), p);
    qsizetype lf = oeCallList.indexOf(QLatin1Char('\n'), semi + 1);
    if (lf < 0) lf = oeCallList.size(); // the last line may have no line feed
    qsizetype nameEnd = lf;
    if (nameEnd > semi + 1 && oeCallList[nameEnd - 1] == QLatin1Char('\r')) --nameEnd;
    return oeCallList.mid(p, semi - p) + QLatin1Char(' ') + oeCallList.mid(semi + 1, nameEnd - semi - 1);
}

CallChangeResult CallChange(const Model& m, const QString& text, int band, const QString& mode,
                            const std::optional<QTime>& entryTime, const QString& oeCallList, bool dbLogOpen,
                            int dbLogRows) {
    CallChangeResult r;
    if (text.size() >= 2 && dbLogOpen) r.refreshDbLog = true;
    if (text.size() >= 4) {
        const QString call = TrimBlanks(text);
        r.check = CheckCall(m, call, band, mode, entryTime);
        r.label10 = StationName(oeCallList, ListCall(call));
    } else if (dbLogOpen && dbLogRows >= 1) {
        r.clearDbLogList = true;
    }
    return r;
}

std::optional<CallCheck> CallLostFocus(const Model& m, const QString& text, int band, const QString& mode,
                                       const std::optional<QTime>& entryTime) {
    const QString call = TrimBlanks(text);
    if (call.size() < 2) return std::nullopt;
    return CheckCall(m, call, band, mode, entryTime);
}

std::optional<QString> TimeLostFocus(const QString& text, bool timer1Running, QChar timeSeparator) {
    if (timer1Running || text.isEmpty()) return std::nullopt;
    const QString t = NormalizeTime(text, timeSeparator);
    if (t.isEmpty()) return std::nullopt;
    return t;
}

int BandOfText(const QString& combo1Text) {
    return int(LeadingNumber(combo1Text));
}

// ---- Band and mode -------------------------------------------------------------------

QString ReportForMode(int modeIndex) {
    return modeIndex == 0 ? QStringLiteral("59") : QStringLiteral("599");
}

BandOrModeResult BandOrModeClick(const Model& m, const QString& text3, int band, const QString& mode,
                                 const std::optional<QTime>& entryTime, bool dbLogOpen) {
    BandOrModeResult r;
    r.refreshDbLog = dbLogOpen && text3.size() >= 2;
    const QString call = TrimBlanks(text3);
    if (call.size() >= 2) r.check = CheckCall(m, call, band, mode, entryTime);
    return r;
}

// ---- Dupe warning --------------------------------------------------------------------

bool Label13Click(DupeButton& button, const QString& combo5Text) {
    if (!button.enabled) return false;
    button.Dismiss();
    return !combo5Text.isEmpty();
}

// ---- Operators -----------------------------------------------------------------------

QStringList OperatorEnter(const QStringList& items, const QString& text) {
    const QString call = TrimBlanks(text).toUpper();
    if (call.isEmpty()) return items;
    QStringList out;
    out.reserve(items.size() + 1);
    out << call;
    for (const QString& item : items)
        if (item != call) out << item;
    return out;
}

QStringList OperatorPick(const QStringList& items, int index) {
    if (index <= 0 || index >= items.size()) return items;
    QStringList out = items;
    out.move(index, 0);
    return out;
}

QStringList OperatorsToStore(const QStringList& items) {
    return items.mid(0, kMaxStoredOperators);
}

QStringList LoadOperators(const QString& iniFile) {
    QStringList list;
    IniReadSection(iniFile, kOpCallsSection, list);
    // The section may have been edited by hand: only what the gate lets through.
    return GatedOperatorList(list);
}

void StoreOperators(const QStringList& items, const QString& iniFile) {
    IniReplaceSection(iniFile, kOpCallsSection, OperatorsToStore(items));
}

// ---- Menu items of the entry ---------------------------------------------------------

CallVorgabeResult CallVorgabeClick(bool wasChecked, const QString& text3, const QString& iniFile) {
    CallVorgabeResult r;
    r.checked = !wasChecked;
    if (!r.checked && text3 == kOE) {
        r.text3 = QString();
    } else if (r.checked && text3.isEmpty()) {
        r.text3 = kOE;
        r.caret = int(kOE.size()); // behind the "OE"
    }
    IniWrite(iniFile, kSection, QStringLiteral("CallVorgabe"), r.checked ? -1 : 0);
    return r;
}

bool ReadCallVorgabe(const QString& iniFile) {
    return int(IniReadInt(iniFile, kSection, QStringLiteral("CallVorgabe"))) != 0;
}

QString ResetCallText(bool callVorgabe) {
    return callVorgabe ? kOE : QString();
}

EntryPanelLayout EntryPanel(bool extended) {
    if (extended) return {1080, true, 1400, true};
    return {540, false, 810, false};
}

EntryPanelLayout EingabeClick(int picture3HeightTwips) {
    return EntryPanel(picture3HeightTwips == 540);
}

bool ReadErwEingabe(const QString& iniFile) {
    return int(IniReadInt(iniFile, kSection, QStringLiteral("ErwEeingabe"))) != 0;
}

void WriteErwEingabe(bool extended, const QString& iniFile) {
    IniWrite(iniFile, kSection, QStringLiteral("ErwEeingabe"), extended ? -1 : 0);
}

} // namespace kolibrino
