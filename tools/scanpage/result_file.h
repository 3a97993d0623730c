// A file that appears under its name only when it is complete.
#pragma once

#include <cstddef>
#include <string>

// Written as NAME.part, which is locked, so that two programs at the same page do not mix their bytes. What is not
// committed is removed.
class ResultFile {
public:
    explicit ResultFile(std::string name);
    ~ResultFile();
    ResultFile(const ResultFile&) = delete;
    ResultFile& operator=(const ResultFile&) = delete;

    void write(const void* data, size_t size);
    size_t commit();    // the file's size in bytes

private:
    bool lock(int descriptor) const;
    [[noreturn]] void fail() const;

    std::string name_;
    std::string part_;
    int descriptor_ = -1;
};
