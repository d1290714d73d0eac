// SPDX-License-Identifier: MIT
#include "foundation/data.h"

#include <gtest/gtest.h>

namespace {

using foundation::Data;

TEST(Data, SlicesKeepTheirBufferAliveAndShareIt) {
    Data part;
    const char* inside = nullptr;
    {
        const Data whole(QByteArray("0123456789"));
        inside = whole.begin() + 2;
        part = whole.slice(2, 5).slice(0, 3);
    }
    EXPECT_EQ(part.view(), QByteArrayView("234"));
    EXPECT_EQ(part.begin(), inside);
    EXPECT_EQ(part, Data(QByteArray("234")));
}

}  // namespace
