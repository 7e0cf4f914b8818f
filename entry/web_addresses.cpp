#include "entry/web_addresses.h"

#include "core/settings.h"

namespace kolibrino {
namespace {

QString Setting(const char* key, const char* fallback) {
    const QString v =
        IniReadString({}, QString::fromLatin1(kSectionServer), QString::fromLatin1(key)).trimmed();
    return v.isEmpty() ? QString::fromLatin1(fallback) : v;
}

} // namespace

QString RegelnUrl() {
    return Setting("RegelnURL", kDefaultRegelnUrl);
}

QString LogServerHost() {
    return Setting("LogServer", kDefaultLogServer);
}

QString EingesendeteLogsUrl() {
    return QStringLiteral("http://") + LogServerHost() + QStringLiteral("/cgi-bin/show.cgi");
}

} // namespace kolibrino
