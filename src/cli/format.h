#pragma once
// SPDX-License-Identifier: MIT
//
// The formats that a chat log can be written in. To add one, add its function and a row to the
// table in format.cpp.

#include <QIODevice>
#include <QString>
#include <span>

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
    const char* name;           ///< as given on the command line
    const char* fileExtension;  ///< without a dot
    /// Writes one document; errors stay with the device.
    void (*write)(const TesselChatLog& log, const FormatContext& context, QIODevice& output);
};

/// All of them, the default one first.
[[nodiscard]] std::span<const Format> formats();
/// The format of this name, or null.
[[nodiscard]] const Format* findFormat(const QString& name);

}  // namespace vell
