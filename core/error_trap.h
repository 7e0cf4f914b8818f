// The "FEHLER" trap that guards every event touching files.
//
// RunTrapped() runs an operation; while it reports an error, the operator sees
// "FEHLER", two line ends, a tab and the error text, with Retry and Cancel (flags 21).
// Retry runs the operation again; Cancel gives up and returns false. Nothing is rolled
// back: the operation itself must leave the model consistent when it fails.
//
// Window thread only.
#pragma once

#include "core/dialogs.h"

#include <QString>
#include <functional>

namespace kolibrino {

inline constexpr int kFehlerFlags = Msg::RetryCancel | Msg::Critical; // 21

QString FehlerText(const QString& description);

// op returns the empty text on success, else the error's description.
[[nodiscard]] bool RunTrapped(Dialogs& dialogs, const std::function<QString()>& op);

} // namespace kolibrino
