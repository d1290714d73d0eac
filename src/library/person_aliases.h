#pragma once
// SPDX-License-Identifier: MIT
//
// PersonAliases: which addresses belong to one person, as the user has decided. Addresses of one
// contact in the address book are one person's without that, unless they were separated.

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <vector>

#include "transcript/user_id.h"

namespace vell {

class PersonAliases {
  public:
    using Addresses = std::vector<TesselUserID>;

    /// Of the lines below, in the settings of the program with windows.
    static constexpr QLatin1String settingsKey{"Library/Aliases"};

    /// Makes one person of both; it is called what the first one is.
    void join(const Addresses& person, const Addresses& other);
    /// Each of these is a person of its own from now on.
    void separate(const Addresses& person);

    /// The first address of each group is the one that names the person.
    [[nodiscard]] const std::vector<Addresses>& joined() const { return joined_; }
    [[nodiscard]] const QSet<TesselUserID>& separated() const { return separated_; }

    /// For each of the people the index of the one that stands for the same person. `contactOf`
    /// has the contact of each account that the address book knows.
    [[nodiscard]] std::vector<int> personOf(const Addresses& people,
                                            const QHash<QString, QString>& contactOf) const;

    /// As settings keep them: a line for each group, one for the separated; lines that aren't
    /// understood are left out.
    [[nodiscard]] QStringList lines() const;
    [[nodiscard]] static PersonAliases fromLines(const QStringList& lines);

    friend bool operator==(const PersonAliases&, const PersonAliases&) = default;

  private:
    std::vector<Addresses> joined_;
    QSet<TesselUserID> separated_;

    void forget(const Addresses& person);
};

}  // namespace vell
