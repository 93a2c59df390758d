#include "main/zebcli_cmd_com/base/trace.h"

#include "log/zebcli_log.h"
#include "storelib/records/status.h"

void traceFailure(const TraceOrigin& origin, const char* text, unsigned char contNo, int line) {
    Utillogging(origin.source, line, kTraceError, "func=%s: %s, contNo=%u", origin.func, text, contNo);
}

void tracePdFailure(const TraceOrigin& origin, const char* text, unsigned char contNo, unsigned char slotNo, int line) {
    Utillogging(origin.source, line, kTraceError, "func=%s: %s, contNo=%u, pdNo=%u", origin.func, text, contNo, slotNo);
}

bool succeeded(std::uint32_t status, const TraceOrigin& origin, const char* text, unsigned char contNo, int line) {
    if (status != kSlSuccess)
        traceFailure(origin, text, contNo, line);
    return status == kSlSuccess;
}

bool succeededOnPd(std::uint32_t status, const TraceOrigin& origin, const char* text, unsigned char contNo,
                   unsigned char slotNo, int line) {
    if (status != kSlSuccess)
        tracePdFailure(origin, text, contNo, slotNo, line);
    return status == kSlSuccess;
}
