#pragma once
// SPDX-License-Identifier: MIT
//
// The formats that a chat log can be written in. To add one, add its function and a row to the
// table in format.cpp; programs, their help and their menus offer what is in it.

#include <QByteArray>
#include <QString>
#include <optional>
#include <span>

#include "export/attachment_paths.h"
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
    [[nodiscard]] const foundation::Calendar& calendar() const { return calendar_; }
    [[nodiscard]] const QByteArray& dateLocale() const { return dateLocale_; }
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

/// What becomes of pictures in formats that show them.
enum class Pictures {
    embed,
    folder,  ///< among the attachments
    none,
};

/// One document: what it is made of, and what its format may need to know besides.
struct DocumentSource {
    const TesselChatLog& log;
    const FormatContext& context;
    QString file;                   ///< the transcript, as documents that name it do
    QString title{};                ///< of what was made of several; others have their file's name
    AttachmentPaths attachments{};  ///< of what was written beside the document
    bool followsAnother = false;    ///< in the same stream and format
    bool hasByteOrderMark = false;  ///< in formats that may have one
    Pictures pictures = Pictures::embed;
};

struct Format {
    const char* name;       ///< as given on the command line
    const char* extension;  ///< of files, without a dot; the other name on the command line
    const char* mimeType;
    const char* description;  ///< a few words for people
    const char* separator;    ///< between two documents of one stream
    bool readsAttachments;    ///< not only their sizes and names
    bool showsPictures;       ///< so that they may be in the document
    /// Writes one document and returns the number of messages in it; what the output throws passes
    /// through.
    qint64 (*write)(const DocumentSource& source, const ByteSink& output);
};

/// All of them, the default one first.
[[nodiscard]] std::span<const Format> formats();
/// The format of this name or file extension, or null.
[[nodiscard]] const Format* findFormat(const QString& name);

}  // namespace vell
