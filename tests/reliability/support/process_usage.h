// What this process holds of the system: descriptors, memory, processor time.
#ifndef QM_TEST_PROCESS_USAGE_H
#define QM_TEST_PROCESS_USAGE_H

namespace rel {

int open_descriptors();
long resident_kib();
// User and system time of all threads so far.
double cpu_seconds();
// Whether the build runs under a sanitizer, which slows everything and keeps freed memory.
bool sanitized_build();

}  // namespace rel

#endif
