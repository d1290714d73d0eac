#pragma once
// SPDX-License-Identifier: MIT
//
// DerivedTexts: texts that are made from others, such as a name without its prefix. An archive may
// share one long text among thousands of objects; what is made from it is shared as well: it is
// made once for all that share the characters.
//
//     const QString name = texts.derived(stored, nullptr, [&] { return stored.sliced(2); });

#include <QString>
#include <map>
#include <tuple>

namespace foundation {

class DerivedTexts {
  public:
    /// What `make` returns for these characters and this context; it is called once for both. Of
    /// the context, which must outlive this object, only the address counts.
    template <class Make>
    QString derived(const QString& from, const void* context, Make make) {
        const Key key(from.constData(), from.size(), context);
        const auto known = known_.find(key);
        if (known != known_.end()) return known->second.result;
        return known_.emplace(key, Derived{from, make()}).first->second.result;
    }

  private:
    using Key = std::tuple<const QChar*, qsizetype, const void*>;
    struct Derived {
        QString from;  // keeps the address of its characters from being used again
        QString result;
    };
    std::map<Key, Derived> known_;
};

}  // namespace foundation
