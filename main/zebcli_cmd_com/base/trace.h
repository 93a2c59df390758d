// The records that failed calls leave in the command log: who speaks, what happened, and what it was about.
#pragma once

#include <cstdint>
#include <optional>

/// A function that leaves records, under the name of its source unit.
struct Speaker {
    const char* source;
    const char* func;
};

/// Who speaks in a record, and at which line: the one where a speaker, or both its names, are turned into an origin.
struct TraceOrigin {
    Speaker speaker;
    int line;

    constexpr TraceOrigin(Speaker who, int at = __builtin_LINE()) : speaker(who), line(at) {}
    constexpr TraceOrigin(const char* source, const char* func, int at = __builtin_LINE())
        : speaker{source, func}, line(at) {}
};

/// What a record is about, as it stands behind the text: a controller, and one thing of it where there is one.
struct Subject {
    std::optional<unsigned char> contNo;
    const char* key = nullptr; ///< of the number, null where there is none
    unsigned number = 0;
    const char* separator = ", ";
};

/// The endings: ", contNo=%u" and what is behind it.
inline constexpr Subject onController(unsigned char contNo) {
    return {contNo};
}
inline constexpr Subject onLd(unsigned char contNo, unsigned ldNo) {
    return {contNo, "ldNo", ldNo};
}
inline constexpr Subject onPd(unsigned char contNo, unsigned slotNo) {
    return {contNo, "pdNo", slotNo};
}
inline constexpr Subject onArray(unsigned char contNo, unsigned arrayRef) {
    return {contNo, "arrayRef", arrayRef};
}
inline constexpr Subject onLevel(unsigned char contNo, unsigned level) {
    return {contNo, "raidlvl", level};
}

/// Spellings that differ for no reason and are kept, because scripts look for them: pdrbld says "slotNo" where the
/// other drive commands say "pdNo"; a failed SLGetLDInfo of ldsetprop and the name of a level that is not known have no
/// commas.
inline constexpr Subject onSlot(unsigned char contNo, unsigned slotNo) {
    return {contNo, "slotNo", slotNo};
}
inline constexpr Subject onLdWithoutCommas(unsigned char contNo, unsigned ldNo) {
    return {contNo, "ldNo", ldNo, " "};
}
inline constexpr Subject onLevelWithoutCommas(unsigned char contNo, unsigned level) {
    return {contNo, "raidlvl", level, " "};
}

/// Leaves the record "func=%s: %s" of a failure, with its subject behind it.
void traceFailure(const TraceOrigin& origin, const char* text, const Subject& subject = {});

/// The same without the tag of a failure.
void traceUntagged(const TraceOrigin& origin, const char* text, const Subject& subject = {});

/// Whether a wrapper's status tells of success; leaves its record when it does not.
bool succeeded(std::uint32_t status, const TraceOrigin& origin, const char* text, const Subject& subject);
