/* A library that plug-ins can be linked against and that no loader finds. */
#if defined(__GNUC__)
__attribute__((visibility("default")))
#endif
int
nowhere(void);

int nowhere(void) { return 0; }
