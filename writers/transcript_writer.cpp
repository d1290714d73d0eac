// SPDX-License-Identifier: MIT
#include "writers/transcript_writer.h"

#include <QList>

#include "writers/keyed_archive_writer.h"

namespace writers {
namespace {

QString fullText(const Message& message) {
    QString text;
    for (const Piece& piece : message.body)
        text += piece.text;
    return text;
}

bool isPlain(const Piece& piece) {
    return !piece.link && !piece.attachment && !piece.inlinePath;
}

class KeyedTranscript {
  public:
    explicit KeyedTranscript(const Transcript& transcript) : transcript_(transcript) {}

    QByteArray write(const KeyedForm& form) {
        const Uid root = archive_.reserve();
        const Uid service = archive_.string(transcript_.service);
        const Uid empty = archive_.string("");
        for (const Person& person : transcript_.people)
            people_.push_back(presentity(person));
        const Uid messages = archive_.reserve();
        std::vector<Uid> elements;
        for (const Message& message : transcript_.messages)
            elements.push_back(write(message));
        archive_.setObject(messages, KeyedArchiveWriter::classes("NSMutableArray"),
                           {{"NS.objects", elements}});
        std::vector<Uid> participants;
        for (const size_t index : transcript_.participants)
            participants.push_back(people_.at(index));
        const std::vector<Uid> fields{
            service, empty, messages, archive_.array(participants), empty, archive_.direct(0),
            empty,   empty};
        archive_.setObject(root, KeyedArchiveWriter::classes("NSArray"), {{"NS.objects", fields}});
        archive_.setTop("root", root);
        return form.xml ? archive_.xml() : archive_.binary(form.widths);
    }

  private:
    Uid presentity(const Person& person) {
        KeyedArchiveWriter::Members members{{"ID", archive_.string(person.account)}};
        if (person.service) members.emplace_back("ServiceName", archive_.string(*person.service));
        return archive_.object({"Presentity", "NSObject"}, members);
    }

    Uid write(const Message& message) {
        const Uid self = archive_.reserve();
        KeyedArchiveWriter::Members members;
        if (message.sender) members.emplace_back("Sender", people_.at(*message.sender));
        if (message.date) members.emplace_back("Time", archive_.date(*message.date));
        if (message.originalText)
            members.emplace_back("OriginalMessage", archive_.string(*message.originalText));
        if (!message.body.empty()) members.emplace_back("MessageText", body(message));
        if (message.isRead) members.emplace_back("IsRead", archive_.direct(*message.isRead));
        archive_.setObject(self, {"InstantMessage", "NSObject"}, members);
        return self;
    }

    Uid body(const Message& message) {
        std::vector<KeyedArchiveWriter::Run> runs;
        for (const Piece& piece : message.body)
            runs.push_back({static_cast<quint64>(piece.text.size()), attributes(piece)});
        return archive_.attributedString(archive_.mutableString(fullText(message)), runs);
    }

    Uid attributes(const Piece& piece) {
        if (isPlain(piece)) {
            if (!plainAttributes_)
                plainAttributes_ = archive_.dictionary({{archive_.string("NSFont"), font()}});
            return *plainAttributes_;
        }
        std::vector<std::pair<Uid, Uid>> pairs{{archive_.string("NSFont"), font()}};
        if (piece.link) pairs.emplace_back(archive_.string("NSLink"), archive_.url(*piece.link));
        if (piece.attachment)
            pairs.emplace_back(archive_.string("NSAttachment"), attachment(*piece.attachment));
        if (piece.inlinePath)
            pairs.emplace_back(archive_.string("FezInlineFilePath"),
                               archive_.string(*piece.inlinePath));
        return archive_.dictionary(pairs);
    }

    Uid font() {
        if (!font_)
            font_ = archive_.object(
                KeyedArchiveWriter::classes("NSFont"),
                {{"NSName", archive_.string("Helvetica")}, {"NSSize", 12.0}, {"NSfFlags", 16}});
        return *font_;
    }

    Uid attachment(const Attachment& attachment) {
        KeyedArchiveWriter::Members members;
        if (attachment.contents)
            members.emplace_back("NS.contents", archive_.direct(*attachment.contents));
        if (attachment.fileType)
            members.emplace_back("NS.fileType", archive_.string(*attachment.fileType));
        if (attachment.file) {
            const Uid serialized = archive_.direct(serializedFileWrapper(*attachment.file));
            members.emplace_back("NSFileWrapper",
                                 archive_.object(KeyedArchiveWriter::classes("NSFileWrapper"),
                                                 {{"NSFileWrapperData", serialized}}));
        }
        return archive_.object(KeyedArchiveWriter::classes("NSTextAttachment"), members);
    }

    const Transcript& transcript_;
    KeyedArchiveWriter archive_;
    std::vector<Uid> people_;
    std::optional<Uid> plainAttributes_;
    std::optional<Uid> font_;
};

class NonKeyedTranscript {
  public:
    NonKeyedTranscript(const Transcript& transcript, NonKeyedArchiveWriter::ByteOrder order)
        : transcript_(transcript), archive_(order), people_(transcript.people.size()) {}

    QByteArray write() {
        archive_.array(8, [&] {
            archive_.string(transcript_.service);
            archive_.string("");
            archive_.array(
                static_cast<int>(transcript_.messages.size()),
                [&] {
                    for (const Message& message : transcript_.messages)
                        write(message);
                },
                "NSMutableArray");
            archive_.array(static_cast<int>(transcript_.participants.size()), [&] {
                for (const size_t index : transcript_.participants)
                    presentity(index);
            });
            archive_.number('i', 0);
            archive_.number('i', 0);
            archive_.string("");
            archive_.string("");
        });
        return archive_.bytes();
    }

  private:
    void presentity(size_t index) {
        if (people_.at(index)) return archive_.reference(*people_[index]);
        const Person& person = transcript_.people[index];
        people_[index] = archive_.object("Presentity", [&] {
            if (person.service) {
                archive_.string(*person.service);
            } else {
                archive_.nil();
            }
            archive_.string(person.account);
        });
    }

    void write(const Message& message) {
        archive_.object("InstantMessage", [&] {
            if (message.sender) {
                presentity(*message.sender);
            } else {
                archive_.nil();
            }
            if (message.date) {
                archive_.date(*message.date);
            } else {
                archive_.nil();
            }
            if (!message.body.empty()) {
                body(message);
            } else {
                archive_.nil();
            }
            archive_.group("I");
            archive_.integer(static_cast<qint32>(message.flags));
        });
    }

    void body(const Message& message) {
        std::vector<NonKeyedArchiveWriter::Run> runs;
        int plain = 0;
        int numbers = 0;
        for (const Piece& piece : message.body) {
            const auto length = static_cast<quint32>(piece.text.size());
            if (isPlain(piece) && plain) {
                runs.push_back({length, plain, {}});
                continue;
            }
            if (isPlain(piece)) plain = numbers + 1;
            runs.push_back({length, ++numbers, [this, &piece] { attributes(piece); }});
        }
        archive_.attributedString(fullText(message), runs);
    }

    void attributes(const Piece& piece) {
        if (isPlain(piece) && plainAttributes_) return archive_.reference(*plainAttributes_);
        const int count = 1 + piece.link.has_value() + piece.attachment.has_value() +
                          piece.inlinePath.has_value();
        const int self = archive_.dictionary(count, [&] {
            archive_.string("NSFont");
            font();
            if (piece.link) {
                archive_.string("NSLink");
                archive_.url(*piece.link);
            }
            if (piece.attachment) {
                archive_.string("NSAttachment");
                attachment(*piece.attachment);
            }
            if (piece.inlinePath) {
                archive_.string("FezInlineFilePath");
                archive_.string(*piece.inlinePath);
            }
        });
        if (isPlain(piece)) plainAttributes_ = self;
    }

    /// The name stands in an old property list whose words are little-endian in either order.
    void font() {
        if (font_) return archive_.reference(*font_);
        static constexpr char name[] = "\x05\0\0\0\x09\0\0\0Helvetica\0\0\0";
        constexpr int size = sizeof name - 1;
        font_ = archive_.object("NSFont", [&] {
            archive_.group("i");
            archive_.integer(size);
            archive_.group('[' + QByteArray::number(size) + "c]");
            archive_.raw(QByteArrayView(name, size));
            archive_.group("f");
            archive_.real32(12);
            for (const char flag : {0, 1, 0, 0}) {
                archive_.group("c");
                archive_.raw(QByteArrayView(&flag, 1));
            }
        });
    }

    void attachment(const Attachment& attachment) {
        archive_.object("NSTextAttachment", [&] {
            if (attachment.file) {
                archive_.object("NSFileWrapper",
                                [&] { archive_.data(serializedFileWrapper(*attachment.file)); });
            } else if (attachment.contents) {
                archive_.data(*attachment.contents);
            } else {
                archive_.nil();
            }
            archive_.nil();  // the cell that draws it
        });
    }

    const Transcript& transcript_;
    NonKeyedArchiveWriter archive_;
    std::vector<std::optional<int>> people_;
    std::optional<int> plainAttributes_;
    std::optional<int> font_;
};

}  // namespace

Piece words(const QString& text) {
    return {.text = text};
}

Piece linked(const QString& text, const QString& url) {
    return {.text = text, .link = url};
}

Piece attached(const QString& fileName, const QByteArray& contents) {
    return {.text = QString(QChar(0xfffc)),
            .attachment = Attachment{.file = FileDraft{.name = fileName, .contents = contents}}};
}

QByteArray keyedTranscript(const Transcript& transcript, const KeyedForm& form) {
    return KeyedTranscript(transcript).write(form);
}

QByteArray nonKeyedTranscript(const Transcript& transcript,
                              NonKeyedArchiveWriter::ByteOrder order) {
    return NonKeyedTranscript(transcript, order).write();
}

}  // namespace writers
