// A machine made of any bytes, for targets that run on one.
#pragma once

#include "machine/MachineDescription.h"

#include <cstddef>
#include <cstdint>

// Reads a choice from each byte, counted from '0' so that seeds can be written as text; when the bytes are at an end
// every choice is the first. Every machine can be simulated; what driver and registry say is as hostile as the bytes
// want it. Parts, pins and neighbours are few, so that rings are likely.
machine::MachineDescription MachineFromBytes(const std::uint8_t* data, std::size_t size);
