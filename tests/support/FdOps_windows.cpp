#include <io.h>

#include "support/FdOps.h"

namespace wevlin_test::fd {

int StdoutFd() { return 1; }
int FileFd(std::FILE* file) { return _fileno(file); }
int Dup(int fd) { return _dup(fd); }
int Dup2(int from, int to) { return _dup2(from, to); }
int Close(int fd) { return _close(fd); }

}  // namespace wevlin_test::fd
