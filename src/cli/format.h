#pragma once
// SPDX-License-Identifier: MIT
//
// The formats that a chat log can be written in. To add one, add its function and a row to the
// table in format.cpp.

#include <QByteArray>
#include <QString>
#include <optional>
#include <span>

#include "export/text_render_settings.h"
#include "export/text_sink.h"
#include "foundation/calendar.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;

/// What formats for people need besides the log. Serves one thread.
class FormatContext {
  public:
    /// Borrows the contacts.
    FormatContext(foundation::Calendar calendar, QByteArray dateLocale,
                  const ContactsStore& contacts);
    FormatContext(const FormatContext&) = delete;
    FormatContext& operator=(const FormatContext&) = delete;

    [[nodiscard]] const ContactsStore& contacts() const { return contacts_; }
    /// Made on first use, since formatters take milliseconds to make.
    [[nodiscard]] const TextRenderSettings& settings() const;

  private:
    foundation::Calendar calendar_;
    QByteArray dateLocale_;
    const ContactsStore& contacts_;
    mutable std::optional<DateFormatter> day_;
    mutable std::optional<DateFormatter> time_;
    mutable std::optional<TextRenderSettings> settings_;
};

struct Format {
    const char* name;       ///< as given on the command line
    const char* extension;  ///< of files, without a dot; the other name on the command line
    const char* separator;  ///< between two documents of one stream
    bool readsAttachments;  ///< not only their sizes and names
    /// Writes one document; what the output throws passes through.
    void (*write)(const TesselChatLog& log, const FormatContext& context, const ByteSink& output);
};

/// All of them, the default one first.
[[nodiscard]] std::span<const Format> formats();
/// The format of this name or file extension, or null.
[[nodiscard]] const Format* findFormat(const QString& name);

}  // namespace vell
