/// The host settings, as a test wants them.
#pragma once

#include <chrono>

/// From construction on, the settings in force have these values (`rate` in packets a second, 0 for no limit); the
/// framework's own defaults afterwards.
class ChosenSettings {
public:
    ChosenSettings(std::chrono::milliseconds timeout, int retries, int rate = 0);
    ~ChosenSettings();
    ChosenSettings(const ChosenSettings&) = delete;
    ChosenSettings& operator=(const ChosenSettings&) = delete;
};
