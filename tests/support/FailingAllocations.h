#pragma once

/// Counts down over the allocations of this thread; the one that reaches 0 fails. Below 0, as at first, none does.
extern thread_local long AllocationsUntilFailure;
