// SPDX-License-Identifier: MIT
#include "paper/pdf_file.h"

#include <QIODevice>
#include <algorithm>
#include <cmath>

namespace vell {
namespace {

// Marks the file as binary for programs that would convert line ends.
constexpr char header[] = "%PDF-1.7\n%\xe2\xe3\xcf\xd3\n";
constexpr qsizetype lengthPrefix = 4;  // that qCompress() puts before a zlib stream
constexpr int digits = 4;              // after the point
constexpr qreal largest = 1e9;

}  // namespace

PdfFile::PdfFile(QIODevice& device) : device_(device) {
    put(header);
}

void PdfFile::put(QByteArrayView bytes) {
    if (device_.write(bytes.data(), bytes.size()) != bytes.size()) throw WriteFailed();
    position_ += bytes.size();
}

int PdfFile::reserve() {
    offsets_.push_back(0);
    return static_cast<int>(offsets_.size());
}

void PdfFile::begin(int object) {
    offsets_[static_cast<size_t>(object) - 1] = position_;
    put(QByteArray::number(object) + " 0 obj\n");
}

void PdfFile::write(int object, QByteArrayView value) {
    begin(object);
    put(value);
    put("\nendobj\n");
}

int PdfFile::write(QByteArrayView value) {
    const int object = reserve();
    write(object, value);
    return object;
}

void PdfFile::writeStream(int object, QByteArrayView entries, const QByteArray& data) {
    const QByteArray compressed = qCompress(data);
    writeEncoded(object, entries.toByteArray() + " /Filter /FlateDecode",
                 QByteArrayView(compressed).sliced(lengthPrefix));
}

void PdfFile::writeEncoded(int object, QByteArrayView entries, QByteArrayView data) {
    begin(object);
    put("<< " + entries.toByteArray() + " /Length " + QByteArray::number(data.size()) +
        " >>\nstream\n");
    put(data);
    put("\nendstream\nendobj\n");
}

void PdfFile::finish(int catalog, int information) {
    for (size_t i = 0; i < offsets_.size(); ++i) {
        if (offsets_[i] == 0) write(static_cast<int>(i) + 1, "null");
    }
    const qint64 table = position_;
    const QByteArray count = QByteArray::number(static_cast<qint64>(offsets_.size()) + 1);
    put("xref\n0 " + count + "\n0000000000 65535 f \n");
    for (const qint64 offset : offsets_)
        put(QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n");
    put("trailer\n<< /Size " + count + " /Root " + pdfReference(catalog) + " /Info " +
        pdfReference(information) + " >>\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n");
}

QByteArray pdfReference(int object) {
    return QByteArray::number(object) + " 0 R";
}

QByteArray pdfText(const QString& text) {
    QByteArray bytes("\xfe\xff");
    // A surrogate without its other half is no text.
    const QList<uint> characters = text.toUcs4();
    const QString valid =
        QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.data()), characters.size());
    for (const QChar c : valid) {
        bytes.append(static_cast<char>(c.unicode() >> 8));
        bytes.append(static_cast<char>(c.unicode() & 0xff));
    }
    return pdfBytes(bytes);
}

QByteArray pdfBytes(const QByteArray& bytes) {
    return '<' + bytes.toHex() + '>';
}

QByteArray pdfNumber(qreal number) {
    const qreal shown = std::isfinite(number) ? std::clamp(number, -largest, largest) : 0;
    QByteArray text = QByteArray::number(shown, 'f', digits);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.')) text.chop(1);
    return text == "-0" ? QByteArray("0") : text;
}

}  // namespace vell
