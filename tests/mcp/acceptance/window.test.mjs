// The desktop application end to end, as a person and an agent meet it: korvel runs
// on a virtual X screen, an agent drives it through `korvel-mcp --connect` with the
// official MCP client, the person undoes from the window with Ctrl+Z, and the
// session ends as a desktop logout ends it (SIGTERM), leaving no socket behind.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, existsSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { inflateSync } from 'node:zlib';
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

const korvel = process.env.KORVEL_PROGRAM;
const relay = process.env.KORVEL_MCP_PROGRAM;
assert.ok(korvel && relay, 'KORVEL_PROGRAM and KORVEL_MCP_PROGRAM must name the programs');
assert.ok(process.env.DISPLAY, 'run under tests/support/with-x');

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

async function until(what, check, timeoutMs = 60000) {
  const start = Date.now();
  for (;;) {
    const value = await check();
    if (value) return value;
    if (Date.now() - start > timeoutMs) throw new Error(`timed out waiting for ${what}`);
    await sleep(100);
  }
}

function xdotool(...args) {
  try {
    return execFileSync('xdotool', args, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] }).trim();
  } catch {
    return '';
  }
}

// The visible top-level windows whose title matches, newest last.
const windowsNamed = (pattern) => xdotool('search', '--onlyvisible', '--name', pattern)
  .split('\n').filter(Boolean);

function geometryOf(window) {
  const text = xdotool('getwindowgeometry', '--shell', window);
  return Object.fromEntries(text.split('\n').map((line) => line.split('=')).map(([k, v]) => [k, Number(v)]));
}

// One session of the application in its own home; resolves when its main window shows.
async function startKorvel(home, args = [], env = {}) {
  const child = spawn(korvel, args, {
    env: {
      ...process.env,
      XDG_CONFIG_HOME: join(home, 'config'),
      XDG_DATA_HOME: join(home, 'data'),
      XDG_STATE_HOME: join(home, 'state'),
      KORVEL_MCP_PIPE: join(home, 'agent.sock'),
      KORVEL_AUTOSAVE_MS: '100000000',
      ...env,
    },
    stdio: ['ignore', 'ignore', 'pipe'],
  });
  let stderr = '';
  child.stderr.on('data', (chunk) => { stderr += chunk; });
  const exited = new Promise((resolve) => child.on('exit', (code, signal) => resolve({ code, signal })));
  const window = await until('the main window', () => {
    if (child.exitCode !== null) throw new Error(`korvel exited early: ${stderr}`);
    return windowsNamed('^Korvel Studio — ').at(-1);
  });
  return { child, window, exited, stderr: () => stderr };
}

async function connectAgent(socket) {
  const transport = new StdioClientTransport({ command: relay, args: ['--connect', socket], stderr: 'pipe' });
  const client = new Client({ name: 'korvel-window-acceptance', version: '1.0.0' });
  await client.connect(transport);
  return client;
}

async function ok(client, name, args = {}) {
  const result = await client.callTool({ name, arguments: args });
  assert.equal(result.isError, false, `${name}: ${result.content[0]?.text}`);
  return result.content[0];
}

// Just enough PNG to read 8-bit RGB or RGBA pixels back: every filter type, no interlace.
function decodePng(bytes) {
  assert.deepEqual([...bytes.subarray(0, 8)], [137, 80, 78, 71, 13, 10, 26, 10]);
  let offset = 8; let width = 0; let height = 0; let channels = 0; const data = [];
  while (offset < bytes.length) {
    const length = bytes.readUInt32BE(offset);
    const type = bytes.toString('latin1', offset + 4, offset + 8);
    const body = bytes.subarray(offset + 8, offset + 8 + length);
    if (type === 'IHDR') {
      width = body.readUInt32BE(0); height = body.readUInt32BE(4);
      assert.equal(body[8], 8, 'bit depth');
      assert.equal(body[12], 0, 'interlace');
      channels = { 2: 3, 6: 4 }[body[9]];
      assert.ok(channels, `colour type ${body[9]}`);
    } else if (type === 'IDAT') data.push(body);
    offset += 12 + length;
  }
  const raw = inflateSync(Buffer.concat(data));
  const stride = width * channels;
  const pixels = Buffer.alloc(stride * height);
  for (let y = 0; y < height; ++y) {
    const filter = raw[y * (stride + 1)];
    for (let x = 0; x < stride; ++x) {
      const value = raw[y * (stride + 1) + 1 + x];
      const a = x >= channels ? pixels[y * stride + x - channels] : 0;
      const b = y > 0 ? pixels[(y - 1) * stride + x] : 0;
      const c = x >= channels && y > 0 ? pixels[(y - 1) * stride + x - channels] : 0;
      const p = a + b - c;
      const paeth = Math.abs(p - a) <= Math.abs(p - b) && Math.abs(p - a) <= Math.abs(p - c) ? a
        : Math.abs(p - b) <= Math.abs(p - c) ? b : c;
      const predicted = [0, a, b, (a + b) >> 1, paeth][filter];
      pixels[y * stride + x] = (value + predicted) & 0xff;
    }
  }
  return { width, height, pixel: (x, y) => [...pixels.subarray(y * stride + x * channels, y * stride + x * channels + 3)] };
}

test('an agent and a person share one window', async (t) => {
  const home = mkdtempSync(join(tmpdir(), 'korvel-window-'));
  const socket = join(home, 'agent.sock');
  const app = await startKorvel(home);
  let client;
  t.after(async () => {
    await client?.close();
    if (app.child.exitCode === null) app.child.kill('SIGKILL');
    rmSync(home, { recursive: true, force: true });
  });

  await t.test('the window opens untitled, centred on a 1920 x 1040 screen at 1440 x 900', () => {
    assert.equal(xdotool('getwindowname', app.window), 'Korvel Studio — Untitled');
    if (process.env.KORVEL_TEST_SCREEN?.startsWith('1920x1040')) {
      const g = geometryOf(app.window);
      assert.deepEqual([g.WIDTH, g.HEIGHT], [1440, 900]);
      assert.deepEqual([g.X, g.Y], [240, 70]);
    }
  });

  await t.test('an agent connects to the live window', async () => {
    await until('the agent socket', () => existsSync(socket));
    client = await connectAgent(socket);
    assert.match(client.getInstructions(), /You are driving the user's open Korvel Studio window/);
    const doc = JSON.parse((await ok(client, 'get_document')).text);
    assert.equal(doc.live, true);
  });

  await t.test("the agent's sketch and extrude appear in the view", async () => {
    await ok(client, 'create_sketch', { plane: 'XY' });
    await ok(client, 'add_rectangle', { sketch: 'Sketch1', x1: -20, y1: -15, x2: 20, y2: 15 });
    assert.equal((await ok(client, 'extrude', { sketch: 'Sketch1', distance: 25 })).text,
      'Created Body1 with Extrude1.');
    assert.equal(xdotool('getwindowname', app.window), 'Korvel Studio — Untitled •');
    await ok(client, 'set_view', { view: 'iso' });
    const shot = await ok(client, 'screenshot');
    assert.equal(shot.type, 'image');
    assert.equal(shot.mimeType, 'image/png');
    const png = Buffer.from(shot.data, 'base64');
    if (process.env.KORVEL_KEEP_SCREENSHOT) writeFileSync(process.env.KORVEL_KEEP_SCREENSHOT, png);
    const image = decodePng(png);
    assert.ok(image.width > 200 && image.height > 200, `${image.width} x ${image.height}`);
    // The fitted body fills the middle; the dark background shows at the left edge.
    const brightness = ([r, g, b]) => (r + g + b) / 3;
    const middle = brightness(image.pixel(image.width >> 1, image.height >> 1));
    const edge = brightness(image.pixel(4, image.height >> 1));
    assert.ok(edge < 70, `background at the edge: ${edge}`);
    assert.ok(middle > edge + 30, `body ${middle} against background ${edge}`);
  });

  await t.test("the window's Ctrl+Z undoes the agent's extrude", async () => {
    xdotool('mousemove', '--window', app.window, '700', '500');
    xdotool('windowfocus', '--sync', app.window);
    xdotool('key', '--clearmodifiers', 'ctrl+z');
    await until('the extrude to be undone', async () => {
      const doc = JSON.parse((await ok(client, 'get_document')).text);
      return !JSON.stringify(doc).includes('Body1');
    }, 20000);
  });

  await t.test('saved, the title drops its mark, and SIGTERM closes without a socket left', async () => {
    await ok(client, 'save_project', { path: join(home, 'bracket.kv3') });
    assert.equal(xdotool('getwindowname', app.window), 'Korvel Studio — bracket');
    await client.close();
    client = undefined;
    app.child.kill('SIGTERM');
    const { code } = await app.exited;
    assert.equal(code, 0, app.stderr());
    assert.equal(existsSync(socket), false);
  });

  await t.test('a project named on the command line opens', async () => {
    const again = await startKorvel(home, [join(home, 'bracket.kv3')]);
    await until('the project title', () => xdotool('getwindowname', again.window) === 'Korvel Studio — bracket');
    again.child.kill('SIGTERM');
    assert.equal((await again.exited).code, 0);
  });

  await t.test('an unreadable project warns, and the application carries on', async () => {
    const broken = join(home, 'broken.kv3');
    writeFileSync(broken, 'not a project');
    const again = await startKorvel(home, [broken], { KORVEL_MCP: '0' });
    const warning = await until('the Open Project warning', () => windowsNamed('^Open Project$').at(-1));
    xdotool('windowfocus', '--sync', warning);
    xdotool('key', 'Return');
    await until('the warning to close', () => windowsNamed('^Open Project$').length === 0);
    assert.equal(again.child.exitCode, null);
    assert.equal(xdotool('getwindowname', again.window), 'Korvel Studio — Untitled');
    assert.equal(existsSync(socket), false, 'KORVEL_MCP=0 leaves no socket');
    again.child.kill('SIGTERM');
    assert.equal((await again.exited).code, 0);
  });
});
