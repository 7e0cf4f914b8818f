// kolibrino-cli: the scoring commands (score, results, map, rate, needed).
//
// Called by cli.cpp's main only, on the main thread. nullopt when the arguments are
// not one of these commands; otherwise the exit status (1 for a damaged log or an
// unreadable or unwritable picture, 2 for a wrong filter).
#pragma once

#include <QStringList>
#include <optional>

namespace kolibrino {

std::optional<int> ScoringCommand(const QStringList& args);

} // namespace kolibrino
