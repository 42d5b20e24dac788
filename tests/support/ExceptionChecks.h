#ifndef WEVLIN_TESTS_SUPPORT_EXCEPTIONCHECKS_H_
#define WEVLIN_TESTS_SUPPORT_EXCEPTIONCHECKS_H_

#include <exception>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

#include <gtest/gtest.h>

// Checks of what a call throws, for tests that must tell exception types
// apart exactly (a class derived from the expected one does not count) and
// compare what() byte for byte. Header-only; usable from any thread.
namespace wevlin_test {

// Runs `call` and succeeds when it throws an exception whose dynamic type is
// exactly E and whose what() is `what`. Otherwise the failure says what
// happened instead. Use it inside an assertion, so that a failure names the
// caller's line:
//   EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { Parse("x"); }, "bad"));
// E must be a class with a what() member; it need not be a standard one.
template <typename E, typename Call>
::testing::AssertionResult ThrowsExactly(Call&& call, const std::string& what) {
  const std::string expected = std::string(typeid(E).name()) + " \"" + what + "\"";
  try {
    std::forward<Call>(call)();
  } catch (const E& e) {
    if (typeid(e) != typeid(E)) {
      return ::testing::AssertionFailure() << "threw " << typeid(e).name() << " \"" << e.what()
                                           << "\", a class derived from " << expected;
    }
    if (what != e.what()) {
      return ::testing::AssertionFailure()
             << "threw " << typeid(E).name() << " \"" << e.what() << "\"; expected " << expected;
    }
    return ::testing::AssertionSuccess();
  } catch (const std::exception& e) {
    return ::testing::AssertionFailure()
           << "threw " << typeid(e).name() << " \"" << e.what() << "\"; expected " << expected;
  } catch (...) {
    return ::testing::AssertionFailure() << "threw something else; expected " << expected;
  }
  return ::testing::AssertionFailure() << "threw nothing; expected " << expected;
}

// Runs `call` and returns what it threw as a short text: "logic_error: <what>"
// or "runtime_error: <what>" for exactly those standard types, "other: <what>"
// for a class derived from either, "unknown" for anything else, and "none"
// when it returned normally. Lets a test compare a whole outcome in one
// EXPECT_EQ, e.g. EXPECT_EQ(Thrown([&] { v.GetInt(); }), "none").
template <typename Call>
std::string Thrown(Call&& call) {
  try {
    std::forward<Call>(call)();
  } catch (const std::logic_error& e) {
    if (typeid(e) != typeid(std::logic_error)) return std::string("other: ") + e.what();
    return std::string("logic_error: ") + e.what();
  } catch (const std::runtime_error& e) {
    if (typeid(e) != typeid(std::runtime_error)) return std::string("other: ") + e.what();
    return std::string("runtime_error: ") + e.what();
  } catch (...) {
    return "unknown";
  }
  return "none";
}

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_EXCEPTIONCHECKS_H_
