#pragma once

#include <map>
#include <string>

// What this process holds of the platform, by kind.
std::map<std::string, long> CurrentHoldings();
