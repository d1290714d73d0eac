// SPDX-License-Identifier: MIT
#include "export/json.h"

#include <QCryptographicHash>
#include <map>
#include <utility>

#include "export/json_writer.h"
#include "export/message.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

constexpr qint64 schemaVersion = 1;

class JsonRenderer {
  public:
    JsonRenderer(const TesselChatLog& log, const ByteSink& output,
                 const AttachmentPaths& attachments)
        : log_(log), attachments_(attachments), writer_(output) {}
    qint64 write();
    qint64 writeLines(const QString& file);

    // Each writes the kind and its members.
    void operator()(const TesselChatLog::PlainText& value);
    void operator()(const TesselChatLog::Image& value);
    void operator()(const TesselChatLog::File& value);
    void operator()(const TesselChatLog::Link& value);
    void operator()(const TesselChatLog::Session& value);
    void operator()(const TesselChatLog::NewDay&) { kind("newDay"); }
    void operator()(const TesselChatLog::NewMinute&) { kind("newMinute"); }
    void operator()(const TesselChatLog::User&) { kind("user"); }

  private:
    const TesselChatLog& log_;
    const AttachmentPaths& attachments_;
    JsonWriter writer_;
    qint64 messages_ = 0;
    qint64 sequence_ = 0;  // of the event at hand
    // By where the bytes are: one picture may occur in a log a thousand times.
    std::map<std::pair<const char*, qsizetype>, QString> hashes_;
    // What neighbouring events share, as it is written.
    foundation::Date time_;
    JsonWriter timeMembers_;
    const TesselUserID* sender_ = nullptr;
    JsonWriter senderMember_;

    template <std::size_t size>
    void kind(const char (&name)[size]);
    template <std::size_t size>
    void stringMember(const char (&key)[size], QStringView text);
    template <std::size_t size>
    void optionalMember(const char (&key)[size], const std::optional<QString>& text);
    void contentMembers(const foundation::StoredData* data);
    void attachmentMember();
    void event(std::size_t index);
    void timeMembers(foundation::Date time);
    void senderMember(const SharedUserID& sender);
    /// Empty for what can't be read any more.
    const QString& sha256(const foundation::StoredData& data);
};

void writeUser(JsonWriter& writer, const TesselUserID& user) {
    writer.beginObject();
    writer.key("serviceID");
    writer.string(user.serviceID.rawValue);
    writer.key("userID");
    writer.string(user.userID);
    writer.endObject();
}

void writeUsers(JsonWriter& writer, const QSet<TesselUserID>& users) {
    writer.beginArray();
    for (const TesselUserID& user : sorted(users))
        writeUser(writer, user);
    writer.endArray();
}

qint64 JsonRenderer::write() {
    writer_.beginObject();
    writer_.key("schema");
    writer_.number(schemaVersion);
    stringMember("serviceID", log_.serviceID().rawValue);
    writer_.key("ownUserID");
    writeUser(writer_, log_.ownUserID());
    if (!log_.furtherOwnUserIDs().isEmpty()) {
        writer_.key("furtherOwnUserIDs");
        writeUsers(writer_, log_.furtherOwnUserIDs());
    }
    writer_.key("otherUserIDs");
    writeUsers(writer_, log_.otherUserIDs());
    writer_.key("events");
    writer_.beginArray();
    for (std::size_t i = 0; i < log_.events().size(); ++i) {
        writer_.breakLine();
        writer_.beginObject();
        event(i);
        writer_.endObject();
    }
    writer_.breakLine();
    writer_.endArray();
    writer_.endObject();
    writer_.endLine();
    writer_.flush();
    return messages_;
}

qint64 JsonRenderer::writeLines(const QString& file) {
    JsonWriter member;
    member.key("file");
    member.string(file);
    const QByteArray fileMember = member.take();
    for (std::size_t i = 0; i < log_.events().size(); ++i) {
        writer_.beginObject();
        writer_.written(fileMember);
        event(i);
        writer_.endObject();
        writer_.endLine();
    }
    writer_.flush();
    return messages_;
}

void JsonRenderer::event(std::size_t index) {
    const Event& event = log_.events()[index];
    sequence_ = event.sequence;
    writer_.key("sequence");
    writer_.number(event.sequence);
    timeMembers(event.timestamp);
    senderMember(event.sender);
    std::visit(*this, event.value);
    if (beginsMessage(log_, index)) ++messages_;
}

void JsonRenderer::timeMembers(foundation::Date time) {
    if (timeMembers_.view().isEmpty() || time_ != time) {
        timeMembers_.clear();
        timeMembers_.key("timestamp");
        const auto text = time.iso8601();
        text ? timeMembers_.string(*text) : timeMembers_.null();
        timeMembers_.key("secondsSinceReferenceDate");
        timeMembers_.number(time.secondsSinceReferenceDate);
        time_ = time;
    }
    writer_.written(timeMembers_.view());
}

void JsonRenderer::senderMember(const SharedUserID& sender) {
    if (!sender) {
        writer_.key("sender");
        writer_.null();
        return;
    }
    if (&*sender != sender_) {
        senderMember_.clear();
        senderMember_.key("sender");
        writeUser(senderMember_, *sender);
        sender_ = &*sender;
    }
    writer_.written(senderMember_.view());
}

void JsonRenderer::operator()(const TesselChatLog::PlainText& value) {
    kind("plainText");
    stringMember("text", value.text);
}

void JsonRenderer::operator()(const TesselChatLog::Image& value) {
    kind("image");
    stringMember("type", value.type());
    optionalMember("path", value.path());
    contentMembers(&value.data());
    const std::optional<QSize>& size = value.image().pixelSize;
    writer_.key("pixelWidth");
    size ? writer_.number(qint64(size->width())) : writer_.null();
    writer_.key("pixelHeight");
    size ? writer_.number(qint64(size->height())) : writer_.null();
    attachmentMember();
}

void JsonRenderer::operator()(const TesselChatLog::File& value) {
    const foundation::FileWrapper& wrapper = *value.wrapper;
    kind("file");
    optionalMember("fileName", wrapper.filename ? wrapper.filename : wrapper.preferredFilename);
    writer_.key("isDirectory");
    writer_.boolean(wrapper.isDirectory());
    contentMembers(wrapper.isRegularFile() && wrapper.contents ? &*wrapper.contents : nullptr);
    attachmentMember();
}

void JsonRenderer::operator()(const TesselChatLog::Link& value) {
    kind("link");
    stringMember("url", value.url->absoluteString());
    stringMember("title", value.title);
}

void JsonRenderer::operator()(const TesselChatLog::Session& value) {
    kind("session");
    stringMember("fileName", value.name());
}

template <std::size_t size>
void JsonRenderer::kind(const char (&name)[size]) {
    writer_.key("kind");
    writer_.ascii({name, static_cast<qsizetype>(size) - 1});
}

template <std::size_t size>
void JsonRenderer::stringMember(const char (&key)[size], QStringView text) {
    writer_.key(key);
    writer_.string(text);
}

template <std::size_t size>
void JsonRenderer::optionalMember(const char (&key)[size], const std::optional<QString>& text) {
    writer_.key(key);
    text ? writer_.string(*text) : writer_.null();
}

void JsonRenderer::contentMembers(const foundation::StoredData* data) {
    writer_.key("byteCount");
    data ? writer_.number(qint64(data->size())) : writer_.null();
    writer_.key("sha256");
    const QString hash = data ? sha256(*data) : QString();
    hash.isEmpty() ? writer_.null() : writer_.string(hash);
}

/// Only of what was written out, so that documents without are what they always were.
void JsonRenderer::attachmentMember() {
    if (const auto path = attachments_.constFind(sequence_); path != attachments_.cend())
        stringMember("attachment", *path);
}

const QString& JsonRenderer::sha256(const foundation::StoredData& data) {
    QString& known = hashes_[{data.identity(), data.size()}];
    const auto bytes = known.isEmpty() ? data.load() : std::nullopt;
    if (bytes) {
        known = QString::fromLatin1(
            QCryptographicHash::hash(bytes->view(), QCryptographicHash::Sha256).toHex());
    }
    return known;
}

}  // namespace

qint64 writeJson(const TesselChatLog& log, const ByteSink& output,
                 const AttachmentPaths& attachments) {
    return JsonRenderer(log, output, attachments).write();
}

qint64 writeJsonLines(const TesselChatLog& log, const QString& file, const ByteSink& output,
                      const AttachmentPaths& attachments) {
    return JsonRenderer(log, output, attachments).writeLines(file);
}

}  // namespace vell
