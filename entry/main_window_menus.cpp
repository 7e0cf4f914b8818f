// The main window's menu bar, the grid's pop-up menu, and the commands of both that
// belong to this window. The subsystems' entries are enabled and connected by their
// installers.
#include "core/print_choice.h"
#include "core/settings.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"
#include "entry/web_addresses.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

namespace kolibrino {

QAction* HauptForm::AddItem(QMenu* menu, const QString& objectName, const QString& caption, bool enabled) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(objectName);
    a->setEnabled(enabled);
    return a;
}

void HauptForm::AddSeparator(QMenu* menu, const QString& objectName) {
    menu->addSeparator()->setObjectName(objectName);
}

// A check-mark entry whose Click toggles the mark itself: the toggle Qt has made on
// the way is taken back first, so that a click and a call of the command are the same.
void HauptForm::ConnectClick(QAction* action, void (HauptForm::*click)()) {
    connect(action, &QAction::triggered, this, [this, action, click] {
        action->setChecked(!action->isChecked());
        (this->*click)();
    });
}

void HauptForm::BuildMenus() {
    QMenuBar* bar = menuBar();
    auto top = [&](const QString& name, const QString& caption) {
        QMenu* menu = bar->addMenu(caption);
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        return menu;
    };

    QMenu* datei = top(QStringLiteral("MnDatei"), QStringLiteral("&Datei"));
    AddItem(datei, QStringLiteral("MnNeuesLog"), QStringLiteral("&Neues Log"), false);
    AddItem(datei, QStringLiteral("MnOpenLog"), QStringLiteral("Log &Öffnen"), false);
    AddSeparator(datei, QStringLiteral("MNSt6"));
    AddItem(datei, QStringLiteral("MnLogDrucken"), QStringLiteral("Log &Drucken"), false);
    AddSeparator(datei, QStringLiteral("MnSt13"));
    connect(AddItem(datei, QStringLiteral("MnSicherungenOpen"), QStringLiteral("&Ordner 'Sicherung' Öffnen"),
                    true),
            &QAction::triggered, this, &HauptForm::MnSicherungenOpen);
    AddSeparator(datei, QStringLiteral("MNSt8"));
    connect(AddItem(datei, QStringLiteral("MnBeneden"), QStringLiteral("B&eenden"), true),
            &QAction::triggered, this, &HauptForm::MnBeneden);

    QMenu* einst = top(QStringLiteral("MnEinstellungen"), QStringLiteral("&Einstellungen"));
    AddItem(einst, QStringLiteral("MnLogoptionen"), QStringLiteral("C&ontest-Einstellungen"), false);
    AddSeparator(einst, QStringLiteral("MnST3"));
    QMenu* zeit = einst->addMenu(QStringLiteral("Ze&it"));
    zeit->setObjectName(QStringLiteral("MnZeitCont"));
    zeit->menuAction()->setObjectName(QStringLiteral("MnZeitCont"));
    QMenu* zeitPm = zeit->addMenu(QStringLiteral("&Zeit +/-"));
    zeitPm->setObjectName(QStringLiteral("MnZeitPM"));
    zeitPm->menuAction()->setObjectName(QStringLiteral("MnZeitPM"));
    zpmGroup_ = new QActionGroup(this);
    zpmGroup_->setExclusive(true);
    for (int i = 0; i < kZpmCount; ++i) {
        QAction* a = zeitPm->addAction(ZpmCaption(i));
        a->setObjectName(QStringLiteral("zpm%1").arg(i));
        a->setCheckable(true);
        zpmGroup_->addAction(a);
        connect(a, &QAction::triggered, this, [this, i] { ZpmClick(i); });
        zpm_[size_t(i)] = a;
    }
    QAction* lock =
        AddItem(zeit, QStringLiteral("MnDateTimeLock"), QStringLiteral("&Datum/Zeit gesperrt"), true);
    lock->setCheckable(true);
    ConnectClick(lock, &HauptForm::MnDateTimeLock);
    QAction* manual =
        AddItem(zeit, QStringLiteral("MnZeitDatumLock"), QStringLiteral("Datum/Zeit &manuell"), true);
    manual->setCheckable(true);
    ConnectClick(manual, &HauptForm::MnZeitDatumLock);
    AddSeparator(einst, QStringLiteral("MnSt14"));
    QAction* vorgabe =
        AddItem(einst, QStringLiteral("MnCallVorgabe"), QStringLiteral("&Callfeld 'OE' als Vorgabe"), true);
    vorgabe->setCheckable(true);
    ConnectClick(vorgabe, &HauptForm::MnCallVorgabe);
    AddSeparator(einst, QStringLiteral("MnST4"));
    QAction* eingabe =
        AddItem(einst, QStringLiteral("MnEingabe"), QStringLiteral("Erweiterte &Eingabe"), true);
    eingabe->setCheckable(true);
    ConnectClick(eingabe, &HauptForm::MnEingabe);
    AddSeparator(einst, QStringLiteral("MnSt15"));
    QAction* lastLog = AddItem(einst, QStringLiteral("MnLastLogOpen"),
                               QStringLiteral("Zuletzt geöffnetes Log beim Start &öffnen"), true);
    lastLog->setCheckable(true);
    ConnectClick(lastLog, &HauptForm::MnLastLogOpen);
    AddSeparator(einst, QStringLiteral("MnSt9"));
    QAction* countdown =
        AddItem(einst, QStringLiteral("MnCountdown"), QStringLiteral("Countdown Ein/Aus"), true);
    countdown->setCheckable(true);
    ConnectClick(countdown, &HauptForm::MnCountdown);
    AddSeparator(einst, QStringLiteral("MnSt19"));
    AddItem(einst, QStringLiteral("MnAutomatischesSichern"), QStringLiteral("Zusätzliches &Sichern"), false)
        ->setCheckable(true);
    QAction* pdf =
        AddItem(einst, QStringLiteral("MnDruckenPDF"), QStringLiteral("In &PDF-Datei drucken"), true);
    pdf->setCheckable(true);
    connect(pdf, &QAction::triggered, this, [](bool on) { SetPrintIntoPdfChosen(on); });
    AddSeparator(einst, QStringLiteral("MnSt17"));
    connect(
        AddItem(einst, QStringLiteral("MnFensterPostOrg"), QStringLiteral("Reset Fenster Pos+Größe"), true),
        &QAction::triggered, this, &HauptForm::MnFensterPostOrg);
    AddItem(einst, QStringLiteral("MnServerAdressen"), QStringLiteral("Ser&ver und Adressen…"), false);

    QMenu* extras = top(QStringLiteral("MnLog"), QStringLiteral("E&xtras"));
    AddItem(extras, QStringLiteral("MnLogExportierenDatumZeit"), QStringLiteral("Log nachträglich &ändern"),
            false);
    AddSeparator(extras, QStringLiteral("MnST2"));
    AddItem(extras, QStringLiteral("MnLogExportierenADIF"), QStringLiteral("&ADIF-Datei erzeugen"), false);
    AddSeparator(extras, QStringLiteral("MnSt1"));
    AddItem(extras, QStringLiteral("MnLogExportierenCabrillo"), QStringLiteral("&Cabrillo-Datei erzeugen"),
            false);
    AddSeparator(extras, QStringLiteral("MnST5"));
    AddItem(extras, QStringLiteral("MnLogHochladen"), QStringLiteral("Ca&brillo-Datei einsenden"), false);
    AddSeparator(extras, QStringLiteral("MnStDupes"));
    AddItem(extras, QStringLiteral("MnDupesPruefen"), QStringLiteral("&Dupes prüfen…"), false);

    QMenu* fenster = top(QStringLiteral("MnAnsicht"), QStringLiteral("&Fenster"));
    auto companionEntry = [&](Companion id, const QString& caption) {
        QAction* a = AddCompanionEntry(fenster, caption, QString::fromLatin1(CompanionOf(id).menuEntry));
        a->setEnabled(false);
        connect(a, &QAction::triggered, this, [this, id] {
            if (companionOpener) companionOpener(id);
        });
    };
    companionEntry(Companion::BZKarte, QStringLiteral("Bezirke &Karte"));
    companionEntry(Companion::GridKarte, QStringLiteral("Multiplikatoren &Tabelle"));
    AddSeparator(fenster, QStringLiteral("MnSt18"));
    companionEntry(Companion::Frequenz, QStringLiteral("&Frequenz Einstellung"));
    companionEntry(Companion::Statistik, QStringLiteral("Ergebni&s"));
    companionEntry(Companion::LogTracker, QStringLiteral("Rufzeichen &Check"));
    companionEntry(Companion::DBLog, QStringLiteral("&Teilrufzeichen"));
    AddSeparator(fenster, QStringLiteral("MnSt16"));
    AddItem(fenster, QStringLiteral("MnBezirkeListe"), QStringLiteral("&Bezirke Liste"), false);
    companionEntry(Companion::Transceiver, QStringLiteral("T&ransceiver Steuerung"));
    companionEntry(Companion::QsoRate, QStringLiteral("&QSO-Rate"));
    companionEntry(Companion::FehlendeMulti, QStringLiteral("Fehlende &Multiplikatoren"));

    QMenu* einreichen = top(QStringLiteral("MnLogEinreichen"), QStringLiteral("Ein&reichen"));
    connect(AddItem(einreichen, QStringLiteral("MnLogEinsenden"), QStringLiteral("Aktuelles Log ein&senden"),
                    false),
            &QAction::triggered, this, &HauptForm::MnLogEinsenden);
    AddSeparator(einreichen, QStringLiteral("MnSt7"));
    AddItem(einreichen, QStringLiteral("MnLogServerUploadTest"),
            QStringLiteral("Verbindungs&test zum Log-Server"), false);

    QMenu* hilfe = top(QStringLiteral("MnHilfe"), QStringLiteral("&Hilfe"));
    connect(AddItem(hilfe, QStringLiteral("MnHilfePDF"), QStringLiteral("&Anleitung als pdf"), false),
            &QAction::triggered, this, &HauptForm::MnHilfePDF);
    connect(AddItem(hilfe, QStringLiteral("MnContestregeln"), QStringLiteral("&Contestregeln"), true),
            &QAction::triggered, this, &HauptForm::MnContestregeln);
    AddSeparator(hilfe, QStringLiteral("MnSt10"));
    connect(AddItem(hilfe, QStringLiteral("MnEingesendeteLogsAnzeigen"),
                    QStringLiteral("Eingesendete Logs Anzeigen"), true),
            &QAction::triggered, this, &HauptForm::MnEingesendeteLogsAnzeigen);
    AddSeparator(hilfe, QStringLiteral("MnSt11"));
    AddItem(hilfe, QStringLiteral("MnUpdatePruefung"), QStringLiteral("Auf &Updates prüfen"), false);
    AddItem(hilfe, QStringLiteral("MnInfo"), QStringLiteral("&Info"), false);

    // The countdown stands in the menu bar itself.
    mnZeitTimer_ = bar->addAction(QStringLiteral("00:00"));
    mnZeitTimer_->setObjectName(QStringLiteral("MnZeitTimer"));
    mnZeitTimer_->setVisible(false);

    // The grid's pop-up menu, never in the menu bar.
    mnVersteckt_ = new QMenu(this);
    mnVersteckt_->setObjectName(QStringLiteral("MnVersteckt"));
    connect(AddItem(mnVersteckt_, QStringLiteral("MnVerstecktLoeschen"), QStringLiteral("&Löschen"), false),
            &QAction::triggered, this, [this] { emit loeschenRequested(popupRow_); });
    connect(
        AddItem(mnVersteckt_, QStringLiteral("MnVerstecktBearbeiten"), QStringLiteral("&Bearbeiten"), false),
        &QAction::triggered, this, [this] { emit bearbeitenRequested(popupRow_); });
    AddSeparator(mnVersteckt_, QStringLiteral("MnSt12"));
    QMenu* sortieren = mnVersteckt_->addMenu(QStringLiteral("Sortieren"));
    sortieren->setObjectName(QStringLiteral("MnSortieren"));
    sortieren->menuAction()->setObjectName(QStringLiteral("MnSortieren"));
    const struct {
        const char* name;
        const char* caption;
        int mode;
    } sorts[] = {
        {"MnSortierenZeit1", "nach Zeit aufsteigend", GridSort::ZeitAuf},
        {"MnSortierenZeit2", "nach Zeit absteigend", GridSort::ZeitAb},
        {"MnSortierenRufzeichen1", "nach Rufzeichen aufsteigend", GridSort::RufzeichenAuf},
        {"MnSortierenRufzeichen2", "nach Rufzeichen absteigend", GridSort::RufzeichenAb},
        {"MnSortierenBezirk1", "nach Bezirk aufsteigend", GridSort::BezirkAuf},
        {"MnSortierenBezirk2", "nach Bezirk absteigend", GridSort::BezirkAb},
    };
    for (const auto& s : sorts) {
        const int mode = s.mode;
        connect(AddItem(sortieren, QString::fromLatin1(s.name), QString::fromLatin1(s.caption), true),
                &QAction::triggered, this, [this, mode] { Sortieren(mode); });
    }
}

QAction* HauptForm::Action(const QString& objectName) const {
    const QList<QAction*> all = findChildren<QAction*>(objectName);
    return all.isEmpty() ? nullptr : all.first();
}

bool HauptForm::OpenInShell(const QUrl& url) {
    if (openUrl) return openUrl(url);
    return QDesktopServices::openUrl(url);
}

void HauptForm::MnBeneden() {
    close();
}

void HauptForm::MnSicherungenOpen() {
    OpenInShell(QUrl::fromLocalFile(m_.BackupFolder));
}

void HauptForm::MnHilfePDF() {
    OpenInShell(QUrl::fromLocalFile(m_.DataFolder + QStringLiteral("KOLBOHilfe.pdf")));
}

void HauptForm::MnContestregeln() {
    const QString url = RegelnUrl();
    if (url.isEmpty()) {
        dialogs_.MsgBox(QString::fromUtf8(kKeineRegelnUrl), Msg::Information);
        return;
    }
    OpenInShell(QUrl(url));
}

void HauptForm::MnEingesendeteLogsAnzeigen() {
    const QString url = EingesendeteLogsUrl();
    if (url.isEmpty()) {
        dialogs_.MsgBox(QString::fromUtf8(kKeinLogServer), Msg::Information);
        return;
    }
    OpenInShell(QUrl(url));
}

void HauptForm::MnLastLogOpen() {
    QAction* a = Action(QStringLiteral("MnLastLogOpen"));
    a->setChecked(!a->isChecked());
    IniWrite({}, QString::fromLatin1(kSectionEinstellungen), QStringLiteral("LastLogOpen"),
             FlagValue(a->isChecked()));
}

QRect HauptForm::DesignGeometry() {
    return QRect(0, 0, 1040, 640);
}

void HauptForm::MnFensterPostOrg() {
    const int answer = dialogs_.MsgBox(QStringLiteral("Soll die Position und Größe aller Fenster wirklich "
                                                      "auf die Grundeinstellung zurückgesetzt werden?"),
                                       Msg::Question | Msg::YesNo);
    if (answer == Msg::No) return;
    const QRect design = DesignGeometry();
    showNormal();
    resize(design.size());
    move(design.topLeft());
    for (const CompanionDef& c : Companions()) {
        WriteWindowPos(QString::fromLatin1(c.posName), c.defaultTop, c.defaultLeft);
        if (QWidget* w = CompanionWindow(c.id); w && OpenFlag(m_, c.id))
            w->move(TwipsToPixels(c.defaultLeft), TwipsToPixels(c.defaultTop));
    }
}

void HauptForm::Sortieren(int sortMode) {
    gridView_->setUpdatesEnabled(false);
    grid_.Sort(sortMode);
    gridView_->setUpdatesEnabled(true);
}

} // namespace kolibrino
