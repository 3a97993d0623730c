// The ways in which a function can end.
#pragma once

#include <map>
#include <string>

// As the header documents them: function name to text.
std::map<std::string, std::string> endings(const std::string& header);
