#pragma once
// SPDX-License-Identifier: MIT
//
// NonKeyedArchiveWriter: writes non-keyed archives (typed streams) of any object graph in either
// byte order, value by value, keeping the tables of strings, classes and objects that later values
// refer to. The caller says what a class writes; nothing stops a wrong type, a missing group or a
// reference to something unfinished.
//
//     NonKeyedArchiveWriter archive;
//     archive.object("Presentity", [&] { archive.string("AIM"); archive.string("ann"); });
//     const QByteArray bytes = archive.bytes();

#include <QByteArray>
#include <QHash>
#include <QString>
#include <functional>
#include <utility>
#include <vector>

namespace writers {

class NonKeyedArchiveWriter {
  public:
    enum class ByteOrder { little, big };
    /// A class and its superclasses, each with its version.
    using ClassChain = std::vector<std::pair<QByteArray, int>>;
    /// Writes what an object holds.
    using Body = std::function<void()>;
    /// Writes one attribute dictionary.
    struct Run {
        quint32 length = 0;  ///< UTF-16 units
        int number = 1;      ///< of the dictionary, from 1
        Body attributes;     ///< writes it; empty where the number is not new
    };

    explicit NonKeyedArchiveWriter(ByteOrder order = ByteOrder::little);

    /// What has been written so far.
    [[nodiscard]] const QByteArray& bytes() const { return bytes_; }

    // Whole groups, each an object or what encodes one.

    /// An object; returns its number, which the body's own references may already use.
    int object(const ClassChain& classes, const Body& body);
    /// An object of a platform class, or of a class that stands below NSObject.
    int object(const char* className, const Body& body);
    void nil();
    /// An object that has been written or begun.
    void reference(int object);
    int string(const QString& text, const char* className = "NSString");
    /// "NSNumber" of one of the type codes c, i, q, d.
    int number(char type, double value);
    int date(double seconds);
    int url(const QString& absolute);
    int data(QByteArrayView contents, const char* className = "NSData");
    /// The body writes exactly `count` objects.
    int array(int count, const Body& body, const char* className = "NSArray");
    /// The body writes key and value, `count` times.
    int dictionary(int count, const Body& body);
    int attributedString(const QString& text, const std::vector<Run>& runs,
                         const char* className = "NSMutableAttributedString");

    // The grammar itself.

    /// Begins a group of these types; the values follow.
    void group(const QByteArray& types);
    void integer(qint64 value);
    void real32(double value);
    void real64(double value);
    /// The body of a "+".
    void unsharedString(QByteArrayView text);
    void sharedString(const QByteArray& text);
    void cString(const QByteArray& text);
    void raw(QByteArrayView bytes) { bytes_.append(bytes); }
    /// The value of an "@", without its group.
    int objectValue(const ClassChain& classes, const Body& body);
    /// The number that the next object will have.
    [[nodiscard]] int nextObject() const { return objects_; }

    static ClassChain classes(const char* className);

  private:
    void appendBytes(quint64 value, int width);
    void classValue(const ClassChain& classes, size_t index);
    void table(int index);

    ByteOrder order_;
    QByteArray bytes_;
    QHash<QByteArray, int> strings_;
    QHash<QByteArray, int> classNumbers_;
    QHash<QByteArray, int> cStrings_;
    int objects_ = 0;
};

}  // namespace writers
