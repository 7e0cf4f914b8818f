// The band colour buttons that the district map and the multiplier table share: their
// captions, tool tips and design colours, and the colour dialog behind them.
//
// Window thread only. Never fails: a cancelled dialog or a refused colour (black) gives
// no value and leaves the settings as they are.
#pragma once

#include "core/dialogs.h"

#include <QBoxLayout>
#include <QPushButton>
#include <functional>
#include <optional>
#include <span>

namespace kolibrino {

// Adds buttons "Command1".. in the order 40m, 80m, 40/80m, 30m, 30/80m, as many as
// `buttons` holds, to `into`; a click calls click(i).
void AddColourButtons(std::span<QPushButton*> buttons, QBoxLayout* into, QObject* context,
                      const std::function<void(int)>& click);

// Asks for a new colour starting from `current`; black is refused with its message.
std::optional<int> AskBandColour(Dialogs& dialogs, int current);

} // namespace kolibrino
