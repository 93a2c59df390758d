#include "recorder/load_error.h"

#include <algorithm>
#include <dlfcn.h>

namespace zebrec {

std::string_view loadError() {
    const char* reason = ::dlerror();
    std::string_view text(reason != nullptr ? reason : "");
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    text = text.substr(0, static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isControl) - text.begin()));
    return text.empty() ? "no reason given" : text;
}

} // namespace zebrec
