#include "TracingWebControl.h"

#include <chrono>
#include <utility>

namespace wevlin_demo {

namespace {

constexpr std::size_t kLongestLine = 160;

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

}  // namespace

TracingWebControl::TracingWebControl(IWebControl& inner, Transcript& transcript)
    : inner_(inner), transcript_(transcript) {}

TracingWebControl::~TracingWebControl() = default;

void TracingWebControl::Navigate(std::string target) {
  transcript_.Labelled(Tone::Script, "navigate", target);
  inner_.Navigate(std::move(target));
}

std::string TracingWebControl::ExecuteScript(std::string script) {
  const std::string shown = Shorten(script, kLongestLine);
  const auto begun = std::chrono::steady_clock::now();
  try {
    std::string answer = inner_.ExecuteScript(std::move(script));
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
    transcript_.LabelledLines(
        {{Tone::Script, "script", shown},
         {Tone::Script, "",
          "-> " + Shorten(Quoted(answer), kLongestLine) + "  (" + FormatMs(ms) + ")"}});
    return answer;
  } catch (const IWebControl::ScriptException& failure) {
    transcript_.LabelledLines({{Tone::Script, "script", shown},
                               {Tone::Failed, "", "-> the script failed: " + failure.message}});
    throw;
  }
}

void TracingWebControl::AddLoadObserver(IWebControl::ILoadObserver* observer) {
  inner_.AddLoadObserver(observer);
}

void TracingWebControl::RemoveLoadObserver(IWebControl::ILoadObserver* observer) {
  inner_.RemoveLoadObserver(observer);
}

std::string Shorten(const std::string& text, std::size_t limit) {
  if (text.size() <= limit) return text;
  std::size_t end = limit - 3;
  // Step back over UTF-8 continuation bytes so that no character is split.
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

}  // namespace wevlin_demo
