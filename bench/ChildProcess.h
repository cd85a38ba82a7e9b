// A benchmark's child process with its standard input and output on pipes, started by the tests'
// own spawner.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "support/Platform.h"
#include "support/ServerProcess.h"

namespace orvo {

struct Child {
    pid_t pid = -1;
    int input = -1;
    int output = -1;
    mutable int surplusLines = 0;  // answers read ahead of the ones asked for

    static Child spawn(const char* program, const std::vector<std::string>& extra = {}) {
        test::ProcessOptions options;
        options.program = program;
        options.arguments = extra;
        options.pipeStandardError = false;
        const test::SpawnedProcess spawned = test::spawnProcess(options);
        return Child{spawned.pid, spawned.input, spawned.output};
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

    long peakResidentKiB() const { return test::peakResidentKiB(pid); }

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
