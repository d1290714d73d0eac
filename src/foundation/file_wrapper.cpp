// SPDX-License-Identifier: MIT
#include "foundation/file_wrapper.h"

#include <algorithm>

namespace foundation {

QString FileWrapper::description() const {
    QString text = QStringLiteral("<FileWrapper: ");
    if (const auto& name = filename ? filename : preferredFilename) {
        text += u'"' + *name + QStringLiteral("\" ");
    }
    switch (kind) {
        case Kind::regularFile:
            text += QStringLiteral("regular file, %1 bytes").arg(contents ? contents->size() : 0);
            break;
        case Kind::directory:
            text += QStringLiteral("directory, %1 entries").arg(children.size());
            break;
        case Kind::symbolicLink:
            text += QStringLiteral("symbolic link");
            break;
    }
    return text + u'>';
}

bool operator==(const FileWrapper& a, const FileWrapper& b) {
    return a.kind == b.kind && a.filename == b.filename &&
           a.preferredFilename == b.preferredFilename && a.contents == b.contents &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      [](const auto& left, const auto& right) { return *left == *right; });
}

}  // namespace foundation
