// zebcli-preview: runs a command, lets it read and keeps its changes from the controllers.
#include "recorder/start.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

using namespace zebrec;

constexpr char kProgram[] = "zebcli-preview";
constexpr char kUsage[] = "usage: zebcli-preview [--library PATH] -- COMMAND...";

/// The list of what was held back. The first one is how far the preview is true.
void sayHeldBack(const SessionPage& page) {
    const std::uint32_t count = page.heldBack.count;
    bool first = true;
    page.heldBack.forEach([&](const Mention& mention) {
        std::fprintf(stderr, "held back: %s\n", describe(mention).c_str());
        if (first && (count > 1 || page.afterHeldBack != 0))
            std::fputs("true up to here; what follows was asked as if the above had happened, which it has not\n",
                       stderr);
        first = false;
    });
    if (count == 0)
        std::fputs("nothing was changed; no request was held back\n", stderr);
    else if (count == 1)
        std::fputs("nothing was changed; 1 request was held back\n", stderr);
    else
        std::fprintf(stderr, "nothing was changed; %u requests were held back\n", count);
}

int preview(const std::vector<std::string>& command, const std::optional<std::string>& library) {
    const auto start = beginSession(kProgram, Mode::kPreview, library);
    if (!start)
        return kCannotStart;
    const std::optional<int> status = runCommand(command, start->environment());
    if (!status)
        return refuse(kProgram, command.front() + " cannot be started: " + std::strerror(errno));
    sayAtEnd(kProgram, [&] {
        sayHowItEnded(kProgram, *start->page);
        sayHeldBack(*start->page);
    });
    return *status;
}

int run(int argc, char** argv) {
    const Arguments arguments = parseArguments(argc, argv, {{"--library", true}, {"--help", false}});
    if (arguments.options.count("--help") != 0)
        return std::puts(kUsage) < 0 ? kCannotStart : 0;
    if (!arguments.error.empty())
        return refuse(kProgram, arguments.error);
    if (!arguments.words.empty() || arguments.command.empty())
        return refuse(kProgram, kUsage);
    return preview(arguments.command, arguments.value("--library"));
}

} // namespace

int main(int argc, char** argv) {
    return zebrec::runProgram(kProgram, [&] { return run(argc, argv); });
}
