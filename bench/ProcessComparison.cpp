// Measures whole processes the way an agent runs them, so that this program can be set beside
// other hooks and MCP servers in one run: a hook spawned per tool call, a server's cold start to
// its first tools/list answer, and its steady pipelined ping rate. bench/report.sh drives it.
//
//   orvo_compare hook RUNS INPUT... -- COMMAND... [-- COMMAND...]   a process per input, RUNS
//   rounds orvo_compare start RUNS -- COMMAND... [-- COMMAND...]           spawn, initialize,
//   tools/list orvo_compare ping SECONDS -- COMMAND...           32 pings kept in flight for
//   SECONDS
//
// Every mode prints a line of tab-separated figures per command on standard output, or exits 1
// with the reason on standard error when a command does not behave like a hook or a server.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/ptrace.h>
#endif

#include <nlohmann/json.hpp>

#include "support/Platform.h"

extern char** environ;  // the programs compared get our whole environment

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kAnswerLimit{30};
constexpr int kPingsInFlight = 32;

constexpr std::string_view kOpening =
    R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2025-06-18","capabilities":{},"clientInfo":{"name":"orvo-compare","version":"1"}}})"
    "\n"
    R"({"jsonrpc":"2.0","method":"notifications/initialized"})"
    "\n"
    R"({"jsonrpc":"2.0","id":2,"method":"tools/list"})"
    "\n";

[[noreturn]] void fail(const std::string& why) {
    std::fprintf(stderr, "orvo_compare: %s\n", why.c_str());
    std::exit(1);
}

struct Process {
    pid_t pid = -1;
    int input = -1;
    int output = -1;
    std::string pending;  // output read but not yet taken as lines

    static Process spawn(const std::vector<std::string>& command) {
        int in[2], out[2];
        if (::pipe(in) != 0 || ::pipe(out) != 0) {
            fail(std::string("pipe: ") + std::strerror(errno));
        }
        for (int fd : {in[1], out[0]}) {
            ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        // Their diagnostics would only interleave with the figures.
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclose(&actions, in[0]);
        posix_spawn_file_actions_addclose(&actions, out[1]);
        std::vector<std::string> words = command;
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        Process process;
        const int error =
            ::posix_spawnp(&process.pid, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            fail("cannot start " + command[0] + ": " + std::strerror(error));
        }
        ::close(in[0]);
        ::close(out[1]);
        process.input = in[1];
        process.output = out[0];
        return process;
    }

    // False when the process closed its input before taking all of it, which a hook that has
    // seen enough may do.
    bool write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t n = ::write(input, bytes.data(), bytes.size());
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(n));
        }
        return true;
    }

    void send(std::string_view bytes) const {
        if (!write(bytes)) {
            fail("the server stopped reading its input");
        }
    }

    // Reads more output; false at end of output. Gives up on a process that stays silent.
    bool readMore() {
        pollfd ready{output, POLLIN, 0};
        const int polled = ::poll(&ready, 1, static_cast<int>(kAnswerLimit.count() * 1000));
        if (polled == 0) {
            ::kill(pid, SIGKILL);
            fail("no answer within " + std::to_string(kAnswerLimit.count()) + " s");
        }
        char chunk[65536];
        const ssize_t n = ::read(output, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR) {
            return true;
        }
        if (n <= 0) {
            return false;
        }
        pending.append(chunk, static_cast<std::size_t>(n));
        return true;
    }

    std::optional<std::string> nextLine() {
        for (;;) {
            if (const std::size_t end = pending.find('\n'); end != std::string::npos) {
                std::string line = pending.substr(0, end);
                pending.erase(0, end + 1);
                return line;
            }
            if (!readMore()) {
                return std::nullopt;
            }
        }
    }

    // Waits for the answer with this id, passing over notifications and log lines, and returns
    // when its line arrived: reading the answer is the client's time, not the server's.
    Clock::time_point awaitAnswer(int id) {
        while (std::optional<std::string> line = nextLine()) {
            const Clock::time_point arrived = Clock::now();
            const nlohmann::json message = nlohmann::json::parse(*line, nullptr, false);
            if (message.is_object() && message.value("id", nlohmann::json()) == id) {
                if (!message.contains("result")) {
                    fail("request " + std::to_string(id) + " failed: " + *line);
                }
                return arrived;
            }
        }
        fail("output ended before the answer to request " + std::to_string(id));
    }

    // Closes input, reads output to its end and reaps the process; a server that outlives its
    // input by two seconds is killed.
    void finish() {
        ::close(input);
        const Clock::time_point deadline = Clock::now() + std::chrono::seconds(2);
        char chunk[65536];
        for (;;) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            pollfd ready{output, POLLIN, 0};
            if (left.count() <= 0 || ::poll(&ready, 1, static_cast<int>(left.count())) == 0) {
                ::kill(pid, SIGKILL);
                break;
            }
            if (::read(output, chunk, sizeof chunk) <= 0) {
                break;
            }
        }
        ::close(output);
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
};

#ifdef __linux__
// A hook lives for a millisecond, so its peak is read at the one moment it is sure to be there:
// the process is traced and stopped on its way out, its memory still mapped.
long hookPeakResidentKiB(const std::vector<std::string>& command, const std::string& input) {
    int in[2], out[2];
    if (::pipe(in) != 0 || ::pipe(out) != 0) {
        fail(std::string("pipe: ") + std::strerror(errno));
    }
    std::vector<std::string> words = command;
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(in[0], 0);
        ::dup2(out[1], 1);
        const int null = ::open("/dev/null", O_WRONLY);
        ::dup2(null, 2);
        for (int fd : {in[0], in[1], out[0], out[1], null}) {
            ::close(fd);
        }
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::execvp(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    int status = 0;
    ::waitpid(pid, &status, 0);  // stopped at the exec
    if (!WIFSTOPPED(status)) {
        fail("cannot start " + command[0]);
    }
    ::ptrace(PTRACE_SETOPTIONS, pid, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
    ::ptrace(PTRACE_CONT, pid, nullptr, nullptr);
    std::thread drain([fd = out[0]] {
        char chunk[65536];
        while (::read(fd, chunk, sizeof chunk) > 0) {
        }
    });
    std::string_view rest = input;
    while (!rest.empty()) {
        const ssize_t n = ::write(in[1], rest.data(), rest.size());
        if (n <= 0) {
            break;
        }
        rest.remove_prefix(static_cast<std::size_t>(n));
    }
    ::close(in[1]);
    long peakKiB = -1;
    for (;;) {
        if (::waitpid(pid, &status, __WALL) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            break;
        }
        int forward = 0;
        if (status >> 8 == (SIGTRAP | (PTRACE_EVENT_EXIT << 8))) {
            peakKiB = orvo::test::peakResidentKiB(pid);
        } else {
            forward = WSTOPSIG(status);
        }
        ::ptrace(PTRACE_CONT, pid, nullptr, forward);
    }
    drain.join();
    ::close(out[0]);
    return peakKiB;
}
#else
long hookPeakResidentKiB(const std::vector<std::string>&, const std::string&) {
    return -1;
}
#endif

double microsecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double percentile(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
    return values[index];
}

std::string readWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        fail("cannot read " + path);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

using Command = std::vector<std::string>;

// Figures of one command over all its runs.
struct Samples {
    std::vector<double> micros;
    long peakKiB = 0;

    void print() const {
        std::printf("%.1f\t%.1f\t%ld\n", percentile(micros, 0.5), percentile(micros, 0.9), peakKiB);
    }
};

// Commands take turns run by run, so that whatever else the machine does falls on all alike.
int runHook(int runs, const std::vector<std::string>& inputPaths,
            const std::vector<Command>& commands) {
    std::vector<std::string> inputs;
    for (const std::string& path : inputPaths) {
        inputs.push_back(readWholeFile(path));
    }
    std::vector<Samples> samples(commands.size());
    for (int round = 0; round < runs; ++round) {
        for (const std::string& input : inputs) {
            for (std::size_t i = 0; i < commands.size(); ++i) {
                const Clock::time_point start = Clock::now();
                Process process = Process::spawn(commands[i]);
                (void)process.write(input);
                process.finish();
                samples[i].micros.push_back(microsecondsSince(start));
            }
        }
    }
    for (std::size_t i = 0; i < commands.size(); ++i) {
        for (const std::string& input : inputs) {
            samples[i].peakKiB =
                std::max(samples[i].peakKiB, hookPeakResidentKiB(commands[i], input));
        }
        samples[i].print();
    }
    return 0;
}

int runStart(int runs, const std::vector<Command>& commands) {
    std::vector<Samples> samples(commands.size());
    for (int run = 0; run < runs; ++run) {
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const Clock::time_point start = Clock::now();
            Process process = Process::spawn(commands[i]);
            process.send(kOpening);
            process.awaitAnswer(1);
            const Clock::time_point listed = process.awaitAnswer(2);
            samples[i].micros.push_back(
                std::chrono::duration<double, std::micro>(listed - start).count());
            samples[i].peakKiB =
                std::max(samples[i].peakKiB, orvo::test::peakResidentKiB(process.pid));
            process.finish();
        }
    }
    for (const Samples& each : samples) {
        each.print();
    }
    return 0;
}

int runPing(double seconds, const std::vector<std::string>& command) {
    Process process = Process::spawn(command);
    process.send(kOpening);
    (void)process.awaitAnswer(1);
    (void)process.awaitAnswer(2);
    const std::string ping = R"({"jsonrpc":"2.0","id":3,"method":"ping"})"
                             "\n";
    std::string burst;
    for (int i = 0; i < kPingsInFlight; ++i) {
        burst += ping;
    }
    // Each answer is one line; keeping a whole burst in flight at all times is what an agent
    // that issues calls in parallel does to the server.
    process.send(burst);
    long answered = 0;
    long inFlight = kPingsInFlight;
    const Clock::time_point start = Clock::now();
    const auto length = std::chrono::duration<double>(seconds);
    while (Clock::now() - start < length) {
        if (!process.readMore()) {
            fail("output ended during the pings");
        }
        long lines = 0;
        for (std::size_t at = process.pending.find('\n'); at != std::string::npos;
             at = process.pending.find('\n', at + 1)) {
            ++lines;
        }
        process.pending.erase(0, process.pending.rfind('\n') + 1);
        answered += lines;
        inFlight -= lines;
        std::string refill;
        for (; inFlight < kPingsInFlight; ++inFlight) {
            refill += ping;
        }
        process.send(refill);
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    const long peakKiB = orvo::test::peakResidentKiB(process.pid);
    process.finish();
    std::printf("%.0f\t%ld\n", static_cast<double>(answered) / elapsed, peakKiB);
    return 0;
}

[[noreturn]] void usage() {
    fail(
        "usage: orvo_compare hook RUNS INPUT... -- COMMAND... [-- COMMAND...] | "
        "start RUNS -- COMMAND... [-- COMMAND...] | ping SECONDS -- COMMAND...");
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto dashes = std::find(words.begin(), words.end(), "--");
    if (words.size() < 2 || dashes == words.end()) {
        usage();
    }
    const std::vector<std::string> options(words.begin() + 1, dashes);
    std::vector<Command> commands;
    for (auto word = dashes; word != words.end(); ++word) {
        if (*word == "--") {
            commands.emplace_back();
        } else {
            commands.back().push_back(*word);
        }
    }
    if (options.empty() || std::ranges::any_of(commands, &Command::empty)) {
        usage();
    }
    const std::string& mode = words[0];
    if (mode == "hook" && options.size() >= 2) {
        return runHook(std::stoi(options[0]), {options.begin() + 1, options.end()}, commands);
    }
    if (mode == "start" && options.size() == 1) {
        return runStart(std::stoi(options[0]), commands);
    }
    if (mode == "ping" && options.size() == 1 && commands.size() == 1) {
        return runPing(std::stod(options[0]), commands.front());
    }
    usage();
}
