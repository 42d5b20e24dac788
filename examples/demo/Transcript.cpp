#include "Transcript.h"

#include <cstdio>

namespace wevlin_demo {

namespace {

// Width of the stamp "[ 12345 ms] " and of the label column.
constexpr std::size_t kStampWidth = 12;
constexpr std::size_t kLabelWidth = 9;

const char* ColourOf(Tone tone) {
  switch (tone) {
    case Tone::Heading:
      return "\x1b[1m";
    case Tone::State:
      return "\x1b[36m";
    case Tone::PageToHost:
      return "\x1b[1;32m";
    case Tone::HostToPage:
      return "\x1b[1;34m";
    case Tone::Host:
      return "\x1b[33m";
    case Tone::Worker:
      return "\x1b[35m";
    case Tone::Script:
      return "\x1b[2m";
    case Tone::Ok:
      return "\x1b[32m";
    case Tone::Failed:
      return "\x1b[1;31m";
    case Tone::Plain:
      break;
  }
  return "";
}

}  // namespace

Transcript::Transcript(std::ostream& out, bool colour)
    : out_(out), colour_(colour), begun_(std::chrono::steady_clock::now()) {}

void Transcript::Heading(const std::string& title) {
  std::lock_guard<std::mutex> lock(mutex_);
  out_ << '\n';
  WriteLine(Tone::Heading, "== " + title);
}

void Transcript::Stamped(Tone tone, const std::string& text) {
  // The time is taken under the lock, so that the stamps of lines that two
  // threads write never go backwards.
  std::lock_guard<std::mutex> lock(mutex_);
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "[%6.0f ms] ", ElapsedMs());
  WriteLine(tone, stamp + text);
}

void Transcript::Labelled(Tone tone, const std::string& label, const std::string& text) {
  const std::string line = LabelledText(label, text);
  std::lock_guard<std::mutex> lock(mutex_);
  WriteLine(tone, line);
}

void Transcript::LabelledLines(const std::vector<Line>& lines) {
  std::vector<std::string> texts;
  texts.reserve(lines.size());
  for (const Line& line : lines) texts.push_back(LabelledText(line.label, line.text));
  std::lock_guard<std::mutex> lock(mutex_);
  for (std::size_t i = 0; i < lines.size(); ++i) WriteLine(lines[i].tone, texts[i]);
}

void Transcript::Raw(Tone tone, const std::string& text) {
  std::lock_guard<std::mutex> lock(mutex_);
  WriteLine(tone, text);
}

double Transcript::ElapsedMs() const {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun_)
      .count();
}

bool Transcript::Colour() const { return colour_; }

void Transcript::WriteLine(Tone tone, const std::string& text) {
  const char* colour = colour_ ? ColourOf(tone) : "";
  if (*colour != '\0') {
    out_ << colour << text << "\x1b[0m\n";
  } else {
    out_ << text << '\n';
  }
  out_.flush();
}

std::string Transcript::LabelledText(const std::string& label, const std::string& text) {
  std::string line(kStampWidth, ' ');
  line += label;
  if (label.size() < kLabelWidth) line.append(kLabelWidth - label.size(), ' ');
  line += ' ';
  line += text;
  return line;
}

std::string FormatMs(double ms) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f ms", ms);
  return text;
}

}  // namespace wevlin_demo
