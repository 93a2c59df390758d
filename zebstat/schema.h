// The JSON schema of the document.
#pragma once

#include <string_view>

namespace zebstat {

/// share/zebstat/zebstat.schema.json, as text.
extern const std::string_view kSchema;

} // namespace zebstat
