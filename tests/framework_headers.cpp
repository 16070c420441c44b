// Holds the test framework's headers, which CMake compiles once for a program and lends to others.
int main() { return 0; }
