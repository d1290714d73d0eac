// SPDX-License-Identifier: MIT
#include "foundation/class_registry.h"

#include <algorithm>
#include <utility>

#include "foundation/checked.h"
#include "foundation/unarchiver.h"

namespace foundation {
namespace {

struct PlatformClass {
    const char* name;
    const char* superclass;  ///< an earlier row
    ClassKind kind;
};

constexpr PlatformClass platformClasses[] = {
    {"NSObject", nullptr, ClassKind::none},
    {"NSCoder", "NSObject", ClassKind::none},
    {"NSString", "NSObject", ClassKind::string},
    {"NSMutableString", "NSString", ClassKind::string},
    {"NSValue", "NSObject", ClassKind::opaque},
    {"NSNumber", "NSValue", ClassKind::number},
    {"NSDecimalNumber", "NSNumber", ClassKind::opaque},
    {"NSData", "NSObject", ClassKind::data},
    {"NSMutableData", "NSData", ClassKind::data},
    {"NSDate", "NSObject", ClassKind::date},
    {"NSCalendarDate", "NSDate", ClassKind::date},
    {"NSURL", "NSObject", ClassKind::url},
    {"NSUUID", "NSObject", ClassKind::opaque},
    {"NSNull", "NSObject", ClassKind::null},
    {"NSArray", "NSObject", ClassKind::array},
    {"NSMutableArray", "NSArray", ClassKind::array},
    {"NSSet", "NSObject", ClassKind::set},
    {"NSMutableSet", "NSSet", ClassKind::set},
    {"NSCountedSet", "NSMutableSet", ClassKind::countedSet},
    {"NSOrderedSet", "NSObject", ClassKind::orderedSet},
    {"NSMutableOrderedSet", "NSOrderedSet", ClassKind::orderedSet},
    {"NSDictionary", "NSObject", ClassKind::dictionary},
    {"NSMutableDictionary", "NSDictionary", ClassKind::dictionary},
    {"NSAttributedString", "NSObject", ClassKind::attributedString},
    {"NSMutableAttributedString", "NSAttributedString", ClassKind::attributedString},
    {"NSTextStorage", "NSMutableAttributedString", ClassKind::attributedString},
    {"NSTextAttachment", "NSObject", ClassKind::textAttachment},
    {"NSTokenAttachment", "NSTextAttachment", ClassKind::textAttachment},
    {"NSFileWrapper", "NSObject", ClassKind::fileWrapper},
    {"NSCalendar", "NSObject", ClassKind::calendar},
    {"NSTimeZone", "NSObject", ClassKind::opaque},
    {"NSLocale", "NSObject", ClassKind::opaque},
    {"NSFont", "NSObject", ClassKind::opaque},
    {"NSColor", "NSObject", ClassKind::opaque},
    {"NSColorSpace", "NSObject", ClassKind::opaque},
    {"NSParagraphStyle", "NSObject", ClassKind::opaque},
    {"NSMutableParagraphStyle", "NSParagraphStyle", ClassKind::opaque},
    {"NSTextTab", "NSObject", ClassKind::opaque},
    {"NSTextList", "NSObject", ClassKind::opaque},
    {"NSTextBlock", "NSObject", ClassKind::opaque},
    {"NSGlyphInfo", "NSObject", ClassKind::opaque},
    {"NSIdentityGlyphInfo", "NSGlyphInfo", ClassKind::opaque},
    {"NSCIDGlyphInfo", "NSGlyphInfo", ClassKind::opaque},
    {"NSGlyphNameGlyphInfo", "NSGlyphInfo", ClassKind::opaque},
    {"NSCTGlyphInfo", "NSGlyphInfo", ClassKind::opaque},
    {"NSShadow", "NSObject", ClassKind::opaque},
    {"NSCursor", "NSObject", ClassKind::opaque},
    {"NSImage", "NSObject", ClassKind::opaque},
};

}  // namespace

bool ClassInfo::isSubclassOf(const ClassInfo& other) const {
    for (const ClassInfo* info = this; info; info = info->superclass)
        if (info == &other) return true;
    return false;
}

const ClassInfo& ClassRegistry::add(ClassInfo info) {
    const ClassInfo& added = classes_.emplace_back(std::move(info));
    const std::string_view name(added.name.constData(), std::size_t(added.name.size()));
    if (!byName_.emplace(name, &added).second) fatal("a class was registered twice");
    longestName_ = std::max(longestName_, name.size());
    return added;
}

const ClassInfo* ClassRegistry::find(std::string_view name) const {
    // An archive may share one long name among many classes: it is not even hashed.
    if (name.size() > longestName_) return nullptr;
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

void registerValueClasses(ClassRegistry& registry) {
    for (const PlatformClass& row : platformClasses)
        registry.add({.name = row.name,
                      .superclass = row.superclass ? registry.find(row.superclass) : nullptr,
                      .kind = row.kind});
}

void registerPlatformClasses(ClassRegistry& registry) {
    registerValueClasses(registry);
    registry.add({.name = "NSUnarchiver",
                  .superclass = registry.find("NSCoder"),
                  .supportsSecureCoding = false,
                  .unarchiveObjectWithData = [&registry](const Data& data) {
                      return unarchiveObjectWithData(data, registry);
                  }});
}

}  // namespace foundation
