#pragma once
// SPDX-License-Identifier: MIT
//
// The plain print: single diagnostic lines that belong to no logger. They go to standard output
// unless a program that writes a document there redirects them. Any thread may print; a line is
// written whole.

#include <QStringView>
#include <cstdio>
#include <functional>

namespace foundation {

/// The most units of a printed line.
inline constexpr qsizetype longestPrintedLine = 1000;

/// Writes the text as UTF-8 and one line feed to the print target. It is cut after
/// longestPrintedLine and escaped so that it is one line: see printable().
void print(QStringView line);

/// Sends all further lines to a C stream (not owned; standard output at program start).
void setPrintTarget(std::FILE* stream);

/// Passes all further lines to a function, without the line feed; an empty one restores the stream.
void setPrintFunction(std::function<void(QStringView)> function);

/// While it lives, its thread prints about one file: lines after the first thousand are only
/// counted, and its destructor prints their number.
class PrintingOfOneFile {
  public:
    PrintingOfOneFile();
    PrintingOfOneFile(const PrintingOfOneFile&) = delete;
    PrintingOfOneFile& operator=(const PrintingOfOneFile&) = delete;
    ~PrintingOfOneFile();

  private:
    friend void print(QStringView line);
    static constexpr qint64 mostLines = 1000;
    qint64 lines_ = 0;
};

/// While it lives, its thread prints nothing: for files that are only looked through, not opened.
class SilentThread {
  public:
    SilentThread();
    SilentThread(const SilentThread&) = delete;
    SilentThread& operator=(const SilentThread&) = delete;
    ~SilentThread();
};

}  // namespace foundation
