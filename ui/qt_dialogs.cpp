#include "ui/qt_dialogs.h"

#include "core/log_model.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPushButton>

namespace kolibrino {
namespace {

struct ButtonDef {
    QMessageBox::StandardButton button;
    int result;
};

QList<ButtonDef> ButtonsOf(int flags) {
    switch (Msg::Buttons(flags)) {
    case Msg::OkCancel:
        return {{QMessageBox::Ok, Msg::Ok}, {QMessageBox::Cancel, Msg::Cancel}};
    case Msg::AbortRetryIgnore:
        return {{QMessageBox::Abort, Msg::Abort},
                {QMessageBox::Retry, Msg::Retry},
                {QMessageBox::Ignore, Msg::Ignore}};
    case Msg::YesNoCancel:
        return {{QMessageBox::Yes, Msg::Yes}, {QMessageBox::No, Msg::No}, {QMessageBox::Cancel, Msg::Cancel}};
    case Msg::YesNo:
        return {{QMessageBox::Yes, Msg::Yes}, {QMessageBox::No, Msg::No}};
    case Msg::RetryCancel:
        return {{QMessageBox::Retry, Msg::Retry}, {QMessageBox::Cancel, Msg::Cancel}};
    default:
        return {{QMessageBox::Ok, Msg::Ok}};
    }
}

QMessageBox::Icon IconOf(int flags) {
    switch (Msg::Icon(flags)) {
    case Msg::Critical:
        return QMessageBox::Critical;
    case Msg::Question:
        return QMessageBox::Question;
    case Msg::Exclamation:
        return QMessageBox::Warning;
    case Msg::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

// German captions for the standard buttons.
QString GermanText(QMessageBox::StandardButton b) {
    switch (b) {
    case QMessageBox::Ok:
        return QStringLiteral("OK");
    case QMessageBox::Cancel:
        return QStringLiteral("Abbrechen");
    case QMessageBox::Yes:
        return QStringLiteral("&Ja");
    case QMessageBox::No:
        return QStringLiteral("&Nein");
    case QMessageBox::Retry:
        return QStringLiteral("&Wiederholen");
    case QMessageBox::Abort:
        return QStringLiteral("&Abbrechen");
    case QMessageBox::Ignore:
        return QStringLiteral("&Ignorieren");
    default:
        return {};
    }
}

QString TopicOf(int flags) {
    switch (Msg::Icon(flags)) {
    case Msg::Critical:
        return QStringLiteral("Fehler");
    case Msg::Question:
        return QStringLiteral("Frage");
    case Msg::Exclamation:
        return QStringLiteral("Warnung");
    case Msg::Information:
        return QStringLiteral("Hinweis");
    default:
        return QStringLiteral("Meldung");
    }
}

} // namespace

int QtDialogs::MsgBox(const QString& text, int flags, const QString& title) {
    QMessageBox box(parent_);
    box.setWindowTitle(title.isEmpty() ? ProgramTitle() : title);
    // The reader names the box by what it is about; the title on screen stays.
    box.setAccessibleName(box.windowTitle() + QStringLiteral(" – ") + TopicOf(flags));
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setText(shown);
    box.setIcon(IconOf(flags));
    const QList<ButtonDef> defs = ButtonsOf(flags);
    QList<QPushButton*> buttons;
    for (const ButtonDef& d : defs) {
        QPushButton* b = box.addButton(d.button);
        b->setText(GermanText(d.button));
        buttons << b;
    }
    const int def = std::min<int>(Msg::DefaultButton(flags), int(buttons.size()) - 1);
    box.setDefaultButton(buttons[def]);
    if (defs.size() == 1 || Msg::Buttons(flags) == Msg::OkCancel || Msg::Buttons(flags) == Msg::YesNoCancel ||
        Msg::Buttons(flags) == Msg::RetryCancel)
        box.setEscapeButton(buttons.last());
    box.exec();
    QAbstractButton* clicked = box.clickedButton();
    for (int i = 0; i < buttons.size(); ++i)
        if (buttons[i] == clicked) return defs[i].result;
    // Closed without a button: Cancel where there is one, else the last.
    return defs.last().result;
}

std::optional<QString> QtDialogs::InputBox(const QString& prompt, const QString& title,
                                           const QString& defaultText) {
    bool ok = false;
    const QString text = QInputDialog::getText(parent_, title.isEmpty() ? ProgramTitle() : title, prompt,
                                               QLineEdit::Normal, defaultText, &ok);
    if (!ok) return std::nullopt;
    return text;
}

QString QtNameFilter(const QString& filter) {
    const QStringList parts = ParseDialogFilter(filter);
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString pattern = parts[i + 1];
        pattern.replace(QLatin1Char(';'), QLatin1Char(' '));
        out << QStringLiteral("%1 (%2)").arg(parts[i], pattern);
    }
    return out.join(QStringLiteral(";;"));
}

QString QtDialogs::OpenDialog(const QString& filter, const QString& title, const QString& startFolder) {
    return QFileDialog::getOpenFileName(parent_, title, startFolder, QtNameFilter(filter)).trimmed();
}

QString QtDialogs::SaveDialog(const QString& filter, const QString& title, const QString& startFolder) {
    return QFileDialog::getSaveFileName(parent_, title, startFolder, QtNameFilter(filter)).trimmed();
}

QString QtDialogs::BrowseFolder(const QString& title, const QString& startFolder) {
    return QFileDialog::getExistingDirectory(parent_, title, startFolder);
}

int ColorToBgr(const QColor& c) {
    return (c.blue() << 16) | (c.green() << 8) | c.red();
}

QColor BgrToColor(int bgr) {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

int QtDialogs::SelectColor(int initial, bool fullOpen) {
    QColorDialog dlg(BgrToColor(initial < 0 ? 0 : initial), parent_);
    dlg.setOption(QColorDialog::DontUseNativeDialog, !fullOpen ? false : true);
    if (dlg.exec() != QDialog::Accepted) return -1;
    return ColorToBgr(dlg.selectedColor());
}

bool QtDialogs::PrintDialog(QPrinter& printer, const QString& title) {
    QPrintDialog dlg(&printer, parent_);
    dlg.setObjectName(QStringLiteral("Druckdialog"));
    if (!title.isEmpty()) dlg.setWindowTitle(title);
    return dlg.exec() == QDialog::Accepted;
}

void QtDialogs::SetBusy(bool busy) {
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void QtDialogs::Beep() {
    QApplication::beep();
}

} // namespace kolibrino
