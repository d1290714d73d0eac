// SPDX-License-Identifier: MIT
//
// Another program that writes to the default address book:
//
//     address_book_writer fill COUNT PHOTO       contacts c0, c1 … with photos that look alike
//     address_book_writer add UID NAME EMAIL
//     address_book_writer edit UID NAME EMAIL
//     address_book_writer remove UID
#include <libebook/libebook.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void check(bool done, GError* error) {
    if (done) return;
    std::fprintf(stderr, "address_book_writer: %s\n", error ? error->message : "failed");
    std::exit(1);
}

EContact* makeContact(const std::string& uid, const std::string& name, const std::string& email) {
    EContact* contact = e_contact_new();
    e_contact_set(contact, E_CONTACT_UID, uid.c_str());
    e_contact_set(contact, E_CONTACT_FULL_NAME, name.c_str());
    e_contact_set(contact, E_CONTACT_EMAIL_1, email.c_str());
    return contact;
}

void fill(EBookClient* book, int count, const char* photoPath) {
    GError* error = nullptr;
    char* bytes = nullptr;
    gsize size = 0;
    check(g_file_get_contents(photoPath, &bytes, &size, &error), error);
    GSList* contacts = nullptr;
    for (int i = 0; i < count; i++) {
        const std::string number = std::to_string(i);
        EContact* contact =
            makeContact("c" + number, "Person " + number, "c" + number + "@example.org");
        e_contact_set(contact, E_CONTACT_PHONE_MOBILE, ("+49 170 " + number + "-0").c_str());
        e_contact_set(contact, E_CONTACT_IM_AIM_HOME_1, ("aim" + number).c_str());
        // What follows the end of a picture is no part of it, but makes other bytes.
        const std::string different = std::string(bytes, size) + number;
        EContactPhoto* photo = e_contact_photo_new();
        photo->type = E_CONTACT_PHOTO_TYPE_INLINED;
        e_contact_photo_set_mime_type(photo, "image/jpeg");
        e_contact_photo_set_inlined(photo, reinterpret_cast<const guchar*>(different.data()),
                                    different.size());
        e_contact_set(contact, E_CONTACT_PHOTO, photo);
        e_contact_photo_free(photo);
        contacts = g_slist_prepend(contacts, contact);
    }
    check(e_book_client_add_contacts_sync(book, contacts, E_BOOK_OPERATION_FLAG_NONE, nullptr,
                                          nullptr, &error),
          error);
    g_slist_free_full(contacts, g_object_unref);
    g_free(bytes);
}

}  // namespace

int main(int argc, char** argv) {
    GError* error = nullptr;
    ESourceRegistry* registry = e_source_registry_new_sync(nullptr, &error);
    check(registry != nullptr, error);
    ESource* source = e_source_registry_ref_default_address_book(registry);
    EClient* client = e_book_client_connect_sync(source, static_cast<guint32>(-1), nullptr, &error);
    check(client != nullptr, error);
    auto* book = reinterpret_cast<EBookClient*>(client);

    const std::string command = argc > 2 ? argv[1] : "";
    bool done = false;
    if (command == "fill" && argc == 4) {
        fill(book, std::atoi(argv[2]), argv[3]);
        done = true;
    } else if (command == "add" && argc == 5) {
        EContact* contact = makeContact(argv[2], argv[3], argv[4]);
        done = e_book_client_add_contact_sync(book, contact, E_BOOK_OPERATION_FLAG_NONE, nullptr,
                                              nullptr, &error);
        g_object_unref(contact);
    } else if (command == "edit" && argc == 5) {
        EContact* contact = makeContact(argv[2], argv[3], argv[4]);
        done = e_book_client_modify_contact_sync(book, contact, E_BOOK_OPERATION_FLAG_NONE, nullptr,
                                                 &error);
        g_object_unref(contact);
    } else if (command == "remove" && argc == 3) {
        done = e_book_client_remove_contact_by_uid_sync(book, argv[2], E_BOOK_OPERATION_FLAG_NONE,
                                                        nullptr, &error);
    }
    check(done, error);
    g_object_unref(client);
    g_object_unref(source);
    g_object_unref(registry);
    return 0;
}
