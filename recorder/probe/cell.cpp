#include "recorder/probe/cell.h"

#include "recorder/field_kinds.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace zebprobe {

const char* wordOf(wire::Origin origin) {
    switch (origin) {
    case wire::Origin::given:
        return "given";
    case wire::Origin::published:
        return "published";
    case wire::Origin::chosen:
        break;
    }
    return "chosen";
}

Cell::Cell(const Answered* answer) {
    if (answer == nullptr || answer->status != 0 || answer->layout == nullptr)
        return;
    answer_ = answer;
    size_ = answer->layout->size;
    records_ = {answer->layout};
    isRecord_ = true;
    origin_ = answer->layout->origin;
}

Cell Cell::at(std::string_view field) const {
    if (!there())
        return {};
    if (!isRecord_)
        throw std::logic_error("no record at " + path_);
    const auto& fields = records_.back()->fields;
    const auto found = std::ranges::find(fields, field, [](const auto& f) { return std::string_view(f.name); });
    if (found == fields.end())
        throw std::logic_error(std::string(records_.back()->name) + " has no field " + std::string(field));
    Cell cell = *this;
    cell.offset_ += found->offset;
    cell.size_ = found->size;
    cell.origin_ = found->origin;
    cell.path_ += (path_.empty() ? "" : ".") + std::string(field);
    const wire::RecordLayout* inner = zebrec::recordIn(*records_.back(), *found);
    cell.isRecord_ = inner != nullptr;
    if (inner != nullptr)
        cell.records_.push_back(inner);
    return cell;
}

Cell Cell::entry(std::size_t i) const {
    Cell cell = *this;
    if (!there())
        return cell;
    if (!isRecord_)
        throw std::logic_error("no table of records at " + path_);
    cell.size_ = records_.back()->size;
    cell.offset_ += i * cell.size_;
    cell.path_ += "[" + std::to_string(i) + "]";
    return cell;
}

Cell Cell::number(std::size_t i, std::size_t width) const {
    Cell cell = *this;
    cell.offset_ += i * width;
    cell.size_ = width;
    cell.path_ += "[" + std::to_string(i) + "]";
    return cell;
}

Cell Cell::record(const wire::RecordLayout& layout, std::size_t offset, const std::string& name) const {
    Cell cell = *this;
    cell.offset_ = offset;
    cell.size_ = layout.size;
    cell.records_.push_back(&layout);
    cell.origin_ = layout.origin;
    cell.path_ = name;
    return cell;
}

Cell Cell::outer() const {
    if (!isRecord_)
        return *this;
    if (records_.size() < 2)
        return {};
    Cell cell = *this;
    cell.records_.pop_back();
    cell.isRecord_ = false;
    return cell;
}

std::span<const std::uint8_t> Cell::bytes() const {
    if (!there() || offset_ + size_ > answer_->bytes.size())
        return {};
    return std::span(answer_->bytes).subspan(offset_, size_);
}

std::uint64_t Cell::value() const {
    std::uint64_t number = 0;
    const auto field = bytes();
    std::memcpy(&number, field.data(), std::min(field.size(), sizeof number));
    return number;
}

bool Cell::blank() const {
    return std::ranges::all_of(bytes(), [](std::uint8_t byte) { return byte == 0; });
}

std::string Cell::describe() const {
    constexpr std::size_t kMostBytes = 32;
    std::string text = path_.empty() ? "the whole" : path_ + " (" + wordOf(origin_) + ")";
    text += " at " + std::to_string(offset_) + " in " + records_.front()->name + " of " + answer_->object + ":";
    const auto field = bytes();
    for (const std::uint8_t byte : field.first(std::min(field.size(), kMostBytes))) {
        char hex[4];
        std::snprintf(hex, sizeof hex, " %02X", unsigned{byte});
        text += hex;
    }
    return field.size() > kMostBytes ? text + " ..." : text;
}

} // namespace zebprobe
