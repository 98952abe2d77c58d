// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>

// A property a target checks on every input; a broken one aborts, so libFuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                            \
    do {                                                                                                 \
        if (!(condition)) {                                                                              \
            std::fprintf(stderr, "%s:%d: property does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                                \
        }                                                                                                \
    } while (false)
