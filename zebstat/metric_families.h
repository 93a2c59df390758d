// Families of metrics in the text format 0.0.4: each is whole, and one without samples is not written.
#pragma once

#include "facts/word.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zebstat {

using Labels = std::vector<std::pair<std::string_view, std::string>>;

enum class MetricType { Gauge, Counter };

class MetricFamilies {
  public:
    /// Opens a family; the samples that follow go to it. A family that was opened before is continued.
    MetricFamilies& family(std::string_view name, MetricType type, std::string_view help);

    void sample(const Labels& labels, double value);
    void sample(const Labels& labels, std::uint64_t value);
    /// No sample for a value that is not known.
    template <class T>
    void sample(const Labels& labels, const std::optional<T>& value) {
        if (value)
            sample(labels, static_cast<std::conditional_t<std::is_floating_point_v<T>, double, std::uint64_t>>(*value));
    }
    /// One sample for each word of the set, "unknown" included; 1 for the one in force.
    void states(const Labels& labels, std::string_view label, std::span<const facts::WordRow> set,
                std::string_view current);

    std::string text() const;

  private:
    struct Family {
        std::string_view name;
        std::string head;
        std::string samples;
    };

    void add(const Labels& labels, const std::string& value);

    std::vector<Family> families_; ///< in the order in which they were opened
    std::map<std::string_view, std::size_t> places_;
    std::size_t current_ = 0;
};

} // namespace zebstat
