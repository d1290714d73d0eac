// SPDX-License-Identifier: MIT
//
// Any bytes as a file of vCards: every address and name that comes out says something, and line
// ends of another kind make no difference.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "identity/vcard/vcard_contacts.h"
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

Count read(std::string_view file) {
    NoLog log;
    Count count;
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
    readVCards(QByteArray(file.data(), static_cast<qsizetype>(file.size())), QStringLiteral("f"),
               ContactPictures::wanted, log, handle);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::string file(reinterpret_cast<const char*>(bytes), size);
    const Count count = read(file);
    // Wide characters hold bytes that look like line ends.
    if (file.find('\0') != std::string::npos || file.find('\r') != std::string::npos) return 0;
    std::replace(file.begin(), file.end(), '\n', '\r');
    if (read(file) != count) std::abort();
    return 0;
}
