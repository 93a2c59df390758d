#include "zebstat/metric_families.h"

#include <nlohmann/json.hpp>

namespace zebstat {

namespace {

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\' || c == '"')
            out += '\\';
        if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    return out;
}

/// As the document writes it.
std::string written(double value) {
    return nlohmann::json(value).dump();
}

} // namespace

MetricFamilies& MetricFamilies::family(std::string_view name, MetricType type, std::string_view help) {
    const auto [place, isNew] = places_.try_emplace(name, families_.size());
    if (isNew) {
        std::string head = "# HELP ";
        head.append(name).append(" ").append(help).append("\n# TYPE ").append(name);
        head.append(type == MetricType::Counter ? " counter\n" : " gauge\n");
        families_.push_back({name, std::move(head), {}});
    }
    current_ = place->second;
    return *this;
}

void MetricFamilies::add(const Labels& labels, const std::string& value) {
    Family& family = families_[current_];
    family.samples += family.name;
    char before = '{';
    for (const auto& [label, text] : labels) {
        family.samples.append(1, before).append(label).append("=\"").append(escaped(text)).append("\"");
        before = ',';
    }
    if (!labels.empty())
        family.samples += '}';
    family.samples += ' ' + value + '\n';
}

void MetricFamilies::sample(const Labels& labels, double value) {
    add(labels, written(value));
}

void MetricFamilies::sample(const Labels& labels, std::uint64_t value) {
    add(labels, std::to_string(value));
}

void MetricFamilies::states(const Labels& labels, std::string_view label, std::span<const facts::WordRow> set,
                            std::string_view current) {
    bool unknownListed = false;
    const auto one = [&](std::string_view word) {
        Labels all = labels;
        all.emplace_back(label, word);
        sample(all, std::uint64_t{word == current ? 1U : 0U});
    };
    for (const facts::WordRow& row : set) {
        one(row.text);
        unknownListed = unknownListed || row.text == facts::kUnknownWord;
    }
    if (!unknownListed)
        one(facts::kUnknownWord);
}

std::string MetricFamilies::text() const {
    std::string text;
    for (const Family& family : families_)
        if (!family.samples.empty())
            text += family.head + family.samples;
    return text;
}

} // namespace zebstat
