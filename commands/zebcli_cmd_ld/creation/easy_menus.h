// The menus of easy creation, from which the operator chooses a variant.
#pragma once

#include "commands/zebcli_cmd_ld/creation/easy_variants.h"

#include <optional>

/// Asks for one of the variants, of which there must be some, and leaves those that the answers left; nothing when the
/// operator quits.
std::optional<EasyVariant> chooseVariant(Controller ctrl, EasyVariants& variants);
