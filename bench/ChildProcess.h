// A benchmark's child process with its standard input and output on pipes.
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace orvo {

// The high-water mark of a running process's own memory, in KiB; -1 where unknown. (The rusage
// of a reaped child is no use for this: Linux carries the spawning process's size over the exec.)
inline long peakResidentKiB(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmHWM:")) {
            return std::stol(line.substr(6));
        }
    }
    return -1;
}

struct Child {
    pid_t pid = -1;
    int input = -1;
    int output = -1;
    mutable int surplusLines = 0;  // answers read ahead of the ones asked for

    static Child spawn(const char* program, const std::vector<std::string>& extra = {}) {
        int in[2], out[2];
        if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) {
            std::abort();
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        std::vector<std::string> words{program};
        words.insert(words.end(), extra.begin(), extra.end());
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        Child child;
        if (::posix_spawn(&child.pid, program, &actions, nullptr, argv.data(), environ) != 0) {
            std::abort();
        }
        posix_spawn_file_actions_destroy(&actions);
        ::close(in[0]);
        ::close(out[1]);
        child.input = in[1];
        child.output = out[0];
        return child;
    }

    void write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t n = ::write(input, bytes.data(), bytes.size());
            if (n <= 0) {
                std::abort();
            }
            bytes.remove_prefix(static_cast<std::size_t>(n));
        }
    }

    // Reads until `lines` more line feeds have arrived.
    void readLines(int lines, std::string& buffer) const {
        char chunk[65536];
        while (surplusLines < lines) {
            const ssize_t n = ::read(output, chunk, sizeof chunk);
            if (n <= 0) {
                std::abort();
            }
            for (ssize_t i = 0; i < n; ++i) {
                surplusLines += chunk[i] == '\n';
            }
            buffer.append(chunk, static_cast<std::size_t>(n));
        }
        surplusLines -= lines;
    }

    long peakResidentKiB() const { return orvo::peakResidentKiB(pid); }

    // Closes input, drains output and reaps the child.
    void finish() {
        ::close(input);
        char chunk[4096];
        while (::read(output, chunk, sizeof chunk) > 0) {
        }
        ::close(output);
        int status = 0;
        ::waitpid(pid, &status, 0);
    }
};

}  // namespace orvo
