#include "support/SimulatedClock.h"

namespace wevlin_test {

SimulatedClock::SimulatedClock(std::int64_t nowSeconds) : nowSeconds_(nowSeconds) {}

std::int64_t SimulatedClock::NowSeconds() { return nowSeconds_.load(); }

void SimulatedClock::SetNowSeconds(std::int64_t seconds) { nowSeconds_.store(seconds); }

void SimulatedClock::AdvanceSeconds(std::int64_t seconds) { nowSeconds_.fetch_add(seconds); }

}  // namespace wevlin_test
