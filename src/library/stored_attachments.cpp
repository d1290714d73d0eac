// SPDX-License-Identifier: MIT
#include "library/stored_attachments.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "foundation/picture_details.h"

namespace vell {
namespace {

using foundation::FileWrapper;
using foundation::StoredData;

bool hasAttachment(const TesselChatLog::Event& event) {
    return std::holds_alternative<TesselChatLog::Image>(event.value) ||
           std::holds_alternative<TesselChatLog::File>(event.value);
}

class Storing {
  public:
    Storing(const foundation::Data& bytes, std::shared_ptr<const foundation::FileState> file)
        : bytes_(bytes), file_(std::move(file)) {}

    [[nodiscard]] TesselChatLog::Image stored(const TesselChatLog::Image& image) {
        foundation::Picture picture = image.image();
        picture.traits = foundation::traitsOf(picture);
        picture.data = stored(picture.data);
        return {std::move(picture), stored(image.data()), image.type(), image.path()};
    }

    [[nodiscard]] std::shared_ptr<const FileWrapper> stored(const FileWrapper& wrapper) {
        auto copy = std::make_shared<FileWrapper>(wrapper);
        if (copy->contents) copy->contents = stored(*copy->contents);
        for (auto& child : copy->children)
            child = stored(*child);
        return copy;
    }

  private:
    const foundation::Data& bytes_;
    const std::shared_ptr<const foundation::FileState> file_;
    std::map<std::pair<const char*, qsizetype>, StoredData> known_;  // one for equal slices

    [[nodiscard]] StoredData stored(const StoredData& data) {
        const char* begin = data.identity();
        const std::less_equal<> isNotAfter;
        if (!isNotAfter(bytes_.begin(), begin) || !isNotAfter(begin + data.size(), bytes_.end()))
            return data;
        const auto [known, isNew] = known_.try_emplace({begin, data.size()});
        if (isNew) known->second = StoredData(file_, begin - bytes_.begin(), data.size());
        return known->second;
    }
};

}  // namespace

TesselChatLog withStoredAttachments(TesselChatLog log, const foundation::Data& bytes,
                                    const std::shared_ptr<const foundation::FileState>& file) {
    if (std::none_of(log.events().begin(), log.events().end(), hasAttachment)) return log;
    Storing storing(bytes, file);
    std::vector<TesselChatLog::Event> events = log.events();
    std::vector<bool> continuations;
    for (std::size_t i = 0; i < events.size(); ++i) {
        continuations.push_back(log.continuesMessage(i));
        auto& value = events[i].value;
        if (auto* image = std::get_if<TesselChatLog::Image>(&value))
            *image = storing.stored(*image);
        if (auto* attached = std::get_if<TesselChatLog::File>(&value))
            attached->wrapper = storing.stored(*attached->wrapper);
    }
    return log.withEvents(std::move(events), std::move(continuations));
}

}  // namespace vell
