// Kernel streaming: the identifier that starts every property request.
#pragma once

#include <windows.h>

struct KSIDENTIFIER {
    union {
        struct {
            GUID Set;
            ULONG Id;
            ULONG Flags;
        };
        LONGLONG Alignment;
    };
};
static_assert(sizeof(KSIDENTIFIER) == 24);
using KSPROPERTY = KSIDENTIFIER;
using KSMETHOD = KSIDENTIFIER;
using KSEVENT = KSIDENTIFIER;
using PKSPROPERTY = KSPROPERTY*;
using PKSMETHOD = KSMETHOD*;
using PKSEVENT = KSEVENT*;
