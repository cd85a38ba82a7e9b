// Runs the real orvo-agent-mcp binary over pipes, as an agent would, and the processes that
// benchmarks time.
#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "protocol/Json.h"
#include "protocol/UniqueFd.h"

namespace orvo::test {

using namespace std::chrono_literals;

struct ProcessOptions {
    std::string program = ORVO_BINARY_PATH;
    std::vector<std::string> arguments;                            // after the program path
    std::vector<std::pair<std::string, std::string>> environment;  // besides PATH
    std::optional<uid_t> uid;                                      // run as this user (needs root)
    std::optional<gid_t> gid;
    bool pipeStandardError = true;  // else the child writes to ours
};

// A started child: its id and this process's ends of its standard streams (-1 when not piped).
struct SpawnedProcess {
    pid_t pid = -1;
    int input = -1;
    int output = -1;
    int error = -1;
};

// Starts `options.program` with a clean environment; throws when it cannot. The one way tests
// and benchmarks start processes.
SpawnedProcess spawnProcess(const ProcessOptions& options);

class ServerProcess {
public:
    explicit ServerProcess(const ProcessOptions& options = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    void send(std::string_view bytes);
    void sendLine(std::string_view line);
    // The next line of standard output, or absent when none arrives in time or output ended.
    std::optional<std::string> readLine(std::chrono::milliseconds timeout = 10s);
    // Sends one request line and returns the parsed response line (null when none came).
    json request(const json& message);
    // Sends one tools/call and returns the JSON in its result's text (null when there is none).
    json callTool(const json& id, std::string_view name, const json& arguments = json::object());
    void closeInput();
    // Sends `signal` and waits for the process to end: SIGKILL ends it at once, as a crash or a
    // force quit would.
    void kill(int signal = SIGKILL);
    // The exit status, or absent if the process is still running after `timeout`.
    std::optional<int> waitForExit(std::chrono::milliseconds timeout = 10s);
    // Everything written to standard error so far (complete once the process has exited).
    std::string standardError();

private:
    // Takes what the process wrote to standard error, until it closes it or `wait` has passed.
    void drainStandardError(std::chrono::milliseconds wait);

    pid_t pid_ = -1;
    UniqueFd input_;
    UniqueFd output_;
    UniqueFd error_;
    std::string outputBuffer_;
    std::string errorText_;
    std::optional<int> exitStatus_;
};

// A tools/call request, as agents send it.
json toolCall(const json& id, std::string_view name, const json& arguments = json::object());

// A directory under the system temporary directory, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

void writeFile(const std::filesystem::path& path, std::string_view contents);
// The whole file, or absent when there is none.
std::optional<std::string> readFile(const std::filesystem::path& path);
// The lines of `text`, without their line feeds.
std::vector<std::string> splitLines(std::string_view text);

}  // namespace orvo::test
