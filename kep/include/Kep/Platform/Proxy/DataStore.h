/// A plug-in's client of the host's configuration data store.
#pragma once

#include "Kep/Export.h"
#include "Kep/Variant.h"

#include <memory>
#include <string_view>

namespace Kep::Platform::Proxy::DataStore {

/// One transaction. Destroyed before `commit`, it leaves the store as it was. Used by one thread at a time.
class KEP_API Transaction {
public:
    virtual ~Transaction();

    /// The values under `prefix`: an object whose keys are the rest of each key after it, dot included, in ascending
    /// order; a key belongs under the prefix if a dot follows it there. An empty object when there are none. Throws
    /// `GenericException` when the store cannot be read.
    virtual Variant getKeySubtree(std::string_view prefix) = 0;

    /// Ends the transaction. Throws `GenericException` when that fails, and is then as good as never called.
    virtual void commit() = 0;
};

/// Any thread, each with a transaction of its own.
class KEP_API Proxy {
public:
    virtual ~Proxy();

    /// Opens a transaction, which the caller owns. Throws `GenericException` that names the file when the store
    /// cannot be opened or is damaged.
    virtual std::unique_ptr<Transaction> begin() = 0;
};

} // namespace Kep::Platform::Proxy::DataStore
