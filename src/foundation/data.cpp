// SPDX-License-Identifier: MIT
#include "foundation/data.h"

#include <utility>

#include "foundation/checked.h"

namespace foundation {

Data::Data(const QByteArray& bytes) : size_(bytes.size()) {
    const auto owner = std::make_shared<const QByteArray>(bytes);
    bytes_ = std::shared_ptr<const char>(owner, owner->constData());
}

Data::Data(std::shared_ptr<const void> owner, QByteArrayView bytes)
    : bytes_(std::move(owner), bytes.data()), size_(bytes.size()) {}

Data Data::slice(qsizetype offset, qsizetype size) const {
    if (offset < 0 || size < 0 || offset > size_ || size > size_ - offset)
        fatal("a slice outside its data");
    Data part;
    part.bytes_ = std::shared_ptr<const char>(bytes_, bytes_.get() + offset);
    part.size_ = size;
    return part;
}

}  // namespace foundation
