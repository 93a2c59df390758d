#include "facts/operation.h"

namespace facts {

namespace {
constexpr std::uint32_t kWhole = 65535;
constexpr std::uint32_t kCounterEnd = 65535;
} // namespace

unsigned Operation::percent() const {
    return progress * 100U / kWhole;
}

double Operation::ratio() const {
    return progress / static_cast<double>(kWhole);
}

std::optional<std::uint32_t> Operation::remainingSeconds() const {
    if (progress == 0 || elapsedSeconds == kCounterEnd)
        return std::nullopt;
    return elapsedSeconds * (kWhole - progress) / progress;
}

} // namespace facts
