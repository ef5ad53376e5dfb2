#include "SmallStackThreads.h"

#include <pthread.h>

#include <stdexcept>
#include <vector>

namespace {

constexpr std::size_t stackSize = 128 * 1024;

struct Job {
    const std::function<void(std::size_t)>* action;
    std::size_t number;
};

void* run(void* job)
{
    const auto* const todo = static_cast<const Job*>(job);
    (*todo->action)(todo->number);
    return nullptr;
}

} // namespace

void onSmallStacks(std::size_t count, const std::function<void(std::size_t)>& action)
{
    std::vector<Job> jobs(count);
    std::vector<pthread_t> threads(count);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    for (std::size_t i = 0; i < count; ++i) {
        jobs[i] = {&action, i};
        if (pthread_create(&threads[i], &attributes, run, &jobs[i]) != 0)
            throw std::runtime_error("cannot start a thread");
    }
    for (const pthread_t thread : threads)
        pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
