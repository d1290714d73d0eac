// SPDX-License-Identifier: MIT
//
// A document window in the time zone that was chosen.
#include <QLabel>
#include <QStatusBar>

#include "app/desktop/settings.h"
#include "app/documents/dates/time_zones.h"
#include "app/documents/document_tools.h"
#include "app/documents/document_window.h"
#include "app/documents/find/chat_finder.h"
#include "foundation/guarded.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace vell {

// A long chat takes a moment to be marked anew; meanwhile the window shows it as it was.
void DocumentWindow::followTimeZone() {
    showTimeZone();
    if (zoneChange_) zoneChange_->close();
    zoneChange_ = std::make_shared<CallbackGuard>(this);
    if (!document_) return;
    foundation::runDetached(
        [this, document = document_, callbacks = zoneChange_, calendar = sharedCalendar()] {
            auto marked = std::make_shared<const VellDocument>(document->markedIn(calendar));
            callbacks->post([this, marked = std::move(marked)] {
                document_ = marked;
                timeline_->setChatlog(document_->sharedChatlog());
                tools_->chatChanged();
                makeFinder();
                updateTitles();
            });
        },
        [] {});
}

void DocumentWindow::showTimeZone() {
    const QString zone = services_.settings.timeZone();
    if (!zoneLabel_) {
        if (zone.isEmpty()) return;
        zoneLabel_ = new QLabel;
        zoneLabel_->setTextFormat(Qt::PlainText);
        zoneLabel_->setContentsMargins(8, 0, 8, 0);
        statusBar()->addPermanentWidget(zoneLabel_);
    }
    zoneLabel_->setText(tr("Time zone: %1").arg(cityOf(zone)));
    zoneLabel_->setToolTip(zone);
    zoneLabel_->setVisible(!zone.isEmpty());
}

}  // namespace vell
