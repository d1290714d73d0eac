#pragma once
// SPDX-License-Identifier: MIT
//
// The formats that a chat log can be written in. To add one, add its function and a row to the
// table in format.cpp.

#include <QString>
#include <span>

#include "export/text_sink.h"
#include "foundation/calendar.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;

/// What formats for people need to know beside the log.
struct FormatContext {
    foundation::Calendar calendar;
    QString locale;  ///< as named by the user, or empty
    const ContactsStore& contacts;
};

struct Format {
    const char* name;       ///< as given on the command line
    const char* extension;  ///< of files, without a dot; the other name on the command line
    const char* separator;  ///< between two documents of one stream
    bool readsAttachments;  ///< and not only tells of them
    /// Writes one document; what the output throws passes through.
    void (*write)(const TesselChatLog& log, const FormatContext& context, const ByteSink& output);
};

/// All of them, the default one first.
[[nodiscard]] std::span<const Format> formats();
/// The format of this name or file extension, or null.
[[nodiscard]] const Format* findFormat(const QString& name);

}  // namespace vell
