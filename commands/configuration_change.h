// What the commands that change a controller's configuration share: whom they refuse, which controller they work on,
// and the last look before the first change.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

#include <optional>

/// Says, and answers, whether the command is refused because controller 0 is a software RAID controller. Asks the
/// library.
bool refuseSoftwareRaid(const char* source, int line = __builtin_LINE());

/// Names a controller: its number and product name.
void sayController(const char* source, Controller ctrl, int line = __builtin_LINE());

/// The controller to work on: the only one, else the one that the operator chooses; nothing when the operator quits.
std::optional<Controller> chooseController(const char* source, const _AFCONT* conts, int contCount,
                                           int line = __builtin_LINE());

/// The last look: reads the snapshot of all controllers anew, behind the last question and before the first change.
/// Pointers into the snapshot are void then. Returns false after the failure has been said.
bool lookAgain(const char* source, _AFCONT* conts, int contCount, int line = __builtin_LINE());

/// Says that somebody else changed the controller between plan and last look, and that nothing has been done.
void sayConfigurationChanged(const char* source, unsigned char contNo, int line = __builtin_LINE());
