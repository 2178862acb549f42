#ifndef ARBORIST_DIAGNOSIS_REPORT_REPORT_STYLE_H
#define ARBORIST_DIAGNOSIS_REPORT_REPORT_STYLE_H

namespace diagnosis {

/// The style sheet of a report, in the light or dark scheme that its reader prefers and light on paper. Contrast is at
/// least 4.5 to 1 everywhere; words repeat what colours show.
inline constexpr char REPORT_STYLE[] = R"(
:root { color-scheme: light dark; --link: #0b4f9e; --line: #6a7180; --gate: #444b58; --ink: #1b1d22; --quiet: #545b68; --rule: #d9dce2; --paper: #ffffff; --ground: #f4f5f7;
  --fault: #a5170c; --fault-ground: #fde9e6; --sound: #1d6b3c; --sound-ground: #e5f4ea; --unknown: #745600;
  --unknown-ground: #fff5d6; --mono: ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; }
@media screen and (prefers-color-scheme: dark) {
  :root { --ink: #e6e8ec; --quiet: #a9b0bd; --rule: #3a404b; --paper: #1d2026; --ground: #14161a; --fault: #ff9d92;
    --fault-ground: #451a16; --sound: #7fd6a1; --sound-ground: #15351f; --unknown: #f1cf6b; --unknown-ground: #3a3010;
    --link: #8fbcff; --line: #98a0ae; --gate: #b7bdc9; }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--ink); overflow-wrap: anywhere;
  font: 16px/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
header, main, footer { max-width: 74rem; margin: 0 auto; padding: 1rem; }
h1 { font-size: 1.6rem; margin: .5rem 0; line-height: 1.25; }
h2 { font-size: 1.25rem; margin: 0 0 .5rem; display: flex; flex-wrap: wrap; gap: .6rem; align-items: center; }
h3 { font-size: 1rem; margin: 1.4rem 0 .5rem; }
h4 { font-size: 1rem; margin: 0; }
p { margin: .3rem 0; }
a { color: var(--link); }
.id, code { font-family: var(--mono); font-size: .92em; }
.quiet { color: var(--quiet); }
section, .card { background: var(--paper); border: 1px solid var(--rule); border-radius: 8px; }
section { padding: 1rem 1.2rem; margin: 0 0 1.2rem; }
.facts { display: flex; flex-wrap: wrap; gap: .2rem 2rem; margin: .8rem 0 0; }
.facts div { display: flex; gap: .5rem; }
dt { color: var(--quiet); }
.facts dt { white-space: nowrap; }
dd { margin: 0; }
.badge { display: inline-block; font-size: .85rem; font-weight: 600; padding: .1rem .6rem; border: 1px solid;
  border-radius: 1rem; }
.badge.fault { color: var(--fault); background: var(--fault-ground); }
.badge.undecided { color: var(--unknown); background: var(--unknown-ground); }
.badge.sound { color: var(--sound); background: var(--sound-ground); }
.index { list-style: none; margin: 0; padding: 0; display: grid; gap: .6rem;
  grid-template-columns: repeat(auto-fill, minmax(min(20rem, 100%), 1fr)); }
.index li { border: 1px solid var(--rule); border-left: 6px solid var(--unknown); border-radius: 6px; padding: .5rem .8rem; }
.index li.sound { border-left-color: var(--sound); }
.index li.fault { border-left-color: var(--fault); }
.warnings { border-left: 6px solid var(--unknown); background: var(--unknown-ground); }
.failure { border-left: 6px solid var(--fault); background: var(--fault-ground); }
.causes { list-style: none; margin: 0; padding: 0; display: grid; gap: .8rem;
  grid-template-columns: repeat(auto-fill, minmax(min(30rem, 100%), 1fr)); }
.card { padding: .8rem 1rem; border-left: 6px solid var(--fault); }
.card dl { display: grid; grid-template-columns: 7.5rem 1fr; gap: .2rem .8rem; margin: .5rem 0 0; font-size: .93rem; }
.card ul { margin: 0; padding-left: 1.1rem; }
.card li.sub { list-style: none; margin-left: 1.1rem; }
.rule { color: var(--quiet); font-size: .88rem; margin: 0 0 0 5.2rem; }
.card .way { list-style: none; padding: 0; }
.arrow { color: var(--quiet); padding: 0 .1rem; }
.scroll { position: relative; overflow: auto; max-height: 85vh; padding: .3rem 0; }
.start { position: absolute; left: 0; width: 1px; height: 1px; scroll-initial-target: nearest; scroll-margin-block: 50vh; }
.extra { border-collapse: collapse; margin: .2rem 0; }
.extra th, .extra td { border: 1px solid var(--rule); padding: .1rem .5rem; text-align: left; vertical-align: top;
  font-weight: 400; }
.extra th { color: var(--quiet); }
.picture { display: block; font-size: 12px; }
.picture text { fill: var(--ink); }
.picture .id { font-weight: 700; font-size: 11.5px; font-family: inherit; }
.picture .status { font-weight: 600; font-size: 11px; }
.picture .open { font-size: 11px; fill: var(--unknown); }
.picture rect, .picture circle, .picture .event path { fill: var(--paper); stroke: var(--line); stroke-width: 1.2; }
.picture .true rect, .picture .true circle { fill: var(--fault-ground); stroke: var(--fault); }
.picture .true .status { fill: var(--fault); }
.picture .unknown rect, .picture .unknown path { fill: var(--unknown-ground); stroke: var(--unknown);
  stroke-dasharray: 5 3; }
.picture .unknown .status { fill: var(--unknown); }
.picture .event.path rect, .picture .event.path circle { stroke-width: 2.6; }
.picture .line { fill: none; stroke: var(--line); stroke-width: 1.2; }
.picture .line.path { stroke: var(--fault); stroke-width: 3.2; }
.picture .gate path { fill: var(--paper); stroke: var(--gate); stroke-width: 1.6; }
.picture .gate.path path { stroke: var(--fault); stroke-width: 2.6; }
.picture .gate text { font-size: 9.5px; font-weight: 700; text-anchor: middle; }
.legend { font-size: .85rem; color: var(--quiet); }
details { margin-top: .8rem; }
summary { cursor: pointer; font-weight: 600; }
.tree, .tree ul { list-style: none; margin: 0; padding-left: 1rem; border-left: 1px solid var(--rule); }
.tree { padding-left: 0; border: 0; margin-top: .5rem; font-size: .93rem; }
.tree li { padding: .12rem 0; }
.word { display: inline-block; min-width: 4.6rem; text-align: center; font-size: .75rem; font-weight: 700;
  border: 1px solid; border-radius: 4px; padding: 0 .3rem; margin-right: .4rem; color: var(--quiet); }
.word.true { color: var(--fault); background: var(--fault-ground); }
.word.unknown { color: var(--unknown); background: var(--unknown-ground); border-style: dashed; }
footer { font-size: .85rem; color: var(--quiet); }
@media (max-width: 40rem) {
  header, main, footer { padding: .6rem; }
  section { padding: .8rem; }
  .facts { gap: .1rem 1.2rem; }
  .rule { margin-left: 1rem; }
  .card dl { grid-template-columns: 1fr; gap: 0; }
  .card dd { margin-bottom: .4rem; }
}
@media print {
  body { background: #fff; font-size: 11pt; }
  section { border: 0; padding: 0; }
  .card, .index li, .picture { break-inside: avoid; }
  h2, h3, h4, summary, section > p { break-after: avoid; }
  .causes { display: block; }
  .card { margin-bottom: .8rem; }
  .scroll { overflow: visible; max-height: none; }
  .picture { max-width: 100%; max-height: 24cm; height: auto; }
  details::details-content { content-visibility: visible; block-size: auto; }
  summary { list-style: none; }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
}
)";

} // namespace diagnosis

#endif
