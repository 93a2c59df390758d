#include "recorder/start.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace zebrec {

std::optional<Start> beginSession(const std::string& program, Mode mode, const std::optional<std::string>& library) {
    expectChildren();
    Start start;
    start.folders = Folders::ofThisProgram();
    // Without it the command would load the real library, and its changes would be none that a preview holds back.
    const std::string own = start.folders.recorder + "/libstorelib.so";
    if (std::error_code none; !std::filesystem::exists(own, none)) {
        refuse(program, own + " is not there; install the package zebcli-recorder anew");
        return std::nullopt;
    }
    std::string reason;
    const auto real = findRealLibrary(library, start.folders, reason);
    if (!real) {
        refuse(program, reason);
        return std::nullopt;
    }
    start.realLibrary = *real;
    start.page = makePage(start.pageFile);
    if (start.page == nullptr) {
        refuse(program, std::string("no shared memory: ") + std::strerror(errno));
        return std::nullopt;
    }
    start.page->mode = mode;
    return start;
}

} // namespace zebrec
