// clang-tidy finds clang-diagnostic-thread-safety-analysis
#include "Kep/Mutex.h"

class Counter {
public:
    void count() { ++count_; }

private:
    Kep::Mutex mutex_;
    int count_ KEP_GUARDED_BY(mutex_) = 0;
};

void count(Counter& counter)
{
    counter.count();
}
