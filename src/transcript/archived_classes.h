#pragma once
// SPDX-License-Identifier: MIT
//
// The classes that a transcript's archive may name: the five of its own (three of them are mere
// placeholders) beside the platform's, and which of them a keyed archive may hold.

#include <vector>

#include "foundation/class_registry.h"

namespace vell {

/// An object of the account layer; nothing of it is read.
class IMHandle final : public foundation::Object {
  public:
    /// Prints one line that names the coder.
    static foundation::Value initWithCoder(foundation::Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "IMHandle"; }
};

/// Base of account-layer objects; nothing of it is read.
class IMDirectlyObservableObject final : public foundation::Object {
  public:
    /// Prints one line that names the coder.
    static foundation::Value initWithCoder(foundation::Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "IMDirectlyObservableObject"; }
};

/// An address-book person; nothing of it is read, and no keyed archive may hold one.
class Person final : public foundation::Object {
  public:
    static foundation::Value initWithCoder(foundation::Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "Person"; }
};

/// Adds the five classes of transcripts.
void registerTranscriptClasses(foundation::ClassRegistry& registry);

/// The platform's classes and those of transcripts, for the whole process.
[[nodiscard]] const foundation::ClassRegistry& sharedClassRegistry();

/// The 25 classes that a keyed transcript may hold, as this registry has them; one that it lacks is
/// left out.
[[nodiscard]] std::vector<const foundation::ClassInfo*> allowedClassList(
    const foundation::ClassRegistry& registry);
/// Those of the shared registry, looked up once.
[[nodiscard]] const std::vector<const foundation::ClassInfo*>& allowedClassList();

}  // namespace vell
