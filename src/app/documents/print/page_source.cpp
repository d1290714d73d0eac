// SPDX-License-Identifier: MIT
#include "app/documents/print/page_source.h"

#include <QElapsedTimer>
#include <QPainter>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/guarded.h"
#include "paper/page_painter.h"
#include "paper/paginator.h"
#include "paper/painter_canvas.h"

namespace vell {
namespace {

constexpr int pageReportInterval = 100;  // milliseconds

struct Request {
    int page;
    qreal scale;
};

class Pages {
  public:
    Pages(const TesselChatLog& chatlog, const PaperSetup& setup)
        : chatlog_(chatlog),
          setup_(setup),
          context_(setup),
          painter_(chatlog, context_, setup),
          paginator_(chatlog, context_, painter_.rowsSize()) {}

    [[nodiscard]] int count() const { return static_cast<int>(starts_.size()); }
    /// Finds the beginning of another page; false when there is none.
    bool countNext() {
        const PageStart start = paginator_.start();
        if (!paginator_.next()) return false;
        starts_.push_back(start);
        return true;
    }

    [[nodiscard]] QImage picture(const Request& request) {
        QImage picture((setup_.format.sheet * request.scale).toSize().expandedTo(QSize(1, 1)),
                       QImage::Format_RGB32);
        picture.fill(Qt::white);
        const PageStart start = starts_[static_cast<size_t>(request.page) - 1];
        Paginator paginator(chatlog_, context_, painter_.rowsSize(), start, request.page);
        const auto page = paginator.next();
        if (!page) return picture;
        QPainter painter(&picture);
        painter.scale(request.scale, request.scale);
        PainterCanvas canvas(painter);
        painter_.paint(canvas, *page);
        return picture;
    }

  private:
    const TesselChatLog& chatlog_;
    const PaperSetup& setup_;
    PaperContext context_;
    PagePainter painter_;
    Paginator paginator_;
    std::vector<PageStart> starts_;
};

}  // namespace

struct PageSource::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Request> request;
    bool isClosed = false;

    /// Takes the newest request; false once the source is gone. Waits for either if told so.
    bool take(std::optional<Request>& wanted, bool waits) {
        std::unique_lock lock(mutex);
        if (waits) changed.wait(lock, [this] { return isClosed || request; });
        if (request) wanted = std::exchange(request, std::nullopt);
        return !isClosed;
    }
};

PageSource::PageSource(std::shared_ptr<const TesselChatLog> chatlog, const PaperSetup& setup,
                       QObject* parent)
    : QObject(parent),
      state_(std::make_shared<State>()),
      callbacks_(std::make_shared<CallbackGuard>(this)) {
    const auto report = [this, callbacks = callbacks_](int count, bool isComplete) {
        callbacks->post([this, count, isComplete] { Q_EMIT counted(count, isComplete); });
    };
    const auto show = [this, callbacks = callbacks_](int page, const QImage& picture) {
        callbacks->post([this, page, picture] { Q_EMIT painted(page, picture); });
    };
    const auto run = [chatlog = std::move(chatlog), setup, state = state_, report, show] {
        Pages pages(*chatlog, setup);
        std::optional<Request> wanted;
        QElapsedTimer sinceReport;
        sinceReport.start();
        bool isComplete = false;
        while (state->take(wanted, isComplete)) {
            if (wanted && wanted->page <= pages.count()) {
                show(wanted->page, pages.picture(*std::exchange(wanted, std::nullopt)));
            } else if (!isComplete) {
                isComplete = !pages.countNext();
                if (!isComplete && pages.count() > 1 && sinceReport.elapsed() < pageReportInterval)
                    continue;
                sinceReport.restart();
                report(pages.count(), isComplete);
            } else {
                wanted.reset();  // there is no such page
            }
        }
    };
    foundation::runDetached(run, [report] { report(0, true); });
}

PageSource::~PageSource() {
    callbacks_->close();
    const std::lock_guard lock(state_->mutex);
    state_->isClosed = true;
    state_->changed.notify_all();
}

void PageSource::request(int page, qreal scale) {
    const std::lock_guard lock(state_->mutex);
    state_->request = Request{page, scale};
    state_->changed.notify_all();
}

}  // namespace vell
