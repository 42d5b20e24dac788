#ifndef WEVLIN_TESTS_SUPPORT_TALKINGPAGEFIXTURE_H_
#define WEVLIN_TESTS_SUPPORT_TALKINGPAGEFIXTURE_H_

#include "support/HostedPageFixture.h"

namespace wevlin_test {

// A HostedPageFixture whose instance has already finished the handshake when
// each test starts: SetUp runs Talk(), so the instance is in "LoadedCanTalk"
// and the page's records are empty. A failed handshake fails the set-up, and
// the test body is then not run.
//
// Ownership and threading are those of HostedPageFixture.
class TalkingPageFixture : public HostedPageFixture {
 protected:
  void SetUp() override {
    HostedPageFixture::SetUp();
    Talk();
  }
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_TALKINGPAGEFIXTURE_H_
