// The page of memory that a program of the recorder shares with the library in each process of its command. The library
// learns from it what to do and leaves in it what the program has to say when the command has ended.
#pragma once

#include "recorder/redaction.h"
#include "recorder/request.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace zebrec {

enum class Mode : std::uint32_t { kRecord, kPreview };

/// A request in short, for a message about it.
struct Mention {
    Header header;
    wire::_SL_DCMD_INPUT_T dcmd;
    wire::_SL_SCSI_PASSTHRU_T scsi;
    bool hasDcmd;
    bool hasScsi;
    std::int32_t contNo; ///< -1: not known
    std::uint64_t number; ///< of its line
    std::uint64_t amount; ///< bytes past the end; how often
};

Mention mentionOf(const Request& request, std::optional<unsigned> contNo, std::uint64_t number);
std::optional<unsigned> contNoOf(const Mention& mention);
/// "02/02 set physical drive offline: controller 0, ..."
std::string describe(const Mention& mention);

/// A list with room for so many; what comes later is only counted.
template <class Entry, std::size_t Room>
struct SharedList {
    std::atomic<std::uint32_t> count;
    struct {
        std::atomic<bool> filled;
        Entry entry;
    } place[Room];

    void add(const Entry& entry) {
        const std::uint32_t at = count.fetch_add(1);
        if (at >= Room)
            return;
        place[at].entry = entry;
        place[at].filled = true;
    }
    /// The entries in order, as many as are complete.
    template <class Visit>
    void forEach(Visit visit) const {
        for (std::size_t i = 0; i < Room && i < count; ++i)
            if (place[i].filled)
                visit(place[i].entry);
    }
};

struct SessionPage {
    static constexpr std::uint32_t kMagic = 0x7A726331;
    std::uint32_t magic;
    Mode mode;
    bool redacted;
    char time[32]; ///< when the recording began
    RedactionKey key;
    std::atomic<std::uint64_t> lines; ///< number of the last line
    std::atomic<int> stopped; ///< the errno with which writing ended, 0 = it goes on
    std::atomic<std::uint32_t> failed; ///< processes in which the real library could not be loaded
    char failure[256];
    std::atomic<bool> versionKnown;
    char version[sizeof(wire::_SL_LIB_VER_T) + 1]; ///< of the real library

    /// What each process is inside of. A process takes a place at its first request.
    struct Place {
        std::atomic<std::int32_t> pid;
        std::atomic<bool> inside;
        Mention request;
    } place[64];

    SharedList<Mention, 64> overruns;
    SharedList<Mention, 1024> leftOut;
    SharedList<Mention, 4096> heldBack;
    std::atomic<std::uint32_t> afterHeldBack; ///< requests handed through after the first that was held back
};

/// The page of another process, by the path of its file; null when it cannot be mapped or is none.
SessionPage* openPage(const char* path);

/// A new page; `file` is its descriptor, closed on exec. Null, with errno, on failure.
SessionPage* makePage(int& file);

inline constexpr char kPageVariable[] = "ZEBREC_PAGE";
inline constexpr char kFileVariable[] = "ZEBREC_FILE";
inline constexpr char kLibraryVariable[] = "ZEBREC_LIBRARY";

} // namespace zebrec
