#pragma once
// SPDX-License-Identifier: MIT
//
// TesselLoadLog: the diagnostic text of the current load, which people send in when a file can't be
// opened. It never holds a file's name, and of its content the first bytes only. Any thread may
// write; one text is appended whole.
//
//     if (const auto log = tesselLoadLog()) log->writeln(u"…");

#include <QByteArrayView>
#include <QString>
#include <atomic>
#include <memory>
#include <mutex>

#include "foundation/error.h"
#include "foundation/file_wrapper.h"

namespace vell {

/// The number of leading bytes of a file that are dumped into the log.
inline std::atomic<qint64> tesselDataPrefixLogLength{112};

class TesselLoadLog {
  public:
    void write(QStringView text);
    /// Appends the text and a line feed.
    void writeln(QStringView text);
    /// A copy of the whole text.
    [[nodiscard]] QString grabLog() const;
    void reset();

    /// Appends the size and a dump of the first bytes of a file.
    void logPreambleOfData(QByteArrayView data);
    /// Appends domain, code and text of an error of the keyed reader, and its underlying errors.
    void logKeyedArchivedError(const foundation::Error& error);
    /// Starts afresh for a newly opened file, of whose name only the extension is written.
    void openFile(const foundation::FileWrapper& wrapper);

  private:
    mutable std::mutex lock_;
    QString log_;
};

/// The log that all loads of the process share; null when logging is switched off.
[[nodiscard]] std::shared_ptr<TesselLoadLog> tesselLoadLog();
/// Replaces the shared log; null switches logging off without any other change.
void setTesselLoadLog(std::shared_ptr<TesselLoadLog> log);

}  // namespace vell
