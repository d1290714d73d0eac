// SPDX-License-Identifier: MIT
//
// vell-find: finds messages in many transcripts, without a window.
#include "cli/finder.h"
#include "cli/standard_streams.h"

int main(int argc, char** argv) {
    return vell::runFind(vell::startProgram(argc, argv));
}
