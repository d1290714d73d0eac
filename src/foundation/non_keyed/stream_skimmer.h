#pragma once
// SPDX-License-Identifier: MIT
//
// StreamSkimmer: the grammar of a non-keyed archive without its values, one small step after the
// other, so that reading can go back to an earlier step and try other bytes. It knows the classes
// of objects, and what kind of object certain classes hold where.

#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "foundation/class_registry.h"
#include "foundation/non_keyed/type_string.h"

namespace foundation::non_keyed {

/// What instances of an application class hold at least: objects of these classes, or nil, in this
/// order.
struct ClassShape {
    const ClassInfo* owner = nullptr;
    std::vector<const ClassInfo*> parts;
};

class StreamSkimmer {
  public:
    /// The bytes may change between steps; they and the registry must outlive the skimmer. Starts
    /// behind the header.
    StreamSkimmer(const QByteArray& bytes, qsizetype start, bool isBigEndian,
                  const ClassRegistry& registry, std::vector<ClassShape> shapes);

    /// False at the end of the root. Throws MalformedArchive.
    bool step();
    [[nodiscard]] qsizetype position() const { return state_.position; }

    struct Frame {
        enum class Kind : quint8 { root, object, types, repetition };
        Kind kind = Kind::root;
        quint32 at = 0;     ///< the next type
        quint32 end = 0;    ///< of the types
        quint32 count = 0;  ///< repetitions left
        const ClassInfo* info = nullptr;
        quint32 parts = 0;  ///< values of an object so far
        friend bool operator==(const Frame&, const Frame&) = default;
    };
    /// All that a step changes, apart from entries that are only ever added.
    struct State {
        qsizetype position = 0;
        std::vector<Frame> frames;
        size_t objects = 0;
        size_t strings = 0;
        size_t shaped = 0;  ///< objects that ended with the parts that they are known to have
        friend bool operator==(const State&, const State&) = default;
    };
    [[nodiscard]] const State& state() const { return state_; }
    /// Goes back to a state, earlier than all since.
    void returnTo(const State& state);

    /// Whether the last step failed because an object isn't what its owner holds there.
    [[nodiscard]] bool isAtMisfit() const { return isAtMisfit_; }
    /// Whether that is let through at this position.
    void setMisfitAllowed(qsizetype position, bool isAllowed);

    /// Some of the archive's bytes.
    struct Text {
        qsizetype begin = 0;
        qsizetype size = 0;
    };
    /// Where the last step read bytes of the grammar itself, not those of texts and numbers.
    [[nodiscard]] const std::vector<qsizetype>& places() const { return places_; }
    /// The bytes that the last step skipped, as long as they are a text; empty otherwise.
    [[nodiscard]] Text text() const { return text_; }
    /// Names of classes that the last step read and the registry doesn't know.
    [[nodiscard]] const std::vector<Text>& unknownNames() const { return unknownNames_; }

  private:
    enum class Kind : quint8 { object, unfinishedClass, classRecord, cString };
    struct Object {
        Kind kind = Kind::object;
        const ClassInfo* info = nullptr;  ///< of an object or a class
    };

  public:
    /// What was numbered behind a state.
    struct Entries {
        std::vector<Object> objects;
        std::vector<Text> strings;
    };
    [[nodiscard]] Entries entriesBehind(const State& state) const;
    /// Goes back to an early state and on to a later one, whose entries were kept.
    void returnTo(const State& early, const Entries& entries, const State& late);

  private:
    struct Types {
        quint32 first = 0;
        quint32 end = 0;
    };

    const QByteArray& bytes_;
    const ClassRegistry& registry_;
    const std::vector<ClassShape> shapes_;
    const bool isBigEndian_;
    State state_;
    std::vector<Object> objects_;
    std::vector<Text> strings_;
    std::vector<TypeOp> ops_;
    std::unordered_map<std::string, Types> types_;  ///< by their text
    std::vector<qsizetype> places_;
    Text text_;
    std::vector<Text> unknownNames_;
    bool isAtMisfit_ = false;
    std::unordered_set<qsizetype> allowedMisfits_;

    quint8 byte();
    qint64 integer(quint8 head);
    qint64 integer() { return integer(byte()); }
    void skip(qint64 size);
    quint32 reference(quint8 head, size_t size);
    quint32 sharedString(quint8 head);
    Types typesOf(quint32 string);
    void beginGroup(quint8 head);
    void endObject();
    void readValue(const TypeOp& op, quint32 at);
    void readObject();
    const ClassInfo* readClass(quint8 head);
    void checkPart(bool isNil, const ClassInfo* part);
    [[nodiscard]] const ClassShape* shapeOf(const ClassInfo* info) const;
    void addObject(Object object);
};

}  // namespace foundation::non_keyed
