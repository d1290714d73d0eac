// SPDX-License-Identifier: MIT
#include "foundation/file_wrapper.h"

#include <QHashFunctions>
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
            if (linkDestination) text += QStringLiteral(" to \"") + *linkDestination + u'"';
            break;
    }
    return text + u'>';
}

bool operator==(const FileWrapper& a, const FileWrapper& b) {
    return a.kind == b.kind && a.filename == b.filename &&
           a.preferredFilename == b.preferredFilename && a.contents == b.contents &&
           a.linkDestination == b.linkDestination &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      [](const auto& left, const auto& right) { return *left == *right; });
}

size_t FileWrapper::hash(size_t seed) const {
    seed = qHashMulti(seed, static_cast<int>(kind), filename.value_or(QString()),
                      preferredFilename.value_or(QString()), contents.value_or(StoredData()),
                      linkDestination.value_or(QString()));
    for (const auto& child : children)
        seed = child->hash(seed);
    return seed;
}

}  // namespace foundation
