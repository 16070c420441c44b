// One page of one Chromium for all tests. `open` loads a report into it as a person would, and fails
// when the report asks for anything beyond its own file or when the browser complains.
'use strict';

const assert = require('node:assert/strict');
const { setTimeout: sleep } = require('node:timers/promises');
const { pathToFileURL } = require('node:url');
const { chromium } = require('playwright-core');

let browser;
let address; // of the report
const troubles = [];

// A page in which scripts run or not, as the browser's user has set it.
const newPage = async (javaScriptEnabled) => {
  const page = await (await browser.newContext({ javaScriptEnabled })).newPage();
  await page.route((url) => url.href !== address, (route) => {
    troubles.push(`request of ${route.request().url()}`);
    return route.abort();
  });
  page.on('console', (message) => troubles.push(message.text()));
  page.on('pageerror', (error) => troubles.push(error.message));
  return page;
};

let pages;

exports.start = async () => {
  browser = await chromium.launch({ executablePath: '/usr/bin/chromium' });
  pages = { scripts: await newPage(true), noScripts: await newPage(false) };
};

exports.stop = () => browser.close();

// What went wrong since the last time; the browser may tell of it a little later.
exports.takeTroubles = () => troubles.splice(0);
exports.waitForTroubles = async () => {
  for (let i = 0; i < 500 && troubles.length === 0; ++i) await sleep(10);
  return exports.takeTroubles();
};

exports.open = async (file, { scripts = true } = {}) => {
  const page = scripts ? pages.scripts : pages.noScripts;
  address = pathToFileURL(file).href;
  await page.goto(address);
  return page;
};

// Between them every width and every scheme of colours: neither depends on the other.
exports.VIEWS = [[1280, 'light'], [400, 'dark']].map(([width, colorScheme]) => ({
  name: `${width} px, ${colorScheme}`,
  show: async (page) => {
    await page.setViewportSize({ width, height: 900 });
    await page.emulateMedia({ media: 'screen', colorScheme });
  },
}));
