/// The mutex that the thread-safety analysis understands, for hosting programs: `Kep::Mutex` and `Kep::MutexLock`.
#pragma once

#include "Kep/Mutex.h" // IWYU pragma: export
