#pragma once
// SPDX-License-Identifier: MIT
//
// The plain print: single diagnostic lines that belong to no logger. The window program leaves it
// on standard output; a program whose standard output is a document points it elsewhere first.
// Any thread may print; a line is written whole.

#include <QStringView>
#include <cstdio>
#include <functional>

namespace foundation {

/// The most units of a printed line.
inline constexpr qsizetype longestPrintedLine = 1000;

/// Writes the line as UTF-8, followed by one line feed, to the print target. A longer one than the
/// longest is cut, and whatever it quotes it is one line: see printable().
void print(QStringView line);

/// Sends all further lines to a C stream (not owned; standard output at program start).
void setPrintTarget(std::FILE* stream);

/// Hands all further lines to a function, without the line feed; an empty one restores the stream.
void setPrintFunction(std::function<void(QStringView)> function);

/// While it lives, what its thread prints is about one file: after a thousand lines the others are
/// only counted, and at its end one line tells how many they were.
class PrintingOfOneFile {
  public:
    PrintingOfOneFile();
    PrintingOfOneFile(const PrintingOfOneFile&) = delete;
    PrintingOfOneFile& operator=(const PrintingOfOneFile&) = delete;
    ~PrintingOfOneFile();

  private:
    friend void print(QStringView line);
    static constexpr qint64 kMostLines = 1000;
    qint64 lines_ = 0;
};

}  // namespace foundation
