/// What is wrong with the lab's input, worded for the person who wrote it.
#pragma once

#include <stdexcept>

namespace Lab {

class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Lab
