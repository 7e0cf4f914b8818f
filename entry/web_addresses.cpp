#include "entry/web_addresses.h"

#include "core/settings.h"

namespace kolibrino {
namespace {

QString Setting(const char* key) {
    return IniReadString({}, QString::fromLatin1(kSectionServer), QString::fromLatin1(key)).trimmed();
}

} // namespace

QString RegelnUrl() {
    return Setting("RegelnURL");
}

QString LogServerHost() {
    return Setting("LogServer");
}

QString EingesendeteLogsUrl() {
    const QString host = LogServerHost();
    if (host.isEmpty()) return {};
    return QStringLiteral("http://") + host + QStringLiteral("/cgi-bin/show.cgi");
}

} // namespace kolibrino
