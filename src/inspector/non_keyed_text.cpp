// SPDX-License-Identifier: MIT
#include <optional>
#include <vector>

#include "foundation/non_keyed/type_string.h"
#include "foundation/non_keyed/typed_stream.h"
#include "inspector/forms.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::non_keyed::MalformedArchive;
using foundation::non_keyed::Mark;
using foundation::non_keyed::TypedStream;
using foundation::non_keyed::TypeOp;

namespace {

constexpr qint64 firstReference = -110;
constexpr int maximumNesting = 256;

class NonKeyedText {
  public:
    NonKeyedText(const foundation::Data& data, TextLines& lines)
        : data_(data), stream_(data), lines_(lines) {}

    void write();
    [[nodiscard]] qint64 position() const { return stream_.position() - data_.begin(); }

  private:
    struct SharedString {
        std::string_view text;
        quint32 firstOp = 0;
        quint32 endOp = 0;
    };

    const foundation::Data& data_;
    TypedStream stream_;
    TextLines& lines_;
    quint32 objects_ = 0;  ///< numbered so far: objects, classes and C strings
    std::vector<SharedString> strings_;
    std::vector<TypeOp> ops_;
    std::vector<std::string_view> classNames_;  ///< by number; empty for others
    QByteArray path_;
    int depth_ = 0;

    void writeGroup(quint8 head, quint64& index);
    void writeTypes(quint32 first, quint32 end, quint64& index);
    void writeValue(const TypeOp& op, quint32 at);
    void writeObject();
    void writeBody();
    void writeArray(const TypeOp& op, quint32 at);
    void writeCString();
    std::optional<quint32> writeClass(quint8 head);
    std::optional<quint32> sharedString(quint8 head);
    quint32 reference(quint8 head, size_t size);
    quint32 number();
    void enter() {
        if (++depth_ > maximumNesting) throw MalformedArchive();
    }
};

void NonKeyedText::write() {
    lines_ << "non-keyed archive, " << (stream_.isBigEndian() ? "big-endian" : "little-endian");
    lines_.endLine();
    quint64 index = 0;
    path_ = "root";
    while (stream_.remaining() > 0)
        writeGroup(stream_.byte(), index);
}

void NonKeyedText::writeGroup(quint8 head, quint64& index) {
    const auto string = sharedString(head);
    if (!string) throw MalformedArchive();
    SharedString& types = strings_[*string];
    if (types.endOp == 0) {
        types.firstOp = quint32(ops_.size());
        if (!foundation::non_keyed::appendTypeOps(types.text, ops_)) throw MalformedArchive();
        types.endOp = quint32(ops_.size());
    }
    writeTypes(types.firstOp, types.endOp, index);
}

void NonKeyedText::writeTypes(quint32 first, quint32 end, quint64& index) {
    const qsizetype length = path_.size();
    for (quint32 at = first; at < end;) {
        const TypeOp op = ops_[at];
        path_.append('[' + QByteArray::number(index++) + ']');
        writeValue(op, at);
        path_.truncate(length);
        at = op.end;
    }
}

void NonKeyedText::writeValue(const TypeOp& op, quint32 at) {
    if (op.type == '[' || op.type == '{') return writeArray(op, at);
    // The lines of new classes come before that of the value.
    const auto cls = op.type == '#' ? writeClass(stream_.byte()) : std::nullopt;
    lines_ << path_ << " = ";
    switch (op.type) {
        case '#':
            if (cls)
                lines_ << "#" << quint64(*cls);
            else
                lines_ << "nil";
            break;
        case '@':
            return writeObject();
        case '*':
            return writeCString();
        case 'c':
            lines_ << qint64(qint8(stream_.byte()));
            break;
        case 'C':
        case 'B':
            lines_ << qint64(stream_.byte());
            break;
        case 'f':
            lines_ << stream_.real32();
            break;
        case 'd':
            lines_ << stream_.real64();
            break;
        case '+': {
            const std::string_view bytes =
                stream_.takes(Mark::nil) ? std::string_view() : stream_.unsharedString();
            const QByteArrayView view(bytes);
            if (view.isValidUtf8())
                lines_.appendText(QString::fromUtf8(view));
            else
                lines_.appendBytes(view);
            break;
        }
        case ':':
        case '%':
            if (const auto string = sharedString(stream_.byte()))
                lines_.appendText(QString::fromUtf8(strings_[*string].text).left(200));
            else
                lines_ << "nil";
            break;
        default: {
            const qint64 value = stream_.integer();
            const bool isShort = op.type == 'S';
            const bool isUnsigned = isShort || op.type == 'I' || op.type == 'L';
            lines_ << (isUnsigned ? value & (isShort ? 0xffff : 0xffffffff) : value);
        }
    }
    lines_ << " (" << QByteArrayView(&op.type, 1) << ")";
    lines_.endLine();
}

void NonKeyedText::writeArray(const TypeOp& op, quint32 at) {
    if (op.type == '[' && op.end == at + 2 && (ops_[at + 1].type | 0x20) == 'c') {
        lines_ << path_ << " = ";
        lines_.appendBytes(stream_.bytes(op.count));
        lines_.endLine();
        return;
    }
    if (op.count > stream_.remaining()) throw MalformedArchive();
    enter();
    quint64 index = 0;
    const quint32 repetitions = op.type == '[' ? op.count : 1;
    for (quint32 i = 0; i < repetitions; ++i)
        writeTypes(at + 1, op.end, index);
    --depth_;
}

/// The rest of a line; for a new object its own line and those of its values.
void NonKeyedText::writeObject() {
    const qint64 offset = position();
    const quint8 head = stream_.byte();
    if (head != quint8(Mark::isNew)) {
        if (head == quint8(Mark::nil))
            lines_ << "nil";
        else
            lines_ << "#" << quint64(reference(head, objects_));
        lines_.endLine();
        return;
    }
    const quint32 self = number();
    lines_ << "#" << quint64(self);
    lines_.endLine();
    const auto cls = writeClass(stream_.byte());
    if (!cls) throw MalformedArchive();
    const QByteArray outer = std::exchange(path_, '#' + QByteArray::number(self));
    lines_ << path_ << " @" << offset << " ";
    lines_.appendName(QString::fromUtf8(classNames_[*cls]).left(200));
    lines_.endLine();
    writeBody();
    path_ = outer;
}

void NonKeyedText::writeBody() {
    enter();
    quint64 index = 0;
    for (quint8 head = stream_.byte(); head != quint8(Mark::endOfObject); head = stream_.byte())
        writeGroup(head, index);
    --depth_;
}

void NonKeyedText::writeCString() {
    const quint8 head = stream_.byte();
    if (head == quint8(Mark::nil)) {
        lines_ << "nil";
    } else if (head == quint8(Mark::isNew)) {
        const auto string = sharedString(stream_.byte());
        if (!string) throw MalformedArchive();
        lines_ << "#" << quint64(number()) << " ";
        lines_.appendText(QString::fromUtf8(strings_[*string].text).left(200));
    } else {
        lines_ << "#" << quint64(reference(head, objects_));
    }
    lines_ << " (*)";
    lines_.endLine();
}

/// The number of a class; new ones get lines of their own. Nothing for nil.
std::optional<quint32> NonKeyedText::writeClass(quint8 head) {
    std::optional<quint32> first;
    for (; head == quint8(Mark::isNew); head = stream_.byte()) {
        const auto name = sharedString(stream_.byte());
        if (!name) throw MalformedArchive();
        const quint32 self = number();
        if (!first) first = self;
        classNames_[self] = strings_[*name].text;
        lines_ << "#" << quint64(self) << " class ";
        lines_.appendName(QString::fromUtf8(classNames_[self]).left(200));
        lines_ << ", version " << qint64(stream_.integer());
        lines_.endLine();
    }
    if (head == quint8(Mark::nil)) return first;
    const quint32 known = reference(head, objects_);
    if (classNames_[known].empty()) throw MalformedArchive();
    return first ? first : known;
}

std::optional<quint32> NonKeyedText::sharedString(quint8 head) {
    if (head == quint8(Mark::nil)) return std::nullopt;
    if (head != quint8(Mark::isNew)) return reference(head, strings_.size());
    strings_.push_back({.text = stream_.unsharedString()});
    return quint32(strings_.size() - 1);
}

quint32 NonKeyedText::reference(quint8 head, size_t size) {
    const qint64 index = stream_.integer(head) - firstReference;
    if (index < 0 || quint64(index) >= size) throw MalformedArchive();
    return quint32(index);
}

quint32 NonKeyedText::number() {
    classNames_.emplace_back();
    return objects_++;
}

}  // namespace

QString writeNonKeyed(const foundation::Data& data, TextLines& lines) {
    std::optional<NonKeyedText> text;
    try {
        text.emplace(data, lines);
        text->write();
        return {};
    } catch (const MalformedArchive&) {
        if (!text) return u"it begins like no archive"_s;
        lines.endLine();
        return u"it can't be read on after byte %1"_s.arg(text->position());
    }
}

}  // namespace vell::inspector
