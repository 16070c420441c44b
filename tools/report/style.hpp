// The look of the page: light, dark and on paper. Colours of kinds have a contrast of at least 3 to
// the ground, colours of texts of at least 4.5.
#ifndef VLT_TOOLS_REPORT_STYLE_HPP
#define VLT_TOOLS_REPORT_STYLE_HPP

#include "tools/report/html.hpp"

namespace com::velanto::connectivity::tools::report {

inline constexpr markup_t STYLE(R"(
:root {
  color-scheme: light dark;
  --ground: #ffffff; --panel: #f4f6f8; --line: #d3d9df; --ink: #1c232b; --soft: #55606c;
  --link: #0b57a4; --bad: #b3261e; --part: #4a78a8;
  --k0: #b06a00; --k1: #2471b5; --k2: #7a52a8; --k3: #1f8266; --k4: #7d7418; --k5: #6b7580; --k6: #424b55;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #14181d; --panel: #1d2329; --line: #39424c; --ink: #e4e8ec; --soft: #a3adb8;
    --link: #86b9f0; --bad: #ff8a80; --part: #6f9ccb;
    --k0: #dd9a3c; --k1: #63a8e8; --k2: #b493e0; --k3: #53b898; --k4: #bdb455; --k5: #8f9aa6; --k6: #c5ccd3;
  }
}
@media print {
  :root {
    color-scheme: light;
    --ground: #ffffff; --panel: #ffffff; --line: #b5bcc4; --ink: #000000; --soft: #40474f;
    --link: #000000; --bad: #9c1c15; --part: #4a78a8;
    --k0: #b06a00; --k1: #2471b5; --k2: #7a52a8; --k3: #1f8266; --k4: #7d7418; --k5: #6b7580; --k6: #424b55;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 2rem 1.25rem 4rem; max-width: 64rem;
  background: var(--ground); color: var(--ink);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif;
}
h1 { margin: 0 0 1rem; font-size: 1.75rem; line-height: 1.25; font-weight: 600; }
h2 { margin: 3rem 0 1rem; padding-top: 1rem; border-top: 1px solid var(--line); font-size: 1.25rem; font-weight: 600; }
h3 { margin: 2rem 0 .5rem; font-size: 1rem; font-weight: 600; }
h4 { margin: 1.25rem 0 .25rem; font-size: .9375rem; font-weight: 600; }
p, ul, dl { margin: .5rem 0; }
ul { padding-left: 1.25rem; }
a { color: var(--link); }
a:focus-visible, summary:focus-visible, .scroll:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; }
h1, h3, h4, p, li, th, td, code, pre, summary, caption { overflow-wrap: anywhere; unicode-bidi: isolate; }
code, pre, .log, td, .message { font-variant-ligatures: none; }
code, pre, .log { font-family: ui-monospace, "SF Mono", Consolas, "DejaVu Sans Mono", monospace; font-size: .875rem; }
pre { margin: .5rem 0; padding: .75rem 1rem; background: var(--panel); border: 1px solid var(--line); white-space: pre-wrap; }
.log { padding: .5rem 1rem; background: var(--panel); border-left: 3px solid var(--bad); }
.note { color: var(--soft); font-size: .9375rem; }
td.note { font-size: inherit; }
.bad, .bad dd, .bad dt { color: var(--bad); }
.skip { position: absolute; left: -100rem; }
.skip:focus { left: 1rem; top: .5rem; }
.hidden { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }
nav ul { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; padding: 0; list-style: none; }
.figures { display: flex; flex-wrap: wrap; gap: 1rem 2.5rem; margin: 1rem 0; }
.figures div { display: flex; flex-direction: column-reverse; }
.figures dt { color: var(--soft); font-size: .9375rem; }
.figures dd { margin: 0; font-size: 1.75rem; line-height: 1.2; font-variant-numeric: tabular-nums; }
table { width: 100%; margin: 1rem 0; border-collapse: collapse; font-size: .9375rem; }
caption { padding: .25rem 0; text-align: left; color: var(--soft); }
th, td { padding: .3125rem .75rem .3125rem 0; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; font-weight: 400; }
thead th { color: var(--soft); font-size: .9375em; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.bar { width: 40%; padding-right: 0; vertical-align: middle; }
.faults, .sides { table-layout: fixed; }
.sides thead th:first-child { width: 24%; }
.sides thead .number { width: 5.5rem; }
.build th { width: 9rem; }
.kind { white-space: nowrap; }
.fate { width: 6.5rem; color: var(--soft); }
.scroll { overflow-x: auto; }
.scroll td, .scroll th { white-space: nowrap; }
figure { margin: 0 0 2rem; }
figcaption { display: flex; flex-wrap: wrap; justify-content: space-between; align-items: baseline; }
figcaption h3 { margin: .5rem 0; }
.timeline { display: block; width: 100%; height: 12rem; }
.share { display: block; width: 100%; height: .5rem; }
.key { width: .75rem; height: .75rem; margin-right: .375rem; }
.ends { display: flex; justify-content: space-between; margin: .25rem 0; color: var(--soft); font-size: .875rem; font-variant-numeric: tabular-nums; }
.legend { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; padding: 0; list-style: none; font-size: .9375rem; }
.axis { fill: var(--line); }
.track { fill: var(--panel); }
.part { fill: var(--part); }
.drop { fill: var(--bad); }
.k0 { fill: var(--k0); } .k1 { fill: var(--k1); } .k2 { fill: var(--k2); } .k3 { fill: var(--k3); }
.k4 { fill: var(--k4); } .k5 { fill: var(--k5); } .k6 { fill: var(--k6); }
details { margin: .5rem 0; }
summary { padding: .25rem 0; cursor: pointer; }
details > :not(summary) { margin-left: 1.125rem; }
details > table { width: calc(100% - 1.125rem); }
@media (max-width: 40rem) {
  body { padding: 1rem .875rem 3rem; }
  h1 { font-size: 1.375rem; }
  .timeline { height: 9rem; }
  details > :not(summary) { margin-left: 0; }
  details > table { width: 100%; }
  table, code, pre, .log { font-size: .8125rem; }
  th, td { padding-right: .5rem; }
  .fate { width: 6rem; }
  .bar { width: 25%; }
}
@media print {
  :root { font-size: 10pt; }
  body { max-width: none; padding: 0; }
  nav, .skip { display: none; }
  details::details-content { content-visibility: visible; display: block; block-size: auto; }
  .scroll { overflow: visible; }
  .scroll table { font-size: .75rem; }
  .scroll td, .scroll th { white-space: normal; }
  h2, h3, h4, summary, caption { break-after: avoid; }
  tr, figure svg { break-inside: avoid; }
  svg { print-color-adjust: exact; }
}
)");

} // namespace com::velanto::connectivity::tools::report

#endif
