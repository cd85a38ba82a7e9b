// Runs the real orvo-agent-mcp binary over pipes, as an agent would.
#include "support/ServerProcess.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <grp.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "protocol/DescriptorIO.h"
#include "support/Platform.h"

namespace orvo::test {
namespace {

constexpr std::size_t kNoLimit = std::string::npos;

// The strings as execve wants them, ending in a null pointer.
std::vector<char*> nullTerminated(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& text : strings) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

int exitCode(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

SpawnedProcess spawnProcess(const ProcessOptions& options) {
    int in[2];
    int out[2];
    int err[2] = {-1, -1};
    if (openPipe(in) != 0 || openPipe(out) != 0 ||
        (options.pipeStandardError && openPipe(err) != 0)) {
        throw std::runtime_error("pipe failed");
    }
    // Everything the child needs is prepared before it starts: after fork only exec-safe calls
    // are made.
    std::vector<std::string> argumentStrings{options.program};
    argumentStrings.insert(argumentStrings.end(), options.arguments.begin(),
                           options.arguments.end());
    std::vector<std::string> environmentStrings{"PATH=/usr/bin:/bin"};
    for (const auto& [key, value] : options.environment) {
        environmentStrings.push_back(std::string(key).append("=").append(value));
    }
    std::vector<char*> argv = nullTerminated(argumentStrings);
    std::vector<char*> envp = nullTerminated(environmentStrings);

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
            if ((options.gid && (::setgroups(0, nullptr) != 0 || ::setgid(*options.gid) != 0)) ||
                (options.uid && ::setuid(*options.uid) != 0) || ::chdir("/") != 0) {
                ::_exit(126);
            }
            ::execve(argv[0], argv.data(), envp.data());
            ::_exit(127);
        }
    }
    ::close(in[0]);
    ::close(out[1]);
    if (err[1] >= 0) {
        ::close(err[1]);
    }
    child.input = in[1];
    child.output = out[0];
    child.error = err[0];
    return child;
}

ServerProcess::ServerProcess(const ProcessOptions& options) {
    const SpawnedProcess child = spawnProcess(options);
    pid_ = child.pid;
    input_.reset(child.input);
    output_.reset(child.output);
    error_.reset(child.error);
    // A write to a server that has gone fails with EPIPE instead of ending the test run.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

ServerProcess::~ServerProcess() {
    closeInput();
    kill();
}

void ServerProcess::send(std::string_view bytes) {
    writeAll(input_.get(), bytes);
}

void ServerProcess::sendLine(std::string_view line) {
    send(std::string(line) + "\n");
}

std::optional<std::string> ServerProcess::readLine(std::chrono::milliseconds timeout) {
    const IOClock::time_point deadline = IOClock::now() + timeout;
    for (;;) {
        if (const std::size_t end = outputBuffer_.find('\n'); end != std::string::npos) {
            std::string line = outputBuffer_.substr(0, end);
            outputBuffer_.erase(0, end + 1);
            return line;
        }
        const IOClock::time_point now = IOClock::now();
        if (!output_ || now >= deadline) {
            return std::nullopt;
        }
        // Short slices, so that a line is returned soon after it arrives.
        if (readUpTo(output_.get(), outputBuffer_, kNoLimit, std::min(deadline, now + 5ms))
                .status != IOStatus::timedOut) {
            output_.reset();
        }
    }
}

json ServerProcess::request(const json& message) {
    sendLine(dumpCompact(message));
    return json::parse(readLine().value_or("null"), nullptr, false);
}

json ServerProcess::callTool(const json& id, std::string_view name, const json& arguments) {
    const json response = request(toolCall(id, name, arguments));
    const json* result = response.is_object() ? member(response, "result") : nullptr;
    if (result == nullptr) {
        return nullptr;
    }
    return json::parse((*result)["content"][0].value("text", ""), nullptr, false);
}

void ServerProcess::closeInput() {
    input_.reset();
}

void ServerProcess::kill(int signal) {
    if (!exitStatus_ && pid_ > 0) {
        ::kill(pid_, signal);
        int status = 0;
        ::waitpid(pid_, &status, 0);
        exitStatus_ = exitCode(status);
    }
}

std::optional<int> ServerProcess::waitForExit(std::chrono::milliseconds timeout) {
    const IOClock::time_point deadline = IOClock::now() + timeout;
    while (!exitStatus_ && IOClock::now() < deadline) {
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            exitStatus_ = exitCode(status);
        } else if (error_) {
            drainStandardError(10ms);  // a child blocked on a full pipe would never exit
        } else {
            std::this_thread::sleep_for(10ms);
        }
    }
    return exitStatus_;
}

void ServerProcess::drainStandardError(std::chrono::milliseconds wait) {
    if (error_ && readUpTo(error_.get(), errorText_, kNoLimit, IOClock::now() + wait).status ==
                      IOStatus::done) {
        error_.reset();
    }
}

std::string ServerProcess::standardError() {
    drainStandardError(exitStatus_ ? 1000ms : 50ms);
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
