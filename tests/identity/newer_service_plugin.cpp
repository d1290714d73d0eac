// SPDX-License-Identifier: MIT
//
// A plug-in as a later release may bring it: a version that this program doesn't know, and no
// function where this program would look for one.
#include "identity/service/service_plugin.h"

const VellContactsService* vellContactsService() {
    static constexpr VellContactsService service{vellContactsServiceVersion + 1, nullptr, nullptr,
                                                 nullptr};
    return &service;
}
