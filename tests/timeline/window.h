#pragma once
// SPDX-License-Identifier: MIT
//
// A timeline in a window of the offscreen platform, with mouse and keyboard.

#include <QTest>
#include <memory>

#include "timeline/fixture.h"
#include "timeline/timeline_view.h"

namespace vell::test {

/// A timeline on the screen, and where things are in it.
class Window {
  public:
    explicit Window(TesselChatLog log)
        : view(std::make_shared<const TesselChatLog>(std::move(log)), contacts_, pictures_) {
        view.resize(520, 640);
        view.show();
        view.setFocus();
        QCoreApplication::processEvents();
    }
    /// The middle of a row's character in the viewport, in points.
    QPoint place(qsizetype row, qsizetype offset) {
        TimelineLayout& timeline = view.timeline();
        const QRect here = timeline.exactCaret(row, offset);
        const QRect next = timeline.exactCaret(row, offset + 1);
        const int x = next.top() == here.top() ? (here.left() + next.left()) / 2 : here.left() + 2;
        return {timeline.rowLeft() + x, static_cast<int>(timeline.rowTop(row)) + here.center().y()};
    }
    void press(QPoint at, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers, at);
    }
    void move(QPoint to) { QTest::mouseMove(view.viewport(), to); }
    void release(QPoint at) { QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, at); }
    void drag(QPoint from, QPoint to) {
        press(from);
        move((from + to) / 2);
        move(to);
        release(to);
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&view, static_cast<Qt::Key>(key), modifiers);
    }
    QString selected() { return view.selectedText(); }

  private:
    ContactsStore contacts_;
    PictureCache pictures_;

  public:
    TimelineView view;
};

}  // namespace vell::test
