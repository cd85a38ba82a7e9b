#!/usr/bin/env python3
"""Checks every tool's inputSchema in the real binary's tools/list against the JSON Schema
2020-12 meta-schema, with an implementation independent of ours.

Usage: check_tool_schemas.py PATH_TO_ORVO_AGENT_MCP
Exits 77 (skipped) when the jsonschema module is missing.
"""
import json
import os
import subprocess
import sys

SKIPPED = 77


def main() -> int:
    try:
        from jsonschema import Draft202012Validator
        from jsonschema.exceptions import SchemaError
    except ImportError:
        print("skipped: the Python module jsonschema is missing "
              "(Debian package python3-jsonschema)")
        return SKIPPED

    environment = dict(os.environ)
    # The assistant origin would withhold speak; every tool is to be checked.
    environment.pop("ORVO_ASSISTANT_ORIGIN", None)
    request = json.dumps({"jsonrpc": "2.0", "id": 1, "method": "tools/list"}) + "\n"
    run = subprocess.run([sys.argv[1]], input=request, capture_output=True, text=True,
                         env=environment, timeout=30, check=False)
    if run.returncode != 0 or not run.stdout:
        print(f"the server exited with {run.returncode}: {run.stderr.strip()}")
        return 1
    tools = json.loads(run.stdout.splitlines()[0])["result"]["tools"]
    if not tools:
        print("tools/list offered no tool")
        return 1

    failures = 0
    for tool in tools:
        try:
            Draft202012Validator.check_schema(tool["inputSchema"])
        except SchemaError as error:
            failures += 1
            where = "/".join(str(part) for part in error.absolute_path)
            print(f"{tool['name']}: {error.message} at /{where}")
    print(f"{len(tools) - failures} of {len(tools)} input schemas are valid")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
