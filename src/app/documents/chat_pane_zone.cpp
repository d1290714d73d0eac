// SPDX-License-Identifier: MIT
//
// The pane of a chat in the time zone that was chosen.
#include <QBoxLayout>

#include "app/documents/archive/archive_tool.h"
#include "app/documents/chat_pane.h"
#include "app/documents/chat_tools.h"
#include "app/documents/find/chat_finder.h"
#include "foundation/guarded.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"

namespace vell {

// A long chat takes a moment to be marked anew; meanwhile it is shown as it was.
void ChatPane::followTimeZone() {
    if (zoneChange_) zoneChange_->close();
    zoneChange_ = std::make_shared<CallbackGuard>(this);
    if (!paths_.empty()) return readSessions();
    if (!timeline_) return;
    foundation::runDetached(
        [this, log = chat_.log, callbacks = zoneChange_,
         calendar = sharedCalendar().withoutCache()] {
            auto marked = std::make_shared<const TesselChatLog>(log->markedIn(calendar));
            auto expansion = std::make_shared<const ExpansionBound>(*marked);
            callbacks->post([this, log, marked, expansion] {
                if (chat_.log != log) return;
                chat_.log = marked;
                chat_.expansion = expansion;
                timeline_->setChatlog(chat_.log);
                tools_->chatChanged();
                archive_->chatChanged();
                finder_ = std::make_unique<ChatFinder>(*this, *layout_, *timeline_, history_);
                Q_EMIT changed();
            });
        },
        [] {});
}

}  // namespace vell
