#include "host/ThisMachine.h"

#include <sys/utsname.h>

namespace host {

bool HasWindowsAudio() { return false; }

std::string SystemName()
{
    utsname system{};
    if (uname(&system) != 0)
        return "not Windows";
    return std::string(system.sysname) + " " + system.release;
}

}  // namespace host
