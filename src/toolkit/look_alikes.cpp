// SPDX-License-Identifier: MIT
#include "toolkit/look_alikes.h"

#include <unicode/unistr.h>
#include <unicode/uspoof.h>

#include <QList>
#include <memory>

namespace vell {
namespace {

struct Close {
    void operator()(USpoofChecker* checker) const { uspoof_close(checker); }
};

/// Null when ICU's data isn't there.
const USpoofChecker* checker() {
    static const std::unique_ptr<USpoofChecker, Close> shared = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<USpoofChecker, Close>(uspoof_open(&status));
    }();
    return shared.get();
}

bool isAscii(const icu::UnicodeString& text) {
    for (int32_t i = 0; i < text.length(); ++i)
        if (text[i] > 0x7f) return false;
    return true;
}

}  // namespace

QString withPlainLookAlikes(const QString& text) {
    QString plain;
    plain.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        const QString character = QString::fromUcs4(&c, 1);
        icu::UnicodeString skeleton;
        if (c > 0x7f && checker()) {
            UErrorCode status = U_ZERO_ERROR;
            uspoof_getSkeletonUnicodeString(
                checker(), 0, icu::UnicodeString(static_cast<UChar32>(c)), skeleton, &status);
            if (U_FAILURE(status) || !isAscii(skeleton)) skeleton.remove();
        }
        plain += skeleton.isEmpty() ? character
                                    : QString::fromUtf16(skeleton.getBuffer(), skeleton.length());
    }
    return plain;
}

}  // namespace vell
