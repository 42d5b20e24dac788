#ifndef WEVLIN_TESTS_SUPPORT_RECORDINGPROPERTYLISTENER_H_
#define WEVLIN_TESTS_SUPPORT_RECORDINGPROPERTYLISTENER_H_

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/base/IPropertyChangeListener.h"
#include "wevlin/infrastructure/base/PropertyChangeEvent.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"

namespace wevlin_test {

// A property-change listener for tests of a host control instance. It
// records, in arrival order, the name of every property that changed and the
// thread that told it; for each "ContentState" it also records the name of
// the state that the instance reports at that very moment (read through
// GetContentState during the notification), so a test can assert the exact
// sequence of states, e.g. {"Navigating", "Waiting"}.
//
// An optional hook runs inside each notification, after the recording, with
// the property name; a test uses it to look at the instance while it raises a
// change (for example during "InstanceDestroyed").
//
// The listener does not own the instance it reads, which must outlive every
// notification; pass null to record names only. It must be removed from (or
// outlive) every instance it listens to. Thread-safe: notifications may come
// from any thread (a time-out arrives on the timer thread), and the readers
// return copies. Set the hook before notifications start. The hook runs
// without the listener's lock held.
class RecordingPropertyListener
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IPropertyChangeListener {
 public:
  using Instance = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
  using Hook = std::function<void(const std::string& propertyName)>;

  explicit RecordingPropertyListener(Instance* instance = nullptr) : instance_(instance) {}

  void OnPropertyChanged(
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Base::PropertyChangeEvent& event) override {
    const std::string name = event.GetPropertyName();
    std::string state;
    if (name == "ContentState" && instance_ != nullptr) {
      state = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance::NameOfState(
          instance_->GetContentState());
    }
    {
      std::lock_guard<std::mutex> lock(mutex_);
      names_.push_back(name);
      threads_.push_back(std::this_thread::get_id());
      if (name == "ContentState" && instance_ != nullptr) states_.push_back(state);
    }
    if (hook_) hook_(name);
  }

  // Sets the hook run by every later notification; an empty one removes it.
  void SetHook(Hook hook) { hook_ = std::move(hook); }

  // Returns the names of all changes so far, in arrival order.
  std::vector<std::string> Names() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return names_;
  }

  // Returns the state names read at each "ContentState" change, in order.
  std::vector<std::string> States() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return states_;
  }

  // Returns the threads that delivered the changes, parallel to Names().
  std::vector<std::thread::id> Threads() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return threads_;
  }

  // Returns how many changes of property `name` arrived so far.
  int Count(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(std::count(names_.begin(), names_.end(), name));
  }

  // Returns how many "ContentState" changes found the instance in `state`.
  int CountState(const std::string& state) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(std::count(states_.begin(), states_.end(), state));
  }

  // Forgets everything recorded so far.
  void Clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    names_.clear();
    states_.clear();
    threads_.clear();
  }

 private:
  Instance* const instance_;
  Hook hook_;
  mutable std::mutex mutex_;
  std::vector<std::string> names_;
  std::vector<std::string> states_;
  std::vector<std::thread::id> threads_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_RECORDINGPROPERTYLISTENER_H_
