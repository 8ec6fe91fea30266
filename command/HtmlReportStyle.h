#ifndef COMMAND_HTMLREPORTSTYLE_H
#define COMMAND_HTMLREPORTSTYLE_H

/** The CSS of the report. HTML does not unescape it, XML does: so it has no character that would be
    escaped. */
constexpr char htmlReportStyle[] = R"(
:root { color-scheme: light; --paper: #fff; --ink: #1a1a1a; --quiet: #555; --rule: #bbb;
  --grid: #ddd; --shade: #f2f2f2; --before: #8a4500; --after: #00509e; --warn: #b00020; }
@media screen and (prefers-color-scheme: dark) {
  :root { color-scheme: dark; --paper: #16181b; --ink: #e8e8e8; --quiet: #b0b0b0; --rule: #5a5d62;
    --grid: #3a3d42; --shade: #22252a; --before: #f0a860; --after: #7ab8ff; --warn: #ff8a94; }
}
body { max-width: 58rem; margin: 1.5rem auto; padding: 0 1rem; color: var(--ink);
  background: var(--paper); font: 1rem/1.5 system-ui, 'Noto Sans', 'Noto Sans CJK JP', sans-serif; }
h1 { font-size: 1.7rem; margin: 0 0 1rem; }
h2 { font-size: 1.35rem; margin: 2.2rem 0 .6rem; padding-top: .6rem;
  border-top: 2px solid var(--ink); }
h3 { font-size: 1.1rem; margin: 1.4rem 0 .4rem; }
p, ul { margin: .4rem 0; }
a { color: var(--after); }
table { border-collapse: collapse; width: 100%; margin: .6rem 0 1rem; }
caption { text-align: start; font-weight: 600; padding-bottom: .2rem; }
th, td { text-align: start; vertical-align: top; padding: .2rem .6rem .2rem 0;
  border-bottom: 1px solid var(--rule); overflow-wrap: break-word; unicode-bidi: isolate; }
td { white-space: pre-wrap; }
.facts td, .files td, .changes td, td:last-child { overflow-wrap: anywhere; }
thead th { border-bottom: 2px solid var(--rule); }
tbody th { font-weight: 400; color: var(--quiet); }
.facts tbody th, .changes tbody th { width: 30%; }
.changes td, .files td, .reasons { font-variant-numeric: tabular-nums; }
.files td:last-child { font-family: ui-monospace, monospace; font-size: .85em; width: 50%; }
.values { font-size: .85rem; font-variant-numeric: tabular-nums; margin: 0; }
.values th, .values td { text-align: end; padding: .08rem .7rem .08rem 0; }
.values caption { font-size: .9rem; }
.columns { display: grid; grid-template-columns: repeat(auto-fit, minmax(15rem, 1fr));
  gap: .8rem 1.5rem; align-items: start; margin: .6rem 0 1rem; }
.verdict { font-weight: 600; padding: .3rem .7rem; background: var(--shade);
  border-inline-start: .4rem solid var(--rule); }
.verdict.grave { border-inline-start-color: var(--warn); border-inline-start-style: double; }
figure { margin: .6rem 0; }
svg { display: block; width: 100%; height: auto; }
svg text { fill: var(--ink); font-size: 12px; }
svg .tick { text-anchor: end; fill: var(--quiet); }
svg .index { text-anchor: middle; }
svg path, svg polyline { fill: none; stroke: var(--ink); stroke-width: 1; }
svg .grid { stroke: var(--grid); }
svg .zero { stroke: var(--ink); stroke-width: 1.5; }
svg .after polyline { stroke: var(--after); stroke-width: 2; }
svg .after .mark { stroke: var(--after); stroke-width: 5; stroke-linecap: round; }
svg .before polyline { stroke: var(--before); stroke-width: 1.5; stroke-dasharray: 6 4; }
svg .before .mark { stroke: var(--before); stroke-width: 1; }
svg .difference .stem { stroke: var(--after); stroke-width: 1; }
svg .difference .mark { stroke: var(--after); stroke-width: 4; stroke-linecap: round; }
svg .implausible { stroke: var(--warn); stroke-width: 2; }
@page { size: A4; margin: 16mm 15mm; }
@media print {
  body { max-width: none; margin: 0; padding: 0; font-size: 9pt; line-height: 1.4; }
  h1 { font-size: 16pt; }
  h2 { font-size: 13pt; }
  h3 { font-size: 11pt; }
  a { color: inherit; text-decoration: none; }
  h2, h3, caption { break-after: avoid; }
  .instrument { break-before: page; }
  .instrument h2 { border-top: 0; margin-top: 0; padding-top: 0; }
  tr, figure, .verdict, .facts, .changes, .files { break-inside: avoid; }
  thead { display: table-header-group; break-inside: avoid; }
  .values { font-size: 7.5pt; }
  .values caption { font-size: 8.5pt; }
  .columns { grid-template-columns: repeat(3, 1fr); break-inside: avoid; }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
}
)";

#endif
