// The calls the tests and benchmarks need that differ between macOS and Linux, behind task-level
// functions.
#include "support/Platform.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>

#include <fcntl.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <libproc.h>
#elif defined(__linux__)
#else
#error "the tests build for macOS and Linux only"
#endif

namespace orvo::test {
namespace {

#if defined(__APPLE__)
// macOS has no atomic close-on-exec for pipe, socket and accept, so the flag is set just after:
// a child spawned by another thread in between may keep a copy until it exits, which no test
// depends on.
int closeOnExec(int fd) {
    if (fd >= 0 && ::fcntl(fd, F_SETFD, FD_CLOEXEC) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

int runQuietly(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str());
}
#endif

std::size_t countDirectoryEntries(const char* path) {
    std::size_t count = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        ++count;
    }
    return count;
}

}  // namespace

int openPipe(int ends[2]) {
#if defined(__APPLE__)
    if (::pipe(ends) != 0) {
        return errno;
    }
    if (closeOnExec(ends[0]) < 0 || closeOnExec(ends[1]) < 0) {
        return errno;
    }
    return 0;
#elif defined(__linux__)
    return ::pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno;
#endif
}

int openLocalSocket() {
#if defined(__APPLE__)
    return closeOnExec(::socket(AF_UNIX, SOCK_STREAM, 0));
#elif defined(__linux__)
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
#endif
}

int acceptConnection(int listener) {
#if defined(__APPLE__)
    return closeOnExec(::accept(listener, nullptr, nullptr));
#elif defined(__linux__)
    return ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
#endif
}

std::size_t openDescriptorCount() {
    // Both list this process's descriptors as directory entries (with the descriptor of the
    // listing itself, which only shifts every count alike).
#if defined(__APPLE__)
    return countDirectoryEntries("/dev/fd");
#elif defined(__linux__)
    return countDirectoryEntries("/proc/self/fd");
#endif
}

long peakResidentKiB(int pid) {
#if defined(__APPLE__)
    rusage_info_v4 usage{};
    if (::proc_pid_rusage(pid, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&usage)) != 0) {
        return -1;
    }
    return static_cast<long>(usage.ri_lifetime_max_phys_footprint / 1024);
#elif defined(__linux__)
    // The rusage of a reaped child is no use here: Linux carries the spawning process's size
    // over the exec.
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmHWM:")) {
            return std::stol(line.substr(6));
        }
    }
    return -1;
#endif
}

int addSystemUser(const std::string& name, const std::filesystem::path& home, std::string& whyNot) {
#if defined(__APPLE__)
    // Directory Services wants a free id chosen by the caller; system ids are below 500.
    uid_t uid = 400;
    while (uid < 500 && ::getpwuid(uid) != nullptr) {
        ++uid;
    }
    if (uid == 500) {
        whyNot = "no free system user id below 500";
        return 1;
    }
    const std::string record = "dscl . -create /Users/" + name;
    const std::string steps[] = {
        record, record + " UniqueID " + std::to_string(uid), record + " PrimaryGroupID 20",
        record + " UserShell /usr/bin/false", record + " NFSHomeDirectory '" + home.string() + "'"};
    for (const std::string& step : steps) {
        if (const int status = runQuietly(step); status != 0) {
            whyNot = "dscl failed: " + step;
            removeSystemUser(name);
            return status;
        }
    }
    return 0;
#elif defined(__linux__)
    const std::string command =
        "useradd --system --no-create-home --user-group --shell /usr/sbin/nologin --home-dir '" +
        home.string() + "' " + name + " >/dev/null 2>&1";
    const int status = std::system(command.c_str());
    if (status != 0) {
        whyNot = "useradd failed";
    }
    return status;
#endif
}

void removeSystemUser(const std::string& name) {
#if defined(__APPLE__)
    [[maybe_unused]] int ignored = runQuietly("dscl . -delete /Users/" + name);
#elif defined(__linux__)
    [[maybe_unused]] int ignored = std::system(("userdel " + name + " >/dev/null 2>&1").c_str());
#endif
}

}  // namespace orvo::test
