// Stands for a vendor's header that declares two of the records, one of them a byte longer than here.
#pragma once

struct _MR_PD_REF {
    unsigned short deviceId;
    unsigned short seqNo;
};

typedef struct _SL_LIB_VER_T {
    char bytes[13];
} SL_LIB_VER_T;
