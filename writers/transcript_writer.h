#pragma once
// SPDX-License-Identifier: MIT
//
// Writes whole transcripts in both archive forms from one description, the way the messenger would
// have archived them. For graphs that it never wrote use the archive writers below this one.
//
//     Transcript transcript{.service = "AIM", .people = {{"ann"}, {"bob"}}, .participants = {1}};
//     transcript.messages.push_back({.sender = 0, .date = 1000, .body = {words("Hello")}});
//     const QByteArray bytes = keyedTranscript(transcript);

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "writers/file_wrapper_writer.h"
#include "writers/non_keyed_archive_writer.h"
#include "writers/property_list_writer.h"

namespace writers {

struct Person {
    QString account = {};
    std::optional<QString> service = {};
};

/// A text attachment: a file wrapper, or contents with a type, or both or neither of them. In the
/// non-keyed form contents are written as bare data and the type is left out.
struct Attachment {
    std::optional<FileDraft> file = {};
    std::optional<QByteArray> contents = {};
    std::optional<QString> fileType = {};
};

/// A stretch of a body with attributes of its own.
struct Piece {
    QString text = {};
    std::optional<QString> link = {};
    std::optional<Attachment> attachment = {};
    /// The attribute "FezInlineFilePath".
    std::optional<QString> inlinePath = {};
};

[[nodiscard]] Piece words(const QString& text);
[[nodiscard]] Piece linked(const QString& text, const QString& url);
/// The attachment character, with a regular file of this name.
[[nodiscard]] Piece attached(const QString& fileName, const QByteArray& contents);

struct Message {
    /// An index into the people; none: a system message.
    std::optional<size_t> sender = {};
    /// Seconds since 2001-01-01 UTC.
    std::optional<double> date = {};
    /// The attributed text, archived unless it has no pieces.
    std::vector<Piece> body = {};
    /// Keyed form only.
    std::optional<QString> originalText = {};
    /// Keyed form only.
    std::optional<bool> isRead = {};
    /// Non-keyed form only.
    quint32 flags = 0;
};

struct Transcript {
    QString service = {};
    std::vector<Person> people = {};
    /// Indices into the people.
    std::vector<size_t> participants = {};
    std::vector<Message> messages = {};
};

struct KeyedForm {
    Widths widths = {};
    bool xml = false;
};
[[nodiscard]] QByteArray keyedTranscript(const Transcript& transcript, const KeyedForm& form = {});

[[nodiscard]] QByteArray nonKeyedTranscript(
    const Transcript& transcript,
    NonKeyedArchiveWriter::ByteOrder order = NonKeyedArchiveWriter::ByteOrder::little);

}  // namespace writers
