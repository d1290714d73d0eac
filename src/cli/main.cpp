// SPDX-License-Identifier: MIT
//
// vell-export: transcripts as text, without a window.
#include "cli/exporter.h"
#include "cli/standard_streams.h"

int main(int argc, char** argv) {
    return vell::runExport(vell::startProgram(argc, argv));
}
