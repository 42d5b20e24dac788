#ifndef WEVLIN_TESTING_INTERNAL_SCRIPTLINEREADER_H_
#define WEVLIN_TESTING_INTERNAL_SCRIPTLINEREADER_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/ScriptQuoting.h"

namespace Com::Velmora::TAVO::Wevlin::Testing::internal {

// Reads the one-line calls that a HostControlInstance runs in its page,
// name('arg',...); and undoes the quoting of each argument. Stateless; any
// thread may call it.
class ScriptLineReader {
 public:
  // Reads `script` into `function` and `args` (both replaced). Returns false
  // when the line is not name('a',...); or when an argument is not quoted as
  // `quoting` writes it; `function` and `args` are then unspecified.
  static bool Read(const std::string& script, Infrastructure::Interop::ScriptQuoting quoting,
                   std::string& function, std::vector<std::string>& args);
};

}  // namespace Com::Velmora::TAVO::Wevlin::Testing::internal

#endif  // WEVLIN_TESTING_INTERNAL_SCRIPTLINEREADER_H_
