/// Stands in for the task queue under a plug-in, and records what the plug-in does with its share of it.
#pragma once

#include <string>

/// What happened, in order: "open ", "close ", and what tests add. Of the running test alone; one thread.
std::string& events();
