// Drives orvo-agent-mcp through the official MCP TypeScript SDK client, which checks every
// response against its own schemas, and prints what the SDK handed back as one JSON line.
// Usage: node client.mjs PATH_TO_ORVO_AGENT_MCP
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

const transport = new StdioClientTransport({ command: process.argv[2], args: ['--agent', 'interop'] });
// Strict: the client refuses to list or get prompts that the server did not announce.
const client = new Client({ name: 'orvo-interop', version: '1.0.0' },
                          { enforceStrictCapabilities: true });
// A line that the SDK cannot read fails no request: it only reaches onerror, and the request
// then waits for its time-out. So any such error fails the run.
const transportErrors = [];
client.onerror = (error) => transportErrors.push(String(error));
const options = { timeout: 10_000 };

const session = {};
try {
    await client.connect(transport, options);
    session.serverInfo = client.getServerVersion();
    // Each answer is checked against the SDK's schemas as it arrives.
    await client.listTools({}, options);
    await client.listPrompts({}, options);
    await client.getPrompt({ name: 'speak_every_reply' }, options);
    await client.callTool({ name: 'current_settings' }, undefined, options);
    session.version = await client.callTool({ name: 'orvo_version' }, undefined, options);
    try {
        session.forwarded = await client.callTool({ name: 'list_meetings' }, undefined, options);
    } catch (error) {
        session.forwardedError = { code: error.code, message: error.message };
    }
    session.ping = await client.ping(options);
} catch (error) {
    console.error(`the SDK client failed: ${error.stack ?? error}`);
    process.exitCode = 1;
} finally {
    await client.close();
}
if (transportErrors.length > 0) {
    console.error(`the SDK could not read the server: ${transportErrors.join('; ')}`);
    process.exitCode = 1;
}
console.log(JSON.stringify(session));
