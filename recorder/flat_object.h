// One JSON object of numbers, texts and flags, as each line of a recording is. It is read as a stream: the library's
// tree of values needs memory to be taken down, so that a want of memory would end the program.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zebrec {

class FlatObject {
  public:
    struct Value {
        enum class Kind { kOther, kNumber, kText, kFlag };
        Kind kind = Kind::kOther; ///< kOther: negative, broken, null, or a structure of its own
        std::uint64_t number = 0;
        std::string text;
        bool flag = false;
    };

    enum class Outcome { kObject, kNoObject, kNoJson };

    /// Reads a text. Without an object there is no value in it. The last one of a name counts.
    Outcome read(std::string_view text);

    /// The value of that name and kind; null when there is none.
    const Value* find(const char* name, Value::Kind kind) const;
    bool contains(const char* name) const { return values_.find(name) != values_.end(); }

  private:
    std::map<std::string, Value, std::less<>> values_;
};

/// The text as JSON writes it, in ASCII. What is no UTF-8 is replaced.
std::string quoted(const std::string& text);

} // namespace zebrec
