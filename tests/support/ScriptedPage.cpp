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

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ScriptQuoting;

// Appends code point `code` (below 0x10000) to `out` in UTF-8.
void AppendUtf8(std::string& out, unsigned int code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// Decodes the strict escape that starts at script[i] (a backslash) into
// `arg` and returns the index after it, or npos when it is not one.
std::size_t DecodeStrictEscape(const std::string& script, std::size_t i, std::string& arg) {
  if (i + 1 >= script.size()) return std::string::npos;
  switch (script[i + 1]) {
    case '\\':
    case '\'':
    case '"':
      arg += script[i + 1];
      return i + 2;
    case 'n':
      arg += '\n';
      return i + 2;
    case 'r':
      arg += '\r';
      return i + 2;
    case 'u': {
      if (i + 6 > script.size()) return std::string::npos;
      unsigned int code = 0;
      for (std::size_t k = i + 2; k < i + 6; ++k) {
        const char h = script[k];
        unsigned int digit = 0;
        if (h >= '0' && h <= '9') {
          digit = static_cast<unsigned int>(h - '0');
        } else if (h >= 'a' && h <= 'f') {
          digit = static_cast<unsigned int>(h - 'a' + 10);
        } else {
          return std::string::npos;
        }
        code = code * 16 + digit;
      }
      AppendUtf8(arg, code);
      return i + 6;
    }
    default:
      return std::string::npos;
  }
}

}  // namespace

std::optional<ScriptedPage::Call> ScriptedPage::Parse(const std::string& script) {
  return Parse(script, ScriptQuoting::Compatible);
}

std::optional<ScriptedPage::Call> ScriptedPage::Parse(const std::string& script,
                                                      ScriptQuoting quoting) {
  const bool strict = quoting == ScriptQuoting::Strict;
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
      if (strict && c == '\\') {
        i = DecodeStrictEscape(script, i, arg);
        if (i == std::string::npos) return std::nullopt;
      } else if (strict && (c == '\n' || c == '\r')) {
        return std::nullopt;
      } else if (c == '\\' && i + 1 < script.size() && script[i + 1] == '\'') {
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
  std::optional<Call> call = Parse(script, Quoting);
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
