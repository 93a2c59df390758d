#include "main/zebcli_cmd_com/base/trace.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "storelib/records/status.h"

namespace {

void trace(const TraceOrigin& origin, const char* tag, const char* text, const Subject& subject) {
    char controller[24] = "";
    if (subject.contNo)
        wsprintf(controller, "%scontNo=%u", subject.separator, *subject.contNo);
    char number[32] = "";
    if (subject.key != nullptr)
        wsprintf(number, "%s%s=%u", subject.separator, subject.key, subject.number);
    Utillogging(origin.speaker.source, origin.line, tag, "func=%s: %s%s%s", origin.speaker.func, text, controller,
                number);
}

} // namespace

void traceFailure(const TraceOrigin& origin, const char* text, const Subject& subject) {
    trace(origin, kTraceError, text, subject);
}

void traceUntagged(const TraceOrigin& origin, const char* text, const Subject& subject) {
    trace(origin, kTracePlain, text, subject);
}

bool succeeded(std::uint32_t status, const TraceOrigin& origin, const char* text, const Subject& subject) {
    if (status != kSlSuccess)
        traceFailure(origin, text, subject);
    return status == kSlSuccess;
}
