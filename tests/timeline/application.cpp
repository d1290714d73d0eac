// SPDX-License-Identifier: MIT
//
// Fonts, palettes and widgets need an application object; it lives as long as the tests run.

#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace {

class Application : public ::testing::Environment {
  public:
    void SetUp() override {
        static int count = 1;
        static char name[] = "timeline_tests";
        static char* arguments[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(count, arguments);
    }
    void TearDown() override { application_.reset(); }

  private:
    std::unique_ptr<QApplication> application_;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new Application);

}  // namespace
