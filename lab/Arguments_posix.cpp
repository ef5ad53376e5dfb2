#include "lab/Arguments.h"

namespace Lab {

std::vector<std::string> programArguments(int count, char** arguments)
{
    return {arguments + (count > 0 ? 1 : 0), arguments + count};
}

} // namespace Lab
