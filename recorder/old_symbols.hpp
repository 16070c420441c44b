// Versions of the C library's functions for threads that all of its releases since 2.2.5 have, for
// sources that call them. They moved from one of its libraries to another, and so a build on a newer
// release would ask for those of 2.34. tests/end_to_end/built_library_test.cpp reads the outcome.
//
// A sanitizer takes the place of the newer ones. The optimiser at the link does not know of these
// directives, so such a source must be left to the compiler alone.
#ifndef VLT_RECORDER_OLD_SYMBOLS_HPP
#define VLT_RECORDER_OLD_SYMBOLS_HPP

#ifdef VLT_OLD_SYMBOLS
__asm__(
    ".symver pthread_create, pthread_create@GLIBC_2.2.5\n"
    ".symver pthread_join, pthread_join@GLIBC_2.2.5\n"
    ".symver pthread_sigmask, pthread_sigmask@GLIBC_2.2.5\n"
    ".symver pthread_attr_setstacksize, pthread_attr_setstacksize@GLIBC_2.2.5");
#endif

#endif
