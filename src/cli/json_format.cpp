// SPDX-License-Identifier: MIT
#include "cli/json_format.h"

#include <QCryptographicHash>
#include <unordered_map>

#include "cli/json_writer.h"
#include "cli/sink.h"

namespace vell {
namespace {

constexpr qint64 kSchema = 1;
constexpr qsizetype kFlushSize = 1 << 16;

class JsonFormat {
  public:
    explicit JsonFormat(Sink& sink) : sink_(sink) {}
    void write(const TesselChatLog& log);

    // Each writes the kind and the members that belong to it.
    void operator()(const TesselChatLog::PlainText& value);
    void operator()(const TesselChatLog::Image& value);
    void operator()(const TesselChatLog::File& value);
    void operator()(const TesselChatLog::Link& value);
    void operator()(const TesselChatLog::NewDay&) { stringMember("kind", u"newDay"); }
    void operator()(const TesselChatLog::NewMinute&) { stringMember("kind", u"newMinute"); }
    void operator()(const TesselChatLog::User&) { stringMember("kind", u"user"); }

  private:
    Sink& sink_;
    JsonWriter writer_;
    // By where the bytes begin: one picture may stand in a log a thousand times.
    std::unordered_map<const char*, std::pair<qsizetype, QString>> hashes_;

    void stringMember(const char* key, QStringView text);
    void optionalMember(const char* key, const std::optional<QString>& text);
    void numberMember(const char* key, qint64 value);
    void contentMembers(const foundation::Data* data);
    void user(const TesselUserID& user);
    void event(const TesselChatLog::Event& event);
    const QString& sha256(const foundation::Data& data);
};

void JsonFormat::write(const TesselChatLog& log) {
    writer_.beginObject();
    numberMember("schema", kSchema);
    stringMember("serviceID", log.serviceID().rawValue);
    writer_.key("ownUserID");
    user(log.ownUserID());
    writer_.key("otherUserIDs");
    writer_.beginArray();
    for (const TesselUserID& other : sorted(log.otherUserIDs()))
        user(other);
    writer_.endArray();
    writer_.key("events");
    writer_.beginArray();
    for (const TesselChatLog::Event& each : log.events()) {
        writer_.breakLine();
        event(each);
        if (writer_.size() >= kFlushSize) sink_.write(writer_.take());
    }
    writer_.breakLine();
    writer_.endArray();
    writer_.endObject();
    sink_.write(writer_.take() + '\n');
}

void JsonFormat::event(const TesselChatLog::Event& event) {
    writer_.beginObject();
    numberMember("sequence", event.sequence);
    optionalMember("timestamp", event.timestamp.iso8601());
    writer_.key("secondsSinceReferenceDate");
    writer_.number(event.timestamp.secondsSinceReferenceDate);
    writer_.key("sender");
    if (event.sender)
        user(*event.sender);
    else
        writer_.null();
    std::visit(*this, event.value);
    writer_.endObject();
}

void JsonFormat::operator()(const TesselChatLog::PlainText& value) {
    stringMember("kind", u"plainText");
    stringMember("text", value.text);
}

void JsonFormat::operator()(const TesselChatLog::Image& value) {
    stringMember("kind", u"image");
    stringMember("type", value.type());
    optionalMember("path", value.path());
    contentMembers(&value.data());
    const std::optional<QSize>& size = value.image().pixelSize;
    writer_.key("pixelWidth");
    size ? writer_.number(qint64(size->width())) : writer_.null();
    writer_.key("pixelHeight");
    size ? writer_.number(qint64(size->height())) : writer_.null();
}

void JsonFormat::operator()(const TesselChatLog::File& value) {
    const foundation::FileWrapper& wrapper = *value.wrapper;
    stringMember("kind", u"file");
    optionalMember("fileName", wrapper.filename ? wrapper.filename : wrapper.preferredFilename);
    writer_.key("isDirectory");
    writer_.boolean(wrapper.isDirectory());
    contentMembers(wrapper.isRegularFile() && wrapper.contents ? &*wrapper.contents : nullptr);
}

void JsonFormat::operator()(const TesselChatLog::Link& value) {
    stringMember("kind", u"link");
    stringMember("url", value.url->absoluteString());
    stringMember("title", value.title);
}

void JsonFormat::stringMember(const char* key, QStringView text) {
    writer_.key(key);
    writer_.string(text);
}

void JsonFormat::optionalMember(const char* key, const std::optional<QString>& text) {
    writer_.key(key);
    text ? writer_.string(*text) : writer_.null();
}

void JsonFormat::numberMember(const char* key, qint64 value) {
    writer_.key(key);
    writer_.number(value);
}

void JsonFormat::contentMembers(const foundation::Data* data) {
    writer_.key("byteCount");
    data ? writer_.number(qint64(data->size())) : writer_.null();
    writer_.key("sha256");
    data ? writer_.string(sha256(*data)) : writer_.null();
}

void JsonFormat::user(const TesselUserID& user) {
    writer_.beginObject();
    stringMember("serviceID", user.serviceID.rawValue);
    stringMember("userID", user.userID);
    writer_.endObject();
}

const QString& JsonFormat::sha256(const foundation::Data& data) {
    auto& known = hashes_[data.begin()];
    if (known.second.isEmpty() || known.first != data.size()) {
        const QByteArray hash =
            QCryptographicHash::hash(data.view(), QCryptographicHash::Sha256).toHex();
        known = {data.size(), QString::fromLatin1(hash)};
    }
    return known.second;
}

}  // namespace

void writeJson(const TesselChatLog& log, const FormatContext&, Sink& sink) {
    JsonFormat(sink).write(log);
}

}  // namespace vell
