#pragma once
// SPDX-License-Identifier: MIT
//
// The style sheet of a chat's HTML: the timeline's bubbles, colours and sender pictures.

#include <QByteArray>
#include <QHash>
#include <QString>

#include "toolkit/style.h"
#include "transcript/user_id.h"

namespace vell {

class ContactsStore;
class TesselChatLog;

/// What the page's classes name for one sender.
struct HtmlSender {
    int number = 0;  ///< in the order of appearance, from 0
    Style::Aqua color = Style::Aqua::graphite;
    QString name;
};

class HtmlStyle {
  public:
    HtmlStyle(const TesselChatLog& log, const ContactsStore& contacts);

    [[nodiscard]] const HtmlSender& sender(const SharedUserID& user) const;
    /// Plain ASCII, the same for the same senders.
    [[nodiscard]] const QByteArray& css() const { return css_; }

  private:
    QHash<SharedUserID, HtmlSender> senders_;
    QByteArray css_;

    void addPicture(const TesselUserID& user, int number, const ContactsStore& contacts);
};

}  // namespace vell
