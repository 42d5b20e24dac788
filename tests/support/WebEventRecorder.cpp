#include "support/WebEventRecorder.h"

#include <utility>

#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"

namespace wevlin_test {

WebEventRecorder::WebEventRecorder() = default;

WebEventRecorder::~WebEventRecorder() = default;

void WebEventRecorder::Expect(MockHostControlInstance& instance, int times) {
  EXPECT_CALL(instance, InvokeWebEvent(::testing::_, ::testing::_))
      .Times(times)
      .WillRepeatedly(
          [this](Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc* target,
                 std::string text) {
            Record(Event{target->GetFQN(), target->GetSvcVersion(), std::move(text),
                         std::this_thread::get_id()});
          });
}

void WebEventRecorder::Record(Event event) {
  std::lock_guard<std::mutex> lock(mutex_);
  events_.push_back(std::move(event));
}

int WebEventRecorder::Count() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<int>(events_.size());
}

std::vector<std::string> WebEventRecorder::Texts() const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::string> texts;
  for (const Event& event : events_) texts.push_back(event.text);
  return texts;
}

WebEventRecorder::Event WebEventRecorder::Last() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return events_.empty() ? Event() : events_.back();
}

}  // namespace wevlin_test
