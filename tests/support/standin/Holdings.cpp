#include "support/Holdings.h"

#include "WinApiControl.h"
#include "simulation/devices/ComObject.h"

std::map<std::string, long> CurrentHoldings()
{
    const winapi::Holdings held = winapi::CurrentHoldings();
    return {{"open registry keys", static_cast<long>(held.openKeys)},
            {"overridden registry keys", static_cast<long>(held.overriddenKeys)},
            {"task memory blocks", static_cast<long>(held.taskMemoryBlocks)},
            {"apartment joins", static_cast<long>(held.apartmentJoins)},
            {"class objects", static_cast<long>(held.classObjects)},
            {"COM objects", simulation::liveComObjects}};
}
