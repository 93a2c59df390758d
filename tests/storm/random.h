// Chance that repeats: the same seed gives the same choices on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zebstorm {

/// SplitMix64.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15;
        std::uint64_t z = state_;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
        z = (z ^ z >> 27) * 0x94D049BB133111EB;
        return z ^ z >> 31;
    }
    /// 0 to bound - 1; 0 when there is no number below the bound.
    std::size_t below(std::size_t bound) { return bound == 0 ? 0 : next() % bound; }
    /// From the first to the last, both included.
    std::size_t between(std::size_t first, std::size_t last) { return first + below(last - first + 1); }
    bool percent(unsigned chance) { return below(100) < chance; }

    template <class T, std::size_t N>
    const T& oneOf(const T (&items)[N]) {
        return items[below(N)];
    }
    /// The vector must not be empty.
    template <class T>
    const T& oneOf(const std::vector<T>& items) {
        return items[below(items.size())];
    }
    template <class T>
    void shuffle(std::vector<T>& items) {
        for (std::size_t i = items.size(); i > 1; --i)
            std::swap(items[i - 1], items[below(i)]);
    }

  private:
    std::uint64_t state_;
};

} // namespace zebstorm
