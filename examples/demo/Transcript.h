#ifndef WEVLIN_EXAMPLES_DEMO_TRANSCRIPT_H_
#define WEVLIN_EXAMPLES_DEMO_TRANSCRIPT_H_

#include <chrono>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace wevlin_demo {

// How a line of the transcript is coloured (when colour is on).
enum class Tone {
  Plain,
  Heading,     // section titles
  State,       // content-state changes of the host control instance
  PageToHost,  // a call of the page into the host
  HostToPage,  // a call of the host into the page
  Host,        // what the host's service handlers received and did
  Worker,      // what the host's worker threads did
  Script,      // script lines the library ran in the page, and its log
  Ok,
  Failed,
};

// The demo's readable record of what happened, written to one stream as it
// happens. Lines are either stamped with the time since the transcript began
// ("[   412 ms] ...") or indented to line up under the stamped ones; a
// labelled line puts a short label in its own column.
//
// Colour (ANSI sequences) only when asked for at construction, which the
// demo does when its standard output is a terminal.
//
// Thread-safe: the service handlers' worker threads write to it while the
// application's thread does. Each call writes whole lines, and the lines of
// one call are never split by those of another thread.
class Transcript {
 public:
  // One line of a block written with LabelledLines.
  struct Line {
    Tone tone;
    std::string label;
    std::string text;
  };

  Transcript(std::ostream& out, bool colour);

  Transcript(const Transcript&) = delete;
  Transcript& operator=(const Transcript&) = delete;

  // Writes an empty line and then `title` as a section heading.
  void Heading(const std::string& title);

  // Writes `text` stamped with the time since the transcript began.
  void Stamped(Tone tone, const std::string& text);

  // Writes `text` indented under the stamped lines, behind `label` in a
  // column of its own.
  void Labelled(Tone tone, const std::string& label, const std::string& text);

  // Writes each of `lines` as Labelled does, all together: no line of
  // another thread comes between them.
  void LabelledLines(const std::vector<Line>& lines);

  // Writes `text` as it is, in `tone`, followed by a line end.
  void Raw(Tone tone, const std::string& text);

  // Returns the milliseconds since the transcript began.
  double ElapsedMs() const;

  // Returns whether colour is on.
  bool Colour() const;

 private:
  void WriteLine(Tone tone, const std::string& text);
  static std::string LabelledText(const std::string& label, const std::string& text);

  std::ostream& out_;
  const bool colour_;
  const std::chrono::steady_clock::time_point begun_;
  std::mutex mutex_;
};

// Returns `ms` written with one decimal, e.g. "12.3 ms".
std::string FormatMs(double ms);

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_TRANSCRIPT_H_
