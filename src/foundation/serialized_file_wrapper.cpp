// SPDX-License-Identifier: MIT
//
// The serialised file wrapper ("flat RTFD"): a tree of records in 32-bit little-endian words.
// docs/formats/non-keyed-archive.md holds its grammar.
#include <QtEndian>
#include <string_view>

#include "foundation/file_wrapper.h"

namespace foundation {

namespace {

constexpr quint32 kBytesRecord = 1;
constexpr quint32 kDirectoryRecord = 3;
constexpr quint32 kPaddedLength = 0x80000000;
constexpr int kMaximumDepth = 64;

// Reserved entry names. They are compared as bytes, so that no decoding makes another name one.
constexpr std::string_view kContentsEntry = "..";
constexpr std::string_view kAttributesEntry = ".";
constexpr std::string_view kPreferredNameEntry = "__@PreferredName@__";
constexpr std::string_view kUtf8PreferredNameEntry = "__@UTF8PreferredName@__";

/// Reads words and slices of one record's window; a read past its end makes all later ones fail.
class Cursor {
  public:
    explicit Cursor(const Data& window) : window_(window) {}

    [[nodiscard]] bool failed() const { return failed_; }
    void fail() { failed_ = true; }
    [[nodiscard]] quint32 remaining() const {
        return static_cast<quint32>(window_.size() - position_);
    }
    quint32 word() {
        const char* bytes = advance(4);
        return bytes ? qFromLittleEndian<quint32>(bytes) : 0;
    }
    std::string_view bytes(quint32 size) {
        const char* bytes = advance(size);
        return bytes ? std::string_view(bytes, size) : std::string_view();
    }
    Data slice(quint32 size) {
        const qsizetype start = position_;
        return advance(size) ? window_.slice(start, size) : Data();
    }

  private:
    const char* advance(quint32 size) {
        failed_ = failed_ || size > remaining();
        if (failed_) return nullptr;
        const char* bytes = window_.begin() + position_;
        position_ += size;
        return bytes;
    }

    const Data& window_;
    qsizetype position_ = 0;
    bool failed_ = false;
};

struct Entry {
    std::string_view name;
    quint32 size = 0;
};

/// The upper half of the 8-bit character set that names were stored in before there was UTF-8.
constexpr char16_t kNextStepUpperHalf[] =
    u"\u00A0\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE"
    u"\u00CF"
    u"\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00B5\u00D7"
    u"\u00F7"
    u"\u00A9\u00A1\u00A2\u00A3\u2044\u00A5\u0192\u00A7\u00A4\u2019\u201C\u00AB\u2039\u203A\uFB01"
    u"\uFB02"
    u"\u00AE\u2013\u2020\u2021\u00B7\u00A6\u00B6\u2022\u201A\u201E\u201D\u00BB\u2026\u2030\u00AC"
    u"\u00BF"
    u"\u00B9\u02CB\u00B4\u02C6\u02DC\u00AF\u02D8\u02D9\u00A8\u00B2\u02DA\u00B8\u00B3\u02DD\u02DB"
    u"\u02C7"
    u"\u2014\u00B1\u00BC\u00BD\u00BE\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E7\u00E8\u00E9\u00EA"
    u"\u00EB"
    u"\u00EC\u00C6\u00ED\u00AA\u00EE\u00EF\u00F0\u00F1\u0141\u00D8\u0152\u00BA\u00F2\u00F3\u00F4"
    u"\u00F5"
    u"\u00F6\u00E6\u00F9\u00FA\u00FB\u0131\u00FC\u00FD\u0142\u00F8\u0153\u00DF\u00FE\u00FF\uFFFD"
    u"\uFFFD";

QString decodedName(std::string_view bytes) {
    const QByteArrayView view(bytes);
    if (view.isValidUtf8()) return QString::fromUtf8(view);
    QString text;
    text.reserve(view.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 0x80 ? QChar(byte) : QChar(kNextStepUpperHalf[byte - 0x80]);
    }
    return text;
}

/// A stored name as a name of one file: without separators; nothing when that leaves no name, or
/// one that means a folder.
std::optional<QString> fileName(std::string_view bytes) {
    QString name = decodedName(bytes);
    name.remove(u'/');
    name.remove(QChar(u'\0'));
    if (name.isEmpty() || name == u"." || name == u"..") return std::nullopt;
    return name;
}

/// The bytes of a record of that kind; nothing for another kind or when they pass its window.
std::optional<Data> bytesOf(const Data& window) {
    Cursor cursor(window);
    if (cursor.word() != kBytesRecord) return std::nullopt;
    quint32 length = cursor.word();
    if (length == kPaddedLength) {
        length = cursor.word();
        cursor.bytes(cursor.word());
    }
    Data bytes = cursor.slice(length);
    if (cursor.failed()) return std::nullopt;
    return bytes;
}

quint32 kindOf(const Data& window) {
    return Cursor(window).word();
}

std::vector<Entry> readEntries(Cursor& cursor) {
    const quint32 count = cursor.word();
    // Each entry takes a name length and a block size at least.
    if (count > cursor.remaining() / 8) {
        cursor.fail();
        return {};
    }
    std::vector<Entry> entries(count);
    for (Entry& entry : entries)
        entry.name = cursor.bytes(cursor.word());
    for (Entry& entry : entries)
        entry.size = cursor.word();
    return entries;
}

std::optional<QString> storedName(const Data& block) {
    const auto bytes = bytesOf(block);
    if (!bytes) return std::nullopt;
    return fileName({bytes->begin(), static_cast<size_t>(bytes->size())});
}

std::shared_ptr<FileWrapper> parseDirectory(const Data& window, int depth);

/// Adds an entry of a folder; kinds nobody knows are left out. False when malformed.
bool addChild(FileWrapper& parent, std::string_view name, const Data& block, int depth) {
    std::shared_ptr<FileWrapper> child;
    if (const quint32 kind = kindOf(block); kind == kBytesRecord) {
        auto bytes = bytesOf(block);
        if (!bytes) return false;
        child = std::make_shared<FileWrapper>(*std::move(bytes));
    } else if (kind == kDirectoryRecord) {
        child = parseDirectory(block, depth + 1);
        if (!child) return false;
    } else {
        return true;
    }
    child->filename = fileName(name);
    if (!child->preferredFilename) child->preferredFilename = child->filename;
    parent.children.push_back(std::move(child));
    return true;
}

/// A directory record: a folder, or a regular file in its disguise. Null when malformed.
std::shared_ptr<FileWrapper> parseDirectory(const Data& window, int depth) {
    Cursor cursor(window);
    if (depth > kMaximumDepth || cursor.word() != kDirectoryRecord) return nullptr;
    const auto entries = readEntries(cursor);
    auto wrapper = std::make_shared<FileWrapper>(FileWrapper::Kind::directory);
    std::optional<QString> plainName;
    std::optional<QString> utf8Name;
    for (const Entry& entry : entries) {
        const Data block = cursor.slice(entry.size);
        if (block.size() < 4) return nullptr;
        if (entry.name == kContentsEntry) {
            wrapper->kind = FileWrapper::Kind::regularFile;
            wrapper->contents = bytesOf(block);
            if (!wrapper->contents && kindOf(block) == kBytesRecord) return nullptr;
        } else if (entry.name == kPreferredNameEntry) {
            plainName = storedName(block);
        } else if (entry.name == kUtf8PreferredNameEntry) {
            utf8Name = storedName(block);
        } else if (entry.name != kAttributesEntry) {
            if (!addChild(*wrapper, entry.name, block, depth)) return nullptr;
        }
    }
    if (cursor.failed()) return nullptr;
    if (wrapper->isRegularFile()) wrapper->children.clear();
    wrapper->preferredFilename = utf8Name ? utf8Name : plainName;
    wrapper->filename = wrapper->preferredFilename;
    return wrapper;
}

}  // namespace

std::shared_ptr<FileWrapper> parseSerializedFileWrapper(const Data& data) {
    constexpr qsizetype headerSize = 8;
    if (data.size() < headerSize || data.size() > std::numeric_limits<quint32>::max())
        return nullptr;
    Cursor header(data);
    if (header.bytes(4) != "rtfd" || header.word() != 0) return nullptr;
    return parseDirectory(data.slice(headerSize, data.size() - headerSize), 1);
}

}  // namespace foundation
