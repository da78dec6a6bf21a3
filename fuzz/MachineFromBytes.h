// A machine made of any bytes, for targets that run on one.
#pragma once

#include "machine/MachineDescription.h"

#include <cstddef>
#include <cstdint>

// Reads a choice from each byte, counted from '0' so that seeds can be written as digits, and passes over spaces and
// line feeds. The first choice is the usual one, and so is every choice when the bytes are at an end: no bytes make a
// machine on which an effect and a firmware module are found; others spoil it. The order is that of Machine() in the
// source. Every machine can be simulated; what driver and registry say is as hostile as the bytes want it. Parts, pins
// and neighbours are few, so that rings are likely.
machine::MachineDescription MachineFromBytes(const std::uint8_t* data, std::size_t size);
