// The oldest versions of the C library's functions for threads, for sources that call them. Release
// 2.34 moved the functions from one of its libraries to another, and so a build on a newer release
// would ask for that one. tests/end_to_end/built_library_test.cpp reads the outcome.
//
// A sanitizer takes the place of the newer ones. The optimiser at the link does not know of these
// directives, so such a source must be left to the compiler alone.
#ifndef VLT_RECORDER_OLD_SYMBOLS_HPP
#define VLT_RECORDER_OLD_SYMBOLS_HPP

#ifdef VLT_OLD_SYMBOLS
#ifdef __aarch64__
#define VLT_OLDEST "GLIBC_2.17"
#else
#define VLT_OLDEST "GLIBC_2.2.5"
#endif
__asm__(".symver pthread_create, pthread_create@" VLT_OLDEST
        "\n"
        ".symver pthread_join, pthread_join@" VLT_OLDEST
        "\n"
        ".symver pthread_sigmask, pthread_sigmask@" VLT_OLDEST
        "\n"
        ".symver pthread_attr_setstacksize, pthread_attr_setstacksize@" VLT_OLDEST);
#endif

#endif
