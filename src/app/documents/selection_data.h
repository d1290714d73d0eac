#pragma once
// SPDX-License-Identifier: MIT
//
// SelectionData: what is selected in a chat, on a clipboard or on its way in a drag. A part of one
// message is its text; several say who spoke and when, as plain text, Markdown and HTML. Each is
// made when a program asks for it. GUI thread only.

#include <QMimeData>
#include <memory>

#include "app/documents/shown_chat.h"
#include "timeline/text/text_range.h"

namespace vell {

class ContactsStore;

class SelectionData final : public QMimeData {
    Q_OBJECT

  public:
    /// The store lives until the program's end.
    SelectionData(ShownChat chat, const ContactsStore& contacts, const TextSpan& span);

    /// Whether it is far larger than the chat's file; it has no formats then.
    [[nodiscard]] bool isOutOfProportion() const;

    /// Whether it is text of one message, or one separator.
    [[nodiscard]] bool isOneMessage() const { return isOneMessage_; }
    /// How many messages, or of one message characters, are selected.
    [[nodiscard]] qsizetype count() const;

    [[nodiscard]] QStringList formats() const override;
    [[nodiscard]] bool hasFormat(const QString& format) const override;

  protected:
    [[nodiscard]] QVariant retrieveData(const QString& format, QMetaType type) const override;

  private:
    void makeAll();
    [[nodiscard]] TesselChatLog selectedLog() const;

    ShownChat chat_;  // without a log once all has been made
    const ContactsStore& contacts_;
    TextSpan span_;
    bool isOneMessage_;
};

}  // namespace vell
