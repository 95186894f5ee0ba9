// Only in a build for coverage. The linker uses these functions instead of those of the system.
// Otherwise a child process that ends without cleaning up would lose its counts.
extern "C" {

void __gcov_dump();
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __real__Exit(int status);

[[noreturn]] void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}

[[noreturn]] void __wrap__Exit(int status) {
  __gcov_dump();
  __real__Exit(status);
}
}
