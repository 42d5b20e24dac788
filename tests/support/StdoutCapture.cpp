#include "support/StdoutCapture.h"

#include <gtest/gtest.h>

#include <iostream>
#include <stdexcept>

#include "support/FdOps.h"

namespace wevlin_test {
namespace {

void FlushAll() {
  std::cout.flush();
  std::fflush(stdout);
}

}  // namespace

StdoutCapture::StdoutCapture() : file_(std::tmpfile()), savedFd_(-1) {
  if (file_ == nullptr) throw std::runtime_error("StdoutCapture: tmpfile failed");
  FlushAll();
  savedFd_ = fd::Dup(fd::StdoutFd());
  if (savedFd_ < 0 || fd::Dup2(fd::FileFd(file_), fd::StdoutFd()) < 0) {
    std::fclose(file_);
    throw std::runtime_error("StdoutCapture: cannot redirect standard output");
  }
}

StdoutCapture::~StdoutCapture() {
  // GoogleTest reports a failed assertion on standard output, which this
  // capture swallowed; hand the captured text to standard error so that the
  // failure is not lost.
  const bool failed = ::testing::Test::HasFailure();
  std::string captured = failed ? Text() : std::string();
  FlushAll();
  fd::Dup2(savedFd_, fd::StdoutFd());
  fd::Close(savedFd_);
  std::fclose(file_);
  if (failed) std::cerr << "[captured standard output]\n" << captured << std::flush;
}

std::string StdoutCapture::Text() {
  FlushAll();
  std::string text;
  std::fflush(file_);
  std::rewind(file_);
  char buffer[4096];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, file_)) > 0) text.append(buffer, n);
  std::fseek(file_, 0, SEEK_END);
  return text;
}

}  // namespace wevlin_test
