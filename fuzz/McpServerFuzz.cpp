// libFuzzer target: any bytes sent to the agent protocol handler, one message a
// line, must come back as answers (or silence for notifications), never as a
// crash, a hang or unbounded growth. Project files stay off so nothing is written.
#include "fuzz/FuzzHost.h"
#include "mcp/McpServer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static cad::fuzz::FuzzHost host;
    static cad::mcp::McpServer server(host, "fuzz");
    // Every input starts on a fresh document, so that a failing input replays alone.
    (void)host.newDocument();
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        std::size_t nl = text.find('\n');
        std::string_view line = text.substr(0, nl);
        auto answer = server.handle(line);
        (void)answer;
        if (nl == std::string_view::npos) break;
        text.remove_prefix(nl + 1);
    }
    return 0;
}
