#pragma once
// SPDX-License-Identifier: MIT
//
// The dialog that offers all people of a library as the same person as one of them.

#include <functional>
#include <memory>

class QString;
class QWidget;

namespace vell {

class ContactsStore;
struct LibraryPeople;
struct TesselUserID;

/// Calls the function with whoever was chosen; not if the dialog is closed.
void askWhomToJoin(std::shared_ptr<const LibraryPeople> people, const TesselUserID& person,
                   const QString& name, const ContactsStore& contacts, QWidget& window,
                   std::function<void(const TesselUserID& other)> join);

}  // namespace vell
