#!/usr/bin/env bash
# Sets orvo-agent-mcp beside other hooks and MCP servers from the npm registry, all measured in
# one run on this machine: the hook process per agent tool call, a server's cold start to its
# first tools/list answer, its steady pipelined ping rate, and the peak memory of each. Writes
# bench/report/README.md (the table), bench/report/results.tsv and bench/report/chart.png.
#
# The native servers compared are Linux x86-64 builds, so the report is made on such a machine.
# Nothing here reads or writes your home: every program runs with HOME in a temporary folder.
set -euo pipefail
cd "$(dirname "$0")/.."

report=bench/report
modules=bench/compare/node_modules

scripts/install-deps.sh gnuplot-nox
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
results="$scratch/results.tsv"

measure() {
    if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
        scripts/install-deps.sh nodejs npm
    fi
    timeout 600 npm ci --prefix bench/compare --ignore-scripts --no-audit --no-fund --loglevel=error \
        >/dev/null
    cmake --preset release >/dev/null && cmake --build --preset release >/dev/null
    cmake --preset ci >/dev/null && cmake --build --preset ci --target orvo_compare >/dev/null
    orvo=build/release/bin/orvo-agent-mcp
    compare=build/ci/bin/orvo_compare

    mkdir -p "$scratch/home" "$scratch/files"
    export HOME="$scratch/home"
    export CC_SAFETY_NET_HOME="$scratch/home"
    # No Orvo app runs here: a held call finds no socket and is let through, as on a Mac without
    # the app open.
    export ORVO_MCP_SOCKET="$scratch/no-app.sock"
    export MEMORY_FILE_PATH="$scratch/files/memory.jsonl"
    # Read at start only; nothing is sent anywhere during initialize, tools/list and ping.
    export KANONIV_API_KEY=placeholder

    hook_calls=(bench/hook-calls/*.json)

    # label | language | command. Each group takes turns run by run (see orvo_compare), so that
    # the programs compared most closely see the same machine.
    fast_hooks=(
        "/bin/true (the cost of a process)|C|/bin/true"
        "orvo-agent-mcp --action-hold-hook|C++|$orvo --action-hold-hook"
    )
    npm_hooks=(
        "cc-safety-net 2.4.5|Node.js|node $modules/cc-safety-net/dist/bin/cc-safety-net.js hook --claude-code"
    )
    native_servers=(
        "orvo-agent-mcp|C++|$orvo"
        "kanoniv-mcp 0.3.7|Rust|$modules/@kanoniv/mcp-linux-x64/kanoniv-mcp"
        "leanspec-mcp 0.3.0|Rust|$modules/@leanspec/mcp-linux-x64/leanspec-mcp"
        "vaulttools-mcp 0.1.7|Rust|$modules/@vaulttools/mcp-linux-x64/bin/vaulttools-mcp --allowed-dir $scratch/files"
        "mcp-time 0.4.0|Go|$modules/mcp-time-linux-x64/bin/mcp-time"
        "mcp-cron 0.9.1|Go|$modules/mcp-cron-linux-amd64/bin/mcp-cron -transport stdio -db-path $scratch/files/cron.db"
    )
    node_servers=(
        "server-everything 2026.8.31|Node.js|node $modules/@modelcontextprotocol/server-everything/dist/index.js stdio"
        "server-memory 2026.8.31|Node.js|node $modules/@modelcontextprotocol/server-memory/dist/index.js"
        "server-filesystem 2026.8.31|Node.js|node $modules/@modelcontextprotocol/server-filesystem/dist/index.js $scratch/files"
        "server-sequential-thinking 2026.8.31|Node.js|node $modules/@modelcontextprotocol/server-sequential-thinking/dist/index.js"
    )
    chmod +x "$modules"/*/bin/* "$modules"/@*/*/bin/* "$modules"/@*/*/*-mcp 2>/dev/null || true

    printf 'kind\tlabel\tlanguage\tmedian_ms\tp90_ms\tpeak_mib\tpings_per_s\n' >"$results"
    to_ms() { awk -v us="$1" 'BEGIN { printf "%.3f", us / 1000 }'; }
    to_mib() { awk -v kib="$1" 'BEGIN { printf "%.1f", kib / 1024 }'; }

    # measure_group hook|server RUNS ENTRY...: appends a line of results per entry.
    measure_group() {
        local kind=$1 runs=$2
        shift 2
        local entries=("$@") commands=() lines=() label language command words i
        for entry in "${entries[@]}"; do
            IFS='|' read -r label language command <<<"$entry"
            read -ra words <<<"$command"
            commands+=(-- "${words[@]}")
        done
        echo "$kind: ${#entries[@]} programs, $runs runs each" >&2
        if [ "$kind" = hook ]; then
            mapfile -t lines < <("$compare" hook "$runs" "${hook_calls[@]}" "${commands[@]}")
        else
            mapfile -t lines < <("$compare" start "$runs" "${commands[@]}")
        fi
        [ ${#lines[@]} -eq ${#entries[@]} ] || { echo "orvo_compare failed" >&2; exit 1; }
        for i in "${!entries[@]}"; do
            IFS='|' read -r label language command <<<"${entries[$i]}"
            read -r median p90 peak <<<"${lines[$i]}"
            rate=
            if [ "$kind" = server ]; then
                read -ra words <<<"$command"
                read -r rate peak < <("$compare" ping 3 -- "${words[@]}")
            fi
            printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$kind" "$label" "$language" \
                "$(to_ms "$median")" "$(to_ms "$p90")" "$(to_mib "$peak")" "$rate" >>"$results"
        done
    }
    measure_group hook 40 "${fast_hooks[@]}"
    measure_group hook 3 "${npm_hooks[@]}"
    measure_group server 100 "${native_servers[@]}"
    measure_group server 10 "${node_servers[@]}"

    mkdir -p "$report"
    cp "$results" "$report/results.tsv"
}

# --format-only rewrites the table and the chart from the last results.tsv without measuring.
if [ "${1:-}" = --format-only ]; then
    cp "$report/results.tsv" "$results"
else
    measure
fi

# The table, with every figure also as a ratio to this program's own.
cores=$(getconf _NPROCESSORS_ONLN)
case "$(uname -s)" in
    Darwin)
        machine="$(sysctl -n machdep.cpu.brand_string), $cores cores, \
$(sysctl -n hw.memsize | awk '{ printf "%.0f GiB", $1 / 1073741824 }'); \
macOS $(sw_vers -productVersion), Node.js $(node --version)" ;;
    *)
        machine="$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1), $cores cores, \
$(awk '/MemTotal/ { printf "%.0f GiB", $2 / 1048576 }' /proc/meminfo); \
$(. /etc/os-release && echo "$PRETTY_NAME"), Linux $(uname -r), Node.js $(node --version)" ;;
esac
awk -F'\t' -v machine="$machine" -v date="$(date -u +%Y-%m-%d)" '
    function ratio(a, b) { return b > 0 ? sprintf("%.1f×", a / b) : "" }
    function fixed(x) { return x >= 100 ? sprintf("%.0f", x) : x >= 10 ? sprintf("%.1f", x) : sprintf("%.2f", x) }
    NR == 1 { next }
    $1 == "hook" { hook[++hooks] = $0; if ($2 ~ /^orvo/) orvoHook = $4; if ($2 ~ /^\/bin\/true/) trueHook = $4;
                   if ($3 == "Node.js") npmHook = $4 }
    $1 == "server" { server[++servers] = $0; if ($2 ~ /^orvo/) { orvoStart = $4; orvoRate = $7; orvoPeak = $6 }
                     if ($3 == "Node.js" && (nodeStart == "" || $4 < nodeStart)) { nodeStart = $4; nodeName = $2 }
                     if ($3 == "Node.js" && (nodeRate == "" || $7 > nodeRate)) nodeRate = $7
                     if ($3 != "Node.js" && $2 !~ /^orvo/ && (nativeStart == "" || $4 < nativeStart)) { nativeStart = $4; nativeName = $2 }
                     if ($3 != "Node.js" && $2 !~ /^orvo/ && (nativeRate == "" || $7 > nativeRate)) { nativeRate = $7; nativeRateName = $2 } }
    END {
        print "# Side by side with other hooks and MCP servers"
        print ""
        print "Measured by [`bench/report.sh`](../report.sh) on " date ", on " machine "."
        print "Every program ran in the same run, with a temporary home and no Orvo app running; programs"
        print "compared closely took turns run by run. The figures are whole processes as an agent starts"
        print "them; ratios are the point, the absolute times move with the machine."
        print ""
        print "- **Hook**: " ratio(npmHook, orvoHook) " faster than cc-safety-net per tool call, and " \
              ratio(orvoHook, trueHook) " the cost of spawning `/bin/true`."
        print "- **Cold start** to the first `tools/list` answer: " ratio(nodeStart, orvoStart) \
              " faster than the fastest Node.js reference server (" nodeName "); the fastest native server " \
              "tried, " nativeName ", takes " fixed(nativeStart) " ms against " fixed(orvoStart) " ms (" \
              ratio(nativeStart, orvoStart) " of ours)."
        print "- **Pings**: " ratio(orvoRate, nativeRate) " the rate of the fastest native server tried (" \
              nativeRateName ") and " ratio(orvoRate, nodeRate) " that of the fastest Node.js reference server."
        print "- **Peak memory** of the server: " orvoPeak " MiB."
        print ""
        print "![hook time, cold start and peak memory](chart.png)"
        print ""
        print "## The hook, per agent tool call"
        print ""
        print "Eight typical calls (`bench/hook-calls/`: Read, Edit, Grep, git status, npm test, a commit,"
        print "`rm -rf dist`, a force push), each a new process given the call on standard input."
        print ""
        print "| Hook | Language | Median ms | 90th percentile ms | Peak memory MiB | Median vs orvo |"
        print "|---|---|---:|---:|---:|---:|"
        for (i = 1; i <= hooks; ++i) { split(hook[i], f, "\t")
            print "| " f[2] " | " f[3] " | " fixed(f[4]) " | " fixed(f[5]) " | " f[6] " | " ratio(f[4], orvoHook) " |" }
        print ""
        print "## The server"
        print ""
        print "Cold start: spawn, `initialize`, `notifications/initialized`, `tools/list`, until its answer."
        print "Pings: 32 kept in flight for 3 seconds. Peak memory: the high-water mark of the process after the pings."
        print ""
        print "| Server | Language | Cold start median ms | 90th percentile ms | Cold start vs orvo | Pings per second | Peak memory MiB |"
        print "|---|---|---:|---:|---:|---:|---:|"
        for (i = 1; i <= servers; ++i) { split(server[i], f, "\t")
            print "| " f[2] " | " f[3] " | " fixed(f[4]) " | " fixed(f[5]) " | " ratio(f[4], orvoStart) " | " f[7] " | " f[6] " |" }
    }' "$results" >"$report/README.md"

# Three panels on logarithmic axes, since the programs differ by orders of magnitude.
# Bars are named without versions and options (the table has them); this program's are orange.
short='{ name = $2; sub(/ \(.*\)$/, "", name); sub(/ --action-hold-hook$/, "", name);
         sub(/ [0-9][0-9.]*$/, "", name); sub(/^server-sequential-thinking$/, "server-seq.-thinking", name)
         colour = name ~ /^orvo/ ? "0xd9822b" : "0x3b6ea5" }'
awk -F'\t' "$short"' NR > 1 && $1 == "hook" { printf "\"%s\" %s %s\n", name, $4, colour }' \
    "$results" >"$scratch/hooks.dat"
awk -F'\t' "$short"' NR > 1 && $1 == "server" { printf "\"%s\" %s %s %s\n", name, $4, $6, colour }' \
    "$results" >"$scratch/servers.dat"
gnuplot <<EOF
set terminal pngcairo size 1500,520 font "DejaVu Sans,10"
set output "$report/chart.png"
set multiplot layout 1,3 title "orvo-agent-mcp beside other hooks and MCP servers ($(date -u +%Y-%m-%d), $cores cores; logarithmic scales)"
set style fill solid 0.85 border -1
set boxwidth 0.6
set logscale y
set grid ytics
set xtics rotate by -40 scale 0 font ",9"
set bmargin 7
set yrange [0.1:2000]
set key off
label(x) = x >= 100 ? sprintf("%.0f", x) : x >= 10 ? sprintf("%.1f", x) : sprintf("%.2f", x)
set title "Hook process per tool call, median ms"
set xrange [-0.6:2.6]
plot "$scratch/hooks.dat" using 0:2:3:xtic(1) with boxes lc rgb variable, \
     '' using 0:(\$2*1.4):(label(\$2)) with labels font ",9"
set xrange [-0.6:9.6]
set title "Cold start to the tools/list answer, median ms"
plot "$scratch/servers.dat" using 0:2:4:xtic(1) with boxes lc rgb variable, \
     '' using 0:(\$2*1.4):(label(\$2)) with labels font ",8"
set title "Server peak memory, MiB"
plot "$scratch/servers.dat" using 0:3:4:xtic(1) with boxes lc rgb variable, \
     '' using 0:(\$3*1.4):(label(\$3)) with labels font ",8"
unset multiplot
EOF
cat "$report/README.md"
