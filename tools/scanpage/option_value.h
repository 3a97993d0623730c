// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Checks of the values of options. Each returns what is wrong and what to write instead; nothing if the value is right.
#pragma once

#include <functional>
#include <string>
#include <vector>

using ValueCheck = std::function<std::string(const std::string&)>;

ValueCheck wholeNumber(int least, int most);
ValueCheck number(int least, int most);

ValueCheck oneOf(const std::vector<std::string>& words);
std::string joined(const std::vector<std::string>& words, const std::string& separator);

// Of a result's name, so that a page is not taken for it, as in "--contact-sheet scans/*.jpg". Any case.
ValueCheck endsIn(const std::vector<std::string>& endings);
