#pragma once
// SPDX-License-Identifier: MIT
//
// What the program and the plug-in for the address-book service agree on: plain data and functions
// without Qt and without the service's types, so that the program starts and runs where the
// service's library is not installed. Any change raises the version.

#ifdef __cplusplus
extern "C" {
#endif

enum { vellContactsServiceVersion = 1 };

/* Texts are UTF-8 and valid during the call they are handed to. */
struct VellServiceContact {
    const char* book; /* identifier of the address book */
    const char* uid;  /* of the contact in its book */
    const char* card; /* a vCard */
};

struct VellContactsService {
    unsigned version; /* vellContactsServiceVersion; nothing else may be read if it differs */

    /* Connects. `changed` is called on a thread of the plug-in until close() has returned. A
       service that isn't there has no contacts; null and a text in `error` when something is wrong
       with it. May take seconds. */
    void* (*open)(void (*changed)(void* context), void* context, char* error, unsigned errorSize);

    /* Hands out all contacts, by book and then UID, on the calling thread, until `handle` returns
       0. Returns 1, or 0 and a text in `error` when there are none to be had. If it
       returns 1 with a text, some books could not be read. Any thread. */
    int (*enumerate)(void* service,
                     int (*handle)(void* context, const struct VellServiceContact* contact),
                     void* context, char* error, unsigned errorSize);

    /* Ends what is under way. Not while an enumerate() runs. */
    void (*close)(void* service);
};

/* The one symbol of the library; it returns the same functions every time. */
const struct VellContactsService* vellContactsService(void);

#ifdef __cplusplus
}
#endif
