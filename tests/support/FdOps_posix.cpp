#include <unistd.h>

#include "support/FdOps.h"

namespace wevlin_test::fd {

int StdoutFd() { return STDOUT_FILENO; }
int FileFd(std::FILE* file) { return fileno(file); }
int Dup(int fd) { return dup(fd); }
int Dup2(int from, int to) { return dup2(from, to); }
int Close(int fd) { return close(fd); }

}  // namespace wevlin_test::fd
