#include "zebstat/json_parts.h"

namespace zebstat {

void putWord(Json& object, const std::string& key, const std::optional<facts::Word>& word) {
    object[key] = word ? Json(word->text) : Json(nullptr);
    if (word && word->code)
        object[key + "_code"] = *word->code;
}

void putError(Json& object, const std::optional<facts::Failure>& error) {
    if (error)
        object["error"] = {{"status", error->status}, {"text", error->text}};
}

} // namespace zebstat
