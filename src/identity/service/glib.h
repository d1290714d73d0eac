#pragma once
// SPDX-License-Identifier: MIT
//
// Ownership of GLib's objects and errors. No Qt here: its headers and GLib's don't mix.

#include <gio/gio.h>

#include <memory>
#include <string>

namespace vell::glib {

template <class T>
struct Unref {
    void operator()(T* object) const { g_object_unref(object); }
};
template <class T>
using Ref = std::unique_ptr<T, Unref<T>>;

/// A GError that cleans up after itself.
class Failure {
  public:
    Failure() = default;
    ~Failure() { g_clear_error(&error_); }
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    GError** out() {
        g_clear_error(&error_);
        return &error_;
    }
    [[nodiscard]] std::string text() const { return error_ ? error_->message : "unknown error"; }
    [[nodiscard]] bool isAbsence() const {
        return g_error_matches(error_, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
               g_error_matches(error_, G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND);
    }

  private:
    GError* error_ = nullptr;
};

}  // namespace vell::glib
