// SPDX-License-Identifier: MIT
#include "paper/pdf_outline.h"

#include <QByteArray>

namespace vell {
namespace {

/// How the entries hang together: indices, or -1.
struct Links {
    int parent = -1;
    int previous = -1;
    int next = -1;
    int first = -1;
    int last = -1;
    int children = 0;
};

void adopt(std::vector<Links>& links, Links& parent, int parentIndex, int child) {
    Links& own = links[static_cast<size_t>(child)];
    own.parent = parentIndex;
    own.previous = parent.last;
    if (parent.last >= 0) links[static_cast<size_t>(parent.last)].next = child;
    if (parent.first < 0) parent.first = child;
    parent.last = child;
    ++parent.children;
}

}  // namespace

int writeOutline(PdfFile& file, const std::vector<OutlineEntry>& entries) {
    if (entries.empty()) return 0;
    Links root;
    std::vector<Links> links(entries.size());
    std::vector<int> open;  // the latest entry of each level
    std::vector<int> objects;
    for (size_t i = 0; i < entries.size(); ++i) {
        open.resize(static_cast<size_t>(entries[i].level));
        const int parent = open.empty() ? -1 : open.back();
        adopt(links, parent < 0 ? root : links[static_cast<size_t>(parent)], parent,
              static_cast<int>(i));
        open.push_back(static_cast<int>(i));
        objects.push_back(file.reserve());
    }
    const int outline = file.reserve();
    const auto entry = [&](const char* key, int index) {
        if (index < 0) return QByteArray();
        return QByteArray(" /") + key + ' ' + pdfReference(objects[static_cast<size_t>(index)]);
    };
    for (size_t i = 0; i < entries.size(); ++i) {
        const Links& own = links[i];
        QByteArray value =
            "<< /Title " + pdfText(entries[i].title) + " /Parent " +
            pdfReference(own.parent < 0 ? outline : objects[static_cast<size_t>(own.parent)]) +
            entry("Prev", own.previous) + entry("Next", own.next) + entry("First", own.first) +
            entry("Last", own.last);
        if (own.children > 0) value += " /Count " + QByteArray::number(-own.children);
        value += " /Dest [" + pdfReference(entries[i].page) + " /XYZ null " +
                 pdfNumber(entries[i].top) + " null] >>";
        file.write(objects[i], value);
    }
    file.write(outline, "<< /Type /Outlines" + entry("First", root.first) +
                            entry("Last", root.last) + " /Count " +
                            QByteArray::number(root.children) + " >>");
    return outline;
}

}  // namespace vell
