// What the screen reader hears: the texts a window's message line shows, short
// confirmations the program gives only by voice, values that change and windows that
// open. A reader presents a change of the accessible description of the control that
// has the focus, so each text becomes that control's description for as long as the
// message stands (with the DescriptionChanged event), as the name of the window's
// invisible notification "KolibrinoAnsage", shown anew for each text (a reader speaks a
// notification that appears; Qt 6.4's bridge sends description changes without their
// text), and, where Qt offers it (6.8 on), as an announcement event. A message line
// that is emptied, or a control the focus leaves, gives the control its own
// description back without a word.
//
// Windows call ShowMessage()/ClearMessage() for their message line instead of setting
// the label's text, Speak() for a text that has no place on screen. Every call shows
// its text at once; the reader is told after the present event has ended, when the
// focus has reached the control the event meant for it (a failed check moves the
// focus to the field at fault), and several texts of one event are joined.
//
// InstallAccessibility() once per application: companion windows (plain top-level
// widgets) take the window role in the accessibility tree.
//
// GUI thread only. Never fails: without a focused control the text goes to the
// window given; without accessibility nothing is sent.
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace kolibrino {

// Shows text in the message line and tells the reader.
void ShowMessage(QLabel* line, const QString& text);
// Empties the message line; the focused control gets its own description back.
void ClearMessage(QLabel* line);
// Tells the reader text without showing it. context: a widget of the window that
// speaks (used when no control has the focus).
void Speak(QWidget* context, const QString& text);
// The description a control has of its own (a value with its meaning, for instance):
// set at once unless a spoken text stands there now; then it comes back afterwards.
void SetOwnDescription(QWidget* w, const QString& description);
// A window that has just opened: "Fenster <title> geöffnet".
void AnnounceWindow(QWidget* window);

// Accessibility set-up of the application (window role of companion windows).
void InstallAccessibility();

} // namespace kolibrino
