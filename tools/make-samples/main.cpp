// SPDX-License-Identifier: MIT
//
// Writes the sample transcripts into a folder, or checks that those in it are what it would write.
#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdio>
#include <utility>
#include <vector>

#include "stories.h"

namespace {

struct Sample {
    const char* fileName;
    QByteArray bytes;
};

std::vector<Sample> madeSamples() {
    return {
        {"The cat in the bathtub.ichat", writers::keyedTranscript(samples::catInTheBathtub())},
        {"Two umbrellas.ichat", writers::nonKeyedTranscript(samples::twoUmbrellas())},
        {"A lamp in the window.ichat", writers::keyedTranscript(samples::lampInTheWindow())},
        {"Nobody said anything.ichat", writers::keyedTranscript(samples::nobodySaidAnything())},
    };
}

bool fail(const QString& path, const char* problem) {
    std::fprintf(stderr, "make-samples: %s: %s\n", qUtf8Printable(path), problem);
    return false;
}

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        return fail(path, "can't be written");
    return true;
}

bool check(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return fail(path, "can't be read");
    if (file.readAll() != bytes) return fail(path, "differs from what make-samples writes");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const bool checks = argc == 3 && qstrcmp(argv[1], "--check") == 0;
    if (argc != 2 && !checks) {
        std::fputs("usage: make-samples [--check] FOLDER\n", stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[argc - 1]);
    bool ok = true;
    for (const Sample& sample : madeSamples()) {
        const QString path = folder + '/' + sample.fileName;
        ok = (checks ? check(path, sample.bytes) : write(path, sample.bytes)) && ok;
    }
    return ok ? 0 : 1;
}
