// The probe's report: a row for each record and a line for the whole.
#pragma once

#include "recorder/probe/verdicts.h"

#include <string>

namespace zebprobe {

/// The rows in the order of all.h, then the last line.
std::string reportOf(const Verdicts& verdicts);

/// Whether a record is contradicted.
bool isContradicted(const Verdicts& verdicts);

} // namespace zebprobe
