// The board's time. A test can take it into its own hands: then nothing waits for real time.
#pragma once

#include <chrono>

namespace simboard {

using std::chrono::microseconds;

// From now on time only moves when it is moved: a pause shorter than `heldFrom` moves it by its length and
// returns at once; a longer one holds its thread until somebody else has moved time so far.
void useTestTime(microseconds heldFrom = microseconds::max());
// Back to real time; held pauses end.
void useRealTime();

void moveTime(microseconds by);

// Waits until so many threads are held in a pause. False: they were not within this real time.
bool awaitHeldPauses(unsigned count, std::chrono::milliseconds patience);

}  // namespace simboard
