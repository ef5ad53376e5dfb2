/// The form of the data store's file.
#pragma once

#include "datastore/Connection.h"

namespace Kep {

/// Whether the file holds a store; false for a file in which nothing was ever written. Throws `GenericException` that
/// names the file when it is damaged, holds something else, or was written by a later version of this program.
/// Called within a transaction, whose snapshot it fixes.
bool hasStore(Connection& connection);

/// Makes the tables of a new store. Called within a writing transaction, where `hasStore` is false.
void createStore(Connection& connection);

} // namespace Kep
