// korvel-mcp driven by the official MCP TypeScript SDK client over stdio, the way
// an agent's MCP client drives it: initialize, list tools, model, query, files, undo.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, existsSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

const program = process.env.KORVEL_MCP_PROGRAM;
assert.ok(program, 'KORVEL_MCP_PROGRAM must name the korvel-mcp program');

async function connect(folder) {
  const transport = new StdioClientTransport({
    command: program,
    args: [],
    env: { ...process.env, KORVEL_MCP_PIPE: join(folder, 'agents.sock') },
    stderr: 'pipe',
  });
  const client = new Client({ name: 'korvel-acceptance', version: '1.0.0' });
  await client.connect(transport);
  return client;
}

async function call(client, name, args = {}) {
  const result = await client.callTool({ name, arguments: args });
  assert.equal(result.content.length, 1);
  return { text: result.content[0].text, isError: result.isError };
}

async function ok(client, name, args = {}) {
  const { text, isError } = await call(client, name, args);
  assert.equal(isError, false, `${name}: ${text}`);
  return text;
}

test('an SDK client models, queries, saves, reopens and undoes', async (t) => {
  const folder = mkdtempSync(join(tmpdir(), 'korvel-sdk-'));
  const client = await connect(folder);
  t.after(async () => {
    await client.close();
    rmSync(folder, { recursive: true, force: true });
  });

  await t.test('initialize names the server and says it runs headless', () => {
    const info = client.getServerVersion();
    assert.equal(info.name, 'korvel');
    assert.equal(info.title, 'Korvel Studio');
    assert.match(client.getInstructions(), /^Korvel Studio is a parametric CAD application\./);
    assert.match(client.getInstructions(), /Running headless \(the app is not open\)/);
    assert.deepEqual(client.getServerCapabilities().tools, { listChanged: false });
  });

  await t.test('the tool list holds the query tools around the commands', async () => {
    const { tools } = await client.listTools();
    const names = tools.map((tool) => tool.name);
    assert.deepEqual(names.slice(0, 4), ['get_document', 'get_body', 'measure', 'get_sketch']);
    assert.deepEqual(names.slice(-2), ['screenshot', 'set_view']);
    for (const name of ['create_sketch', 'add_rectangle', 'extrude', 'undo', 'save_project'])
      assert.ok(names.includes(name), name);
    assert.equal(new Set(names).size, names.length);
    const extrude = tools.find((tool) => tool.name === 'extrude');
    assert.deepEqual(extrude.inputSchema.properties.distance.type, ['number', 'string']);
    assert.equal(tools.find((tool) => tool.name === 'get_body').annotations.readOnlyHint, true);
  });

  await t.test('a sketch extrudes by a length with units', async () => {
    assert.equal(await ok(client, 'create_sketch', { plane: 'XY' }), 'Created Sketch1.');
    await ok(client, 'add_rectangle', { sketch: 'Sketch1', x1: 0, y1: 0, x2: 10, y2: 20 });
    assert.equal(await ok(client, 'extrude', { sketch: 'Sketch1', distance: '10 + 2mm' }),
      'Created Body1 with Extrude1.');
    const wrong = await call(client, 'extrude', { sketch: 'Sketch1', distance: [1] });
    assert.equal(wrong.isError, true);
    assert.equal(wrong.text, "extrude: 'distance' must be a number, string or boolean.");
  });

  await t.test('queries see the body', async () => {
    const doc = JSON.parse(await ok(client, 'get_document'));
    assert.equal(doc.live, false);
    const body = doc.document.objects.find((o) => o.name === 'Body1');
    assert.equal(body.measured.volume_mm3, 2400);
    assert.deepEqual(body.measured.bounds, [[0, 0, 0], [10, 20, 12]]);
    const between = JSON.parse(await ok(client, 'measure',
      { a: 'Body1/Extrude1.end', b: 'Body1/Extrude1.start' }));
    assert.equal(between.distance_mm, 12);
    const faces = JSON.parse(await ok(client, 'get_body', { body: 'Body1' })).faces;
    assert.ok(faces.some((f) => f.ref === 'Body1/Extrude1.end'));
  });

  const path = join(folder, 'plate.kv3');
  await t.test('the project saves', async () => {
    assert.equal(await ok(client, 'save_project', { path }), `Saved ${path}.`);
    assert.ok(existsSync(path));
  });

  await t.test('undo takes the extrusion back, redo brings it again', async () => {
    assert.match(await ok(client, 'undo'), /^Undid extrude\(sketch="Sketch1", distance="10 \+ 2mm"\)\.$/);
    const doc = JSON.parse(await ok(client, 'get_document'));
    assert.ok(!doc.document.objects.some((o) => o.name === 'Body1'));
    assert.match(await ok(client, 'redo'), /^Redid extrude/);
  });

  await t.test('the saved project reopens as it was, with a fresh history', async () => {
    assert.equal(await ok(client, 'new_document'), 'Started a new document.');
    assert.equal(await ok(client, 'open_project', { path }), `Opened ${path}.`);
    const doc = JSON.parse(await ok(client, 'get_document'));
    assert.equal(doc.file, path);
    assert.deepEqual(doc.document.objects.map((o) => o.name), ['Sketch1', 'Body1', 'Extrude1']);
    assert.equal(doc.document.objects[1].measured.volume_mm3, 2400);
    const undo = await call(client, 'undo');
    assert.deepEqual(undo, { text: 'Nothing to undo.', isError: true });
  });
});
