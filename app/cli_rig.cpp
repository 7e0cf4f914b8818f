// kolibrino-cli rig: reads rig 1 once, with the settings of section Rig1 or the
// options given (--conf NAME=VALUE adds a Hamlib setting, checked by name against the
// model's own list), and prints "ONLINE 7050000 USB" (status, Hz, mode as the frequency
// window shows it). Exit 0 when the rig answered, 1 with a German message when it did
// not answer within 5 s or a setting is unknown, 2 on wrong use.
// kolibrino-cli rig --models TEXT lists the models whose maker or name match TEXT
// (hyphens, blanks and case ignored), one per line: number, maker, name, tab-separated.
#include "core/paths.h"
#include "rig/hamlib_rig.h"
#include "rig/rig_params.h"

#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

namespace kolibrino {

namespace {
struct RigAnswer {
    bool online = false;
    int freq = 0;
    int mode = 0;
    QString error;
};

void Line(const QString& text, FILE* to) {
    const QByteArray b = (text + QLatin1Char('\n')).toLocal8Bit();
    std::fwrite(b.constData(), 1, size_t(b.size()), to);
    std::fflush(to);
}
} // namespace

int RunRigCommand(const Model& m, const QStringList& args) {
    using namespace kolibrino::rig;
    RigConfig config = ReadRigConfig(m.IniPath, 1);
    if (args.size() == 2 && args[0] == QLatin1String("--models")) {
        const std::vector<RigModelInfo> found = SearchModels(args[1]);
        for (const RigModelInfo& i : found)
            Line(QStringLiteral("%1\t%2\t%3").arg(i.model).arg(i.maker, i.name), stdout);
        if (found.empty()) {
            Line(QStringLiteral("Kein Transceiver-Modell passt zu „%1“.").arg(args[1]), stderr);
            return 1;
        }
        return 0;
    }
    QStringList conf;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (i + 1 >= args.size()) return -1;
        bool ok = true;
        if (a == QLatin1String("--model"))
            config.model = args[++i].toInt(&ok);
        else if (a == QLatin1String("--port"))
            config.port = args[++i];
        else if (a == QLatin1String("--speed"))
            config.speed = args[++i].toInt(&ok);
        else if (a == QLatin1String("--conf"))
            conf << args[++i];
        else
            return -1;
        if (!ok) return -1;
    }
    if (!config.Configured()) {
        Line(QStringLiteral("OFFLINE 0 Other"), stdout);
        Line(QStringLiteral("Kein Transceiver eingestellt (Abschnitt Rig1, oder --model angeben)."), stderr);
        return 1;
    }
    config.conf += conf;
    if (const QString refused = CheckConfNames(config.model, config.conf); !refused.isEmpty()) {
        Line(QStringLiteral("OFFLINE 0 Other"), stdout);
        Line(refused, stderr);
        return 1;
    }
    // The rig is read in a thread of its own so that a rig that hangs cannot hold the
    // command past its 5 seconds.
    auto task = std::make_shared<std::packaged_task<RigAnswer()>>([config] {
        RigAnswer a;
        HamlibRig r;
        a.error = r.Open(config, 1000);
        if (!a.error.isEmpty()) return a;
        QString err;
        const std::optional<RigReading> reading = r.Read(&err);
        if (!reading || !reading->freq) {
            a.error = reading ? QStringLiteral("Ungültige Frequenz vom Transceiver") : err;
            return a;
        }
        a.online = true;
        a.freq = *reading->freq;
        a.mode = reading->mode;
        return a;
    });
    std::future<RigAnswer> result = task->get_future();
    std::thread([task] { (*task)(); }).detach();
    if (result.wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
        Line(QStringLiteral("OFFLINE 0 Other"), stdout);
        Line(QStringLiteral("Der Transceiver hat nicht innerhalb von 5 s geantwortet."), stderr);
        std::_Exit(1);
    }
    const RigAnswer a = result.get();
    if (!a.online) {
        Line(QStringLiteral("OFFLINE 0 Other"), stdout);
        Line(QStringLiteral("Der Transceiver antwortet nicht: %1").arg(a.error), stderr);
        return 1;
    }
    Line(QStringLiteral("ONLINE %1 %2").arg(a.freq).arg(ModeLabel(a.mode)), stdout);
    return 0;
}

} // namespace kolibrino
