// Facts that may leave the house.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"

#include <vector>

namespace zebstat {

/// Replaces serial numbers, SAS addresses, the host's name, LD names and logical ids by words, equal where the
/// originals are equal and numbered in the order of the document, which begins with the sentences of these findings.
/// Findings made from what is left then say the same words.
void redact(facts::Collection& collection, const std::vector<facts::Finding>& findings);

} // namespace zebstat
