// SPDX-License-Identifier: MIT
//
// One application object for all tests of this program: stores and sources post to its event loop.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>

namespace {

class ApplicationEnvironment : public testing::Environment {
  public:
    void SetUp() override {
        static int count = 1;
        static char name[] = "identity_tests";
        static char* arguments[] = {name, nullptr};
        application_ = std::make_unique<QCoreApplication>(count, arguments);
    }
    void TearDown() override { application_.reset(); }

  private:
    std::unique_ptr<QCoreApplication> application_;
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

}  // namespace
