// ctest's entry to the acceptance scripts: skips (exit 77) with the reason when the
// npm tools are not installed yet, else runs the script and passes its exit code on.
import { spawnSync } from 'node:child_process';
import { existsSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
if (!existsSync(join(here, 'node_modules', '@modelcontextprotocol', 'sdk'))) {
  console.log(`The MCP acceptance tools are not installed: run ./dev test, or npm ci in ${here}.`);
  process.exit(77);
}
const [script, ...rest] = process.argv.slice(2);
const args = script.endsWith('.test.mjs') ? ['--test', join(here, script), ...rest]
  : [join(here, script), ...rest];
const result = spawnSync(process.execPath, args, { cwd: here, stdio: 'inherit' });
process.exit(result.status ?? 1);
