#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryContents: what a library's database knows about its conversations and the people in them,
// without their messages. Tens of thousands of conversations take some megabytes and are read in a
// fraction of a second, so that lists over them need no further queries.

#include <QByteArray>
#include <QString>
#include <string>
#include <vector>

#include "foundation/date.h"
#include "library/file_list.h"
#include "library/library_store.h"
#include "transcript/user_id.h"

namespace vell {

struct LibraryConversation {
    qint64 file = 0;  ///< its number in the database
    QByteArray path;
    /// Other files with the very same bytes.
    std::vector<QByteArray> copies;
    qint64 messages = 0;
    foundation::Date begin;
    foundation::Date end;
    int owner = -1;           ///< an index into the people
    std::vector<int> others;  ///< everybody else in it, in ascending order
};

struct LibraryContents {
    std::vector<TesselUserID> people;
    std::vector<LibraryConversation> conversations;  ///< the latest first
    std::vector<BrokenFile> broken;                  ///< by path

    /// Of the files in these folders; throws DatabaseError.
    [[nodiscard]] static LibraryContents read(LibraryStore& store,
                                              const std::vector<std::string>& folders);
};

/// How a conversation begins: its first words, in one line.
[[nodiscard]] QString firstWords(LibraryStore& store, qint64 file);

}  // namespace vell
