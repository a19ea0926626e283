#include <report/style.h>

namespace pm::kit::report {

namespace {

constexpr std::string_view sheet = R"css(
:root {
  color-scheme: light dark;
  --ground: #f4f6f8; --card: #ffffff; --text: #1b2129; --muted: #55606d; --line: #d5dbe2; --strong-line: #7b8794;
  --accent: #0b57c2; --accent-ground: #e6f0ff; --second: #6a35c9; --second-ground: #f1eaff;
  --bad: #b3180d; --bad-ground: #fdecea; --warn: #7a4a00; --warn-ground: #fff3d4;
  --good: #11612f; --good-ground: #e2f5e8; --chip: #edf0f4; --paper: #ffffff; --printable: #dbe8fb;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #10141a; --card: #191f27; --text: #e7ebf0; --muted: #a3aebb; --line: #323b47; --strong-line: #8592a1;
    --accent: #85b8ff; --accent-ground: #16294a; --second: #c5a8ff; --second-ground: #2d2150;
    --bad: #ff9d93; --bad-ground: #451814; --warn: #f3c76b; --warn-ground: #3a2d0c;
    --good: #86dba5; --good-ground: #12351f; --chip: #28313c; --paper: #e9edf2; --printable: #b9cdee;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; scroll-padding-top: 1rem; }
body {
  margin: 0; background: var(--ground); color: var(--text);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif;
}
.skip { position: absolute; left: -10000px; }
.skip:focus { left: 1rem; top: 1rem; background: var(--card); padding: .5rem 1rem; z-index: 1; }
a { color: var(--accent); }
:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
header, main, footer { max-width: 1240px; margin: 0 auto; padding: 0 1.5rem; }
header { padding-top: 2rem; }
h1, h2, h3, h4, h5 { line-height: 1.25; margin: 0; overflow-wrap: anywhere; }
h1 { font-size: 1.9rem; letter-spacing: -.01em; }
h2 { font-size: 1.35rem; margin-bottom: .9rem; padding-bottom: .4rem; border-bottom: 2px solid var(--line); }
h3 { font-size: 1.05rem; margin: 1.6rem 0 .7rem; }
h4 { font-size: 1rem; }
h5 { font-size: .74rem; text-transform: uppercase; letter-spacing: .06em; color: var(--muted); margin-bottom: .35rem; }
.card > h3, .group-head > h3 { margin: 0; }
.card > h4 { margin: .9rem 0 .2rem; font-size: .9rem; }
.card > h4:first-child { margin-top: 0; font-size: 1rem; }
p { margin: 0; overflow-wrap: anywhere; }
section { margin: 2.6rem 0; }
section > p { margin-bottom: .8rem; }
ul { list-style: none; margin: 0; padding: 0; }
code {
  font: .82em/1.4 ui-monospace, "Cascadia Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace; color: var(--muted);
  overflow-wrap: anywhere; unicode-bidi: isolate;
}
.muted, .where, .meaning { color: var(--muted); font-size: .88rem; }
.value, .meaning, .name, dd { unicode-bidi: isolate; overflow-wrap: anywhere; }
td, th { unicode-bidi: isolate; overflow-wrap: break-word; }
td .value, td .meaning { overflow-wrap: break-word; }
tr.setting td .value { overflow-wrap: anywhere; }
.tagline { font-size: 1.05rem; color: var(--muted); margin-top: .2rem; }
nav ul { display: flex; flex-wrap: wrap; gap: .4rem; margin-top: 1.2rem; }
nav a {
  display: block; padding: .25rem .7rem; border: 1px solid var(--line); border-radius: 999px; background: var(--card);
  text-decoration: none; font-size: .9rem;
}
nav a:hover { border-color: var(--accent); }

.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(220px, 1fr)); gap: .3rem 1.5rem; margin: 0 0 1rem; }
.facts:empty { display: none; }
.fact { padding: .3rem 0; border-bottom: 1px solid var(--line); }
.fact dt { font-size: .82rem; color: var(--muted); }
.fact dd { margin: 0; font-weight: 600; }
.fact.impossible dd { color: var(--bad); }
.card .facts { grid-template-columns: repeat(auto-fill, minmax(150px, 1fr)); margin: .5rem 0 0; }

.card {
  background: var(--card); border: 1px solid var(--line); border-radius: 10px; padding: .9rem 1rem; min-width: 0;
}
div.card { margin-bottom: 1rem; }
.grid { columns: 2 420px; column-gap: 1rem; }
.grid > .card { break-inside: avoid; }
.cards { display: grid; gap: .8rem; }
.name { font-weight: 600; }
.card.chosen, .entry.chosen, .step.chosen { border-color: var(--accent); box-shadow: 0 0 0 1px var(--accent); }
.card.impossible, .entry.impossible, .step.impossible { border-color: var(--bad); box-shadow: 0 0 0 1px var(--bad); }
tr.chosen > th, tr.chosen > td { background: var(--accent-ground); }
tr.impossible > th, tr.impossible > td, td.impossible { background: var(--bad-ground); }
tr.impossible > th, tr.impossible .value, td.impossible .value { color: var(--bad); }

.badge, .tag {
  display: inline-block; padding: 0 .5em; border-radius: 999px; font-size: .74rem; line-height: 1.55; font-weight: 600;
  white-space: nowrap; vertical-align: .1em;
}
.tag { background: var(--chip); color: var(--text); border: 1px solid var(--line); font-weight: 500; }
.badge.chosen { background: var(--accent-ground); color: var(--accent); border: 1px solid var(--accent); }
.badge.chosen.c1 { background: var(--second-ground); color: var(--second); border-color: var(--second); }
.badge.bad { background: var(--bad-ground); color: var(--bad); border: 1px solid var(--bad); }
.badge.warn { background: var(--warn-ground); color: var(--warn); border: 1px solid var(--warn); }
.badge.good { background: var(--good-ground); color: var(--good); border: 1px solid var(--good); }
.badge.note { background: var(--chip); color: var(--text); border: 1px solid var(--line); }
.sign { font-weight: 700; }
.sign.possible { color: var(--good); }
.sign.unspoken { color: var(--muted); font-weight: 400; }
.chips { display: flex; flex-wrap: wrap; gap: .3rem; }
.chips > li {
  background: var(--chip); border: 1px solid transparent; border-radius: 6px; padding: .05rem .5rem; font-size: .86rem;
  overflow-wrap: anywhere; min-width: 0;
}
.chips > li.chosen { border-color: var(--accent); }
.chips > li.impossible { border-color: var(--bad); background: var(--bad-ground); color: var(--bad); }

.findings { display: grid; gap: .6rem; margin-bottom: 1.2rem; }
.finding { border-left: 4px solid var(--strong-line); background: var(--card); border-radius: 6px; padding: .55rem .9rem; }
.finding.error { border-color: var(--bad); background: var(--bad-ground); }
.finding.warning { border-color: var(--warn); background: var(--warn-ground); }
.finding.error .verdict { color: var(--bad); }
.finding.warning .verdict { color: var(--warn); }
.finding .where, .finding code, .finding .offers { color: var(--text); font-size: .86rem; }
.finding code { font-size: .8rem; }
.finding .value { font-weight: 600; }
details { margin: 1rem 0; }
summary { cursor: pointer; color: var(--accent); font-weight: 600; padding: .2rem 0; }
details.notes .findings { margin-top: .6rem; }

.scroll { overflow-x: auto; max-width: 100%; position: relative; }
table { border-collapse: collapse; width: 100%; font-size: .9rem; }
caption { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }
section > .scroll, details > .scroll {
  background: var(--card); border: 1px solid var(--line); border-radius: 10px; padding: .3rem 1rem .6rem;
}
th, td { text-align: left; vertical-align: top; padding: .35rem .7rem .35rem 0; border-bottom: 1px solid var(--line); }
tr.chosen > :first-child, tr.impossible > :first-child, td.impossible { padding-left: .5rem; }
tbody th { font-weight: 600; }
thead th { font-size: .8rem; color: var(--muted); font-weight: 600; vertical-align: bottom; }
tbody:last-child > tr:last-child > * { border-bottom: 0; }
tr.group th { padding-top: 1rem; color: var(--muted); font-size: .8rem; text-transform: uppercase; letter-spacing: .05em; }
tr.setting > th { font-weight: 500; width: 34%; min-width: 9rem; }
tr.differs > th, tr.differs > td { background: var(--warn-ground); }
tr.differs > td.impossible { background: var(--bad-ground); }
tr.differs > th { padding-left: .5rem; }
.unequal { color: var(--warn); font-weight: 700; }
td .value { font-variant-numeric: tabular-nums; }
.plain > li { white-space: nowrap; }
.bar-cell { white-space: nowrap; }
.verdicts { font-weight: 600; }

svg { display: inline-block; max-width: 100%; height: auto; vertical-align: middle; }
svg text { fill: var(--text); font: 11px/1 system-ui, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif; }
.group-head { display: flex; flex-wrap: wrap; align-items: center; gap: .3rem 1rem; margin: 1.6rem 0 .7rem; }
.card > .group-head { margin: 0 0 .2rem; }
.sizes { grid-template-columns: repeat(auto-fill, minmax(134px, 1fr)); gap: .6rem; }
.size { padding: .7rem .3rem; text-align: center; display: flex; flex-direction: column; }
.size .drawing { min-height: 46px; flex: 1; display: flex; align-items: flex-end; justify-content: center; margin-bottom: .5rem; }
.size .name { font-size: .86rem; line-height: 1.3; text-wrap: balance; }
.size .muted { font-size: .78rem; }
.size .marks { padding-top: .2rem; }
.medium { flex: none; }
.paper { fill: var(--paper); stroke: var(--strong-line); stroke-width: 1; }
.printable { fill: var(--printable); stroke: #2f67b8; stroke-width: .8; stroke-dasharray: 3 2; }
.scale { stroke: var(--strong-line); stroke-width: 1.5; fill: none; }
.legend { display: flex; flex-wrap: wrap; gap: .2rem .5rem; align-items: center; }

.sources { grid-template-columns: repeat(auto-fit, minmax(min(100%, 230px), 1fr)); }
.device { background: var(--accent-ground); border: 2px solid var(--accent); border-radius: 10px; padding: .9rem; text-align: center; color: var(--accent); font-size: 1.1rem; }
.arrow { color: var(--strong-line); text-align: center; line-height: 0; }
.arrow.down { padding: .7rem 0; }
.arrow.down svg { transform: rotate(90deg); }
.arrow-line { fill: none; stroke: currentColor; stroke-width: 2; stroke-linecap: round; stroke-linejoin: round; }
.entries { display: grid; gap: .4rem; margin-top: .6rem; }
.entry { border: 1px solid var(--line); border-radius: 8px; padding: .4rem .6rem; }
.entry .name { font-size: .9rem; }
.way { display: flex; align-items: center; gap: .5rem; margin-top: .7rem; }
.way > .arrow { flex: none; }
.finishing { border: 1px dashed var(--line); border-radius: 8px; padding: .5rem .6rem; align-self: stretch; min-width: 0; }
.finishing ul { display: grid; gap: .3rem; }
.step { display: flex; gap: .5rem; align-items: flex-start; border: 1px solid transparent; border-radius: 6px; padding: .2rem .35rem; font-size: .88rem; max-width: 240px; min-width: 0; }
.step .muted { font-size: .8rem; line-height: 1.3; }
.step svg { flex: none; margin-top: .15rem; }
.way .arrow svg { width: 24px; }
.tray { border-bottom: 4px solid var(--strong-line); border-left: 2px solid var(--strong-line); border-right: 2px solid var(--strong-line); border-radius: 0 0 8px 8px; padding: .7rem .8rem .3rem; font-size: .88rem; }
.sheet { fill: var(--paper); stroke: var(--strong-line); stroke-width: 1; }
.crease { stroke: #0b57c2; stroke-width: 1.3; stroke-dasharray: 2.5 2; }
.staple { stroke: #b3180d; stroke-width: 2.4; stroke-linecap: round; }
.cut { stroke: var(--text); stroke-width: 1.2; stroke-dasharray: 2.5 2; }
.blade { fill: none; stroke: var(--text); stroke-width: 1.4; stroke-linecap: round; }

.swatch rect { stroke: var(--strong-line); stroke-width: .5; }
.black { fill: #111; } .white { fill: #fff; } .cyan { fill: #00a6d6; } .magenta { fill: #d6007f; } .yellow { fill: #ffd800; }
.grey-1 { fill: #000; } .grey-2 { fill: #242424; } .grey-3 { fill: #494949; } .grey-4 { fill: #6d6d6d; }
.grey-5 { fill: #929292; } .grey-6 { fill: #b6b6b6; } .grey-7 { fill: #dbdbdb; } .grey-8 { fill: #fff; }
.rgb-1 { fill: #e02020; } .rgb-2 { fill: #f08a1d; } .rgb-3 { fill: #f4d81c; } .rgb-4 { fill: #2faf3f; }
.rgb-5 { fill: #19b5c4; } .rgb-6 { fill: #2257d6; } .rgb-7 { fill: #7a37c8; } .rgb-8 { fill: #d6339b; }
.palette-1 { fill: #000; } .palette-2 { fill: #e00000; } .palette-3 { fill: #e8d800; } .palette-4 { fill: #00a000; }
.palette-5 { fill: #00b4b4; } .palette-6 { fill: #0000d0; } .palette-7 { fill: #c000c0; } .palette-8 { fill: #fff; }
.track { fill: var(--chip); } .fill { fill: var(--accent); }

figure { margin: .8rem 0 0; }
figcaption { font-size: .86rem; color: var(--muted); margin-top: .3rem; overflow-wrap: anywhere; }
.matrix-drawings { display: flex; flex-wrap: wrap; gap: 1rem; align-items: center; }
.matrix { border: 1px solid var(--strong-line); }
.on-dark { fill: #fff !important; } .on-light { fill: #000 !important; }
.gap { fill: var(--bad-ground); stroke: var(--bad); stroke-dasharray: 2 2; }
.ramp { border: 1px solid var(--strong-line); shape-rendering: crispEdges; }
.ramp-paper { fill: #fff; } .ink { fill: #000; }
.range-figure figcaption { margin: 0 0 .2rem; color: var(--text); }
.knob { fill: var(--accent); }
.pens { grid-template-columns: repeat(auto-fill, minmax(200px, 1fr)); }
.line-types { grid-template-columns: repeat(auto-fill, minmax(190px, 1fr)); }
.pen-line { stroke: var(--text); }
.line-type { padding: .5rem .8rem; }
footer { color: var(--muted); font-size: .85rem; padding-top: 1rem; padding-bottom: 2.5rem; }

@media (max-width: 1000px) {
  .way { flex-direction: column; align-items: stretch; }
  .way .arrow svg { transform: rotate(90deg); }
  .step { max-width: none; }
  .finishing ul { grid-template-columns: repeat(auto-fill, minmax(min(100%, 210px), 1fr)); }
}
@media (max-width: 600px) {
  header, main, footer { padding-left: 1rem; padding-right: 1rem; }
  h1 { font-size: 1.5rem; }
  .sizes { grid-template-columns: repeat(auto-fill, minmax(132px, 1fr)); gap: .5rem; }
}
@media print {
  :root {
    color-scheme: light;
    --ground: #fff; --card: #fff; --text: #000; --muted: #444; --line: #bbb; --strong-line: #666; --accent: #0b57c2;
    --accent-ground: #e6f0ff; --second: #6a35c9; --second-ground: #f1eaff; --bad: #b3180d; --bad-ground: #fdecea;
    --warn: #7a4a00; --warn-ground: #fff3d4; --good: #11612f; --good-ground: #e2f5e8; --chip: #f0f0f0;
    --paper: #fff; --printable: #dbe8fb;
  }
  @page { margin: 15mm 12mm; }
  body { font-size: 9.5pt; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  header, main, footer { max-width: none; padding: 0; }
  nav, .skip { display: none; }
  section { margin: 1.4rem 0; }
  h2, h3, h4, .group-head, caption { break-after: avoid; }
  .size, .step, .entry, tr, figure, .finding, .line-type, .pen { break-inside: avoid; }
  .sizes { grid-template-columns: repeat(5, 1fr); }
  .scroll { overflow: visible; }
  details:not([open]) { display: none; }
  .grid { columns: 1; }
  .grid > .card { break-inside: auto; }
  .bar { width: 70px; }
}
)css";

} // namespace

std::string_view style_sheet() {
    return sheet;
}

} // namespace pm::kit::report
