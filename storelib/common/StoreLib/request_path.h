// The one path that every request takes: fill the header, resolve the reference, send, leave the trace.
//
// A wrapper says what is particular to it (command, reference, data) and hands the rest to these functions. Statuses
// are the library's own; see storelib/records/status.h for those raised here.
#pragma once

#include "storelib/dll_mod.h"
#include "storelib/records/request.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

/// The source unit under which all wrappers leave their traces.
inline constexpr char kStoreLibSource[] = "StoreLib";

/// The name and line under which a wrapper leaves its trace.
struct Caller {
    const char* func;
    int line;
    Caller(const char* name, int at = __builtin_LINE()) : func(name), line(at) {}
};

/// The two codes that pick an operation.
struct Command {
    std::uint8_t type;
    std::uint8_t cmd;
};

enum class Trace { OnFailure, Always };

/// A zeroed request with its command and controller id set.
SL_LIB_CMD_PARAM_T makeRequest(Command command, unsigned char contNo);

/// Gives the request its data. The size is in bytes.
void attachData(SL_LIB_CMD_PARAM_T& request, void* data, std::uint32_t size);

/// Sends the request and leaves its trace. Returns the library's status.
std::uint32_t sendRequest(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo,
                          Trace trace = Trace::OnFailure);

/// Leaves the trace of a step that failed before the request was sent. Returns the status.
std::uint32_t failedBeforeSend(Caller caller, std::uint32_t status);

/// A request without a reference whose answer is one record.
template <class Record>
std::uint32_t query(Caller caller, unsigned char contNo, Command command, Record* record) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    attachData(request, record, sizeof *record);
    return sendRequest(caller, request, contNo);
}

/// The same, with a record that is cleared first, so that it stays clear on failure.
template <class Record>
std::uint32_t queryZeroed(Caller caller, unsigned char contNo, Command command, Record* record) {
    *record = Record{};
    return query(caller, contNo, command, record);
}

/// A request about an LD whose answer is one record.
template <class Record>
std::uint32_t queryLd(Caller caller, unsigned char contNo, Command command, unsigned char ldNo, Record* record) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    request.ref.ldRef.targetId = ldNo;
    attachData(request, record, sizeof *record);
    return sendRequest(caller, request, contNo);
}

/// A request about an enclosure whose answer is one record.
template <class Record>
std::uint32_t queryEnclosure(Caller caller, unsigned char contNo, Command command, std::uint16_t deviceId,
                             Record* record) {
    SL_LIB_CMD_PARAM_T request = makeRequest(command, contNo);
    request.ref.enclDeviceId = deviceId;
    attachData(request, record, sizeof *record);
    return sendRequest(caller, request, contNo);
}

/// A request without reference and data.
std::uint32_t command(Caller caller, unsigned char contNo, Command command);

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};
template <class Record>
using HeapRecord = std::unique_ptr<Record, FreeDeleter>;

/// A zeroed record with further zeroed bytes behind it, or null after the memory-failure callback has been called; the
/// wrapper then returns 0x8015.
template <class Record>
HeapRecord<Record> allocateRecord(std::size_t bytesBehind = 0) {
    auto* record = static_cast<Record*>(std::calloc(1, sizeof(Record) + bytesBehind));
    if (record == nullptr && pfnMemAllocFailed != nullptr)
        pfnMemAllocFailed();
    return HeapRecord<Record>(record);
}
