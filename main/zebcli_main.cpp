// Start-up, in a fixed order: log, caller, arguments, terminal, command word, library, snapshot, handler; then
// everything is taken down again.

#include "commands/handlers.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/command_table.h"
#include "main/process_setup.h"
#include "main/terminal.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/dll_mod.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

constexpr char kSource[] = "zebcli_main";
constexpr char kLogName[] = "zebcli.log";
constexpr unsigned int kLogBudget = 2000000; // bytes
constexpr std::size_t kWordSize = 256;
constexpr std::size_t kLongestArgument = 256;
constexpr int kFailure = -1;

using CommandWord = char[kWordSize + 1];

/// Called where memory for a request ran out.
void DLL_MEMORYALLOC() {
    CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Failed to initialize.");
}

bool argumentsTooLong(int argc, char** argv) {
    for (int i = 0; i < argc; ++i)
        if (std::strlen(argv[i]) > kLongestArgument)
            return true;
    return false;
}

/// The argument in lower case without the text up to its first "-"; as it stands when there is no "-" or nothing behind
/// it.
void makeCommandWord(const char* argument, CommandWord& word) {
    const char* dash = std::strchr(argument, '-');
    const char* from = dash != nullptr && dash[1] != '\0' ? dash + 1 : argument;
    std::size_t length = 0;
    for (; length < kWordSize && from[length] != '\0'; ++length)
        word[length] = static_cast<char>(std::tolower(static_cast<unsigned char>(from[length])));
    word[length] = '\0';
}

/// The number of controllers, or -1 after it was said why there is none to work with.
int openControllers() {
    if (SLInitLib(DLL_MEMORYALLOC) != kSlSuccess) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Failed to initialize.");
        return kFailure;
    }
    _SL_CTRL_LIST_T list{};
    if (SLGetCtrlList(&list) != kSlSuccess) {
        CliLogging(kPrintAndLog, kSource, __LINE__, kAccessError);
        return kFailure;
    }
    const int count = list.count;
    if (count > static_cast<int>(kMaxControllers)) {
        CliLogging(kPrintAndLog, kSource, __LINE__,
                   "Error - The number of RAID controller is over %d.\nQuits the application.\n",
                   static_cast<int>(kMaxControllers));
        return kFailure;
    }
    if (count < 1) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - No RAID controller is found.\nQuits the application.\n");
        return kFailure;
    }
    return count;
}

/// The library, closed at the end whatever came of opening it.
struct LibrarySession {
    LibrarySession() = default;
    ~LibrarySession() { SLExitLib(); }
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
};

/// The snapshot of all controllers, released with the object however much of it was made.
class Snapshot {
  public:
    explicit Snapshot(int count) : count_(count) {}
    ~Snapshot() {
        FreeDriveInfo(conts_, count_);
        std::free(conts_);
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Fills it; false after it was said why there is none.
    bool take() {
        conts_ = static_cast<_AFCONT*>(std::calloc(static_cast<std::size_t>(count_), sizeof(_AFCONT)));
        if (conts_ == nullptr) {
            CliLogging(kPrintAndLog, kSource, __LINE__, "Error - An error has occurred with Linux API. (code=0x%X)",
                       static_cast<unsigned>(errno));
            return false;
        }
        if (AllocDriveInfo(conts_, count_) != 1 || UpdateDriveInfo(conts_, count_) != 1) {
            CliLogging(kPrintAndLog, kSource, __LINE__, kAccessError);
            return false;
        }
        return true;
    }
    /// Null when none was taken.
    _AFCONT* conts() const { return conts_; }

  private:
    _AFCONT* conts_ = nullptr;
    int count_;
};

/// Looks the command up and runs it between opening and closing the library. Returns the exit status.
int runCommand(int argc, char** argv) {
    CommandWord word;
    makeCommandWord(argv[1], word);
    const CommandRow* row = findCommand(word);
    if (row == nullptr) {
        CliLogging(kPrintAndLog, kSource, __LINE__, "Error - Invalid input at or near token %s.", word);
        return kFailure;
    }
    const LibrarySession library;
    const int count = openControllers();
    if (count < 0)
        return kFailure;
    Snapshot snapshot(count);
    if (row->needsSnapshot != 0 && !snapshot.take())
        return kFailure;
    setHelpRows(commandRows());
    row->handler(argc, argv, snapshot.conts(), count);
    return 0;
}

/// Output that did not reach its place is no reason for another exit status, but it is recorded.
void checkOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        Utillogging(kSource, __LINE__, kTraceError, "func=%s: %s", "main", "standard output error");
}

/// Closes the log; what it lost is said.
void closeLog() {
    sayLostRecords();
    finContData();
}

/// What a failed start says before anything but the log was opened.
int quitBeforeStart(const char* message) {
    CliLogging(kPrintAndLog, kSource, __LINE__, "%s", message);
    checkOutput();
    closeLog();
    return kFailure;
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardDescriptors();
    surviveWriteSignals();
    gatherOutput();
    initLog(kLogName, kLogBudget);
    HistoryLog(argc, argv);
    if (geteuid() != 0)
        return quitBeforeStart("Fatal error - It is not root user.");
    if (argc < 2 || argumentsTooLong(argc, argv))
        return quitBeforeStart("Error - Invoked with wrong parameters.");
    if (std::atexit(CliCmdProcessDetach) != 0)
        return kFailure;
    enterTerminal();

    const int status = runCommand(argc, argv);
    checkOutput();
    closeLog();
    return status;
}
