// Qt's own German words: standard buttons, input boxes, file and folder dialogs and
// the error texts Qt itself writes, from Qt's translation qtbase_de (Debian package
// qt6-translations-l10n).
//
// Called once by main() after the application object exists, and by tests. GUI thread.
// Returns false when the translation is not installed; the program then runs on with
// Qt's English words for those few texts.
#pragma once

class QCoreApplication;

namespace kolibrino {

bool InstallGermanTranslation(QCoreApplication& app);

} // namespace kolibrino
