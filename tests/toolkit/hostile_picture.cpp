// SPDX-License-Identifier: MIT
//
// Stands in for a vell-picture that a picture has taken over. Its file name selects how it
// misbehaves.
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <string>

#include "toolkit/picture_messages.h"

using namespace vell::picture_messages;

int main(int, char** argv) {
    const std::string path = argv[0];
    const std::string name = path.substr(path.rfind('/') + 1);
    const auto say = [](const void* message, size_t size) {
        return send(socketDescriptor, message, size, MSG_NOSIGNAL) >= 0;
    };
    if (name == "ends-at-once") return 0;
    const Ready ready{name == "of-another-version" ? 0u : Ready().version};
    say(&ready, sizeof ready);
    Request request;
    while (recv(socketDescriptor, &request, sizeof request, 0) == sizeof request) {
        char message[sizeof(Reply) + 1] = {};
        size_t size = sizeof(Reply);
        Reply reply{request.width, request.height, 1, 0, {}};
        if (name == "ends-during-the-picture") return 0;
        if (name == "too-wide") reply.width = request.width + 1;
        if (name == "too-high") reply.height = INT_MAX;
        if (name == "below-zero") reply.width = reply.height = -1;
        if (name == "never-the-next-frame") reply.delay = INT_MIN;
        if (name == "takes-the-memory" && ftruncate(memoryDescriptor, 1) != 0) return 1;
        if (name == "says-too-little") size = 3;
        if (name == "says-too-much") size = sizeof message;
        if (name == "speaks-without-end") {
            reply.width = reply.height = 0;
            std::memset(reply.problem, '\n', sizeof reply.problem);
        }
        std::memcpy(message, &reply, sizeof reply);
        say(message, size);
    }
}
