// Why a library could not be loaded.
#pragma once

#include <string_view>

namespace zebrec {

/// The last failure of dlopen or dlsym, in one line; "no reason given" without one. Good until the next call of either.
/// Without memory the C library's text can be rubbish: it ends before the first control character.
std::string_view loadError();

} // namespace zebrec
