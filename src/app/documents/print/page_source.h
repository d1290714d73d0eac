#pragma once
// SPDX-License-Identifier: MIT
//
// PageSource: counts a chat's pages and paints pictures of single ones, on a thread of its own.
// Only where each page begins is kept.

#include <QImage>
#include <QObject>
#include <memory>

#include "paper/paper_context.h"
#include "toolkit/callback_guard.h"
#include "transcript/chat_log.h"

namespace vell {

class PageSource final : public QObject {
    Q_OBJECT

  public:
    PageSource(std::shared_ptr<const TesselChatLog> chatlog, const PaperSetup& setup,
               QObject* parent = nullptr);
    /// Waits for nothing.
    ~PageSource() override;

    /// Asks for a page, at this many pixels a point of the paper; replaces an earlier request.
    void request(int page, qreal scale);

  Q_SIGNALS:
    /// Now and then, and once all pages are counted.
    void counted(int pages, bool isComplete);
    void painted(int page, const QImage& picture);

  private:
    struct State;
    std::shared_ptr<State> state_;
    std::shared_ptr<CallbackGuard> callbacks_;
};

}  // namespace vell
