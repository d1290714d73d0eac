// SPDX-License-Identifier: MIT
#include "transcript/chat_log.h"

#include <utility>

namespace vell {

TesselChatLog::Image::Image(foundation::Picture image, foundation::Data data, QString type,
                            std::optional<QString> path)
    : fields_(std::make_shared<const Fields>(
          Fields{std::move(image), std::move(data), std::move(type), std::move(path)})) {}

TesselChatLog::TesselChatLog(TesselServiceID serviceID, TesselUserID ownUserID,
                             QSet<TesselUserID> otherUserIDs, std::vector<Event> events)
    : serviceID_(std::move(serviceID)),
      ownUserID_(std::move(ownUserID)),
      otherUserIDs_(std::move(otherUserIDs)),
      events_(std::move(events)) {}

}  // namespace vell
