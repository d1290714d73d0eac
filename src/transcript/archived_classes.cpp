// SPDX-License-Identifier: MIT
#include "transcript/archived_classes.h"

#include <utility>

#include "foundation/print.h"
#include "transcript/instant_message.h"
#include "transcript/presentity.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::ClassInfo;
using foundation::ClassKind;
using foundation::ClassRegistry;

namespace {

template <class T>
foundation::Value decoded(foundation::Coder& coder) {
    return std::make_shared<T>(coder);
}

}  // namespace

IMHandle::IMHandle(foundation::Coder& coder) {
    foundation::print(u"IMHandle INIT: "_s + coder.description());
}

IMDirectlyObservableObject::IMDirectlyObservableObject(foundation::Coder& coder) {
    foundation::print(u"IMDirectlyObservableObject INIT: "_s + coder.description());
}

void registerTranscriptClasses(ClassRegistry& registry) {
    const auto add = [&registry](const char* name,
                                 foundation::Value (*initWithCoder)(foundation::Coder&),
                                 bool supportsSecureCoding = true) {
        ClassInfo info;
        info.name = name;
        info.superclass = registry.find("NSObject");
        info.kind = ClassKind::application;
        info.supportsSecureCoding = supportsSecureCoding;
        info.initWithCoder = initWithCoder;
        registry.add(std::move(info));
    };
    add("InstantMessage", &InstantMessage::initWithCoder);
    add("Presentity", &Presentity::initWithCoder);
    add("IMHandle", &decoded<IMHandle>);
    add("IMDirectlyObservableObject", &decoded<IMDirectlyObservableObject>);
    add("Person", &decoded<Person>, false);
}

const ClassRegistry& sharedClassRegistry() {
    struct Shared {
        ClassRegistry registry;
        Shared() {
            foundation::registerPlatformClasses(registry);
            registerTranscriptClasses(registry);
        }
    };
    static const Shared shared;
    return shared.registry;
}

namespace {

std::vector<const ClassInfo*> findAllowedClasses() {
    constexpr const char* allowedNames[] = {
        "InstantMessage",
        "IMHandle",
        "IMDirectlyObservableObject",
        "Presentity",
        "NSArray",
        "NSMutableArray",
        "NSDictionary",
        "NSMutableDictionary",
        "NSString",
        "NSMutableString",
        "NSAttributedString",
        "NSMutableAttributedString",
        "NSDate",
        "NSCalendar",
        "NSData",
        "NSMutableData",
        "NSNumber",
        "NSURL",
        "NSFont",
        "NSParagraphStyle",
        "NSMutableParagraphStyle",
        "NSTextAttachment",
        "NSGlyphInfo",
        "NSColor",
        "NSFileWrapper",
    };
    std::vector<const ClassInfo*> result;
    for (const char* name : allowedNames) {
        if (const ClassInfo* info = sharedClassRegistry().find(name)) result.push_back(info);
    }
    return result;
}

}  // namespace

const std::vector<const ClassInfo*>& allowedClassList() {
    static const std::vector<const ClassInfo*> shared = findAllowedClasses();
    return shared;
}

}  // namespace vell
