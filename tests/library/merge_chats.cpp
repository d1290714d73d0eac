// SPDX-License-Identifier: MIT
//
// Reads the files whose paths come from standard input, a line each, as one chat and prints it as
// JSON.
#include <QCoreApplication>
#include <QFile>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "export/json.h"
#include "library/session_reader.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return 1;
    std::vector<QByteArray> paths;
    while (!input.atEnd())
        paths.push_back(input.readLine().trimmed());

    std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<const vell::TesselChatLog> log;
    const vell::SessionReader reader(paths, paths.size() / 2, foundation::Calendar::current(),
                                     [&](const vell::SessionReader::Result& result) {
                                         if (result.done < result.all) return;
                                         const std::lock_guard lock(mutex);
                                         log = result.chat.log();
                                         changed.notify_all();
                                     });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return log != nullptr; });
    vell::writeJson(*log, [](QByteArrayView bytes) {
        std::fwrite(bytes.data(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    });
    return 0;
}
