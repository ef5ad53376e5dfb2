// Writes one setting into a data store: usage: set-setting FILE KEY VALUE
#include "Kep/Host/DataStore.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
try {
    if (argc != 4) {
        std::cerr << "usage: set-setting FILE KEY VALUE\n";
        return 2;
    }
    Kep::Host::DataStore(argv[1]).set(argv[2], argv[3]);
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
