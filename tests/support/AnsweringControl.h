#ifndef WEVLIN_TESTS_SUPPORT_ANSWERINGCONTROL_H_
#define WEVLIN_TESTS_SUPPORT_ANSWERINGCONTROL_H_

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/IWebControl.h"

namespace wevlin_test {

// An IWebControl test double that answers every script line through one
// function, without parsing it: for pages that answer every page function
// alike (with an exception record, say), for browsers that fail or die in the
// middle of a call, and for very large texts, which the test kit's
// ScriptedPage would copy character by character.
//
// Answer receives the whole script line and returns the result, or throws
// what the control should throw (a ScriptException, or anything else). With
// no Answer set every line answers "". The control keeps the lengths and the
// first 200 bytes of the lines it ran, not the lines themselves. Header-only;
// use it on the test's thread.
class AnsweringControl : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl {
 public:
  using Answer = std::function<std::string(const std::string& script)>;

  AnsweringControl() = default;
  explicit AnsweringControl(Answer answer) : answer_(std::move(answer)) {}
  ~AnsweringControl() override = default;

  // Replaces the answering function.
  void SetAnswer(Answer answer) { answer_ = std::move(answer); }

  void Navigate(std::string /*target*/) override {}

  std::string ExecuteScript(std::string script) override {
    heads_.push_back(script.substr(0, 200));
    lengths_.push_back(script.size());
    return answer_ ? answer_(script) : std::string();
  }

  void AddLoadObserver(ILoadObserver* observer) override { observers_.push_back(observer); }

  void RemoveLoadObserver(ILoadObserver* observer) override {
    for (auto it = observers_.begin(); it != observers_.end(); ++it) {
      if (*it == observer) {
        observers_.erase(it);
        return;
      }
    }
  }

  // Reports a finished page load to every registered observer.
  void CompleteLoad() {
    const std::vector<ILoadObserver*> observers = observers_;
    for (ILoadObserver* observer : observers) observer->OnLoadCompleted();
  }

  // Returns the first 200 bytes of every line run so far, in order.
  const std::vector<std::string>& Heads() const { return heads_; }
  // Returns the length of every line run so far, in order.
  const std::vector<std::size_t>& Lengths() const { return lengths_; }

 private:
  Answer answer_;
  std::vector<ILoadObserver*> observers_;
  std::vector<std::string> heads_;
  std::vector<std::size_t> lengths_;
};

// Returns true when `script` calls the page function `name`: the line starts
// with the name followed by an opening parenthesis.
inline bool Calls(const std::string& script, const std::string& name) {
  return script.size() > name.size() && script.compare(0, name.size(), name) == 0 &&
         script[name.size()] == '(';
}

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_ANSWERINGCONTROL_H_
