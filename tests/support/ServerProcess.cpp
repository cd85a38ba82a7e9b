// Runs the real orvo-agent-mcp binary over pipes, as an agent would.
#include "support/ServerProcess.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/Platform.h"

namespace orvo::test {
namespace {

void closeFd(int& fd) {
    if (fd >= 0) {
        ::close(fd);
        fd = -1;
    }
}

long long remainingMs(std::chrono::steady_clock::time_point deadline) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(deadline -
                                                                 std::chrono::steady_clock::now())
        .count();
}

}  // namespace

SpawnedProcess spawnProcess(const ProcessOptions& options) {
    int in[2], out[2], err[2] = {-1, -1};
    if (openPipe(in) != 0 || openPipe(out) != 0 ||
        (options.pipeStandardError && openPipe(err) != 0)) {
        throw std::runtime_error("pipe failed");
    }
    // Everything the child needs is prepared before it starts: after fork only exec-safe calls
    // are made.
    std::vector<std::string> argumentStrings{options.program};
    argumentStrings.insert(argumentStrings.end(), options.arguments.begin(),
                           options.arguments.end());
    std::vector<char*> argv;
    for (std::string& argument : argumentStrings) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    std::vector<std::string> environmentStrings{"PATH=/usr/bin:/bin"};
    for (const auto& [key, value] : options.environment) {
        environmentStrings.push_back(key + "=" + value);
    }
    std::vector<char*> envp;
    for (std::string& entry : environmentStrings) {
        envp.push_back(entry.data());
    }
    envp.push_back(nullptr);

    SpawnedProcess child;
    if (!options.uid && !options.gid) {
        // posix_spawn is the cheaper start, and the benchmarks time it.
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
        if (err[1] >= 0) {
            posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
        }
        const int failed =
            ::posix_spawn(&child.pid, argv[0], &actions, nullptr, argv.data(), envp.data());
        posix_spawn_file_actions_destroy(&actions);
        if (failed != 0) {
            throw std::runtime_error("posix_spawn failed");
        }
    } else {
        // Changing user needs fork; the child starts in / since it may not enter our directory.
        child.pid = ::fork();
        if (child.pid < 0) {
            throw std::runtime_error("fork failed");
        }
        if (child.pid == 0) {
            ::dup2(in[0], STDIN_FILENO);
            ::dup2(out[1], STDOUT_FILENO);
            if (err[1] >= 0) {
                ::dup2(err[1], STDERR_FILENO);
            }
            if (options.gid && (::setgroups(0, nullptr) != 0 || ::setgid(*options.gid) != 0)) {
                ::_exit(126);
            }
            if (options.uid && ::setuid(*options.uid) != 0) {
                ::_exit(126);
            }
            if (::chdir("/") != 0) {
                ::_exit(126);
            }
            ::execve(argv[0], argv.data(), envp.data());
            ::_exit(127);
        }
    }
    ::close(in[0]);
    ::close(out[1]);
    closeFd(err[1]);
    child.input = in[1];
    child.output = out[0];
    child.error = err[0];
    return child;
}

ServerProcess::ServerProcess(ProcessOptions options) {
    const SpawnedProcess child = spawnProcess(options);
    pid_ = child.pid;
    input_ = child.input;
    output_ = child.output;
    error_ = child.error;
    if (error_ >= 0) {
        ::fcntl(error_, F_SETFL, O_NONBLOCK);
    }
}

ServerProcess::~ServerProcess() {
    closeInput();
    kill();
    closeFd(output_);
    closeFd(error_);
}

void ServerProcess::send(std::string_view bytes) {
    // A full pipe must not dead-lock the test: stdout is drained into the buffer meanwhile.
    std::size_t written = 0;
    while (written < bytes.size()) {
        pollfd fds[2] = {{input_, POLLOUT, 0}, {output_, POLLIN, 0}};
        ::poll(fds, output_ >= 0 ? 2 : 1, 1000);
        if (fds[0].revents & (POLLERR | POLLHUP)) {
            return;
        }
        if (fds[1].revents & POLLIN) {
            char chunk[65536];
            const ssize_t n = ::read(output_, chunk, sizeof chunk);
            if (n > 0) {
                outputBuffer_.append(chunk, static_cast<std::size_t>(n));
            }
        }
        if (fds[0].revents & POLLOUT) {
            ::signal(SIGPIPE, SIG_IGN);
            const ssize_t n = ::write(input_, bytes.data() + written,
                                      std::min<std::size_t>(bytes.size() - written, 65536));
            if (n < 0 && errno != EINTR && errno != EAGAIN) {
                return;
            }
            if (n > 0) {
                written += static_cast<std::size_t>(n);
            }
        }
    }
}

void ServerProcess::sendLine(std::string_view line) {
    std::string bytes(line);
    bytes.push_back('\n');
    send(bytes);
}

std::optional<std::string> ServerProcess::readLine(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto newline = outputBuffer_.find('\n');
        if (newline != std::string::npos) {
            std::string line = outputBuffer_.substr(0, newline);
            outputBuffer_.erase(0, newline + 1);
            return line;
        }
        const long long left = remainingMs(deadline);
        if (left <= 0 || output_ < 0) {
            return std::nullopt;
        }
        pollfd fd{output_, POLLIN, 0};
        if (::poll(&fd, 1, static_cast<int>(left)) <= 0) {
            continue;
        }
        char chunk[65536];
        const ssize_t n = ::read(output_, chunk, sizeof chunk);
        if (n <= 0) {
            closeFd(output_);
            continue;
        }
        outputBuffer_.append(chunk, static_cast<std::size_t>(n));
    }
}

json ServerProcess::request(const json& message) {
    sendLine(dumpCompact(message));
    std::optional<std::string> line = readLine();
    if (!line) {
        return nullptr;
    }
    return json::parse(*line, nullptr, false);
}

void ServerProcess::closeInput() {
    closeFd(input_);
}

void ServerProcess::kill(int signal) {
    if (!exitStatus_ && pid_ > 0) {
        ::kill(pid_, signal);
        int status = 0;
        ::waitpid(pid_, &status, 0);
        exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
}

std::optional<int> ServerProcess::waitForExit(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!exitStatus_) {
        int status = 0;
        const pid_t done = ::waitpid(pid_, &status, WNOHANG);
        if (done == pid_) {
            exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            break;
        }
        if (remainingMs(deadline) <= 0) {
            return std::nullopt;
        }
        drainStandardError(10);
    }
    return exitStatus_;
}

void ServerProcess::drainStandardError(int timeoutMs) {
    if (error_ < 0) {
        return;
    }
    pollfd fd{error_, POLLIN, 0};
    if (::poll(&fd, 1, timeoutMs) <= 0) {
        return;
    }
    char chunk[4096];
    ssize_t n;
    while ((n = ::read(error_, chunk, sizeof chunk)) > 0) {
        errorText_.append(chunk, static_cast<std::size_t>(n));
    }
    if (n == 0) {
        closeFd(error_);
    }
}

std::string ServerProcess::standardError() {
    drainStandardError(exitStatus_ ? 1000 : 50);
    return errorText_;
}

json toolCall(const json& id, std::string_view name, const json& arguments) {
    return {{"jsonrpc", "2.0"},
            {"id", id},
            {"method", "tools/call"},
            {"params", {{"name", name}, {"arguments", arguments}}}};
}

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvo-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::filesystem::path& path, std::string_view contents) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

std::optional<std::string> readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

}  // namespace orvo::test
