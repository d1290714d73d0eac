// SPDX-License-Identifier: MIT
//
// Any bytes as a file of vCards, read in one piece and in small ones: both say the same.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "identity/vcard_contacts.h"
#include "toolkit/logger.h"

namespace {

using namespace vell;

class NoLog final : public Logger {
  public:
    [[nodiscard]] LogLevel logLevel() const override { return LogLevel::error; }
    [[nodiscard]] QString description() const override { return {}; }
    void primaryLog(LogLevel, const LogValue&, std::span<const LogValue>) override {}
};

struct Count {
    size_t contacts = 0;
    size_t addresses = 0;
    size_t units = 0;
    friend bool operator==(const Count&, const Count&) = default;
};

Count read(std::string_view file, size_t piece) {
    NoLog log;
    Count count;
    const auto source = [&](char* buffer, size_t size) {
        const size_t taken = std::min({size, piece, file.size()});
        std::copy_n(file.data(), taken, buffer);
        file.remove_prefix(taken);
        return taken;
    };
    const auto handle = [&](const ContactRecord& contact) {
        if (contact.identifier.isEmpty() || (contact.name && contact.name->isEmpty())) std::abort();
        count.contacts++;
        count.units += static_cast<size_t>(contact.name.value_or(QString()).size());
        for (const auto& address : contact.instantMessageAddresses) {
            if (address.userName.isEmpty()) std::abort();
            count.units += static_cast<size_t>(address.userName.size());
        }
        count.addresses += contact.instantMessageAddresses.size() + contact.phoneNumbers.size() +
                           contact.emailAddresses.size();
    };
    readVCards(source, QStringLiteral("f"), ContactPictures::wanted, log, handle);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view file(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    if (read(file, file.size()) != read(file, size_t{bytes[0]} % 61 + 1)) std::abort();
    return 0;
}
