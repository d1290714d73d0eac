#pragma once
// SPDX-License-Identifier: MIT
//
// The classes that a transcript's archive may name: the five of its own (three of them
// placeholders) beside the platform's, and which of them a keyed archive may hold.

#include <vector>

#include "foundation/class_registry.h"

namespace vell {

/// An object of the account layer; nothing of it is read.
class IMHandle final : public foundation::Object {
  public:
    /// Prints one line that names the coder.
    explicit IMHandle(foundation::Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "IMHandle"; }
};

/// Base of account-layer objects; nothing of it is read.
class IMDirectlyObservableObject final : public foundation::Object {
  public:
    /// Prints one line that names the coder.
    explicit IMDirectlyObservableObject(foundation::Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "IMDirectlyObservableObject"; }
};

/// An address-book person; nothing of it is read, and no keyed archive may hold one.
class Person final : public foundation::Object {
  public:
    explicit Person(foundation::Coder&) {}
    [[nodiscard]] QByteArray className() const override { return "Person"; }
};

/// Adds the five classes of transcripts.
void registerTranscriptClasses(foundation::ClassRegistry& registry);

/// The platform's classes and those of transcripts, for the whole process.
[[nodiscard]] const foundation::ClassRegistry& sharedClassRegistry();

/// The 25 classes of the shared registry that a keyed transcript may hold.
[[nodiscard]] const std::vector<const foundation::ClassInfo*>& allowedClassList();

}  // namespace vell
