// SPDX-License-Identifier: MIT
#include "cli/format.h"

#include <algorithm>

#include "cli/json_format.h"
#include "cli/text_formats.h"

namespace vell {

std::span<const Format> formats() {
    static constexpr Format kFormats[] = {
        {"markdown", "md", "\n", &writeMarkdown},
        {"text", "txt", "\n", &writeText},
        {"json", "json", "", &writeJson},
    };
    return kFormats;
}

const Format* findFormat(const QString& name) {
    const auto all = formats();
    const auto at = std::find_if(all.begin(), all.end(), [&name](const Format& format) {
        return name == QLatin1StringView(format.name) ||
               name == QLatin1StringView(format.extension);
    });
    return at == all.end() ? nullptr : &*at;
}

}  // namespace vell
