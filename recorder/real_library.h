// Finds the library that the command would load, and tries whether it can be loaded.
#pragma once

#include <optional>
#include <string>

namespace zebrec {

/// Where the programs find what belongs to them, from the place of the running one.
struct Folders {
    std::string recorder; ///< of the library that stands between
    std::string simulator; ///< of the simulated library

    static Folders ofThisProgram();
};

/// The real library's path: the named one, else ZEBREC_LIBRARY, else the first libstorelib.so in the folders of
/// LD_LIBRARY_PATH, else the one that ldconfig knows. Never the recorder's own. Nothing when there is none or it cannot
/// be loaded; then `reason` holds one line with the mend.
std::optional<std::string> findRealLibrary(const std::optional<std::string>& named, const Folders& folders,
                                           std::string& reason);

} // namespace zebrec
