/// Uses up the process's descriptors.
#pragma once

#include <vector>

/// While it lives, at most as many descriptors are free as were freed with `freeOne` or by others.
class FullDescriptors {
public:
    FullDescriptors();
    ~FullDescriptors();
    FullDescriptors(const FullDescriptors&) = delete;
    FullDescriptors& operator=(const FullDescriptors&) = delete;

    void freeOne();

private:
    unsigned long long limit_;
    std::vector<int> taken_;
};
