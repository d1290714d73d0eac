// SPDX-License-Identifier: MIT
#include "foundation/print.h"

#include <QByteArray>
#include <mutex>
#include <utility>

namespace foundation {
namespace {

struct Target {
    std::mutex mutex;
    std::FILE* stream = stdout;
    std::function<void(QStringView)> function;
};

Target& target() {
    static Target shared;
    return shared;
}

}  // namespace

void print(QStringView line) {
    Target& to = target();
    const std::lock_guard lock(to.mutex);
    if (to.function) {
        to.function(line);
        return;
    }
    QByteArray bytes = line.toUtf8();
    bytes.append('\n');
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), to.stream);
}

void setPrintTarget(std::FILE* stream) {
    const std::lock_guard lock(target().mutex);
    target().stream = stream;
}

void setPrintFunction(std::function<void(QStringView)> function) {
    const std::lock_guard lock(target().mutex);
    target().function = std::move(function);
}

}  // namespace foundation
