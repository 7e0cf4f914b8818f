// The corrections' subcommands of kolibrino-cli: delete and edit one contact.
//
// Called by kolibrino-cli's main on the main thread, with the model's folders set and
// the log file named. Returns the exit status (0 done, 1 refused or failed with the
// text on standard error, 2 wrong use), or -1 when the command is not one of these.
#pragma once

#include "core/log_model.h"

#include <QStringList>

namespace kolibrino {

int CorrectionsCli(const QStringList& args, Model& m);

} // namespace kolibrino
