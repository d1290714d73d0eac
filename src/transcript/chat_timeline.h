#pragma once
// SPDX-License-Identifier: MIT
//
// iChatTimeline: the decoded root object of a transcript, before it becomes a chat log, from a
// keyed archive or from a non-keyed one; each step is written to the load log before a failure is
// thrown.

#include <QString>
#include <exception>
#include <memory>
#include <vector>

#include "foundation/class_registry.h"
#include "transcript/instant_message.h"
#include "transcript/load_log.h"
#include "transcript/log_size.h"
#include "transcript/presentity.h"

namespace vell {

struct iChatTimeline {
    /// The keyed archive has no root object.
    struct NoRootObjectError : std::exception {
        [[nodiscard]] const char* what() const noexcept override;
    };
    /// The root of the keyed archive is no array.
    struct UnexpectedRootObject : std::exception {
        explicit UnexpectedRootObject(foundation::Value object) : object(std::move(object)) {}
        [[nodiscard]] const char* what() const noexcept override;
        foundation::Value object;
    };
    /// What only the non-keyed reader throws.
    struct NonKeyed {
        /// There is no non-keyed unarchiver class.
        struct UnarchiverNotAvailable : std::exception {
            [[nodiscard]] const char* what() const noexcept override;
        };
        /// The class of that name is no object class.
        struct UnarchiverNotAnNSObjectType : std::exception {
            [[nodiscard]] const char* what() const noexcept override;
        };
        /// The unarchiver could not read the data.
        struct UnarchiverReturnedNil : std::exception {
            [[nodiscard]] const char* what() const noexcept override;
        };
        /// The root of the non-keyed archive is no array.
        struct UnexpectedRootObject : std::exception {
            explicit UnexpectedRootObject(foundation::Value object) : object(std::move(object)) {}
            [[nodiscard]] const char* what() const noexcept override;
            foundation::Value object;
        };
    };

    iChatTimeline() = default;
    /// Reads a keyed archive. Throws the keyed reader's foundation::Error, NoRootObjectError or
    /// UnexpectedRootObject. The log may be null.
    static iChatTimeline fromData(const foundation::Data& data, TesselLoadLog* log);
    /// Reads a non-keyed archive with the class that the registry has for it. Throws the errors of
    /// NonKeyed, or foundation::Error. The log may be null.
    static iChatTimeline fromNonKeyedData(const foundation::Data& data,
                                          const foundation::ClassRegistry& registry,
                                          TesselLoadLog* log);
    /// From the root array of a keyed archive; never fails.
    static iChatTimeline fromValues(const foundation::Array& values);
    /// From the root array of a non-keyed archive; never fails.
    static iChatTimeline fromNonKeyedValues(const foundation::Array& values);

    QString protocolName;
    QString unknown1;
    QString unknown4;
    qint64 unknown5 = 0;
    QString unknown6;
    QString unknown7;
    std::vector<std::shared_ptr<const InstantMessage>> messages;
    std::vector<std::shared_ptr<const Presentity>> participants;
    /// Estimates logSize. Throws foundation::Error when the log would be out of all proportion to
    /// the file: a few bytes can name one message a million times.
    void measureLog(qsizetype fileSize);
    /// What the messages will take as events; known once the timeline was read from data.
    LogSize logSize;

    /// Equal in all that was archived; messages and participants are the same objects.
    friend bool operator==(const iChatTimeline& a, const iChatTimeline& b);
    friend size_t qHash(const iChatTimeline& timeline, size_t seed = 0) {
        return timeline.hash(seed);
    }
    [[nodiscard]] size_t hash(size_t seed = 0) const;
};

}  // namespace vell
