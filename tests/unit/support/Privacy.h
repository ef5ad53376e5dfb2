/// Who may read a file.
#pragma once

#include <string>

/// Whether its owner alone may read and write the file.
bool isPrivate(const std::string& path);

/// While it lives, new files are for everybody where their maker does not say otherwise.
class NoUmask {
public:
    NoUmask();
    ~NoUmask();
    NoUmask(const NoUmask&) = delete;
    NoUmask& operator=(const NoUmask&) = delete;

private:
    unsigned before_;
};
