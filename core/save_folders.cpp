#include "core/save_folders.h"

#include "core/log_model.h"
#include "core/settings.h"

#include <QDir>
#include <QFileInfo>

namespace kolibrino {
namespace {
const QString kSection = QStringLiteral("Ordner");

QString WithSlash(QString folder) {
    if (!folder.isEmpty() && !folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    return folder;
}
} // namespace

QString SaveStartFolder(const Model& m, const char* kind) {
    const QString last = IniReadString({}, kSection, QString::fromLatin1(kind));
    if (!last.isEmpty() && QFileInfo(last).isDir()) return WithSlash(QDir::cleanPath(last));
    return WithSlash(m.LogFolder);
}

void RememberSaveFolder(const char* kind, const QString& chosenFile) {
    if (chosenFile.isEmpty()) return;
    const QString folder = QFileInfo(chosenFile).absolutePath();
    if (IniReadString({}, kSection, QString::fromLatin1(kind)) == folder) return;
    IniWrite({}, kSection, QString::fromLatin1(kind), folder);
}

} // namespace kolibrino
