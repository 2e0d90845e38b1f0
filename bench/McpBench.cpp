// The MCP round-trip workload: "ping" and "get_document" on a 20-object document,
// handled in-process and sent to korvel-mcp over stdio and over the agent socket
// (p50 and p95 per round trip as counters), and the time from starting the
// program to its initialize answer. POSIX: the program runs as a child process.
#include "mcp/HeadlessHost.h"
#include "mcp/McpServer.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

std::string programPath() {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "korvel-mcp").string();
}

const std::string kPing = R"({"jsonrpc":"2.0","id":1,"method":"ping"})";
const std::string kGetDocument =
    R"({"jsonrpc":"2.0","id":2,"method":"tools/call","params":{"name":"get_document","arguments":{}}})";

std::string call(int id, const std::string& tool, const nlohmann::json& arguments) {
    nlohmann::json m = {{"jsonrpc", "2.0"},
                        {"id", id},
                        {"method", "tools/call"},
                        {"params", {{"name", tool}, {"arguments", arguments}}}};
    return m.dump();
}

// The requests that make the 20-object document: ten sketches, five of them with a
// rectangle extruded into a body (each a body and its feature).
std::vector<std::string> twentyObjects() {
    std::vector<std::string> lines;
    int id = 100;
    for (int i = 1; i <= 10; ++i) {
        lines.push_back(call(id++, "create_sketch", {{"plane", "XY"}}));
        if (i > 5) continue;
        std::string sketch = "Sketch" + std::to_string(i);
        lines.push_back(
            call(id++, "add_rectangle",
                 {{"sketch", sketch}, {"x1", 20 * i}, {"y1", 0}, {"x2", 20 * i + 10}, {"y2", 10}}));
        lines.push_back(call(id++, "extrude", {{"sketch", sketch}, {"distance", 5 + i}}));
    }
    return lines;
}

// A blocking line channel over two file descriptors.
class Channel {
public:
    Channel() = default;
    Channel(int in, int out) : in_(in), out_(out) {}
    bool send(const std::string& line) {
        std::string text = line + "\n";
        const char* p = text.data();
        std::size_t left = text.size();
        while (left > 0) {
            ssize_t n = ::write(out_, p, left);
            if (n <= 0) return false;
            p += n;
            left -= static_cast<std::size_t>(n);
        }
        return true;
    }
    std::string receive() {
        for (;;) {
            std::size_t nl = buffer_.find('\n');
            if (nl != std::string::npos) {
                std::string line = buffer_.substr(0, nl);
                buffer_.erase(0, nl + 1);
                return line;
            }
            char chunk[65536];
            ssize_t n = ::read(in_, chunk, sizeof chunk);
            if (n <= 0) return {};
            buffer_.append(chunk, static_cast<std::size_t>(n));
        }
    }
    std::string roundTrip(const std::string& line) {
        send(line);
        return receive();
    }

private:
    int in_ = -1, out_ = -1;
    std::string buffer_;
};

// korvel-mcp as a child process: on stdio, or listening on a socket.
class Child {
public:
    explicit Child(std::vector<std::string> arguments) {
        int toChild[2], fromChild[2];
        if (::pipe(toChild) != 0 || ::pipe(fromChild) != 0) return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, toChild[0], 0);
        posix_spawn_file_actions_adddup2(&actions, fromChild[1], 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclose(&actions, toChild[1]);
        posix_spawn_file_actions_addclose(&actions, fromChild[0]);
        std::string program = programPath();
        std::vector<char*> argv{program.data()};
        for (std::string& a : arguments) argv.push_back(a.data());
        argv.push_back(nullptr);
        started_ = Clock::now();
        if (posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        ::close(toChild[0]);
        ::close(fromChild[1]);
        stdio_ = Channel(fromChild[0], toChild[1]);
        in_ = toChild[1];
        out_ = fromChild[0];
    }
    ~Child() {
        ::close(in_);
        ::close(out_);
        if (pid_ > 0) {
            ::kill(pid_, SIGTERM);
            ::waitpid(pid_, nullptr, 0);
        }
    }
    Channel& stdio() { return stdio_; }
    Clock::time_point started() const { return started_; }
    bool ok() const { return pid_ > 0; }

private:
    pid_t pid_ = -1;
    int in_ = -1, out_ = -1;
    Channel stdio_;
    Clock::time_point started_;
};

int connectTo(const std::string& path) {
    for (int attempt = 0; attempt < 400; ++attempt) {
        int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
        ::close(fd);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return -1;
}

void percentiles(benchmark::State& state, std::vector<double>& micros) {
    if (micros.empty()) return;
    std::sort(micros.begin(), micros.end());
    auto at = [&](double q) {
        return micros[static_cast<std::size_t>(q * static_cast<double>(micros.size() - 1))];
    };
    state.counters["p50_ms"] = at(0.50) / 1000;
    state.counters["p95_ms"] = at(0.95) / 1000;
}

void measure(benchmark::State& state, Channel& channel, const std::string& line) {
    std::vector<double> micros;
    for (auto _ : state) {
        auto t0 = Clock::now();
        std::string answer = channel.roundTrip(line);
        micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - t0).count());
        if (answer.empty()) {
            state.SkipWithError("korvel-mcp stopped answering");
            break;
        }
    }
    percentiles(state, micros);
}

void prepare(benchmark::State& state, Channel& channel, bool twenty) {
    if (!twenty) return;
    for (const std::string& line : twentyObjects())
        if (channel.roundTrip(line).find("\"isError\":false") == std::string::npos) {
            state.SkipWithError("building the 20-object document failed");
            return;
        }
}

void BM_InProcess(benchmark::State& state) {
    cad::mcp::HeadlessHost host;
    cad::mcp::McpServer server(host, "bench");
    const bool twenty = state.range(0) == 1;
    if (twenty)
        for (const std::string& line : twentyObjects()) (void)server.handle(line);
    const std::string& line = twenty ? kGetDocument : kPing;
    std::vector<double> micros;
    for (auto _ : state) {
        auto t0 = Clock::now();
        auto answer = server.handle(line);
        benchmark::DoNotOptimize(answer);
        micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - t0).count());
    }
    percentiles(state, micros);
    state.SetLabel(twenty ? "get_document, 20 objects" : "ping");
}
BENCHMARK(BM_InProcess)->Arg(0)->Arg(1);

void BM_Stdio(benchmark::State& state) {
    Child child({});
    const bool twenty = state.range(0) == 1;
    prepare(state, child.stdio(), twenty);
    measure(state, child.stdio(), twenty ? kGetDocument : kPing);
    state.SetLabel(twenty ? "get_document, 20 objects" : "ping");
}
BENCHMARK(BM_Stdio)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Socket(benchmark::State& state) {
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("korvel-bench-" + std::to_string(::getpid()) + ".sock"))
                                 .string();
    Child child({"--listen", path});
    int fd = connectTo(path);
    if (fd < 0) {
        state.SkipWithError("korvel-mcp --listen did not come up");
        return;
    }
    Channel channel(fd, fd);
    const bool twenty = state.range(0) == 1;
    prepare(state, channel, twenty);
    measure(state, channel, twenty ? kGetDocument : kPing);
    ::close(fd);
    state.SetLabel(twenty ? "get_document, 20 objects" : "ping");
}
BENCHMARK(BM_Socket)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// From starting the program to reading its answer to "initialize".
void BM_StartToInitialize(benchmark::State& state) {
    const std::string initialize =
        R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-06-18","capabilities":{},"clientInfo":{"name":"bench","version":"1"}}})";
    std::vector<double> micros;
    for (auto _ : state) {
        Child child({});
        child.stdio().send(initialize);
        std::string answer = child.stdio().receive();
        micros.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - child.started()).count());
        if (answer.find("2025-06-18") == std::string::npos) {
            state.SkipWithError("no initialize answer");
            break;
        }
    }
    percentiles(state, micros);
}
BENCHMARK(BM_StartToInitialize)->Iterations(30)->Unit(benchmark::kMillisecond);

} // namespace
