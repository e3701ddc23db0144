#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

// Ends the run with the claim that did not hold: the fuzzer then keeps the input. Not `assert`, which a release build
// would drop.
#define FUZZ_CHECK(claim)                                                                   \
    do {                                                                                    \
        if (!(claim)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #claim); \
            std::abort();                                                                   \
        }                                                                                   \
    } while (false)
