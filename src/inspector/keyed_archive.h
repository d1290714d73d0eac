#pragma once
// SPDX-License-Identifier: MIT
//
// A property list as an archive. If it is none it has no objects, and all is below its root.

#include <QHash>

#include "foundation/plist/binary_property_list.h"
#include "inspector/archive.h"

namespace vell::inspector {

class KeyedArchive final : public Archive {
  public:
    KeyedArchive(foundation::BinaryPropertyList list, Offsets offsets);

    [[nodiscard]] QString summary() const override;
    [[nodiscard]] quint64 placeCount() const override { return list_.objectCount() + 1; }
    [[nodiscard]] Entry root() const override;
    [[nodiscard]] quint64 objectCount() const override;
    [[nodiscard]] Entry object(quint64 number) override;
    void visitParts(const Entry& whole, quint64 first, const Visitor& visitor) override;

  private:
    using Kind = foundation::BinaryPropertyList::Kind;
    using Node = foundation::BinaryPropertyList::Node;
    using Ref = foundation::BinaryPropertyList::Ref;

    [[nodiscard]] bool isArchive() const { return objects_.kind() == Kind::array; }
    [[nodiscard]] Entry entry(Ref ref, QString step) const;
    void describe(Entry& entry, const Node& node) const;
    [[nodiscard]] QString text(const Node& node) const;
    [[nodiscard]] QString name(Ref key) const;
    [[nodiscard]] Ref find(const Node& dictionary, QByteArrayView key) const;
    [[nodiscard]] QString className(quint64 uid);

    foundation::BinaryPropertyList list_;
    bool showsOffsets_;
    Ref objectsRef_ = foundation::BinaryPropertyList::none;
    Node objects_;
    QHash<quint64, QString> classNames_;  ///< by UID
};

}  // namespace vell::inspector
