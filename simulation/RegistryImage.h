// The registry of a simulated machine.
#pragma once

#include "machine/MachineDescription.h"

#include <string>

namespace simulation {

// While it lives, a volatile key of its own stands in the place of HKEY_LOCAL_MACHINE for this process and holds the
// endpoints of the machine. Throws std::runtime_error when the registry refuses.
class RegistryImage {
public:
    explicit RegistryImage(const machine::MachineDescription& machine);
    RegistryImage(const RegistryImage&) = delete;
    RegistryImage& operator=(const RegistryImage&) = delete;
    ~RegistryImage();

private:
    std::wstring keyName_;
};

}  // namespace simulation
