#pragma once
// SPDX-License-Identifier: MIT
//
// JsonWriter: writes JSON piece by piece, members in the given order. The text is UTF-8; what isn't
// valid Unicode becomes U+FFFD, so that every reader accepts it.
//
//     writer.beginObject();
//     writer.key("sequence");
//     writer.number(1);
//     writer.endObject();

#include <QByteArray>
#include <QStringView>
#include <utility>

#include "export/byte_buffer.h"

namespace vell {

class JsonWriter {
  public:
    /// Keeps everything for take().
    JsonWriter() = default;
    explicit JsonWriter(ByteSink next) : out_(std::move(next)) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    /// The name of the member whose value comes next; plain ASCII.
    template <std::size_t size>
    void key(const char (&name)[size]) {
        beginValue();
        out_.append('"');
        out_.append(name);
        out_.append("\":");
        wantsComma_ = false;
    }

    void string(QStringView text);
    /// Plain ASCII without quotation marks and backslashes.
    void ascii(QByteArrayView text) {
        beginValue();
        out_.append('"');
        out_.append(text);
        out_.append('"');
    }
    void number(qint64 value);
    /// With as many digits as restore the same double; null when it is no finite number.
    void number(double value);
    void boolean(bool value);
    void null();
    /// Values, or members with their names, that another writer wrote.
    void written(QByteArrayView values) {
        beginValue();
        out_.append(values);
    }
    /// A line feed before the next value: for people, and for tools that compare lines.
    void breakLine() { wantsLineFeed_ = true; }
    /// Ends the line and the document that is on it; another one may follow.
    void endLine() {
        out_.append('\n');
        wantsComma_ = false;
    }

    // For a writer without a destination:
    /// What was written since the last call.
    [[nodiscard]] QByteArray take() { return out_.take(); }
    [[nodiscard]] QByteArrayView view() const { return out_.view(); }
    /// Begins anew.
    void clear() {
        out_.clear();
        wantsComma_ = false;
    }
    /// Passes on what is left.
    void flush() { out_.flush(); }

  private:
    ByteBuffer out_;
    bool wantsComma_ = false;
    bool wantsLineFeed_ = false;

    void appendThousandths(qint64 thousandths);
    void open(char bracket) {
        beginValue();
        out_.append(bracket);
        wantsComma_ = false;
    }
    void close(char bracket) {
        if (std::exchange(wantsLineFeed_, false)) out_.append('\n');
        out_.append(bracket);
        wantsComma_ = true;
    }
    void beginValue() {
        if (std::exchange(wantsComma_, true)) out_.append(',');
        if (std::exchange(wantsLineFeed_, false)) out_.append('\n');
    }
};

}  // namespace vell
