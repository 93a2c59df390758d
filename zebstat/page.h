// The facts as one page for a browser.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"

#include <string>
#include <vector>

namespace zebstat {

/// The page: HTML with its style in it, that needs no network and no scripts. Everything that comes from a drive, an
/// operator or the host is escaped.
std::string htmlPage(const facts::Collection& collection, const std::vector<facts::Finding>& findings);

} // namespace zebstat
