// The calls the tests and benchmarks need that differ between macOS and Linux, behind task-level
// functions.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace orvo::test {

// A pipe whose ends a spawned child does not inherit. 0, or the errno value.
int openPipe(int ends[2]);
// A Unix-domain stream socket that a spawned child does not inherit; -1 on failure.
int openLocalSocket();
// accept(2) on `listener`, the new socket not inherited by children either; -1 on failure.
int acceptConnection(int listener);

// How many descriptors this process has open.
std::size_t openDescriptorCount();
// The high-water mark of a running process's own memory, in KiB; -1 where unknown.
long peakResidentKiB(int pid);

// Adds a system user with `home` as its home directory. 0 on success, else a non-zero status with
// the reason in `whyNot`. Needs root.
int addSystemUser(const std::string& name, const std::filesystem::path& home, std::string& whyNot);
void removeSystemUser(const std::string& name);

}  // namespace orvo::test
