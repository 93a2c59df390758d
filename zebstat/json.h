// The facts as one JSON document.
#pragma once

#include "facts/collection.h"
#include "facts/findings.h"

#include <string>
#include <vector>

namespace zebstat {

/// The version of the document's form: a key is never renamed or given another meaning while the first number stays.
inline constexpr char kFormatVersion[] = "1.0";

/// The document, with a newline at its end; on one line, or laid out for a person.
std::string jsonDocument(const facts::Collection& collection, const std::vector<facts::Finding>& findings, bool pretty);

} // namespace zebstat
