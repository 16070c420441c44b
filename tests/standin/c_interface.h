/* The checks that are written in C, for the test program that runs them. */
#ifndef VLT_TESTS_STANDIN_C_INTERFACE_H
#define VLT_TESTS_STANDIN_C_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Each returns 0, or the line in c_interface.c that found a fault. */
int standin_c_round_trip(void);
int standin_c_logging(void);

#ifdef __cplusplus
}
#endif
#endif
