#include "support/Holdings.h"

#include "simulation/devices/ComObject.h"

#include <windows.h>

#include <objbase.h>

std::map<std::string, long> CurrentHoldings()
{
    APTTYPE apartment = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    const HRESULT joined = CoGetApartmentType(&apartment, &qualifier);
    DWORD userKeys = 0;
    RegQueryInfoKeyW(HKEY_CURRENT_USER, nullptr, nullptr, nullptr, &userKeys, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr);
    return {{"apartment of this thread", FAILED(joined) ? -1 : static_cast<long>(apartment)},
            {"keys of the user", static_cast<long>(userKeys)},
            {"COM objects", simulation::liveComObjects}};
}
