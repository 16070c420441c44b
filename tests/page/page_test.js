// The promises of the page that ostrovia-replay --report writes, each seen in Chromium: complete
// without scripts, closed to everything else, true to every text, small, with stable anchors, and
// readable in light, dark and print, at any width, by keyboard and by screen readers.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const { after, afterEach, before, test } = require('node:test');
const { VIEWS, open, start, stop, takeTroubles, waitForTroubles } = require('./browser.js');
const hostile = require('./hostile.js');
const { remove, report, run, sample, write } = require('./tool.js');

const axe = fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

// Reports that between them have every part of the page.
const reports = {};

before(async () => {
  await start();
  const input = [sample('events.ndjson'), sample('measurements.ndjson')];
  const golden = write('before.golden', '');
  run('--record', golden, '--tenant-id', 'before', ...input);
  const malformed = write('malformed.ndjson', '{"payload": [1, 2\n\u0007</script>\n');
  reports.full = report('--tenant-id', 't4100', '--expect', golden, ...input, malformed);
  reports.plain = report('--against', process.env.PLUGIN, sample('alarms.ndjson'));
  reports.empty = report(write('empty.ndjson', ''));
  reports.recorded = report('--tenant-id', 't1', '--expect-events',
    sample('recordings/after'), sample('recordings/before'));
});

after(async () => {
  await stop();
  remove();
});

// No test may leave a request or a complaint of the browser.
afterEach(() => assert.deepEqual(takeTroubles(), []));

const textOf = (page) => page.evaluate(() => document.documentElement.textContent);

// The elements in their order, each with the names of its attributes, but for the list of omissions,
// which depends on the length of texts.
const elementsOf = (page) =>
  page.evaluate(() => [...document.querySelectorAll(':not(#left-out *)')].map(
    (element) => [element.localName, ...element.getAttributeNames()].join(' ')).join('\n'));

test('PageIsCompleteWithoutScripts', async () => {
  for (const file of Object.values(reports)) {
    const texts = [];
    for (const scripts of [false, true]) {
      texts.push(await (await open(file, { scripts })).locator('body').innerText());
    }
    assert.notEqual(texts[0], '');
    assert.equal(texts[0], texts[1]);
    assert.doesNotMatch(fs.readFileSync(file, 'utf8'), /<script/i);
  }
});

test('PolicyRefusesEverythingElse', async () => {
  const smuggled = [
    '<script>document.title = "ran"</script>',
    '<svg onload="document.title = \'ran\'"></svg>',
    '<img src="https://host.example/x.png" alt="">',
    '<img src="data:image/png;base64,AAAA" alt="">',
    '<p style="background: url(https://host.example/x.png)">x</p>',
    '<style>body { background: url(https://host.example/x.png) }</style>',
    '<link rel="stylesheet" href="https://host.example/x.css">',
    '<iframe src="https://host.example/" title="x"></iframe>',
    '<object data="https://host.example/x.swf"></object>',
    '<video src="https://host.example/x.mp4" autoplay></video>',
    '<form action="https://host.example/"></form>',
    '<base href="https://host.example/">',
  ];
  const html = fs.readFileSync(reports.plain, 'utf8');
  for (const element of smuggled) {
    const page = await open(write('smuggled.html', html.replace('</main>', `${element}</main>`)));
    await page.evaluate(() => document.forms[0]?.requestSubmit());
    const refusals = await waitForTroubles();
    assert.ok(refusals.length > 0, element);
    for (const refusal of refusals) assert.match(refusal, /Content Security Policy/, element);
    assert.notEqual(await page.title(), 'ran', element);
  }
});

// A report of a run with the text in every field, in the configuration and in the file's name.
const hostileReport = (text) =>
  report(`--tenant-id=tenant:${text}`, `--channel-prefix=prefix:${text}`,
    `--measurement-channel=channel:${text}`,
    write(`file:${text.replaceAll('/', '|')}`, hostile.lines(text).join('\n') + '\n'));

// Each text is there as a text, in every place, and has made no element.
const expectTexts = async (texts) => {
  const elements = await elementsOf(await open(hostileReport('harmless')));
  for (const text of texts) {
    const page = await open(hostileReport(text));
    assert.equal(await elementsOf(page), elements, JSON.stringify(text));
    const shown = await textOf(page);
    for (const string of [...hostile.strings(text), ...hostile.names(text)]) {
      assert.ok(shown.includes(string), `the page of ${JSON.stringify(text)} lacks ${string}`);
    }
    assert.equal(hostile.visible(shown.replaceAll('\n', '')), shown.replaceAll('\n', ''));
  }
};

test('HostileTextsStayTexts', () => expectTexts(Object.values(hostile.TEXTS)));

test('RandomTextsStayTexts', () => expectTexts(hostile.randomTexts(1, 25)));

test('BytesThatAreNoTextLeaveValidPage', async () => {
  const lines = [[0xff, 0xfe, 0x3c, 0x62, 0x3e], [0xed, 0xa0, 0x80], [0xc0, 0xbc]].map((bytes) =>
    Buffer.concat([Buffer.from('{"payload":{"id":"'), Buffer.from(bytes), Buffer.from('"}}\n')]));
  const surrogate = Buffer.from('{"payload":{"id":"\\ud800</script>"}}\n');
  const file = report(write('bytes.ndjson', Buffer.concat([...lines, surrogate])));
  new TextDecoder('utf-8', { fatal: true }).decode(fs.readFileSync(file));
  assert.match(await textOf(await open(file)), /bytes\.ndjson:4\s*bad escape in a string/);
});

test('HundredThousandMessagesFitThreeMegabytes', async (t) => {
  const shapes = hostile.lines('%').map((line) => line.split('%'));
  const lines = hostile.lines('long '.repeat(20_000));
  while (lines.length < 100_000) lines.push(shapes[lines.length % shapes.length].join(lines.length));
  const file = report(write('many.ndjson', lines.join('\n')));
  const bytes = fs.statSync(file).size;
  const page = await open(file);
  const [{ loadEventEnd }] = JSON.parse(await page.evaluate(() =>
    JSON.stringify(performance.getEntriesByType('navigation'))));
  t.diagnostic(`${bytes} bytes, opened in ${Math.round(loadEventEnd)} ms`);
  assert.match(await textOf(page), /of 100\u202f000 messages/);
  assert.match(await page.locator('#left-out').innerText(), /Messages that went in further ways: \d/);
  assert.ok(bytes <= 3_000_000, `${bytes} bytes`);
});

// The sections of the reports, in their order.
const SECTIONS = {
  full: ['outcome', 'arrivals', 'reasons', 'malformed', 'changes', 'ways', 'channels', 'batches',
    'configuration', 'builds', 'left-out'],
  plain: ['outcome', 'arrivals', 'changes', 'ways', 'channels', 'batches', 'configuration',
    'builds', 'left-out'],
  empty: ['outcome', 'configuration', 'builds', 'left-out'],
  recorded: ['outcome', 'arrivals', 'reasons', 'changes', 'ways', 'channels', 'batches',
    'configuration', 'builds', 'left-out'],
};

test('AnchorsStayWhereLinksExpectThem', async () => {
  for (const [name, file] of Object.entries(reports)) {
    const page = await open(file);
    const { ids, links, sections } = await page.evaluate(() => ({
      ids: [...document.querySelectorAll('[id]')].map((element) => `#${element.id}`),
      links: [...document.querySelectorAll('[href]')].map((link) => link.getAttribute('href')),
      sections: [...document.querySelectorAll('main > section')].map((section) => section.id),
    }));
    assert.equal(new Set(ids).size, ids.length, `${name}: ${ids}`);
    assert.deepEqual(links.filter((link) => !ids.includes(link)), [], name);
    assert.deepEqual(sections, SECTIONS[name], name);
  }
});

const openDetails = (page) =>
  page.evaluate(() => {
    for (const details of document.querySelectorAll('details')) details.open = true;
  });

// Boxes whose content is wider than they are, unless they or a box around them scroll and the
// keyboard can do it.
const cutBoxes = (page) =>
  page.evaluate(() => {
    const scrolls = (box) =>
      ['auto', 'scroll'].includes(getComputedStyle(box).overflowX) && box.tabIndex === 0;
    const isReachable = (box) => box && (scrolls(box) || isReachable(box.parentElement));
    return [document.scrollingElement, ...document.body.querySelectorAll('*')]
      .filter((box) => box.clientWidth > 1 && box.scrollWidth > box.clientWidth + 1)
      .filter((box) => !isReachable(box))
      .map((box) => box.outerHTML.slice(0, 200));
  });

test('EveryViewIsReadableByEverybody', async () => {
  for (const [name, file] of Object.entries(reports)) {
    const page = await open(file);
    await page.evaluate(axe);
    await openDetails(page);
    for (const view of VIEWS) {
      await view.show(page);
      const violations = await page.evaluate(async () => {
        const result = await globalThis.axe.run({ resultTypes: ['violations'] });
        return result.violations.flatMap(({ id, nodes }) => nodes.map(({ html }) => `${id}: ${html}`));
      });
      assert.deepEqual([...violations, ...await cutBoxes(page)], [], `${name}, ${view.name}`);
    }
  }
});

test('KeyboardReachesAllLinksAndScrollAreas', async () => {
  const page = await open(reports.recorded);
  await page.setViewportSize({ width: 400, height: 900 });
  await openDetails(page);
  const wanted = await page.locator('a, summary, .scroll').evaluateAll(
    (all) => all.map((element) => element.outerHTML));
  const reached = [];
  while (reached.length < wanted.length) {
    await page.keyboard.press('Tab');
    const focused = await page.evaluate(() => {
      const { outlineStyle } = getComputedStyle(document.activeElement);
      return { html: document.activeElement.outerHTML, outlineStyle };
    });
    assert.notEqual(focused.outlineStyle, 'none', `${focused.html} does not show its focus`);
    reached.push(focused.html);
  }
  assert.deepEqual(reached, wanted);
});

// Texts that nobody sees; titles of charts are for screen readers, and links within the page are of
// no use on paper.
const hiddenTexts = (page) =>
  page.evaluate(() => {
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    const hidden = [];
    while (walker.nextNode()) {
      const { data, parentElement } = walker.currentNode;
      const isMeant = parentElement.closest('title, desc, nav, .skip');
      if (data.trim() && !isMeant && !parentElement.checkVisibility()) hidden.push(data);
    }
    return hidden;
  });

test('PrintShowsEverything', async () => {
  const paper = { width: 718, height: 1047 }; // A4 without its margins
  for (const [name, file] of Object.entries(reports)) {
    const page = await open(file);
    await page.setViewportSize(paper);
    await page.emulateMedia({ media: 'print', colorScheme: 'light' });
    assert.deepEqual(await hiddenTexts(page), [], name);
    assert.deepEqual(await cutBoxes(page), [], name);
  }
});

test('SameInputGivesSameBytes', () => {
  const [once, again] = [1, 2].map(() => fs.readFileSync(report(sample('site-day.ndjson'))));
  assert.ok(once.equals(again));
});
