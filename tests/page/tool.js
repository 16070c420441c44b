// Runs ostrovia-replay in a folder of its own.
'use strict';

const { spawnSync } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');

const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'page-'));
let reports = 0;

exports.remove = () => fs.rmSync(folder, { recursive: true });

exports.write = (name, content) => {
  const file = path.join(folder, name);
  fs.writeFileSync(file, content);
  return file;
};

exports.sample = (name) => path.join(process.env.SAMPLES, name);

// Exit statuses of runs with a report: fine, malformed lines, another run differs.
const EXPECTED = [0, 3, 5];

exports.run = (...args) => {
  const result = spawnSync(process.env.REPLAY, ['--quiet', ...args], {
    cwd: folder, encoding: 'utf8', maxBuffer: 1 << 28, stdio: ['ignore', 'ignore', 'pipe'],
  });
  if (!EXPECTED.includes(result.status)) throw new Error(`${args}: ${result.stderr}`);
};

// The path of a new report of the run with these arguments.
exports.report = (...args) => {
  const file = path.join(folder, `report-${++reports}.html`);
  exports.run('--report', file, ...args);
  return file;
};
