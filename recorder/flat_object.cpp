#include "recorder/flat_object.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <utility>

namespace zebrec {

namespace {

using nlohmann::json;
using Value = FlatObject::Value;
using Kind = Value::Kind;

/// Takes the values of the outermost object; what is deeper inside counts as a value of another kind.
class Receiver : public nlohmann::json_sax<json> {
  public:
    explicit Receiver(std::map<std::string, Value, std::less<>>& values) : values_(values) {}

    bool isObject() const { return isObject_; }

    bool null() override { return take({}); }
    bool boolean(bool flag) override {
        Value value;
        value.kind = Kind::kFlag;
        value.flag = flag;
        return take(std::move(value));
    }
    bool number_integer(number_integer_t /*number*/) override { return take({}); }
    bool number_unsigned(number_unsigned_t number) override {
        Value value;
        value.kind = Kind::kNumber;
        value.number = number;
        return take(std::move(value));
    }
    bool number_float(number_float_t /*number*/, const string_t& /*text*/) override { return take({}); }
    bool string(string_t& text) override {
        Value value;
        value.kind = Kind::kText;
        value.text = std::move(text);
        return take(std::move(value));
    }
    bool binary(binary_t& /*bytes*/) override { return take({}); }
    bool start_object(std::size_t /*elements*/) override {
        isObject_ = isObject_ || depth_ == 0;
        return open();
    }
    bool key(string_t& name) override {
        if (depth_ == 1)
            name_ = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t /*elements*/) override { return open(); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) override {
        return false;
    }

  private:
    bool take(Value value) {
        if (isObject_ && depth_ == 1)
            values_[name_] = std::move(value);
        return true;
    }
    bool open() {
        take({});
        ++depth_;
        return true;
    }
    bool close() {
        --depth_;
        return true;
    }

    std::map<std::string, Value, std::less<>>& values_;
    std::string name_;
    std::size_t depth_ = 0;
    bool isObject_ = false;
};

} // namespace

FlatObject::Outcome FlatObject::read(std::string_view text) {
    values_.clear();
    Receiver receiver(values_);
    const bool whole = json::sax_parse(text.begin(), text.end(), &receiver);
    if (whole && receiver.isObject())
        return Outcome::kObject;
    values_.clear();
    return whole ? Outcome::kNoObject : Outcome::kNoJson;
}

const Value* FlatObject::find(const char* name, Value::Kind kind) const {
    const auto found = values_.find(name);
    return found == values_.end() || found->second.kind != kind ? nullptr : &found->second;
}

std::string quoted(const std::string& text) {
    return json(text).dump(-1, ' ', true, json::error_handler_t::replace);
}

} // namespace zebrec
