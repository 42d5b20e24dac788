#include "DemoOptions.h"

#include <cctype>
#include <cstdio>
#include <filesystem>

namespace wevlin_demo {

namespace {

constexpr long long kLongestTimeoutMs = 3600000;

// Returns the value of option `name` at `arguments[index]`: the text after
// "=" when the argument has one, else the next argument (and advances index).
std::string TakeValue(const std::vector<std::string>& arguments, std::size_t& index,
                      const std::string& name) {
  const std::string& argument = arguments[index];
  if (argument.size() > name.size() && argument[name.size()] == '=') {
    return argument.substr(name.size() + 1);
  }
  if (index + 1 >= arguments.size()) throw UsageError("option " + name + " needs a value");
  return arguments[++index];
}

bool Names(const std::string& argument, const std::string& name) {
  return argument == name || argument.rfind(name + "=", 0) == 0;
}

std::chrono::milliseconds ParseTimeout(const std::string& text) {
  long long value = 0;
  bool valid = !text.empty() && text.size() <= 7;
  for (const char c : text) {
    if (std::isdigit(static_cast<unsigned char>(c)) == 0) {
      valid = false;
      break;
    }
    value = value * 10 + (c - '0');
  }
  if (!valid || value < 1 || value > kLongestTimeoutMs) {
    throw UsageError("--timeout-ms takes a whole number of milliseconds from 1 to " +
                     std::to_string(kLongestTimeoutMs) + ", not \"" + text + "\"");
  }
  return std::chrono::milliseconds(value);
}

bool HasScheme(const std::string& text) { return text.find("://") != std::string::npos; }

}  // namespace

UsageError::UsageError(const std::string& message) : std::invalid_argument(message) {}

DemoOptions DemoOptions::Parse(const std::vector<std::string>& arguments) {
  DemoOptions options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      options.help = true;
    } else if (Names(argument, "--page")) {
      const std::string page = TakeValue(arguments, i, "--page");
      if (page.empty()) throw UsageError("--page needs a URL or a file path");
      options.pageUrl = HasScheme(page) ? page : FileUrl(page);
    } else if (Names(argument, "--timeout-ms")) {
      options.timeout = ParseTimeout(TakeValue(arguments, i, "--timeout-ms"));
    } else if (Names(argument, "--screenshot")) {
      options.screenshotPath = TakeValue(arguments, i, "--screenshot");
      if (options.screenshotPath.empty()) throw UsageError("--screenshot needs a file path");
    } else {
      throw UsageError("unknown option " + argument);
    }
  }
  return options;
}

std::string DemoOptions::Usage(const std::string& program) {
  return "Usage: " + program +
         " [--page URL] [--timeout-ms N] [--screenshot PATH]\n"
         "\n"
         "Hosts a page in headless Chromium through wevlin and walks through everything\n"
         "the two sides can say to each other: launch, handshake and login, every\n"
         "standard service in both directions, and one failure each way. Prints a\n"
         "transcript of each call with its payload, its answer and its time, and saves\n"
         "a screenshot of the page.\n"
         "\n"
         "Options:\n"
         "  --page URL          host another page (a URL, or a file path) instead of the\n"
         "                      bundled demo page; the page's own calls into the host are\n"
         "                      then up to the page, and the host calls only the page\n"
         "                      services that the page announces\n"
         "  --timeout-ms N      how long to wait for the page to log in, and for any one\n"
         "                      call (default 30000)\n"
         "  --screenshot PATH   where to save the PNG screenshot of the page\n"
         "                      (default " WEVLIN_DEMO_DEFAULT_SCREENSHOT
         ")\n"
         "  --help              print this text and exit\n"
         "\n"
         "Exit status: 0 when every step went as expected, 1 when a step failed, 2 for\n"
         "a bad command line, 3 when the browser cannot start. The browser is\n"
         "/usr/bin/chromium (Debian package chromium) unless WEVLIN_CHROMIUM names\n"
         "another.\n";
}

std::string DemoOptions::FileUrl(const std::string& path) {
  const std::string absolute = std::filesystem::absolute(path).lexically_normal().generic_string();
  std::string url = "file://";
  for (const char c : absolute) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
      url += c;
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
      url += escaped;
    }
  }
  return url;
}

}  // namespace wevlin_demo
