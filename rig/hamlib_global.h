// What Hamlib keeps for the whole process, reached from one place: the lock that
// serializes every Hamlib call touching global state (loading the back ends, the model
// list, rig_init/open/close/cleanup, the debug level), the model list with its search,
// the check of setting names against a model's own list, and the guard that releases a
// PTT this program keyed when the process dies of a signal it can catch.
//
// Any thread. Nothing throws. The lock is held only for the Hamlib call itself; a
// rig_open may hold it as long as Hamlib waits for the rig (our timeouts keep that
// short). Failures come back as German texts or empty results.
#pragma once

#include <QString>
#include <QStringList>
#include <mutex>
#include <vector>

struct s_rig;

namespace kolibrino::rig {

// The one lock around Hamlib's global state (recursive: a helper may call another).
std::recursive_mutex& HamlibLock();

// Quietens Hamlib's own messages on standard error (idempotent).
void HamlibQuiet();

// Hamlib's rigs, sorted by maker, then naturally by name (IC-703 before IC-7000).
struct RigModelInfo {
    int model;
    QString maker;
    QString name;
    int rateMin;
    int rateMax;
};
const std::vector<RigModelInfo>& HamlibModels();
const RigModelInfo* FindModel(int model);
// Natural order of two texts: digit runs compare as numbers, the rest without case.
bool NaturalLess(const QString& a, const QString& b);
// Whether a model's maker and name match a search text: hyphens, blanks and case are
// ignored ("ft991" finds "Yaesu FT-991"); every blank-separated word must match, or the
// text as a whole.
bool ModelMatches(const QString& maker, const QString& name, const QString& text);
// The models that match, in list order.
std::vector<RigModelInfo> SearchModels(const QString& text);
// The standard serial speeds the model takes (all of them when it names none).
QList<int> ModelSpeeds(int model);
// Whether the model is reached over Icom's CI-V (it has the setting "civaddr").
bool ModelHasSetting(int model, const char* name);

// Checks "name=value" lines against the model's own settings: the first name the
// model does not know, or a line without "=", comes back as a German text naming it;
// empty when all are known.
QString CheckConfNames(int model, const QStringList& conf);

// PTT guard: a rig this program keyed is noted here while keyed; a fatal signal
// (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTERM, SIGINT, SIGHUP) releases it on the
// way out (at most two seconds), then the signal goes on to whatever handled it before.
void PttKeyed(struct s_rig* rig);
void PttReleased(struct s_rig* rig);
void InstallPttGuard();

} // namespace kolibrino::rig
