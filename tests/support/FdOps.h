#ifndef WEVLIN_TESTS_SUPPORT_FDOPS_H_
#define WEVLIN_TESTS_SUPPORT_FDOPS_H_

#include <cstdio>

namespace wevlin_test::fd {

// Thin, platform-neutral wrappers over the C runtime's descriptor calls; one
// implementation file per platform.
int StdoutFd();
int FileFd(std::FILE* file);
int Dup(int fd);
int Dup2(int from, int to);
int Close(int fd);

}  // namespace wevlin_test::fd

#endif  // WEVLIN_TESTS_SUPPORT_FDOPS_H_
