#pragma once
// SPDX-License-Identifier: MIT
//
// A few lines of conversation as a timeline shows them, for windows that introduce the program.

class QWidget;

namespace vell {

class ContactsStore;
class PictureCache;

/// A picture to look at: it takes neither mouse nor keyboard. The caller owns it.
[[nodiscard]] QWidget* sampleChat(ContactsStore& contacts, PictureCache& pictures);

}  // namespace vell
