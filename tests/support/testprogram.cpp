// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"

int main(int argc, char **argv)
{
    return TestMain::run(argc, argv);
}
