// The page works from the file system: nothing in it refers to another file. The figures are
// written last, when they are known; the script brings them to the top.
#include "report/report_template.h"

namespace tool {

const char* const kReportStart = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<link rel="icon" href="data:,">
)";

const char* const kReportStyle = R"(<style>
:root {
  --back: #f4f4f1; --card: #fff; --text: #1d2126; --soft: #646b73; --rule: #dcdddb;
  --accent: #0b6e75; --stems: #a3762a; --bad: #b3261e; --stage: #e7e7e3;
}
@media (prefers-color-scheme: dark) {
  :root {
    --back: #14171a; --card: #1d2125; --text: #e6e8ea; --soft: #9aa2aa; --rule: #343a40;
    --accent: #57c2c9; --stems: #d8ab5c; --bad: #ff8a80; --stage: #0e1012;
  }
}
* { box-sizing: border-box; }
html { scroll-behavior: smooth; }
body { margin: 0; background: var(--back); color: var(--text);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; }
header, main { max-width: 1320px; margin: 0 auto; padding: 0 24px; }
header { padding-top: 28px; }
h1 { font-size: 26px; line-height: 1.25; margin: 0; overflow-wrap: anywhere; }
h2 { font-size: 18px; margin: 0; overflow-wrap: anywhere; }
h3 { font-size: 13px; margin: 0 0 6px; color: var(--soft); font-weight: 600; }
header p, article > p { margin: 2px 0 16px; color: var(--soft); }
article, section { background: var(--card); border: 1px solid var(--rule); border-radius: 10px;
  padding: 20px; margin: 0 0 20px; }
article { scroll-margin-top: 12px; }
section h2 { margin-bottom: 10px; }
.failed > p { color: var(--bad); margin-bottom: 0; }
.columns { display: grid; grid-template-columns: minmax(0, 3fr) minmax(300px, 2fr); gap: 28px; }
.stage { position: relative; overflow: hidden; background: var(--stage); border-radius: 4px;
  cursor: ew-resize; touch-action: pan-y; user-select: none; --cut: 50%; }
.layer { position: absolute; inset: 0; }
.layer img { position: absolute; display: block; }
.layer.before { clip-path: inset(0 calc(100% - var(--cut)) 0 0); }
.layer.after { clip-path: inset(0 0 0 var(--cut)); }
.marks[hidden] { display: none !important; }
.edge { position: absolute; top: 0; bottom: 0; left: var(--cut); width: 2px; margin-left: -1px;
  background: var(--accent); pointer-events: none; }
.edge::after { content: ""; position: absolute; top: 50%; left: -10px; width: 22px; height: 22px;
  margin-top: -11px; border-radius: 50%; background: var(--accent); border: 3px solid #fff;
  box-shadow: 0 1px 4px #0006; }
.cut { display: flex; align-items: center; gap: 12px; margin-top: 10px; color: var(--soft);
  font-size: 13px; }
.cut input { flex: 1; min-width: 0; height: 28px; margin: 0; accent-color: var(--accent); }
.hint { margin: 0 0 8px; font-size: 13px; color: var(--soft); }
.steps { list-style: none; margin: 0 0 24px; padding: 0; }
.steps li { display: grid; grid-template-columns: 128px 1fr auto; gap: 10px; padding: 6px 0;
  border-top: 1px solid var(--rule); font-size: 14px; overflow-wrap: anywhere; }
.steps li:last-child { border-bottom: 1px solid var(--rule); }
.steps b { font-weight: 600; }
.steps .skipped { color: var(--soft); }
.steps .skipped b { font-weight: 400; }
.steps small { color: var(--soft); font-variant-numeric: tabular-nums; white-space: nowrap; }
.steps label { display: inline-flex; align-items: center; gap: 6px; cursor: pointer; }
.steps input { margin: 0; accent-color: var(--accent); }
.swatch { width: 12px; height: 12px; border-radius: 3px; flex: none; }
.fan { margin: 0; }
.fan svg { width: 100%; display: block; }
.fan text { font-size: 11px; fill: var(--soft); }
.fan .grid { stroke: var(--rule); stroke-width: 1; }
.fan polyline { fill: none; stroke-width: 1.4; stroke-linejoin: round; }
.fan .coarse circle { opacity: .6; }
.fan .fine circle { r: 1.2px; }
.fan .lines polyline { stroke: var(--accent); }
.fan .lines circle { fill: var(--accent); }
.fan .stems polyline { stroke: var(--stems); stroke-width: 1.2; stroke-dasharray: 4 3; }
.fan .fine polyline { stroke-width: 2; stroke-dasharray: none; }
.fan .stems circle { fill: var(--stems); }
.fan .found line { stroke: var(--text); stroke-width: 1.2; }
.fan .found text { fill: var(--text); font-weight: 600; font-size: 12px; }
figcaption { font-size: 13px; color: var(--soft); margin-top: 4px; }
.key { white-space: nowrap; }
.key::before { content: ""; display: inline-block; width: 16px; margin-right: 5px;
  vertical-align: middle; border-top: 2px solid var(--accent); }
.key.stems::before { border-top: 2px dashed var(--stems); }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-size: 13.5px;
  font-variant-numeric: tabular-nums; }
th, td { text-align: left; padding: 6px 12px 6px 0; border-bottom: 1px solid var(--rule);
  white-space: nowrap; }
tbody tr:last-child td { border-bottom: 0; }
th button { all: unset; cursor: pointer; font-weight: 600; color: var(--soft); }
th button:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
th button::after { content: "\2195"; opacity: .35; padding-left: 4px; }
th[aria-sort="ascending"] button::after { content: "\2191"; opacity: 1; }
th[aria-sort="descending"] button::after { content: "\2193"; opacity: 1; }
th:not([aria-sort="none"]) button { color: var(--text); }
td:first-child { white-space: normal; overflow-wrap: anywhere; min-width: 13em; }
th { vertical-align: bottom; white-space: normal; padding-right: 10px; }
td.none { color: var(--soft); }
tr.failed .none { color: var(--bad); white-space: normal; }
a { color: var(--accent); }
@media (max-width: 860px) {
  .columns { grid-template-columns: minmax(0, 1fr); }
  header, main { padding-left: 12px; padding-right: 12px; }
  article, section { padding: 14px; }
}
@media print { .cut { display: none; } article { break-inside: avoid; } }
</style>
</head>
)";

const char* const kReportEnd = R"(</main>
<script>
"use strict";
const figures = document.getElementById("figures");
document.querySelector("main").prepend(figures);

for (const compare of document.querySelectorAll(".compare")) {
  const stage = compare.querySelector(".stage");
  const range = compare.querySelector("input");
  const show = () => stage.style.setProperty("--cut", range.value + "%");
  range.addEventListener("input", show);
  const follow = event => {
    const box = stage.getBoundingClientRect();
    range.value = (event.clientX - box.left) / box.width * 100;
    show();
  };
  stage.addEventListener("pointerdown", event => {
    if (event.button !== 0) return;
    stage.setPointerCapture(event.pointerId);
    follow(event);
  });
  stage.addEventListener("pointermove", event => {
    if (stage.hasPointerCapture(event.pointerId)) follow(event);
  });
  show();
}

for (const box of document.querySelectorAll(".steps input")) {
  const marks = [...box.closest("article").querySelectorAll("img.marks")]
    .filter(image => image.dataset.step === box.dataset.step);
  const show = () => { for (const image of marks) image.hidden = !box.checked; };
  box.addEventListener("change", show);
  show();
}

const heads = [...figures.querySelectorAll("th")];
const body = figures.querySelector("tbody");
const compareValues = (one, other) => {
  const difference = Number(one) - Number(other);
  return Number.isNaN(difference) ? one.localeCompare(other, undefined, {numeric: true})
                                  : difference;
};
heads.forEach((head, column) => head.querySelector("button").addEventListener("click", () => {
  const down = head.getAttribute("aria-sort") === "ascending";
  for (const other of heads) other.setAttribute("aria-sort", "none");
  head.setAttribute("aria-sort", down ? "descending" : "ascending");
  const value = row => row.cells[column] && row.cells[column].dataset.value;
  const rows = [...body.rows];
  const known = rows.filter(row => value(row) !== undefined);
  known.sort((a, b) => compareValues(value(a), value(b)) * (down ? -1 : 1));
  body.append(...known, ...rows.filter(row => value(row) === undefined));
}));
</script>
</body>
</html>
)";

}  // namespace tool
