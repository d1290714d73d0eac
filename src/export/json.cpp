// SPDX-License-Identifier: MIT
#include "export/json.h"

#include <QCryptographicHash>
#include <map>
#include <utility>

#include "export/json_writer.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

constexpr qint64 schemaVersion = 1;
constexpr qsizetype pieceSize = 1 << 16;

class JsonRenderer {
  public:
    explicit JsonRenderer(const ByteSink& output) : output_(output) {}
    void write(const TesselChatLog& log);

    // Each writes the kind and its members.
    void operator()(const TesselChatLog::PlainText& value);
    void operator()(const TesselChatLog::Image& value);
    void operator()(const TesselChatLog::File& value);
    void operator()(const TesselChatLog::Link& value);
    void operator()(const TesselChatLog::NewDay&) { stringMember("kind", u"newDay"); }
    void operator()(const TesselChatLog::NewMinute&) { stringMember("kind", u"newMinute"); }
    void operator()(const TesselChatLog::User&) { stringMember("kind", u"user"); }

  private:
    const ByteSink& output_;
    JsonWriter writer_;
    // By where the bytes are: one picture may occur in a log a thousand times.
    std::map<std::pair<const char*, qsizetype>, QString> hashes_;

    void stringMember(const char* key, QStringView text);
    void optionalMember(const char* key, const std::optional<QString>& text);
    void numberMember(const char* key, qint64 value);
    void contentMembers(const foundation::Data* data);
    void user(const TesselUserID& user);
    void event(const TesselChatLog::Event& event);
    void endPiece();
    const QString& sha256(const foundation::Data& data);
};

void JsonRenderer::write(const TesselChatLog& log) {
    writer_.beginObject();
    numberMember("schema", schemaVersion);
    stringMember("serviceID", log.serviceID().rawValue);
    writer_.key("ownUserID");
    user(log.ownUserID());
    writer_.key("otherUserIDs");
    writer_.beginArray();
    for (const TesselUserID& other : sorted(log.otherUserIDs())) {
        user(other);
        endPiece();
    }
    writer_.endArray();
    writer_.key("events");
    writer_.beginArray();
    for (const TesselChatLog::Event& each : log.events()) {
        writer_.breakLine();
        event(each);
        endPiece();
    }
    writer_.breakLine();
    writer_.endArray();
    writer_.endObject();
    output_(writer_.take() + '\n');
}

void JsonRenderer::endPiece() {
    if (writer_.size() >= pieceSize) output_(writer_.take());
}

void JsonRenderer::event(const TesselChatLog::Event& event) {
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

void JsonRenderer::operator()(const TesselChatLog::PlainText& value) {
    stringMember("kind", u"plainText");
    stringMember("text", value.text);
}

void JsonRenderer::operator()(const TesselChatLog::Image& value) {
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

void JsonRenderer::operator()(const TesselChatLog::File& value) {
    const foundation::FileWrapper& wrapper = *value.wrapper;
    stringMember("kind", u"file");
    optionalMember("fileName", wrapper.filename ? wrapper.filename : wrapper.preferredFilename);
    writer_.key("isDirectory");
    writer_.boolean(wrapper.isDirectory());
    contentMembers(wrapper.isRegularFile() && wrapper.contents ? &*wrapper.contents : nullptr);
}

void JsonRenderer::operator()(const TesselChatLog::Link& value) {
    stringMember("kind", u"link");
    stringMember("url", value.url->absoluteString());
    stringMember("title", value.title);
}

void JsonRenderer::stringMember(const char* key, QStringView text) {
    writer_.key(key);
    writer_.string(text);
}

void JsonRenderer::optionalMember(const char* key, const std::optional<QString>& text) {
    writer_.key(key);
    text ? writer_.string(*text) : writer_.null();
}

void JsonRenderer::numberMember(const char* key, qint64 value) {
    writer_.key(key);
    writer_.number(value);
}

void JsonRenderer::contentMembers(const foundation::Data* data) {
    writer_.key("byteCount");
    data ? writer_.number(qint64(data->size())) : writer_.null();
    writer_.key("sha256");
    data ? writer_.string(sha256(*data)) : writer_.null();
}

void JsonRenderer::user(const TesselUserID& user) {
    writer_.beginObject();
    stringMember("serviceID", user.serviceID.rawValue);
    stringMember("userID", user.userID);
    writer_.endObject();
}

const QString& JsonRenderer::sha256(const foundation::Data& data) {
    QString& known = hashes_[{data.begin(), data.size()}];
    if (known.isEmpty()) {
        known = QString::fromLatin1(
            QCryptographicHash::hash(data.view(), QCryptographicHash::Sha256).toHex());
    }
    return known;
}

}  // namespace

void writeJson(const TesselChatLog& log, const ByteSink& output) {
    JsonRenderer(output).write(log);
}

}  // namespace vell
