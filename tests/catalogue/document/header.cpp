// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "header.h"

#include <fstream>
#include <stdexcept>

namespace {

const std::map<std::string, std::string> kStatusValues = {{"ippStsNoErr", "0"},
                                                          {"ippStsNoMemErr", "-4"},
                                                          {"ippStsBadArgErr", "-5"},
                                                          {"noErr", "0"},
                                                          {"paramErr", "-50"},
                                                          {"memFullErr", "-108"},
                                                          {"rotateFailedErr", "-2"},
                                                          {"badAngleErr", "-3"},
                                                          {"uniteFailedErr", "-1001"},
                                                          {"OPCV_READ_OK", "0"},
                                                          {"OPCV_READ_BAD_ARGUMENT", "-1"},
                                                          {"OPCV_READ_UNREADABLE", "-2"},
                                                          {"OPCV_READ_OVER_LIMIT", "-3"},
                                                          {"OPCV_READ_NO_MEMORY", "-4"},
                                                          {"OPCV_READ_CANCELLED", "-5"},
                                                          {"OPCV_READ_WRONG_SIZE", "-6"}};

bool beginsWith(const std::string& text, const std::string& prefix) { return text.rfind(prefix, 0) == 0; }

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string wordAfter(const std::string& text, const std::string& tag) {
    const size_t from = text.find_first_not_of(' ', text.find(tag) + tag.size());
    return text.substr(from, text.find(' ', from) - from);
}

// The comment before a function, line by line.
class Comment {
public:
    void clear() { *this = Comment(); }

    void add(const std::string& line, const std::map<std::string, Described>& before) {
        const std::string text = line.size() > 4 ? line.substr(4) : "";
        if (holds(text, "@retval ")) {
            const std::string name = wordAfter(text, "@retval");
            const auto value = kStatusValues.find(name);
            addEnding(value == kStatusValues.end() ? name : value->second);
        } else if (holds(text, "@throws ")) {
            addEnding("`" + wordAfter(text, "@throws") + "`");
        } else if (holds(text, "@copydetails ")) {
            addEnding(before.at(wordAfter(text, "@copydetails")).endings);
        }
        inBrief_ = inBrief_ && !text.empty() && !beginsWith(text, "@");
        const std::string sentence = text.substr(0, text.find(" @return"));
        if (inBrief_) brief_ += (brief_.empty() ? "" : " ") + sentence;
    }

    Described describe(const std::string& name, const std::string& type) const {
        if (brief_.empty()) throw std::runtime_error(name + " has no description in the header");
        std::string endings = endings_;
        if (type == "bool " && !beginsWith(endings, "true, false"))
            endings.insert(0, endings.empty() ? "true, false" : "true, false, ");
        if (endings.empty() && (type == "int " || type == "IppStatus ")) endings = "0";
        if (holds(type, "*")) endings = "pointer, null";
        return {brief_, endings};
    }

private:
    void addEnding(const std::string& text) { endings_ += (endings_.empty() ? "" : ", ") + text; }

    bool inBrief_ = true;
    std::string brief_;
    std::string endings_;
};

}    // namespace

std::map<std::string, Described> described(const std::string& header) {
    const std::string mark = "OPCV_DLIB_API ";
    std::ifstream in(header);
    std::map<std::string, Described> all;
    Comment comment;
    for (std::string line; std::getline(in, line);) {
        if (beginsWith(line, "///")) {
            comment.add(line, all);
            continue;
        }
        if (beginsWith(line, mark)) {
            const size_t bracket = line.find('(');
            const size_t start = line.find_last_of(" *", bracket) + 1;
            const std::string name = line.substr(start, bracket - start);
            all[name] = comment.describe(name, line.substr(mark.size(), start - mark.size()));
        }
        comment.clear();
    }
    return all;
}
