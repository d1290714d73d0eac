// SPDX-License-Identifier: MIT
#include "writers/file_wrapper_writer.h"

#include <QtEndian>
#include <utility>

namespace writers {

QByteArray word(quint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

namespace {

QByteArray counted(const QByteArray& bytes) {
    return word(static_cast<quint32>(bytes.size())) + bytes;
}

/// Replaces what the old 8-bit form of a name can't hold.
QByteArray lossyName(const QString& name) {
    QByteArray bytes;
    for (const QChar c : name)
        bytes.append(c < u'\x80' ? c.toLatin1() : '?');
    return bytes;
}

QByteArray bytesItem(const QByteArray& contents, std::optional<int> padding = {}) {
    if (!padding) return word(1) + counted(contents);
    return word(1) + word(0x80000000) + word(static_cast<quint32>(contents.size())) +
           counted(QByteArray(*padding, '\0')) + contents;
}

/// The table of dates and modes; readers skip it.
QByteArray attributesItem(const QByteArray& of) {
    return bytesItem(word(1) + counted(of) + counted(word(0) + word(0666) + word(2) + word(1)));
}

QByteArray directoryItem(const FileDraft& file) {
    std::vector<std::pair<QByteArray, QByteArray>> entries;
    if (!file.children) entries.emplace_back("..", bytesItem(file.contents, file.padding));
    for (const FileDraft& child : file.children.value_or(std::vector<FileDraft>{}))
        entries.emplace_back(
            child.name.value_or(QString()).toUtf8(),
            child.children ? directoryItem(child) : bytesItem(child.contents, child.padding));
    if (file.name) {
        entries.emplace_back("__@PreferredName@__", bytesItem(lossyName(*file.name)));
        entries.emplace_back("__@UTF8PreferredName@__", bytesItem(file.name->toUtf8()));
    }
    if (!file.children) entries.emplace_back(".", attributesItem(".."));

    QByteArray item = word(3) + word(static_cast<quint32>(entries.size()));
    for (const auto& entry : entries)
        item += counted(entry.first);
    for (const auto& entry : entries)
        item += word(static_cast<quint32>(entry.second.size()));
    for (const auto& entry : entries)
        item += entry.second;
    return item;
}

}  // namespace

QByteArray serializedFileWrapper(const FileDraft& file) {
    return "rtfd" + word(0) + directoryItem(file);
}

}  // namespace writers
