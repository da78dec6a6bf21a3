// The machine that the process runs on, read into a description that can be kept, compared and played elsewhere.
#pragma once

#include "machine/MachineDescription.h"

namespace snapshot {

// Asks the machine what a run would ask, on this thread, which is a member of the multithreaded COM apartment
// meanwhile. Selects, writes and edits nothing; so whether a selector can be switched stays unknown, and counts as
// possible.
//
// A call that fails is recorded with its result, as a fault of the object that it was made on, if the description would
// not give that result by itself; what lies behind it is then missing. An object that answers the same question
// differently when it is asked again is recorded with its first answer. That, and whatever else the description cannot
// hold as it is, is told in its notes. Never throws because of what the machine answers.
//
// Two snapshots of an unchanged machine are equal. The endpoints stand in the order in which the platform lists them;
// devices by their ids, parts by their numbers as connectors and then by their local ids, registry values by name.
machine::MachineDescription TakeSnapshot();

// Puts "Endpoint 1" and so on in the place of the names that people gave the endpoints: the friendly names and short
// names as whole words, in either case, wherever they stand in texts of the machine, and the endpoint's and its
// device's names in the registry. A value that is no text and holds such a name loses its data, which is noted. What a
// run reads stays as it is, so that the run does too.
void Redact(machine::MachineDescription& machine);

}  // namespace snapshot
