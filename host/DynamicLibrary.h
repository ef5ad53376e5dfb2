/// A dynamic library that is loaded while the object lives.
#pragma once

#include <memory>
#include <string>

namespace Host {

class DynamicLibrary {
public:
    /// Loads the library at `path` (UTF-8). Throws `Failure` with the system's reason.
    explicit DynamicLibrary(const std::string& path);

    /// The address of an exported function. Throws `Failure` when there is none of that name.
    void* find(const char* name) const;

    /// `CoTaskMemFree` as the library itself finds it. Throws `Failure` when there is none.
    void* findTaskMemFree() const;

private:
    struct Unload {
        void operator()(void* handle) const noexcept;
    };

    std::string path_;
    std::unique_ptr<void, Unload> handle_;
};

} // namespace Host
