// SPDX-License-Identifier: MIT
#include "app/documents/viewer/zoomed_picture.h"

#include <gtest/gtest.h>

namespace vell {
namespace {

TEST(ZoomedPicture, StaysAtTheAnchorAndInTheRoom) {
    const QRectF room(10, 60, 400, 300);
    ZoomedPicture picture;
    picture.setSizes(QSizeF(800, 400), room);
    EXPECT_EQ(picture.rect(), QRectF(10, 110, 400, 200));

    const QPointF anchor(110, 160);  // a quarter from both edges
    picture.zoom(4, anchor);
    EXPECT_EQ(picture.rect(), QRectF(-290, -40, 1600, 800));
    picture.moveBy(QPointF(10000, -10000));
    EXPECT_EQ(picture.rect(), QRectF(10, -440, 1600, 800)) << "an edge leaves the room";
    picture.setSizes(QSizeF(800, 400), QRectF(0, 0, 4000, 3000));
    EXPECT_EQ(picture.rect().center(), QPointF(2000, 1500)) << "nothing left to move";
    picture.zoom(0, anchor);
    EXPECT_TRUE(picture.isFitted());
    EXPECT_EQ(picture.scale(), 1) << "small pictures aren't enlarged to fit";
}

}  // namespace
}  // namespace vell
