// Outcomes of runs that logged what a test says.
#pragma once

#include "rehearsal/Rehearsal.h"

#include <string>
#include <vector>

// Nothing is changed in any file.
inline rehearsal::Outcome OutcomeOf(const std::vector<std::wstring>& messages)
{
    rehearsal::Outcome outcome;
    for (const std::wstring& message : messages)
        outcome.events.push_back(rehearsal::LogMessage{LogLevel::Info, message});
    const std::string names = "OrvexZan_Lfx_Mfx_Apo OrvexZan_Sfx_Apo OrvexZan_Efx_Apo OrvexZan_SPATIALF";
    const std::string bytes = "<a b=\"" + names + "\"/>\r\n";
    outcome.files = {{{"q.xml", bytes, bytes}, {"s.xml", bytes, bytes}, {"p.xml", bytes, bytes}}};
    return outcome;
}
