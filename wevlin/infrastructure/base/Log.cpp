#include <iostream>
#include <mutex>
#include <utility>

#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/base/internal/Log.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {
namespace {

// The sink and the lock that serialises every write. Both are leaked on
// purpose: lines may still be written while static objects are destroyed at
// process exit.
std::mutex& LogMutex() {
  static auto* mutex = new std::mutex();
  return *mutex;
}

LogSink& CurrentSink() {
  static auto* sink = new LogSink();
  return *sink;
}

}  // namespace

LogSink SetLogSink(LogSink sink) {
  std::lock_guard<std::mutex> lock(LogMutex());
  return std::exchange(CurrentSink(), std::move(sink));
}

namespace internal {

void WriteLogLine(const std::string& line) {
  std::lock_guard<std::mutex> lock(LogMutex());
  LogSink& sink = CurrentSink();
  if (sink) {
    try {
      sink(line);
    } catch (...) {
      // A sink must not throw; a diagnostic is never worth failing the caller.
    }
    return;
  }
  std::cout << line << std::endl;
}

}  // namespace internal
}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base
