#include "support/ScriptedPage.h"

#include <algorithm>
#include <utility>

namespace wevlin_test {

ScriptedPage::ScriptedPage() = default;

ScriptedPage::~ScriptedPage() = default;

void ScriptedPage::Navigate(std::string target) {
  std::lock_guard<std::mutex> lock(mutex_);
  navigations_.push_back(std::move(target));
}

std::optional<ScriptedPage::Call> ScriptedPage::Parse(const std::string& script) {
  const std::size_t open = script.find('(');
  if (open == std::string::npos) return std::nullopt;
  Call call;
  call.function = script.substr(0, open);
  std::size_t i = open + 1;
  while (i < script.size() && script[i] == '\'') {
    std::string arg;
    ++i;
    bool closed = false;
    while (i < script.size()) {
      const char c = script[i];
      if (c == '\\' && i + 1 < script.size() && script[i + 1] == '\'') {
        arg += '\'';
        i += 2;
      } else if (c == '\'') {
        closed = true;
        ++i;
        break;
      } else {
        arg += c;
        ++i;
      }
    }
    if (!closed) return std::nullopt;
    call.args.push_back(std::move(arg));
    if (i < script.size() && script[i] == ',') ++i;
  }
  if (script.compare(i, std::string::npos, ");") != 0) return std::nullopt;
  return call;
}

std::string ScriptedPage::ExecuteScript(std::string script) {
  std::optional<Call> call = Parse(script);
  {
    std::lock_guard<std::mutex> lock(mutex_);
    scripts_.push_back(script);
    if (!call) throw ScriptException("SyntaxError: unparsable script", script);
    calls_.push_back(*call);
    auto failure = failures_.find(call->function);
    if (failure != failures_.end()) {
      if (failure->second.successesLeft == 0) throw ScriptException(failure->second.exception);
      --failure->second.successesLeft;
    }
  }
  return Answer(*call);
}

std::string ScriptedPage::Answer(const Call& call) {
  const auto arg = [&call](std::size_t index) {
    return index < call.args.size() ? call.args[index] : std::string();
  };
  if (call.function == "tavoInterop_Ping") return PageVersion;
  if (call.function == "tavoInterop_HostServiceListUpdate") return std::string();
  if (call.function == "tavoInterop_RequestWebServiceList") return WebServiceList;
  if (call.function == "tavoInterop_WebMethod") {
    return MethodHandler ? MethodHandler(arg(0), arg(1)) : MethodReply;
  }
  if (call.function == "tavoInterop_WebEvent") {
    return EventHandler ? EventHandler(arg(0), arg(1)) : EventReply;
  }
  throw ScriptException("ReferenceError: " + call.function + " is not defined", call.function);
}

void ScriptedPage::AddLoadObserver(ILoadObserver* observer) {
  std::lock_guard<std::mutex> lock(mutex_);
  observers_.push_back(observer);
}

void ScriptedPage::RemoveLoadObserver(ILoadObserver* observer) {
  std::lock_guard<std::mutex> lock(mutex_);
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void ScriptedPage::CompleteLoad() {
  std::vector<ILoadObserver*> observers;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    observers = observers_;
  }
  for (ILoadObserver* observer : observers) observer->OnLoadCompleted();
}

void ScriptedPage::Fail(const std::string& name, ScriptException e) {
  FailAfter(name, 0, std::move(e));
}

void ScriptedPage::FailAfter(const std::string& name, int successes, ScriptException e) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_.insert_or_assign(name, Failure{successes < 0 ? 0 : successes, std::move(e)});
}

void ScriptedPage::Heal(const std::string& name) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_.erase(name);
}

std::vector<std::string> ScriptedPage::Scripts() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return scripts_;
}

std::vector<ScriptedPage::Call> ScriptedPage::Calls() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return calls_;
}

std::vector<ScriptedPage::Call> ScriptedPage::CallsOf(const std::string& name) const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Call> result;
  for (const Call& call : calls_) {
    if (call.function == name) result.push_back(call);
  }
  return result;
}

std::vector<std::string> ScriptedPage::Navigations() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return navigations_;
}

std::size_t ScriptedPage::ObserverCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return observers_.size();
}

void ScriptedPage::ClearRecords() {
  std::lock_guard<std::mutex> lock(mutex_);
  scripts_.clear();
  calls_.clear();
  navigations_.clear();
}

}  // namespace wevlin_test
