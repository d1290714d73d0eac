#pragma once
// SPDX-License-Identifier: MIT
//
// Keyed archives for tests, read with the platform's classes and two application classes, of which
// "Holder" is allowed and "Person" is not.

#include <gtest/gtest.h>

#include "foundation/error.h"
#include "foundation/keyed_unarchiver.h"
#include "writers/keyed_archive_writer.h"

namespace foundation::test {

using writers::Inline;
using writers::KeyedArchiveWriter;
using writers::Uid;

/// An application class: keeps what it finds under "Held" and "$Held".
inline Value initHolder(Coder& coder) {
    EXPECT_TRUE(coder.isKeyed());
    std::vector<Value> held{coder.decodeObject("Held"), coder.decodeObject("$Held")};
    return std::make_shared<Array>(std::move(held));
}

class KeyedArchiveTest : public testing::Test {
  protected:
    ClassRegistry registry_;
    std::vector<const ClassInfo*> allowed_;
    KeyedArchiveWriter archive_;

    KeyedArchiveTest() {
        registerPlatformClasses(registry_);
        const ClassInfo* object = registry_.find("NSObject");
        registry_.add({"Holder", object, ClassKind::application, true, true, initHolder, nullptr});
        registry_.add({"Person", object, ClassKind::application, false, true, initHolder, nullptr});
        for (const char* name :
             {"Holder", "NSArray", "NSDictionary", "NSAttributedString", "NSDate", "NSData",
              "NSMutableString", "NSNumber", "NSURL", "NSTextAttachment", "NSFileWrapper"})
            allowed_.push_back(registry_.find(name));
    }

    Value read(const QByteArray& bytes) {
        return KeyedUnarchiver::unarchivedObject(Data(bytes), allowed_, registry_);
    }
    QByteArray withRoot(const Inline& root) const {
        KeyedArchiveWriter archive = archive_;
        archive.setTop("root", root);
        return archive.binary();
    }
    Value readRoot(const Inline& root) { return read(withRoot(root)); }
    /// The debug description of the error, after its code.
    std::string errorOf(const QByteArray& bytes) {
        try {
            return "no error but " + read(bytes).description().toStdString();
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), "NSCocoaErrorDomain");
            return QStringLiteral("%1 ").arg(error.code()).toStdString() +
                   error.debugDescription().toStdString();
        }
    }
    std::string errorOfRoot(const Inline& root) { return errorOf(withRoot(root)); }
    Uid holder(const Inline& held) {
        return archive_.object({"Holder", "NSObject"}, {{"Held", held}});
    }
    static Value heldBy(const Value& holder) { return holder.object<Array>()->elements.at(0); }
};

}  // namespace foundation::test
