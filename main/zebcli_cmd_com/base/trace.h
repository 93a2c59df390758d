// The trace that a failed library wrapper leaves in the command log.
#pragma once

#include <cstdint>

/// Under which source unit and function name a trace stands.
struct TraceOrigin {
    const char* source;
    const char* func;
};

/// Leaves the trace of a wrapper that failed on a controller; the text says which. The line is the caller's.
void traceFailure(const TraceOrigin& origin, const char* text, unsigned char contNo, int line = __builtin_LINE());

/// The same for a wrapper that failed on one drive of the controller.
void tracePdFailure(const TraceOrigin& origin, const char* text, unsigned char contNo, unsigned char slotNo,
                    int line = __builtin_LINE());

/// Whether a wrapper's status tells of success; leaves its trace when it does not.
bool succeeded(std::uint32_t status, const TraceOrigin& origin, const char* text, unsigned char contNo,
               int line = __builtin_LINE());

/// The same for a wrapper that asks about, or changes, one drive of the controller.
bool succeededOnPd(std::uint32_t status, const TraceOrigin& origin, const char* text, unsigned char contNo,
                   unsigned char slotNo, int line = __builtin_LINE());
