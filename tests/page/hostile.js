// Texts that would harm a page that does not escape them, and notifications with such a text in
// every field that a sender or an administrator names.
'use strict';

exports.TEXTS = {
  'end of a script': '</script><script>alert(1)</script>',
  'end of the style': '</style><b>bold</b>',
  'end of a title': '</title></textarea></template></svg></pre><h1>heading</h1>',
  'comment': '<!-- <!doctype html> --><!-',
  'end of CDATA': '<![CDATA[ x ]]>',
  'processing instruction': '<?xml version="1.0"?><?php ?>',
  'double quotes': '" onload="alert(1)" x="',
  'single quotes': "' onfocus='alert(1)' autofocus='",
  'backquotes': '`${alert(1)}`{{constructor}}',
  'image': '<img src=x onerror=alert(1)>',
  'reference to another page': '<a href="javascript:alert(1)">a</a><base href="//x">',
  'references of characters': '&lt;b&gt; &amp;amp; &#60;b&#62; &nbsp; &notin; &',
  'backslashes': '\\u003cb\\u003e \\" \\\\',
  'address': 'url(https://host.example/x.png) @import "x"',
  'white space': ' \t two  blanks\nand\r\nlines\f ',
  'control characters': 'a\u0001\u0007\b\u001b[31m\u001f\u007f\u0080\u009b31m\u009fz',
  'bidirectional marks': 'a\u202egpj.exe\u202c\u2066b\u2069\u200e\u200f\u061cc\u202a\u202b\u202d',
  'line separators': 'a\u2028b\u2029c\u0085d',
  'byte order mark': '\ufeffa\ufeff',
  'noncharacters': 'a\ufffe\uffff\ufdd0\u{1ffff}b',
  'replacement character': 'a\ufffdb',
  'other scripts': 'Кран עגורן رافعة 起重机 👷🏽‍♀️ Z\u0351\u036b\u0343algo',
  'printf': '%s%n%d {} {0} $1 $& $$',
};

// What the page shows of a text: JSON's number of each control character, and of each other one that
// shows nothing, ends a line or sets the direction of the text around it.
exports.visible = (text) =>
  text.replace(
    /[\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]/g,
    (one) => `\\u${one.charCodeAt(0).toString(16).padStart(4, '0')}`);

// So many texts of random parts; Mulberry32 makes the same ones from the same seed.
exports.randomTexts = (seed, count) => {
  const parts = [...Object.values(exports.TEXTS), ...'<>&"\'`=/!-]?\\ \n', 'x'.repeat(70)];
  const below = (limit) => {
    seed = (seed + 0x6d2b79f5) | 0;
    let mixed = Math.imul(seed ^ (seed >>> 15), 1 | seed);
    mixed = (mixed + Math.imul(mixed ^ (mixed >>> 7), 61 | mixed)) ^ mixed;
    return ((mixed ^ (mixed >>> 14)) >>> 0) % limit;
  };
  const cut = (part) => part.slice(below(part.length), 1 + below(part.length)).join('');
  const text = () => Array.from({ length: 1 + below(8) }, () => cut([...parts[below(parts.length)]]));
  return Array.from({ length: count }, () => text().join(''));
};

// A line of each kind that is converted, and lines that are dropped for a reason each, with the text
// in every field: `name:text`, so that no field can stand in for another.
exports.lines = (text) => {
  const named = (name) => `${name}:${text}`;
  const common = (kind) => ({
    id: named(`${kind}.id`),
    self: named(`${kind}.self`),
    type: named(`${kind}.type`),
    source: { id: named(`${kind}.source.id`), name: named(`${kind}.source.name`) },
    text: named(`${kind}.text`),
    time: '2024-05-14T09:12:03.000+02:00',
    creationTime: '2024-05-14T07:12:03.390Z',
    lastUpdated: '2024-05-14T07:12:03.390Z',
    [named(`${kind}.key`)]: { [named(`${kind}.inner key`)]: [named(`${kind}.value`)] },
  });
  const message = (kind, own) => ({
    metadata: { pulsarPath: `t1/${kind}:${text.replaceAll('/', '|')}/${kind}/1` },
    payload: { ...common(kind), ...own },
  });
  const series = { [named('series')]: { value: 1, units: named('units') } };
  const alarm = { severity: 'MAJOR', status: 'ACTIVE', count: 1 };
  const messages = [
    message('alarms', alarm),
    message('events', {}),
    message('managedobjects', { name: named('name'), owner: named('owner') }),
    message('measurements', { [named('fragment')]: series }),
    message('operations', { status: 'PENDING', deviceId: named('deviceId') }),
    message('alarms', { ...alarm, severity: named('severity') }),
    message('alarms', { ...alarm, status: named('status') }),
    message('events', { time: named('time') }),
    {
      metadata: { pulsarPath: `t1/s/${named('kind').replaceAll('/', '|')}/1` },
      payload: common('kind'),
    },
  ];
  return messages.map((each) => JSON.stringify(each));
};

// The strings of these lines with the text in them, as the page shows them.
exports.strings = (text) =>
  exports.lines(text).join('').match(/"(?:[^"\\]|\\.)*"/g)
    .filter((string) => string.includes(JSON.stringify(text).slice(1, -1)))
    .map(exports.visible);

// The same of the configuration, a channel and the file, whose name has no slash.
exports.names = (text) =>
  [
    ...['tenant', 'prefix', 'channel'].map((key) => JSON.stringify(`${key}:${text}`)),
    `prefix:${text}ostrovia.devices`,
    `file:${text.replaceAll('/', '|')}`,
  ].map(exports.visible);
