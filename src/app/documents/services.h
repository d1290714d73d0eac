#pragma once
// SPDX-License-Identifier: MIT
//
// Services: what all document windows share. The program owns them and they outlive its windows.

namespace vell {

class ContactsStore;
class PictureCache;
class RecentFiles;
class Settings;

struct Services {
    Settings& settings;
    RecentFiles& recentFiles;
    ContactsStore& contacts;
    PictureCache& pictures;
};

}  // namespace vell
