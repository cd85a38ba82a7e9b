#!/usr/bin/env bash
# Builds the release binary and runs the server on this terminal.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null
{
    echo "orvo-agent-mcp is reading JSON-RPC from this terminal, one request per line. Try:"
    echo '  {"jsonrpc":"2.0","id":1,"method":"tools/list"}'
    echo "Press Ctrl-D to end input (the server then exits), or Ctrl-C to stop it."
} >&2
exec build/release/bin/orvo-agent-mcp "$@"
