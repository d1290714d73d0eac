#pragma once
// SPDX-License-Identifier: MIT
//
// The classes that archives may name. A reader resolves an archived class name here; how an
// instance is rebuilt depends on its kind (value classes, which the readers rebuild themselves) or
// its own initialiser (application classes). Filled once, then read by any thread.

#include <QByteArray>
#include <deque>
#include <functional>
#include <string_view>
#include <unordered_map>

#include "foundation/coder.h"

namespace foundation {

/// How an instance is rebuilt.
enum class ClassKind {
    none,         ///< no instances: "NSObject", abstract bases
    application,  ///< through its own initWithCoder
    string,
    number,
    data,
    date,
    url,
    array,
    set,
    countedSet,
    orderedSet,
    dictionary,
    null,
    attributedString,
    textAttachment,
    fileWrapper,
    calendar,
    opaque,  ///< known, perhaps allowed, but its content is never used
};

/// What an unarchiver returns.
struct UnarchivedObject {
    UnarchivedObject(Value object) : UnarchivedObject(std::move(object), {}) {}
    UnarchivedObject(Value object, QByteArray className)
        : object(std::move(object)),
          className(className.isEmpty() ? this->object.className() : std::move(className)) {}

    Value object;
    /// As archived, which may be an unknown subclass.
    QByteArray className;
};

struct ClassInfo {
    QByteArray name;
    const ClassInfo* superclass = nullptr;  ///< null for root classes
    ClassKind kind = ClassKind::none;
    bool supportsSecureCoding = true;
    /// False for a name that is no object class at all.
    bool isObjectClass = true;
    /// Rebuilds one instance; only for ClassKind::application.
    Value (*initWithCoder)(Coder& coder) = nullptr;
    /// The class method "unarchiveObjectWithData:"; only unarchiver classes have it. Returns
    /// nothing when the data can't be read.
    std::function<UnarchivedObject(const Data& data)> unarchiveObjectWithData = nullptr;

    /// Whether this is the other class or a subclass of it.
    [[nodiscard]] bool isSubclassOf(const ClassInfo& other) const;
};

class ClassRegistry {
  public:
    ClassRegistry() = default;
    ClassRegistry(const ClassRegistry&) = delete;
    ClassRegistry& operator=(const ClassRegistry&) = delete;

    /// Adds a class and returns it; addresses are stable. A second class of the
    /// same name is a bug and stops the program.
    const ClassInfo& add(ClassInfo info);
    /// The class of exactly this name, or null.
    [[nodiscard]] const ClassInfo* find(std::string_view name) const;

  private:
    std::deque<ClassInfo> classes_;
    std::unordered_map<std::string_view, const ClassInfo*> byName_;
    std::size_t longestName_ = 0;
};

/// Adds the platform's value classes and their public subclasses ("NSTextStorage",
/// "NSTokenAttachment" …).
void registerValueClasses(ClassRegistry& registry);

/// Adds the value classes, and "NSUnarchiver", which reads with the classes of this registry.
void registerPlatformClasses(ClassRegistry& registry);

}  // namespace foundation
