#pragma once
// SPDX-License-Identifier: MIT
//
// The types of what this program reads and of what it writes.

#include <QStringView>

namespace vell {

struct ContentType {
    QStringView identifier;  ///< the uniform type identifier
    QStringView mimeName;
};

inline constexpr ContentType iChatTranscriptType{u"com.apple.ichat.transcript",
                                                 u"application/x-ichat-transcript"};
inline constexpr ContentType markdownType{u"net.daringfireball.markdown", u"text/markdown"};

}  // namespace vell
