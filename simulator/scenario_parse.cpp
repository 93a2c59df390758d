#include "simulator/scenario_io.h"

namespace zebsim {

namespace {

/// Follows the parser through a text and refuses a key that stands twice in one object, which the parser itself lets
/// pass.
class KeyWatch {
  public:
    bool operator()(Json::parse_event_t event, Json& value) {
        switch (event) {
        case Json::parse_event_t::object_start:
        case Json::parse_event_t::array_start:
            if (open_.size() == kDeepest)
                throw ScenarioError(place(), "nest less deeply here");
            open_.push_back({event == Json::parse_event_t::array_start, 0, {}, {}});
            break;
        case Json::parse_event_t::object_end:
        case Json::parse_event_t::array_end:
            open_.pop_back();
            countElement();
            break;
        case Json::parse_event_t::value:
            countElement();
            break;
        case Json::parse_event_t::key:
            open_.back().key = value.get<std::string>();
            if (!open_.back().seen.insert(open_.back().key).second)
                throw ScenarioError(place(), "write this key once in its object");
            break;
        }
        return true;
    }

  private:
    static constexpr std::size_t kDeepest = 32;

    struct Level {
        bool list;
        std::size_t index;
        std::string key;
        std::set<std::string> seen;
    };

    void countElement() {
        if (!open_.empty() && open_.back().list)
            ++open_.back().index;
    }
    std::string place() const {
        std::string text;
        for (const Level& level : open_) {
            if (level.list)
                text += "[" + std::to_string(level.index) + "]";
            else
                text += (text.empty() ? "" : ".") + level.key;
        }
        return text;
    }

    std::vector<Level> open_;
};

} // namespace

Json parsedJson(const std::string& text) {
    KeyWatch watch;
    try {
        return Json::parse(text, [&](int, Json::parse_event_t event, Json& value) { return watch(event, value); });
    } catch (const Json::parse_error& error) {
        std::size_t line = 1;
        std::size_t column = 1;
        for (std::size_t i = 0; i + 1 < error.byte && i < text.size(); ++i) {
            column = text[i] == '\n' ? 1 : column + 1;
            line += text[i] == '\n' ? 1U : 0U;
        }
        throw ScenarioError("line " + std::to_string(line) + ", column " + std::to_string(column),
                            "correct the JSON here");
    } catch (const Json::out_of_range&) {
        throw ScenarioError("", "write smaller numbers; one of them does not fit");
    }
}

} // namespace zebsim
