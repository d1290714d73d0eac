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
#include <optional>

namespace vell {

class JsonWriter {
  public:
    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    /// The name of the member whose value comes next; plain ASCII.
    void key(const char* name);

    void string(QStringView text);
    void number(qint64 value);
    /// With as many digits as restore the same double; null when it is no finite number.
    void number(double value);
    void boolean(bool value);
    void null();
    /// A line feed before the next value: for people, and for tools that compare lines.
    void breakLine() { wantsLineFeed_ = true; }

    /// What was written since the last call.
    [[nodiscard]] QByteArray take() { return std::exchange(buffer_, QByteArray()); }
    [[nodiscard]] qsizetype size() const { return buffer_.size(); }

  private:
    QByteArray buffer_;
    bool wantsComma_ = false;
    bool wantsLineFeed_ = false;

    void open(char bracket);
    void close(char bracket);
    void beginValue();
    void appendEscaped(QStringView text);
};

}  // namespace vell
