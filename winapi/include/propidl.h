// PROPVARIANT, as far as texts and 32-bit numbers go.
#pragma once

#include <objbase.h>

using VARTYPE = unsigned short;
enum VARENUM : VARTYPE { VT_EMPTY = 0, VT_UI4 = 19, VT_LPWSTR = 31 };

struct PROPVARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        ULONG ulVal;
        LPWSTR pwszVal;
        struct {
            ULONG cElems;
            BYTE* pElems;
        } cac;
    };
};
static_assert(sizeof(PROPVARIANT) == 24);
using REFPROPVARIANT = const PROPVARIANT&;

inline void PropVariantInit(PROPVARIANT* value) { *value = PROPVARIANT{}; }
HRESULT STDAPICALLTYPE PropVariantClear(PROPVARIANT* value);
