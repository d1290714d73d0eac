#pragma once
// SPDX-License-Identifier: MIT
//
// PdfFile: the objects of a PDF as they are written, one after the other, and the table that says
// where each is. Nothing is kept but that table.
//
//     const int font = file.reserve();
//     file.writeStream(page, "/Type /XObject", bytes);
//     file.finish(catalog, information);

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

class QIODevice;

namespace vell {

class PdfFile {
  public:
    /// The device took fewer bytes than it was given; it knows why.
    struct WriteFailed {};

    /// Borrows an open device. Whatever writes throws WriteFailed.
    explicit PdfFile(QIODevice& device);
    PdfFile(const PdfFile&) = delete;
    PdfFile& operator=(const PdfFile&) = delete;

    /// The number of an object that is written later.
    [[nodiscard]] int reserve();
    /// Writes an object that was reserved: "<< … >>", "[ … ]".
    void write(int object, QByteArrayView value);
    int write(QByteArrayView value);
    /// Writes a compressed stream; the entries are those of its dictionary besides length and
    /// filter.
    void writeStream(int object, QByteArrayView entries, const QByteArray& data);
    /// Writes a stream that is encoded already.
    void writeEncoded(int object, QByteArrayView entries, QByteArrayView data);
    /// Ends the file. An object that was reserved and never written is null.
    void finish(int catalog, int information);

  private:
    void begin(int object);
    void put(QByteArrayView bytes);

    QIODevice& device_;
    qint64 position_ = 0;
    std::vector<qint64> offsets_;  // by object number less one; 0 until it is written
};

/// "7 0 R"
[[nodiscard]] QByteArray pdfReference(int object);
/// Text of any script, as a string object.
[[nodiscard]] QByteArray pdfText(const QString& text);
/// Bytes as a string object.
[[nodiscard]] QByteArray pdfBytes(const QByteArray& bytes);
/// With at most four digits after the point, never with an exponent.
[[nodiscard]] QByteArray pdfNumber(qreal number);

}  // namespace vell
