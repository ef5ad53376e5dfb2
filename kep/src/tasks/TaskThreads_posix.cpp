#include "tasks/TaskThreads.h"

#include <csignal>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include <pthread.h>

namespace Kep {
namespace {

// A probe or a name look-up uses less than 20 KiB; what is not touched costs address space only. Sanitizers multiply
// what a function needs.
#if defined(__has_feature)
#define KEP_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KEP_SANITIZED 1
#else
#define KEP_SANITIZED 0
#endif
constexpr std::size_t stackSize = (KEP_SANITIZED ? 1024 : 128) * std::size_t{1024};

using Body = std::function<void()>;

void* runBody(void* argument)
{
    const std::unique_ptr<Body> body(static_cast<Body*>(argument));
    (*body)();
    return nullptr;
}

class Attributes {
public:
    Attributes()
    {
        if (pthread_attr_init(&attributes_) != 0) {
            throw std::bad_alloc();
        }
        pthread_attr_setdetachstate(&attributes_, PTHREAD_CREATE_DETACHED);
        pthread_attr_setstacksize(&attributes_, stackSize);
    }
    ~Attributes() { pthread_attr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const pthread_attr_t* get() const { return &attributes_; }

private:
    pthread_attr_t attributes_{};
};

// Blocks, for a thread to inherit, all signals but those that report a fault of the thread itself.
class BlockedSignals {
public:
    BlockedSignals()
    {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT}) {
            sigdelset(&blocked, fault);
        }
        pthread_sigmask(SIG_SETMASK, &blocked, &before_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t before_{};
};

} // namespace

bool SystemTaskThreads::start(Body body) noexcept
{
    try {
        auto owned = std::make_unique<Body>(std::move(body));
        const Attributes attributes;
        const BlockedSignals blocked;
        pthread_t thread{};
        if (pthread_create(&thread, attributes.get(), runBody, owned.get()) != 0) {
            return false;
        }
        static_cast<void>(owned.release()); // the thread's from here on
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace Kep
