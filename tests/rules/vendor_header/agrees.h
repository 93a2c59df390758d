// Stands for a vendor's header that declares two of the records, both as they are here.
#pragma once

struct _MR_PD_REF {
    unsigned short deviceId;
    unsigned short seqNo;
};

typedef struct _SL_LIB_VER_T {
    char bytes[12];
} SL_LIB_VER_T;
