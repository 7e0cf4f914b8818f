// The busy panel (Picture10 with its text Label22) and work run beside it.
//
// RunBeside() shows the panel modal over the window with the text, runs work on a
// worker thread, keeps the window thread's events running (the window paints, input
// is held by the panel) until work has returned, then hides the panel.
//
// GUI thread only. work must not touch windows or the model; it must not throw.
#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace kolibrino::exporting {

void RunBeside(QWidget* window, const QString& text, const std::function<void()>& work);

} // namespace kolibrino::exporting
