// When a modal window closes, the window it was opened over becomes the active window
// again. On a desktop the window manager does this; without one (a bare X server, a
// kiosk session) the keyboard focus falls to the root window when a box closes, and the
// operator's next keys, the menu's access keys among them, would reach no window of the
// program until a click. With the filter installed the focus widget of that window (the
// call field after a dupe question) takes the keys again at once.
//
// GUI thread only; install once, after the QApplication exists. Never fails.
#pragma once

class QApplication;

namespace kolibrino {

void ReturnFocusAfterModalWindows(QApplication& app);

} // namespace kolibrino
