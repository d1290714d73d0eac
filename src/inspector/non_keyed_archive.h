#pragma once
// SPDX-License-Identifier: MIT
//
// A non-keyed archive. Its objects are numbered as they begin, so one pass notes where each of them
// is; behind it any object can be read by itself.

#include <limits>
#include <string_view>
#include <vector>

#include "foundation/non_keyed/type_string.h"
#include "foundation/non_keyed/typed_stream.h"
#include "inspector/archive.h"

namespace vell::inspector {

class NonKeyedArchive final : public Archive {
  public:
    /// Null if the data begins like no archive.
    [[nodiscard]] static std::unique_ptr<NonKeyedArchive> open(const foundation::Data& data);

    /// Behind which byte it can't be read; negative if it can.
    [[nodiscard]] qint64 breakOffset() const { return breakOffset_; }

    [[nodiscard]] QString summary() const override;
    [[nodiscard]] quint64 placeCount() const override { return quint64(data_.size()) + 1; }
    [[nodiscard]] Entry root() const override;
    [[nodiscard]] quint64 objectCount() const override { return objects_.size(); }
    [[nodiscard]] Entry object(quint64 number) override;
    void visitParts(const Entry& whole, quint64 first, const Visitor& visitor) override;

  private:
    using TypeOp = foundation::non_keyed::TypeOp;
    using TypedStream = foundation::non_keyed::TypedStream;

    /// In place of a number: nil. An optional takes much longer to return.
    static constexpr quint32 none = std::numeric_limits<quint32>::max();

    enum class Sort : quint8 { object, classRecord, cString };

    /// A place in the archive, and what was numbered before it.
    struct Cursor {
        TypedStream stream;
        quint32 nextString = 0;
        quint32 nextObject = 0;
        bool isBroken = false;  ///< an object isn't whole; nothing behind it can be read
    };
    struct Place {
        quint32 offset = 0;
        quint32 strings = 0;  ///< numbered before
        quint32 objects = 0;
    };
    struct Object {
        quint32 offset = 0;  ///< of its first byte
        Place body;          ///< behind its class
        Place end;           ///< no offset while it isn't whole
        quint32 name = 0;    ///< of an object its class; else the shared string
        qint32 count = 0;    ///< values; of a class its version
        Sort sort = Sort::object;
    };
    struct Types {
        quint32 firstOp = 0;
        quint32 endOp = 0;
    };
    struct SharedString {
        std::string_view text;
        Types types{};
    };

    explicit NonKeyedArchive(const foundation::Data& data);
    void index();

    // Each reads a part, and notes what it is the first to see.
    void readValue(Cursor& cursor, quint32 at, Entry* entry);
    void readArray(Cursor& cursor, quint32 at, Entry* entry);
    void readObject(Cursor& cursor, Entry* entry);
    quint32 readNewObject(Cursor& cursor, quint32 offset);
    void readBody(Cursor& cursor, quint32 self);
    void readBytes(Cursor& cursor, Entry* entry);
    void readCString(Cursor& cursor, Entry* entry);
    quint32 readClass(Cursor& cursor);
    Types readTypes(Cursor& cursor, quint8 head);
    quint32 readString(Cursor& cursor, quint8 head);
    quint32 addObject(Cursor& cursor, const Object& object);
    static quint32 readReference(Cursor& cursor, quint8 head, quint32 size);

    struct Range;
    bool visitTypes(Cursor& cursor, quint32 firstOp, quint32 endOp, Range& range);
    void visitGroups(Cursor& cursor, bool isRoot, Range& range);

    [[nodiscard]] Cursor cursorAt(const Place& place) const;
    [[nodiscard]] Place placeOf(const Cursor& cursor) const;
    [[nodiscard]] quint32 offsetOf(const Cursor& cursor) const {
        return quint32(cursor.stream.position() - data_.begin());
    }
    [[nodiscard]] QString className(quint32 string) const;
    [[nodiscard]] QString text(quint32 string) const;

    foundation::Data data_;
    Cursor start_;
    std::vector<Object> objects_;
    std::vector<SharedString> strings_;
    std::vector<TypeOp> ops_;
    quint64 rootCount_ = 0;
    qint64 breakOffset_ = -1;
    int depth_ = 0;
};

}  // namespace vell::inspector
