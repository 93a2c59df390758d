// zebcli-probe: asks the library each reading question once and judges from the answers whether the records are laid
// out as they are declared.
#include "recorder/new_recording.h"
#include "recorder/probe/checks.h"
#include "recorder/probe/report.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

using namespace zebrec;

constexpr char kProgram[] = "zebcli-probe";
constexpr char kUsage[] = "usage: zebcli-probe [--library PATH] [--record FILE]";

/// Asks and judges, in a process of its own. Returns the status of the program.
int probe(const Start& start, const char* recording) {
    const LoadedLibrary library(start.realLibrary.c_str());
    if (library.entry() == nullptr)
        return refuse(kProgram, start.realLibrary + " cannot be loaded: " + library.failure());
    Session session(start.page, library.entry(), recording);
    zebprobe::Survey survey(session);
    if (!survey.run()) {
        char status[96];
        const std::uint32_t answered = survey.all().front().status;
        std::snprintf(status, sizeof status, "the library did not start (status 0x%08X)", answered);
        return refuse(kProgram, std::string("nothing could be asked: ") +
                                    (answered != 0 ? status : "the library lists no controller"));
    }
    zebprobe::Verdicts verdicts = zebprobe::judge(survey);
    if (zebprobe::isContradicted(verdicts)) {
        // Hardware that has changed meanwhile contradicts itself but once, a layout every time.
        zebprobe::Survey again(session);
        if (again.run())
            verdicts = zebprobe::judge(again);
    }
    const std::string report = zebprobe::reportOf(verdicts);
    std::fwrite(report.data(), 1, report.size(), stdout);
    if (std::fflush(stdout) != 0)
        return refuse(kProgram, std::string("standard output: ") + std::strerror(errno));
    return zebprobe::isContradicted(verdicts) ? 1 : 0;
}

/// Lets a child ask, so that a library that ends its program ends the child alone.
int probeInChild(const Start& start, const char* recording) {
    const pid_t child = ::fork();
    if (child < 0)
        return refuse(kProgram, std::string("no process: ") + std::strerror(errno));
    if (child == 0)
        std::exit(runProgram(kProgram, [&] { return probe(start, recording); }));
    const int status = waitFor(child);
    sayAtEnd(kProgram, [&] { sayHowItEnded(kProgram, *start.page); });
    return status;
}

int probe(const std::optional<std::string>& library, const std::optional<std::string>& path) {
    const auto start = beginSession(kProgram, Mode::kRecord, library);
    if (!start)
        return kCannotStart;
    if (!path)
        return probeInChild(*start, nullptr);
    const auto recording = NewRecording::make(kProgram, *path, *start, true);
    if (!recording)
        return kCannotStart;
    const int status = probeInChild(*start, recording->pathForCommand().c_str());
    if (start->page->lines != 0)
        recording->keep();
    sayAtEnd(kProgram, [&] { recording->end(); });
    return status;
}

int run(int argc, char** argv) {
    const Arguments arguments =
        parseArguments(argc, argv, {{"--library", true}, {"--record", true}, {"--help", false}});
    if (arguments.has("--help"))
        return std::puts(kUsage) < 0 ? kCannotStart : 0;
    if (!arguments.error.empty())
        return refuse(kProgram, arguments.error);
    if (!arguments.words.empty() || !arguments.command.empty())
        return refuse(kProgram, kUsage);
    return probe(arguments.value("--library"), arguments.value("--record"));
}

} // namespace

int main(int argc, char** argv) {
    return zebrec::runProgram(kProgram, [&] { return run(argc, argv); });
}
