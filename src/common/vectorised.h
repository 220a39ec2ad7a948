// Marks a kernel to be built for wider vector units too; the program takes what the machine has. No variant contracts
// multiplications and additions, so that all of them give the same bits.
#pragma once

// Sanitizers are not yet at work when the variant is chosen.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define ZOLT_VECTORISED __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ZOLT_VECTORISED
#endif
