// Expected logs, and lists of platform calls, with gaps.
#pragma once

#include <string>
#include <vector>

// "..." as an expected message stands for any messages, as a line of an expected message for any lines.
bool MessageMatches(const std::string& expected, const std::string& actual);

// Where the actual messages leave the expected ones; empty when they do not.
std::string LogDifference(const std::vector<std::string>& expected, const std::vector<std::string>& actual);
