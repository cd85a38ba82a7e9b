#!/usr/bin/env python3
"""Checks every tool in the real binary's tools/list against the rules we keep that JSON Schema does
not, then each inputSchema against the 2020-12 meta-schema with an implementation not ours.
Usage: check_tool_schemas.py PATH_TO_ORVO_AGENT_MCP (exits 77, skipped, without python3-jsonschema)
"""
import json
import os
import re
import subprocess
import sys

SKIPPED = 77
KEYWORDS = {"additionalProperties", "const", "default", "deprecated", "description", "enum",
            "exclusiveMinimum", "format", "items", "maxItems", "maxLength", "maximum", "minItems",
            "minLength", "minProperties", "minimum", "oneOf", "pattern", "properties", "required",
            "type", "uniqueItems"}
# Each keyword applies to a value of one of these types only.
APPLIES_TO = {**dict.fromkeys(["minimum", "maximum", "exclusiveMinimum"], {"integer", "number"}),
              **dict.fromkeys(["minLength", "maxLength", "pattern", "format"], {"string"}),
              **dict.fromkeys(["items", "minItems", "maxItems", "uniqueItems"], {"array"}),
              **dict.fromkeys(["properties", "required", "additionalProperties",
                               "minProperties"], {"object"})}
FITS = {"string": lambda v: isinstance(v, str), "boolean": lambda v: isinstance(v, bool),
        "integer": lambda v: isinstance(v, int) and not isinstance(v, bool),
        "number": lambda v: isinstance(v, (int, float)) and not isinstance(v, bool),
        "array": lambda v: isinstance(v, list), "object": lambda v: isinstance(v, dict),
        "null": lambda v: v is None}


def parameter_problems(schema, where, found):
    """Appends to `found` what breaks our rules in one parameter's schema; returns how many open
    objects (the Playbook documents, which the app validates) it holds."""
    if not isinstance(schema, dict):
        found.append(f"{where}: not an object")
        return 0
    types = schema.get("type", [])
    types = set(types if isinstance(types, list) else [types])

    def fits(value):
        return any(FITS[t](value) for t in types if t in FITS)

    for keyword in schema:
        if keyword not in KEYWORDS:
            found.append(f"{where}: keyword {keyword}")
        elif keyword in APPLIES_TO and not types & APPLIES_TO[keyword]:
            found.append(f"{where}: {keyword} on {sorted(types)}")
    if not types:
        found.append(f"{where}: no type")
    values = schema.get("enum", [])
    if any(not fits(v) for v in values) or len(set(map(json.dumps, values))) != len(values):
        found.append(f"{where}: enum {values}")
    # Variants are objects told apart by a required "type" of their own, so that exactly one fits.
    tags = [v.get("properties", {}).get("type", {}).get("const") if isinstance(v, dict) and
            "type" in v.get("required", []) else None for v in schema.get("oneOf", [])]
    if None in tags or len(set(tags)) != len(tags):
        found.append(f"{where}: variants not told apart by a distinct const type: {tags}")
    opened = sum(parameter_problems(choice, where + "/oneOf", found)
                 for choice in schema.get("oneOf", []))
    if "items" in schema:
        opened += parameter_problems(schema["items"], where + "/items", found)
    # An object chosen among variants is described by the variants themselves.
    if "object" in types and "oneOf" not in schema:
        opened += object_problems(schema, where, found)
    return opened


def object_problems(schema, where, found):
    """Nested objects follow the shape of the top level: closed, with listed required names."""
    if schema.get("additionalProperties") is True and "properties" not in schema:
        return 1
    if schema.get("additionalProperties") is not False:
        found.append(f"{where}: not closed")
    properties = schema.get("properties")
    if not isinstance(properties, dict):
        found.append(f"{where}: no properties")
        return 0
    if "required" in schema and (not schema["required"] or
                                 not set(schema["required"]) <= set(properties)):
        found.append(f"{where}: required {schema['required']}")
    return sum(parameter_problems(p, f"{where}/{name}", found) for name, p in properties.items())


def tool_problems(tool):
    name, found = tool["name"], []
    text = tool.get("description")
    if not isinstance(text, str) or not text:
        found.append(f"description {text!r}")
    elif "Docs:" in text and not re.fullmatch(r"Docs: [a-z-]+\.md", text[text.find("Docs:"):]):
        found.append("a description names its docs page last, by file name")
    opened = parameter_problems(tool["inputSchema"], "", found)
    if opened and not name.startswith("computer_playbook_"):
        found.append("an open object")
    return [f"{name}: {problem}" for problem in found]


def main() -> int:
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
    problems = [problem for tool in tools for problem in tool_problems(tool)]
    print("\n".join(problems) or f"{len(tools)} tools keep our rules")
    if problems:
        return 1
    try:
        from jsonschema import Draft202012Validator
        from jsonschema.exceptions import SchemaError
    except ImportError:
        print("skipped: the Python module jsonschema is missing "
              "(Debian package python3-jsonschema)")
        return SKIPPED
    failures = 0
    for tool in tools:
        try:
            Draft202012Validator.check_schema(tool["inputSchema"])
        except SchemaError as error:
            failures += 1
            print(f"{tool['name']}: {error.message} at /{'/'.join(map(str, error.absolute_path))}")
    print(f"{len(tools) - failures} of {len(tools)} input schemas are valid")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
