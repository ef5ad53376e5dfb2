/// What a call that fails says.
#pragma once

#include "Kep/Exception.h"

#include <string>

/// The message of the exception that `call` throws; "nothing thrown" when it returns, "another exception" when it
/// throws none of the framework's.
template <class Call> std::string messageOf(Call call)
{
    try {
        call();
    } catch (const Kep::GenericException& error) {
        return error.what();
    } catch (...) {
        return "another exception";
    }
    return "nothing thrown";
}
