#include "endings.h"

#include <fstream>

namespace {

const std::map<std::string, std::string> kStatusValues = {
    {"ippStsNoErr", "0"},       {"ippStsNoMemErr", "-4"}, {"ippStsBadArgErr", "-5"}, {"noErr", "0"},
    {"paramErr", "-50"},        {"memFullErr", "-108"},   {"rotateFailedErr", "-2"}, {"badAngleErr", "-3"},
    {"uniteFailedErr", "-1001"}};

}    // namespace

std::map<std::string, std::string> endings(const std::string& header) {
    std::ifstream in(header);
    std::map<std::string, std::string> all;
    std::string line;
    std::string results;
    const auto add = [&results](const std::string& text) { results += (results.empty() ? "" : ", ") + text; };
    const auto wordAfter = [](const std::string& text, const std::string& tag) {
        const size_t from = text.find_first_not_of(' ', text.find(tag) + tag.size());
        return text.substr(from, text.find(' ', from) - from);
    };
    while (std::getline(in, line)) {
        if (line.find("@retval ") != std::string::npos) {
            const std::string name = wordAfter(line, "@retval");
            const auto value = kStatusValues.find(name);
            add(value == kStatusValues.end() ? name : value->second);
        } else if (line.find("@throws ") != std::string::npos) {
            add("`" + wordAfter(line, "@throws") + "`");
        } else if (line.find("@copydetails ") != std::string::npos) {
            add(all.at(wordAfter(line, "@copydetails")));
        } else if (line.rfind("OPCV_DLIB_API ", 0) == 0) {
            const size_t bracket = line.find('(');
            const size_t start = line.find_last_of(" *", bracket) + 1;
            const std::string type = line.substr(14, start - 14);
            const bool copied = results.rfind("true, false", 0) == 0;
            if (type == "bool " && !copied) results.insert(0, results.empty() ? "true, false" : "true, false, ");
            if (type == "int " && results.empty()) results = "0";
            if (type == "IppStatus " && results.empty()) results = "0";
            if (type.find('*') != std::string::npos) results = "pointer, null";
            all[line.substr(start, bracket - start)] = results;
            results.clear();
        } else if (line.rfind("///", 0) != 0) {
            results.clear();
        }
    }
    return all;
}
