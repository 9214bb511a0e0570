"use strict";
const heads = [...document.querySelectorAll("#figures thead th")];
const body = document.querySelector("#figures tbody");
const compareValues = (one, other) => {
  const difference = Number(one) - Number(other);
  return Number.isNaN(difference) ? one.localeCompare(other, undefined, {numeric: true})
                                  : difference;
};
heads.forEach((head, index) => head.querySelector("button").addEventListener("click", () => {
  const down = head.getAttribute("aria-sort") === "ascending";
  for (const other of heads) other.setAttribute("aria-sort", "none");
  head.setAttribute("aria-sort", down ? "descending" : "ascending");
  const cell = row => row.cells[index + 1];
  const value = row => cell(row) && cell(row).dataset.value;
  const inOrder = (a, b) => a.dataset.number - b.dataset.number;
  const rows = [...body.rows];
  const known = rows.filter(row => value(row) !== undefined);
  known.sort((a, b) => compareValues(value(a), value(b)) * (down ? -1 : 1) || inOrder(a, b));
  const unknown = rows.filter(row => value(row) === undefined).sort(inOrder);
  body.append(...known, ...unknown);
}));
// Browsers are content with a part of what is focused.
for (const head of heads) {
  head.addEventListener("focusin", () => head.scrollIntoView({block: "nearest", inline: "nearest"}));
}
