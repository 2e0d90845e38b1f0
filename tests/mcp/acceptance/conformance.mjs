// Runs the official MCP conformance scenarios against korvel-mcp: the stdio server
// is put behind supergateway's Streamable HTTP endpoint on a free port of
// 127.0.0.1, and each scenario must pass with no failed check.
import { spawn } from 'node:child_process';
import { createServer } from 'node:net';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const program = process.env.KORVEL_MCP_PROGRAM;
const scenarios = process.argv.slice(2).length ? process.argv.slice(2)
  : ['server-initialize', 'ping', 'tools-list'];
if (!program) {
  console.error('KORVEL_MCP_PROGRAM must name the korvel-mcp program');
  process.exit(2);
}

function freePort() {
  return new Promise((resolve, reject) => {
    const server = createServer();
    server.once('error', reject);
    server.listen(0, '127.0.0.1', () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

function run(args, timeoutMs) {
  return new Promise((resolve) => {
    const child = spawn(process.execPath, args, { cwd: here });
    let output = '';
    child.stdout.on('data', (d) => { output += d; });
    child.stderr.on('data', (d) => { output += d; });
    const timer = setTimeout(() => child.kill('SIGKILL'), timeoutMs);
    child.on('close', (code) => {
      clearTimeout(timer);
      resolve({ code, output });
    });
  });
}

async function waitForHealth(url, deadline) {
  while (Date.now() < deadline) {
    try {
      const answer = await fetch(url);
      if (answer.ok) return true;
    } catch { /* not up yet */ }
    await new Promise((r) => setTimeout(r, 100));
  }
  return false;
}

const folder = mkdtempSync(join(tmpdir(), 'korvel-conformance-'));
const port = await freePort();
const gateway = spawn(process.execPath, [
  join(here, 'node_modules/supergateway/dist/index.js'),
  '--stdio', program, '--outputTransport', 'streamableHttp', '--port', String(port),
  '--healthEndpoint', '/healthz', '--logLevel', 'none',
], { cwd: here, env: { ...process.env, KORVEL_MCP_PIPE: join(folder, 'agents.sock') },
  stdio: ['ignore', 'inherit', 'inherit'] });

let failed = 0;
try {
  if (!await waitForHealth(`http://127.0.0.1:${port}/healthz`, Date.now() + 20000)) {
    console.error('supergateway did not come up');
    failed = scenarios.length;
  } else {
    for (const scenario of scenarios) {
      const { code, output } = await run([
        join(here, 'node_modules/@modelcontextprotocol/conformance/dist/index.js'), 'server',
        '--url', `http://127.0.0.1:${port}/mcp`, '--scenario', scenario,
      ], 60000);
      const passed = code === 0 && /Passed: (\d+)\/\1, 0 failed/.test(output);
      console.log(`${passed ? 'ok' : 'not ok'} - ${scenario}`);
      if (!passed) {
        failed += 1;
        console.log(output);
      }
    }
  }
} finally {
  if (gateway.exitCode === null) {
    const closed = new Promise((resolve) => gateway.once('close', resolve));
    gateway.kill('SIGTERM');
    const timer = setTimeout(() => gateway.kill('SIGKILL'), 5000);
    await closed;
    clearTimeout(timer);
  }
  rmSync(folder, { recursive: true, force: true });
}
console.log(`${scenarios.length - failed} passed, ${failed} failed`);
process.exit(failed ? 1 : 0);
