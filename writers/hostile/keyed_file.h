#pragma once
// SPDX-License-Identifier: MIT
//
// KeyedFile: a keyed transcript on the service AIM, put together from people and messages of any
// content.

#include <vector>

#include "writers/keyed_archive_writer.h"

namespace writers {

class KeyedFile {
  public:
    using Members = KeyedArchiveWriter::Members;

    Uid person(Uid id, Uid service = KeyedArchiveWriter::nil) {
        return archive.object(
            {QStringLiteral("Presentity"), QStringLiteral("NSObject")},
            {{QStringLiteral("ID"), id}, {QStringLiteral("ServiceName"), service}});
    }
    void message(const Members& members) {
        messages.push_back(archive.object(
            {QStringLiteral("InstantMessage"), QStringLiteral("NSObject")}, members));
    }
    QByteArray bytes() {
        const Uid service = archive.string(QStringLiteral("AIM"));
        archive.setTop(
            QStringLiteral("root"),
            archive.array({service, service, archive.array(messages), archive.array(people)}));
        return archive.binary();
    }

    KeyedArchiveWriter archive;
    std::vector<Uid> messages;
    std::vector<Uid> people;
};

}  // namespace writers
