// SPDX-License-Identifier: MIT
#include "app/windows/sample_chat.h"

#include <QCoreApplication>
#include <utility>

#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr qint64 fontSize = 14;  // points

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SampleChat)
};

TesselUserID user(const char* name) {
    return {TesselServiceID::aim, QString::fromLatin1(name)};
}

std::shared_ptr<const TesselChatLog> chat() {
    const SharedUserID ada(user("Ada"));
    const SharedUserID grace(user("Grace"));
    const std::pair<SharedUserID, QString> lines[] = {
        {grace, Texts::tr("Do you still have our old chats?")},
        {ada, Texts::tr("Every single one.")},
        {ada, Texts::tr("With the pictures!")},
        {grace, Texts::tr("Then open one 😀")},
    };
    std::vector<TesselChatLog::Event> events;
    const auto append = [&events](const SharedUserID& sender, TesselChatLog::Event::Value value) {
        events.push_back({static_cast<qint64>(events.size()) + 1, {}, sender, std::move(value)});
    };
    SharedUserID previous;
    for (const auto& [sender, text] : lines) {
        if (previous && previous != sender) append(previous, TesselChatLog::User());
        append(sender, TesselChatLog::PlainText{text});
        previous = sender;
    }
    append(previous, TesselChatLog::User());
    return std::make_shared<const TesselChatLog>(TesselServiceID::aim, *ada,
                                                 QSet<TesselUserID>{*grace}, std::move(events));
}

}  // namespace

QWidget* sampleChat(ContactsStore& contacts, PictureCache& pictures) {
    auto* view = new TimelineView(chat(), contacts, pictures);
    view->setFontSize(fontSize);
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setFocusPolicy(Qt::NoFocus);
    view->setAttribute(Qt::WA_TransparentForMouseEvents);
    view->setAccessibleName(Texts::tr("A conversation, as an example"));
    return view;
}

}  // namespace vell
