#include "facts/asker.h"

#include "facts/text.h"
#include "storelib/status_text.h"

namespace facts {

std::optional<Failure> failureOf(std::uint32_t status) {
    if (status == kSlSuccess)
        return std::nullopt;
    return Failure{status, fieldText(std::string_view(SLStrError(status))).value_or("")};
}

} // namespace facts
