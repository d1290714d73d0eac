// SPDX-License-Identifier: MIT
//
// The serialised file wrapper ("flat RTFD"): a tree of records in 32-bit little-endian words.
// docs/formats/non-keyed-archive.md holds its grammar.
#include <QtEndian>
#include <algorithm>
#include <string_view>

#include "foundation/file_wrapper.h"

namespace foundation {

namespace {

constexpr quint32 bytesRecord = 1;
constexpr quint32 directoryRecord = 3;
constexpr quint32 paddedLength = 0x80000000;
constexpr int maximumDepth = 64;

// Reserved entry names. They are compared as bytes, so that no decoding makes another name one.
constexpr std::string_view contentsEntry = "..";
constexpr std::string_view attributesEntry = ".";
constexpr std::string_view preferredNameEntry = "__@PreferredName@__";
constexpr std::string_view utf8PreferredNameEntry = "__@UTF8PreferredName@__";

/// Follows a number in the key of a child whose name another child has already.
constexpr std::string_view sameNameMark = "__#$!@%!#__";
/// In the third word of an entry's attributes.
constexpr quint32 linkFlag = 4;

/// Reads words and slices of one record's window; a read past its end makes all later ones fail.
class Cursor {
  public:
    explicit Cursor(const Data& window) : window_(window) {}

    [[nodiscard]] bool failed() const { return failed_; }
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
    Data block;
};

/// The upper half of the 8-bit character set that names were stored in before there was UTF-8.
constexpr char16_t nextStepUpperHalf[] =
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
        text += byte < 0x80 ? QChar(byte) : QChar(nextStepUpperHalf[byte - 0x80]);
    }
    return text;
}

/// A stored name as a file name: without separators; nothing when that leaves no name, or that of a
/// folder.
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
    if (cursor.word() != bytesRecord) return std::nullopt;
    quint32 length = cursor.word();
    if (length == paddedLength) {
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

std::optional<QString> storedName(const Data& block) {
    const auto bytes = bytesOf(block);
    if (!bytes) return std::nullopt;
    return fileName({bytes->begin(), static_cast<size_t>(bytes->size())});
}

bool isReserved(std::string_view name) {
    return name == contentsEntry || name == attributesEntry || name == preferredNameEntry ||
           name == utf8PreferredNameEntry;
}

/// A key is the child's name, or a number, the mark, and the name that another child has too.
std::string_view shownName(std::string_view key) {
    const auto digits = std::min(key.find_first_not_of("0123456789"), key.size());
    return digits > 0 && key.substr(digits).starts_with(sameNameMark)
               ? key.substr(digits + sameNameMark.size())
               : key;
}

/// The names that a table of attributes marks as symbolic links; what is broken marks none.
std::vector<std::string_view> linkNames(const Data& block) {
    std::vector<std::string_view> names;
    const auto table = bytesOf(block);
    if (!table) return names;
    Cursor cursor(*table);
    for (quint32 left = cursor.word(); left > 0 && !cursor.failed(); --left) {
        const std::string_view name = cursor.bytes(cursor.word());
        const std::string_view record = cursor.bytes(cursor.word());
        if (record.size() < 12) continue;  // the third word holds the flags
        if (qFromLittleEndian<quint32>(record.data() + 8) & linkFlag) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Reads one directory record: a folder, or a file in its disguise.
class DirectoryReader {
  public:
    DirectoryReader(const Data& window, int depth) : cursor_(window), depth_(depth) {}

    /// Null when malformed.
    std::shared_ptr<FileWrapper> read();

  private:
    Cursor cursor_;
    int depth_;
    std::vector<Entry> entries_;
    std::vector<std::string_view> links_;     // in order
    std::vector<std::string_view> children_;  // keys in order

    bool readEntries();
    [[nodiscard]] bool isLink(std::string_view name) const {
        return std::binary_search(links_.begin(), links_.end(), name);
    }
    [[nodiscard]] bool isIcon(std::string_view key) const;
    std::shared_ptr<FileWrapper> contentsOf(const Entry& entry) const;
    bool addChild(FileWrapper& parent, const Entry& entry) const;
};

bool DirectoryReader::readEntries() {
    if (depth_ > maximumDepth || cursor_.word() != directoryRecord) return false;
    const quint32 count = cursor_.word();
    // Each entry takes a name length and a block size at least.
    if (count > cursor_.remaining() / 8) return false;
    entries_.resize(count);
    for (Entry& entry : entries_)
        entry.name = cursor_.bytes(cursor_.word());
    for (Entry& entry : entries_)
        entry.size = cursor_.word();
    for (Entry& entry : entries_) {
        entry.block = cursor_.slice(entry.size);
        if (entry.block.size() < 4) return false;
        if (entry.name == attributesEntry) links_ = linkNames(entry.block);
        if (!isReserved(entry.name)) children_.push_back(entry.name);
    }
    std::sort(children_.begin(), children_.end());
    return !cursor_.failed();
}

/// Whether it is the icon of the file of the same name beside it.
bool DirectoryReader::isIcon(std::string_view key) const {
    constexpr std::string_view ending = ".tiff";
    if (!key.ends_with(ending)) return false;
    key.remove_suffix(ending.size());
    return std::binary_search(children_.begin(), children_.end(), key);
}

/// A file or a link, after its entry's mark; null when malformed.
std::shared_ptr<FileWrapper> DirectoryReader::contentsOf(const Entry& entry) const {
    auto bytes = bytesOf(entry.block);
    if (!bytes && kindOf(entry.block) == bytesRecord) return nullptr;
    auto file = std::make_shared<FileWrapper>(FileWrapper::Kind::regularFile);
    if (isLink(entry.name)) {
        file->kind = FileWrapper::Kind::symbolicLink;
        if (bytes) file->linkDestination = QString::fromUtf8(bytes->view());
    } else {
        file->contents = std::move(bytes);
    }
    return file;
}

/// Adds an entry of a folder; unknown kinds are left out. False when malformed.
bool DirectoryReader::addChild(FileWrapper& parent, const Entry& entry) const {
    const quint32 kind = kindOf(entry.block);
    if (kind != bytesRecord && kind != directoryRecord) return true;
    auto child =
        kind == bytesRecord ? contentsOf(entry) : DirectoryReader(entry.block, depth_ + 1).read();
    if (!child) return false;
    if (isIcon(entry.name)) return true;
    child->filename = fileName(shownName(entry.name));
    if (!child->preferredFilename) child->preferredFilename = child->filename;
    parent.children.push_back(std::move(child));
    return true;
}

std::shared_ptr<FileWrapper> DirectoryReader::read() {
    if (!readEntries()) return nullptr;
    auto wrapper = std::make_shared<FileWrapper>(FileWrapper::Kind::directory);
    std::optional<QString> plainName;
    std::optional<QString> utf8Name;
    std::shared_ptr<FileWrapper> file;
    for (const Entry& entry : entries_) {
        if (entry.name == contentsEntry) {
            file = contentsOf(entry);
            if (!file) return nullptr;
        } else if (entry.name == preferredNameEntry) {
            plainName = storedName(entry.block);
        } else if (entry.name == utf8PreferredNameEntry) {
            utf8Name = storedName(entry.block);
        } else if (entry.name != attributesEntry) {
            if (!addChild(*wrapper, entry)) return nullptr;
        }
    }
    if (file) wrapper = std::move(file);
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
    const Data record = data.slice(headerSize, data.size() - headerSize);
    return DirectoryReader(record, 1).read();
}

}  // namespace foundation
