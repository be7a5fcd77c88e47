// Yardstick: opens one model with web-ifc and prints the cost as bench/stage.h does.
//
// Usage: node web_ifc_open.mjs FOLDER FILE
// FOLDER holds node_modules.
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import path from 'node:path';

const [folder, file] = process.argv.slice(2);
const require = createRequire(path.resolve(folder, 'package.json'));
const WebIFC = require('web-ifc');

const api = new WebIFC.IfcAPI();
await api.Init();
api.SetLogLevel(WebIFC.LogLevel.LOG_LEVEL_OFF);

const before = process.cpuUsage();
const bytes = readFileSync(file);
if (api.OpenModel(new Uint8Array(bytes)) < 0) throw new Error(`${file} does not open`);
const used = process.cpuUsage(before);

const seconds = (used.user + used.system) / 1e6;
const peak = process.resourceUsage().maxRSS * 1024;
const resident = process.memoryUsage().rss;
process.stdout.write(['read', seconds.toFixed(6), bytes.length, peak, resident].join('\t') + '\n');
process.exit(0);
