// Holds the records against the library's own header: a record of another size there stops the build by its name.
// Built only where ZEB_VENDOR_HEADER names that header, which comes first, so that it sees nothing of ours.
#include ZEB_VENDOR_HEADER

#include "storelib/records/all.h"

// A qualified ::name is the vendor's type, or, where the vendor declares none of that name, once more our own, which
// agrees with itself.
#define ZEB_AGREES(record) \
    static_assert(sizeof(::record) == sizeof(wire::record), #record " has another size in the vendor's header");
ZEB_WIRE_RECORDS(ZEB_AGREES)

#define ZEB_COUNT(record) +(std::is_same_v<::record, wire::record> ? 0 : 1)
static_assert((0 ZEB_WIRE_RECORDS(ZEB_COUNT)) > 0, "the vendor's header declares none of the records");
