#pragma once

#include <memory>

/// Destroys `object` in a thread of the global pool and then returns to the system all the memory
/// that the process has free. Both together can take a tenth of a second for a full cache, and
/// without the second most of it would stay with the process: pieces still in use lie in between.
void releaseInBackground(std::shared_ptr<void> object);

/// Returns to the system all the memory that the process has free, in a thread of the global pool.
void returnFreeMemory();
